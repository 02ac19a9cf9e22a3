// A host that includes the system's headers, whose macros have names of ours, before the library's or after.
#ifdef SYSTEM_FIRST
#include <shlobj.h>
#include <windows.h>
#endif
#include <kvt01.h>
#ifndef SYSTEM_FIRST
#include <shlobj.h>
#include <windows.h>
#endif

int main()
{
    CFileFind finder;
    finder.FindFile("*"); // . and .. at least
    const bool isFound = finder.FindNextFile() && finder.GetFileTitle() == "";
    return isFound && DirUtils::CreateDirectory("C:\\kvt01-system-headers") ? 0 : 1;
}
