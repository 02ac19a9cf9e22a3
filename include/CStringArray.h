// CStringArray: an array of strings. What it offers is described with FrameworkArray.
#pragma once

#include "CString.h"
#include "FrameworkArray.h"

class CStringArray : public FrameworkArray<CString> {};
