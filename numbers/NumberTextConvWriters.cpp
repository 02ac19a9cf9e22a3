// Integers and bytes as text.
#include "NumberTextConv.h"

#include <charconv>
#include <cstring>

#include "CByteArray.h"
#include "numbers/Separators.h"
#include "platform/Platform.h"

namespace {

constexpr std::size_t MaxDigits = 21;   // of 64 bits, with sign and NUL
constexpr std::size_t MaxSeparator = 4; // characters that are handed to the platform
constexpr std::size_t GroupedRoom =
    256; // 20 digits, a separator at each of them and an empty group here and there

void CopySeparator(const CString& separator, char (&copy)[MaxSeparator + 1])
{
    std::strncpy(copy, separator.GetString(), MaxSeparator);
    copy[MaxSeparator] = '\0';
}

UINT NegativeOrder()
{
    unsigned int order = 0;
    LocaleUtils::GetLocaleInfoNumberFor(LOCALE_INEGNUMBER, order);
    return order;
}

// The digits in the user's form; as they are where the platform refuses, as with a form that it does not
// know.
CString Grouped(const char* digits, int length)
{
    char decimal[MaxSeparator + 1];
    char thousands[MaxSeparator + 1];
    CopySeparator(Separators::Decimal(), decimal);
    CopySeparator(Separators::Thousands(), thousands);
    NUMBERFMTA format{};
    format.Grouping = LocaleUtils::GetDigitGrouping();
    format.lpDecimalSep = decimal;
    format.lpThousandSep = thousands;
    format.NegativeOrder = digits[0] == '-' ? NegativeOrder() : 0; // only a negative number has one
    char text[GroupedRoom];
    const int written = GetNumberFormatA(LOCALE_USER_DEFAULT, 0, digits, &format, text, sizeof text);
    return written > 0 ? CString(text, written - 1) : CString(digits, length);
}

template <class Integer>
CString TextOf(Integer value, bool grouped)
{
    char digits[MaxDigits];
    char* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    const int length = static_cast<int>(end - digits);
    if (!grouped)
        return CString(digits, length);
    *end = '\0';
    return Grouped(digits, length);
}

CString Padded(const CString& text, int minWidth, const CString& pad)
{
    const int missing = minWidth - text.GetLength();
    const int count = (missing - 1) / pad.GetLength() + 1;
    CString padded;
    padded.Preallocate(text.GetLength() + missing);
    for (int i = 0; i < count; ++i)
        padded += pad;
    padded += text;
    return padded;
}

} // namespace

CString NumberTextConv::NumberToString(int value, bool grouped, int minWidth, const CString& pad)
{
    CString text = TextOf(value, grouped);
    if (pad.IsEmpty() || text.GetLength() >= minWidth)
        return text;
    return Padded(text, minWidth, pad);
}

CString NumberTextConv::NumberToString(uint64 value, bool grouped)
{
    return TextOf(value, grouped);
}

namespace {

constexpr std::string_view ListSeparator = ", ";

} // namespace

void NumberTextConv::ConvertByteArrayToString(const CByteArray& bytes, CString& out)
{
    out.Empty();
    std::string_view separator;
    for (const BYTE byte : bytes) {
        char digits[4];
        const char* const end = std::to_chars(digits, digits + sizeof digits, static_cast<int>(byte)).ptr;
        out += separator;
        out.Append(digits, static_cast<int>(end - digits));
        separator = ListSeparator;
    }
}

void NumberTextConv::ConvertStringToByteArray(const CString& text, CByteArray& bytes)
{
    bytes.RemoveAll();
    std::string_view rest = text.View();
    while (!rest.empty()) {
        const std::size_t end = rest.find(ListSeparator);
        bytes.Add(static_cast<BYTE>(GetNumberFromString(CString(rest.substr(0, end)))));
        if (end == std::string_view::npos)
            return;
        rest.remove_prefix(end + ListSeparator.size());
        if (rest.empty())
            bytes.Add(0); // the piece behind the last separator
    }
}
