#include "ExeUtils.h"

#include "platform/Platform.h"

namespace {

bool HasNul(const CString& text)
{
    return text.Find('\0') >= 0;
}

// The program's own name comes first, in quotes. A quote cannot stand inside these; the program is found by
// its path, whatever stands here.
CString CommandLine(CString path, const CString& arguments)
{
    path.Remove('"');
    return "\"" + path + "\" " + arguments;
}

} // namespace

bool ExeUtils::LaunchApp(const CString& path, const CString& arguments, const CString& initialFolder,
                         const CString& title, bool minimized)
{
    if (path.IsEmpty() || HasNul(path) || HasNul(arguments) || HasNul(initialFolder))
        return false;
    CString commandLine = CommandLine(path, arguments);
    CString windowTitle = title;
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.lpTitle = windowTitle.IsEmpty() ? nullptr : windowTitle.GetBuffer();
    if (minimized) {
        startup.dwFlags = STARTF_USESHOWWINDOW;
        startup.wShowWindow = SW_SHOWMINIMIZED;
    }
    PROCESS_INFORMATION process = {};
    const BOOL isStarted =
        CreateProcessA(path, commandLine.GetBuffer(), nullptr, nullptr, FALSE, 0, nullptr,
                       initialFolder.IsEmpty() ? nullptr : initialFolder.GetString(), &startup, &process);
    if (!isStarted)
        return false;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return true;
}
