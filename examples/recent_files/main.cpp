// recent_files: an example host. Each command has a file of its own, with its description in the header.

#include <kvt01.h>

#include <cstdio>
#include <exception>
#include <vector>

#include "Convert.h"
#include "Listing.h"
#include "Logging.h"

namespace {

struct Command {
    const char* name;
    int (*run)(const std::vector<CString>& arguments); // 2 for arguments that it does not know
};

constexpr Command Commands[] = {
    {"convert", Convert::Run},
    {"log", Logging::Run},
};

constexpr const char* Usage = "usage: recent_files FOLDER [WILDCARD]\n"
                              "       recent_files log [on|off|--crash]\n";

// What is no command is a folder to list.
int Run(const std::vector<CString>& arguments)
{
    for (const Command& command : Commands)
        if (!arguments.empty() && arguments[0] == command.name)
            return command.run({arguments.begin() + 1, arguments.end()});
    return Listing::Run(arguments);
}

} // namespace

int main(int argc, char** argv)
{
    AppLogger::SetAppName("recent_files");
    int result = 1;
    try {
        result = Run({argv + 1, argv + argc});
        if (result == 2)
            std::fprintf(stderr, "%s%s", Usage, Convert::Usage);
    } catch (const std::exception& error) {
        AppLogger::AddLine(CString("{Failed} ") + error.what());
        std::fprintf(stderr, "recent_files: %s\n", error.what());
    }
    AppLogger::DeleteInstance();
    return result;
}
