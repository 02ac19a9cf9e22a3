// What a test wants done by another process. With the variable KVT01_TEST_SAYS its folder and its arguments
// go to the file that it names, which appears when it is complete. Else
//   log PREFIX FIRST LAST MOST   says its process's number, adds lines to a log of most lines and says the
//   number of
//                                each that is there
//   hold PATH ACCESS SHARE FILE  opens the path and makes the file; ends when that is gone
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <unistd.h>
#include <vector>

#include "AppLogger.h"
#include "System.h"
#include "platform/Platform.h"

namespace {

using Words = std::vector<std::string>;

void Say(const std::string& file, const Words& words)
{
    std::ofstream said(file + ".new", std::ios::binary);
    said << std::filesystem::current_path().string() << '\n';
    for (const std::string& word : words)
        said << '<' << word << '>';
    said.close();
    std::filesystem::rename(file + ".new", file);
}

void AddLines(const Words& words)
{
    JoinTestUser();
    std::cout << getpid() << std::endl;
    AppLogger::SetMaxLogEntries(std::stoull(words.at(4)));
    AppLogger::SetAppName("App");
    for (int number = std::stoi(words.at(2)); number <= std::stoi(words.at(3)); ++number) {
        AppLogger::AddLine(words.at(1) + std::to_string(number));
        std::cout << number << std::endl;
    }
}

void Hold(const Words& words)
{
    CreateFileA(words.at(1).c_str(), static_cast<DWORD>(std::stoul(words.at(2))),
                static_cast<DWORD>(std::stoul(words.at(3))), nullptr, OPEN_EXISTING, 0, nullptr);
    std::ofstream(words.at(4)) << "held";
    while (std::filesystem::exists(words.at(4)))
        Sleep(1);
}

} // namespace

int main(int count, char** arguments)
{
    const Words words(arguments + 1, arguments + count);
    if (const char* const file = std::getenv("KVT01_TEST_SAYS"))
        Say(file, words);
    else
        (words.at(0) == "log" ? AddLines : Hold)(words);
    return 0;
}
