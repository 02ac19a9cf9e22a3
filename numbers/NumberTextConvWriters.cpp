// Integers and bytes as text.
#include "NumberTextConv.h"

#include <cstring>
#include <type_traits>
#include <utility>

#include "CByteArray.h"
#include "numbers/Digits.h"
#include "numbers/Separators.h"
#include "platform/Platform.h"

namespace {

constexpr std::size_t MaxDigits = 21;    // of 64 bits, with sign and NUL
constexpr std::size_t MaxSeparator = 4;  // characters that are handed to the platform
constexpr std::size_t GroupedRoom = 256; // 20 digits with a separator at each, and some empty groups

// Its first characters in memory of our own, as the platform wants them.
struct SeparatorCopy {
    explicit SeparatorCopy(const CString& separator)
    {
        std::memcpy(text, separator.GetFront(), MaxSeparator);
    }
    char text[MaxSeparator + 1] = {};
};

UINT NegativeOrder()
{
    unsigned int order = 0;
    LocaleUtils::GetLocaleInfoNumberFor(LOCALE_INEGNUMBER, order);
    return order;
}

constexpr std::string_view ListSeparator = ", "; // between the bytes of an array

// The digits in the user's form; as they are where the platform refuses, as with a form that it does not
// know.
CString Grouped(const char* digits, int length)
{
    SeparatorCopy decimal(Separators::Decimal());
    SeparatorCopy thousands(Separators::Thousands());
    NUMBERFMTA format{};
    format.Grouping = LocaleUtils::GetDigitGrouping();
    format.lpDecimalSep = decimal.text;
    format.lpThousandSep = thousands.text;
    format.NegativeOrder = digits[0] == '-' ? NegativeOrder() : 0; // only a negative number has one
    char text[GroupedRoom];
    const int written = GetNumberFormatA(LOCALE_USER_DEFAULT, 0, digits, &format, text, sizeof text);
    return written > 0 ? CString(text, written - 1) : CString(digits, length);
}

template <class Integer>
char* Write(char* to, Integer value)
{
    auto magnitude = static_cast<std::make_unsigned_t<Integer>>(value);
    if (std::cmp_less(value, 0)) {
        *to++ = '-';
        magnitude = 0 - magnitude;
    }
    return Digits::Write(to, magnitude);
}

template <class Integer>
CString TextOf(Integer value, bool grouped)
{
    if (!grouped)
        return CString::Written([=](char* begin) { return Write(begin, value); });
    char digits[MaxDigits];
    char* const end = Write(digits, value);
    *end = '\0';
    return Grouped(digits, static_cast<int>(end - digits));
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

CString NumberTextConv::NumberToString(int value, bool grouped)
{
    return TextOf(value, grouped);
}

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

void NumberTextConv::ConvertByteArrayToString(const CByteArray& bytes, CString& out)
{
    out.Empty();
    std::string_view separator;
    for (const BYTE byte : bytes) {
        char digits[3];
        const char* const end = Digits::Write(digits, unsigned{byte});
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
