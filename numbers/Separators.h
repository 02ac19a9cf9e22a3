// The user's separators for numbers, filled at the moment of use.
#pragma once

#include "LocaleUtils.h"

namespace Separators {

// The getters fill the strings; asked only while there is need, as they return copies.
inline const CString& Decimal()
{
    if (LocaleUtils::m_csDecimalSeparator.IsEmpty()) [[unlikely]]
        LocaleUtils::GetDecimalSeparator();
    return LocaleUtils::m_csDecimalSeparator;
}
inline const CString& Thousands()
{
    if (LocaleUtils::m_csThousandsSeparator.IsEmpty()) [[unlikely]]
        LocaleUtils::GetThousandsSeparator();
    return LocaleUtils::m_csThousandsSeparator;
}

} // namespace Separators
