// The user's separators for numbers, filled at the moment of use.
#pragma once

#include "LocaleUtils.h"

namespace Separators {

inline constexpr unsigned long DecimalItem = 14;   // LOCALE_SDECIMAL
inline constexpr unsigned long ThousandsItem = 15; // LOCALE_STHOUSAND

inline const CString& Filled(CString& separator, unsigned long item)
{
    if (separator.IsEmpty()) [[unlikely]]
        separator = LocaleUtils::GetLocaleInfoFor(item);
    return separator;
}

inline const CString& Decimal()
{
    return Filled(LocaleUtils::m_csDecimalSeparator, DecimalItem);
}
inline const CString& Thousands()
{
    return Filled(LocaleUtils::m_csThousandsSeparator, ThousandsItem);
}

} // namespace Separators
