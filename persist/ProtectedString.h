// The encrypted-string record: a 16-bit flag, then encrypted bytes (flag 1) or the plain text (any other).
#pragma once

#include "CArchive.h"
#include "CString.h"

void LoadProtectedString(CArchive& archive, CString& text);
