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
    const LPCSTR name = "x";
    const INT_PTR count = CStringArray{name}.GetCount();
    const ULONGLONG size = finder.GetLength();
    const LONGLONG days = static_cast<LONGLONG>(COleDateTime(DATE{2}).m_dt) * count;
    const BOOL isKnown = !LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL).IsEmpty() && days == 2 && size == 0;
    static_assert(LOCALE_SABBREVMONTHNAME13 == 0x100F && LOCALE_INEGNUMBER == 0x1010);
    const bool isFound = finder.FindNextFile() && finder.GetFileTitle() == "";
    CStdioFile file;
    const CFile& base = file;
    const bool isClosed = file.GetFileTitle() == "" && base.GetFileTitle() == "";
    return isKnown && isFound && isClosed && DirUtils::CreateDirectory("C:\\kvt01-system-headers") ? 0 : 1;
}
