// Text as the terminal takes it.
#pragma once

#include <kvt01.h>

// The library's texts are in its code page, as the separators of some countries show.
CString ForTerminal(const CString& text);
