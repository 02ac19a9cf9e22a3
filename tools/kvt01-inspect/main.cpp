// kvt01-inspect: log files and stored records as text. What it does and answers stands in Help below.
#include <kvt01.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Damage.h"
#include "LogFile.h"
#include "Output.h"
#include "StoredTypes.h"

namespace {

enum ExitCode { Fine = 0, Damaged = 1, WrongUsage = 2 };

class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

constexpr char Help[] =
    "usage: kvt01-inspect log FILE\n"
    "       kvt01-inspect archive FILE --as TYPE [--legacy] [--encrypted]\n"
    "       kvt01-inspect --help | --version\n"
    "\n"
    "Prints as text what applications have stored.\n"
    "\n"
    "  log      a log file: for each entry the date and time, the marker and the text, with tabs between\n"
    "  archive  a stored value, one field or element a line\n"
    "\n"
    "  --as TYPE    what is stored at the beginning of FILE; one of the types below (quote the < >)\n"
    "  --legacy     the old layout: 4-byte counts, no container versions\n"
    "  --encrypted  the texts are encrypted-string records (TextArray: those of versions 2 and 3)\n"
    "\n"
    "Texts are Windows-1252 and are printed as UTF-8, control characters as \\xHH. A missing date or time is "
    "-.\n"
    "\n"
    "Exit code: 0 if all is well; 1 if FILE cannot be read, ends too early, holds something else, or goes "
    "on\n"
    "behind the value: what comes before that is printed; 2 if the command is not as above.\n"
    "\n"
    "Types (string may stand for CString):\n";

// ---- the command line -----------------------------------------------------------------------------------

struct Request {
    std::vector<std::string> words; // the command and the file
    std::optional<std::string> type;
    bool isLegacy = false;
    bool isEncrypted = false;
    bool wantsHelp = false;
    bool wantsVersion = false;
};

constexpr struct {
    std::string_view name;
    bool Request::*flag;
} Flags[] = {
    {"--legacy", &Request::isLegacy}, {"--encrypted", &Request::isEncrypted}, {"--help", &Request::wantsHelp},
    {"-h", &Request::wantsHelp},      {"--version", &Request::wantsVersion},
};

bool TakeFlag(Request& request, std::string_view argument)
{
    for (const auto& [name, flag] : Flags)
        if (argument == name)
            return request.*flag = true;
    return false;
}

Request ReadArguments(std::span<char*> arguments)
{
    constexpr std::string_view AsWithType = "--as=";
    Request request;
    bool areOptionsOver = false;
    for (auto next = arguments.begin(); next != arguments.end(); ++next) {
        const std::string_view argument = *next;
        if (areOptionsOver || !argument.starts_with('-'))
            request.words.emplace_back(argument);
        else if (argument == "--")
            areOptionsOver = true;
        else if (argument.starts_with(AsWithType))
            request.type = argument.substr(AsWithType.size());
        else if (argument == "--as" && next + 1 != arguments.end())
            request.type = *++next;
        else if (argument == "--as")
            throw UsageError("--as needs a type");
        else if (!TakeFlag(request, argument))
            throw UsageError("unknown option " + std::string(argument));
    }
    return request;
}

// The type that is asked for, if it has the layout that is asked for.
const StoredType& TypeOf(const Request& request)
{
    if (!request.type)
        throw UsageError("archive needs --as TYPE");
    const StoredType* const type = FindStoredType(*request.type);
    if (type == nullptr)
        throw UsageError("unknown type " + *request.type + "; --help lists them");
    if (request.isLegacy && !type->hasLegacy)
        throw UsageError(std::string(type->name) + " has no legacy layout to choose");
    if (request.isEncrypted && !type->hasEncrypted)
        throw UsageError(std::string(type->name) + " has no encrypted layout to choose");
    return *type;
}

void PrintHelp()
{
    std::fputs(Help, stdout);
    for (const StoredType& type : StoredTypes())
        Output::Line("  " + std::string(type.name));
}

// ---- what it does ---------------------------------------------------------------------------------------

void InspectLog(const Request& request, const CString& fileName)
{
    if (request.type || request.isLegacy || request.isEncrypted)
        throw UsageError("log takes no options");
    Source source(fileName);
    PrintLog(source);
}

void InspectArchive(const Request& request, const CString& fileName)
{
    const StoredType& type = TypeOf(request);
    Source source(fileName);
    PrintStored(source, type, {request.isLegacy, request.isEncrypted});
}

void Inspect(const Request& request)
{
    if (request.words.empty())
        throw UsageError("no command; see --help");
    const std::string& command = request.words[0];
    if (command != "log" && command != "archive")
        throw UsageError("unknown command " + command);
    if (request.words.size() != 2)
        throw UsageError(command + " needs one file");
    const std::string& fileName = request.words[1];
    try {
        (command == "log" ? InspectLog : InspectArchive)(request, CString(fileName));
    } catch (const Damage& damage) {
        throw Damage(fileName + ": " + damage.what());
    }
}

void Run(std::span<char*> arguments)
{
    const Request request = ReadArguments(arguments);
    if (request.wantsHelp)
        PrintHelp();
    else if (request.wantsVersion)
        std::puts("kvt01-inspect " KVT01_VERSION);
    else
        Inspect(request);
}

ExitCode Complain(const std::string& text, ExitCode code)
{
    std::fflush(stdout); // so that a terminal shows both in order
    std::fprintf(stderr, "kvt01-inspect: %s\n", Output::Name(text).c_str());
    return code;
}

} // namespace

int main(int argc, char** argv)
try {
    Run({argv + 1, argv + argc});
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        return Complain(std::string("cannot write: ") + std::strerror(errno), Damaged);
    return Fine;
} catch (const UsageError& error) {
    return Complain(error.what(), WrongUsage);
} catch (const std::bad_alloc&) {
    return Complain("not enough memory", Damaged);
} catch (const std::exception& error) {
    return Complain(error.what(), Damaged);
}
