#include "NumberTextConv.h"

#include "LocaleUtils.h"
#include "StringUtils.h"

CString NumberTextConv::NumberToString(int value, bool, int minWidth, const CString& pad)
{
    CString text;
    text.Format("%d", value);
    while (!pad.IsEmpty() && text.GetLength() < minWidth)
        text = pad + text;
    return text;
}

namespace {

char FirstOf(const CString& separator)
{
    return separator[0];
}

bool IsDigitChar(char c)
{
    return c >= 0 && StringUtils::IsDigit(c);
}

} // namespace

double NumberTextConv::GetDoubleFromString(const CString& s, bool parenthesesNegative)
{
    if (LocaleUtils::m_csDecimalSeparator.IsEmpty())
        LocaleUtils::m_csDecimalSeparator = LocaleUtils::GetLocaleInfoFor(14);
    if (LocaleUtils::m_csThousandsSeparator.IsEmpty())
        LocaleUtils::m_csThousandsSeparator = LocaleUtils::GetLocaleInfoFor(15);
    const char decimal = FirstOf(LocaleUtils::m_csDecimalSeparator);
    const char thousands = FirstOf(LocaleUtils::m_csThousandsSeparator);
    double result = 0;
    double scale = 10;
    bool started = false;
    bool negative = false;
    bool inFraction = false;
    for (const char c : s) {
        const bool isDigit = IsDigitChar(c);
        if (!started && !isDigit) {
            if (c == '-' || (c == '(' && parenthesesNegative)) {
                negative = true;
            } else if (c == decimal) {
                scale = 0.1;
                inFraction = true;
            }
            continue;
        }
        started = true;
        if (c == thousands)
            continue;
        if (c == decimal) {
            scale = 0.1;
            inFraction = true;
        } else if (!isDigit) {
            break;
        } else if (inFraction) {
            result += scale * (c - '0');
            scale *= 0.1;
        } else {
            result = result > -0.001 && result < 0.001 ? c - '0' : result * 10 + (c - '0');
        }
    }
    return negative ? -result : result;
}
