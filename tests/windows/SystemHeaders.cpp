// A host that includes the system's headers, whose macros have names of ours, before the library's or after,
// and calls everything that has such a name.
#ifdef SYSTEM_FIRST
#include <windows.h>

#include <commdlg.h>
#include <shlobj.h>
#endif
#include <kvt01.h>
#ifndef SYSTEM_FIRST
#include <windows.h>

#include <commdlg.h>
#include <shlobj.h>
#endif

#if !defined CreateDirectory || !defined FindNextFile || !defined GetFileTitle
#error "The library's headers have taken macros away"
#endif

int main()
{
    CFileFind finder;
    finder.FindFile("*"); // . and .. at least
    const bool isFound = finder.FindNextFile() && finder.GetFileTitle() == "";
    CStdioFile file;
    const CFile& base = file;
    const bool isClosed = file.GetFileTitle() == "" && base.GetFileTitle() == "";
    return isFound && isClosed && DirUtils::CreateDirectory("C:\\kvt01-system-headers") ? 0 : 1;
}
