// The readers of numbers on any text, and the writers on any value.
#include <bit>

#include "LocaleUtils.h"
#include "NumberTextConv.h"
#include "fuzz/Difference.h"
#include "fuzz/Targets.h"

namespace {

// From the last character to the first with a place value; in 64 bits, of which the caller takes the lower
// ones.
uint64 PlaceByPlace(const CString& s)
{
    uint64 total = 0, place = 1;
    bool isNegative = false;
    for (int i = s.GetLength(); i-- > 0;) {
        isNegative = isNegative || s[i] == '(' || s[i] == '-';
        if (s[i] >= '0' && s[i] <= '9') {
            total += static_cast<uint64>(s[i] - '0') * place;
            place *= 10;
        }
    }
    return isNegative ? 0 - total : total;
}

// Step by step as the rule says it, down to the replacement of a result near zero.
double StepByStep(const CString& s, char decimal, char thousands, bool parenthesesNegative)
{
    double result = 0, scale = 10;
    bool started = false, negative = false;
    for (const char c : s) {
        const bool isDigit = c >= '0' && c <= '9';
        const bool isSign = !started && (c == '-' || (c == '(' && parenthesesNegative));
        started = started || isDigit;
        if (isSign) {
            negative = true;
        } else if (started && c == thousands) {
            continue;
        } else if (c == decimal && (started || !isDigit)) {
            scale = 0.1;
        } else if (started && !isDigit) {
            break;
        } else if (isDigit && scale < 1) {
            volatile double part = scale * (c - '0'); // rounded by itself
            result += part;
            scale *= 0.1;
        } else if (isDigit) {
            result = result > -0.001 && result < 0.001 ? c - '0' : result * 10 + (c - '0');
        }
    }
    return negative ? -result : result;
}

void ExpectWritten(uint64 wide)
{
    const int value = static_cast<int>(wide);
    const std::string text = std::to_string(value), wideText = std::to_string(wide);
    Expect("NumberToString", NumberTextConv::NumberToString(value), text.c_str());
    Expect("NumberToString", NumberTextConv::NumberToString(wide), wideText.c_str());
    bool isNegative = value >= 0;
    Expect("GetDigitCount", NumberTextConv::GetDigitCount(value, isNegative),
           static_cast<int>(text.size()) - (value < 0), value);
    Expect("GetDigitCount, negative", isNegative, value < 0, value);
    Expect("GetDigitCount", NumberTextConv::GetDigitCount(wide), static_cast<int>(wideText.size()), wide);
}

} // namespace

void Targets::Numbers(Choices& choices)
{
    static const char* const separators[][2] = {{".", ","}, {",", "."}, {"::", "''''"}, {",", "\xA0"},
                                                {"-", "5"}, {".", "."}, {"5", ","}};
    static const std::string characters("01234567890123456789--().,, a\0\xE9\xB2", 33);
    const auto& [decimal, thousands] = choices.Pick(separators);
    LocaleUtils::m_csDecimalSeparator = decimal;
    LocaleUtils::m_csThousandsSeparator = thousands;
    const bool parentheses = choices.Flag();
    uint64 wide = 0;
    for (std::size_t bytes = choices.Below(9); bytes > 0; --bytes)
        wide = wide << 8 | choices.Below(256);
    ExpectWritten(wide);
    const CString text = choices.Make(characters, choices.Below(choices.OneIn(50) ? 500 : 30));
    Expect("GetNumber64FromString", NumberTextConv::GetNumber64FromString(text),
           static_cast<int64>(PlaceByPlace(text)), text);
    Expect("GetNumberFromString", NumberTextConv::GetNumberFromString(text),
           static_cast<int>(PlaceByPlace(text)), text);
    const double read = NumberTextConv::GetDoubleFromString(text, parentheses);
    const double expected = StepByStep(text, decimal[0], thousands[0], parentheses);
    Expect("GetDoubleFromString", std::bit_cast<uint64>(read), std::bit_cast<uint64>(expected), text,
           parentheses, decimal, thousands, read, expected);
}
