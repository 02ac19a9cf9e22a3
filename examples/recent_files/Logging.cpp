#include "Logging.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace {

void ShowLog()
{
    if (AppLogger::GetInstance() == nullptr) {
        std::puts("The log is switched off; `recent_files log on` switches it on.");
        return;
    }
    CStringArray lines;
    AppLogger::GetLogText(lines);
    std::printf("%s: %td lines\n", AppLogger::m_csLogFile.GetString(), lines.GetSize());
    for (const CString& line : lines)
        std::printf("  %s\n", line.GetString());
}

void Crash()
{
    AppLogger::EnableLogging(true);
    for (int line = 1; line <= 3; ++line) {
        CString text;
        text.Format("{Crash} line %d of 3 before the process is killed", line);
        AppLogger::AddLine(text);
    }
    std::puts("Three lines were added. Now this process kills itself; `recent_files log` shows them.");
    std::fflush(stdout);
#ifdef SIGKILL
    std::raise(SIGKILL); // nothing of the process runs after this
#endif
    std::abort();
}

} // namespace

int Logging::Run(const std::vector<CString>& arguments)
{
    if (arguments.size() > 1)
        return 2;
    const CString what = arguments.empty() ? CString() : arguments[0];
    if (what == "on" || what == "off")
        AppLogger::EnableLogging(what == "on");
    else if (what == "--crash")
        Crash();
    else if (!what.IsEmpty())
        return 2;
    ShowLog();
    return 0;
}
