// NumberTextConv: numbers as text and text as numbers.
#pragma once

#include "BasicTypes.h"
#include "CString.h"
#include "Kvt01Api.h"

class KVT01_API NumberTextConv {
public:
    static CString NumberToString(int value, bool grouped = false, int minWidth = 0,
                                  const CString& pad = CString());
    static double GetDoubleFromString(const CString& s, bool parenthesesNegative = false);
};
