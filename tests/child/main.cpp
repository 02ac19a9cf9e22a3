// What a test wants done by another process. With the variable KVT01_TEST_SAYS its folder and its arguments
// go to the file that it names, which appears when it is complete. Else
//   log PREFIX FIRST LAST MOST LIFE  adds lines to a log of most lines and says each number whose line is
//   there;
//                                    is killed so many microseconds after its start, or -LIFE after the first
//   hold PATH ACCESS SHARE FILE      opens the path and makes the file; is killed when that is gone
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>
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

void EndAfter(int microseconds)
{
    std::thread([microseconds] {
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
        EndThisProcess();
    }).detach();
}

void AddLines(const Words& words)
{
    const int first = std::stoi(words.at(2)), last = std::stoi(words.at(3)), life = std::stoi(words.at(5));
    if (life > 0)
        EndAfter(life);
    JoinTestUser();
    AppLogger::SetMaxLogEntries(std::stoull(words.at(4)));
    AppLogger::SetAppName("App");
    for (int number = first; number <= last; ++number) {
        AppLogger::AddLine(words.at(1) + std::to_string(number));
        std::cout << number << std::endl;
        if (life < 0 && number == first)
            EndAfter(-life);
    }
}

void Hold(const Words& words)
{
    CreateFileA(words.at(1).c_str(), static_cast<DWORD>(std::stoul(words.at(2))),
                static_cast<DWORD>(std::stoul(words.at(3))), nullptr, OPEN_EXISTING, 0, nullptr);
    std::ofstream(words.at(4)) << "held";
    while (std::filesystem::exists(words.at(4)))
        Sleep(1);
    EndThisProcess();
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
