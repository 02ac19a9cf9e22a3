// Readers of text, and the small operations.
#include "NumberTextConv.h"

#include <algorithm>
#include <string_view>

#include "numbers/Digits.h"
#include "numbers/Separators.h"

namespace {

constexpr bool IsDigitChar(char c)
{
    return c >= '0' && c <= '9';
}

constexpr unsigned int ValueOf(char digit)
{
    return static_cast<unsigned int>(digit - '0');
}

// All digits in a row in unsigned arithmetic, which wraps; the result is negated where a mark asks for it.
template <class Unsigned>
Unsigned DigitsOf(std::string_view text)
{
    Unsigned value = 0;
    bool isNegative = false;
    for (const char c : text) {
        if (IsDigitChar(c))
            value = value * 10 + ValueOf(c);
        else
            isNegative |= c == '-' || c == '(';
    }
    return isNegative ? Unsigned{0} - value : value;
}

constexpr int NoHexDigit = -1;

int HexValueOf(char c)
{
    if (IsDigitChar(c))
        return c - '0';
    const int letter = c | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : NoHexDigit;
}

// A decimal number being read, character by character.
class DecimalReader {
public:
    DecimalReader(char decimal, char thousands, bool parenthesesNegative)
        : m_decimal(decimal), m_thousands(thousands), m_parenthesesNegative(parenthesesNegative)
    {
    }

    void TakeBeforeDigits(char c)
    {
        if (c == '-' || (c == '(' && m_parenthesesNegative))
            m_isNegative = true;
        else if (c == m_decimal)
            BeginFraction();
    }

    // The first digits of the whole part, as far as any way of adding them up is exact; returns where it
    // ended.
    const char* TakeExact(const char* at, const char* end)
    {
        uint64 whole = 0;
        for (; at != end && whole < ExactBelow && !m_isFraction; ++at) {
            if (*at == m_thousands)
                continue;
            if (*at == m_decimal || !IsDigitChar(*at))
                break;
            whole = whole * 10 + ValueOf(*at);
        }
        m_value = static_cast<double>(whole);
        return at;
    }

    // Whether the number goes on.
    bool Take(char c)
    {
        if (c == m_thousands)
            return true;
        if (c == m_decimal)
            BeginFraction();
        else if (!IsDigitChar(c))
            return false;
        else if (m_isFraction)
            AddFraction(c - '0');
        else
            m_value = m_value * 10 + (c - '0');
        return true;
    }

    double Value() const { return m_isNegative ? -m_value : m_value; }

private:
    void BeginFraction()
    {
        m_isFraction = true;
        m_scale = 0.1;
    }
    // Kept: the scale's error grows from place to place, and readers of stored numbers rely on just these
    // bits.
    void AddFraction(int digit)
    {
        m_value += m_scale * digit;
        m_scale *= 0.1;
    }

    static constexpr uint64 ExactBelow = 100'000'000'000'000; // one more digit is still below 2^53

    double m_value = 0;
    double m_scale = 0;
    char m_decimal, m_thousands;
    bool m_parenthesesNegative;
    bool m_isFraction = false;
    bool m_isNegative = false;
};

} // namespace

int NumberTextConv::GetNumberFromString(const CString& s)
{
    return static_cast<int>(DigitsOf<unsigned int>(s.View()));
}

int64 NumberTextConv::GetNumber64FromString(const CString& s)
{
    return static_cast<int64>(DigitsOf<uint64>(s.View()));
}

double NumberTextConv::GetDoubleFromString(const CString& s, bool parenthesesNegative)
{
    const char* at = s.begin();
    const char* const end = s.end();
    DecimalReader reader(Separators::Decimal().GetFront()[0], Separators::Thousands().GetFront()[0],
                         parenthesesNegative);
    for (; at != end && !IsDigitChar(*at); ++at)
        reader.TakeBeforeDigits(*at);
    at = reader.TakeExact(at, end);
    while (at != end && reader.Take(*at))
        ++at;
    return reader.Value();
}

void NumberTextConv::RemoveDecimalZeroes(CString& s)
{
    const CString& separator = Separators::Decimal();
    if (separator.IsEmpty() || s.Find(separator) < 0)
        return;
    int length = s.GetLength();
    while (length > 0 && s[length - 1] == '0')
        --length;
    if (length > 0 && s[length - 1] == separator[0]) // kept: one character, however long the separator is
        --length;
    s.Truncate(length);
}

bool NumberTextConv::HasDigit(const CString& s)
{
    return std::any_of(s.begin(), s.end(), IsDigitChar);
}

long NumberTextConv::ConvertFromHex(const CString& s)
{
    constexpr long Largest = 0x7FFFFFFF; // of the 32 bits that the type has on the original platform
    if (s.GetLength() < 3 || s[0] != '0' || s[1] != 'x')
        return 0;
    long value = 0;
    for (const char c : s.View().substr(2)) {
        const int digit = HexValueOf(c);
        if (digit == NoHexDigit)
            break;
        if (value > Largest / 16)
            return Largest;
        value = value * 16 + digit;
    }
    return value;
}

int NumberTextConv::GetDigitCount(int64 value, bool& negative)
{
    negative = value < 0;
    const auto magnitude = static_cast<uint64>(value);
    return GetDigitCount(negative ? uint64{0} - magnitude : magnitude);
}

int NumberTextConv::GetDigitCount(uint64 value)
{
    return Digits::Count(value);
}
