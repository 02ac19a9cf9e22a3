#include "Terminal.h"

#include <windows.h>

CString ForTerminal(const CString& text)
{
    SetConsoleOutputCP(GetACP());
    return text;
}
