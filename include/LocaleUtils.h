// LocaleUtils: the user's regional settings.
#pragma once

#include "CString.h"
#include "Kvt01Api.h"

class KVT01_API LocaleUtils {
public:
    // Read once, when first asked for, and kept for the rest of the process; empty until then.
    static CString& m_csDecimalSeparator;
    static CString& m_csThousandsSeparator;

    static CString GetLocaleInfoFor(unsigned long lcType);
};
