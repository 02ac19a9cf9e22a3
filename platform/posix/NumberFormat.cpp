// GetNumberFormatA.
#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "platform/posix/PosixPlatform.h"

namespace {

struct Number {
    bool isNegative;
    std::string_view whole, fraction; // digits, without zeros in front of the whole part
};

constexpr std::size_t MaxFormatted = 0x7FFFFFFF; // a length that the result can tell

// How many characters at the front are digits.
std::size_t DigitsAtFront(std::string_view text)
{
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isDigit) - text.begin());
}

bool Parse(std::string_view text, Number& number)
{
    number.isNegative = text.starts_with('-');
    text.remove_prefix(number.isNegative ? 1 : 0);
    number.whole = text.substr(0, DigitsAtFront(text));
    text.remove_prefix(number.whole.size());
    number.fraction = text.substr(text.starts_with('.') ? 1 : 0);
    if (DigitsAtFront(number.fraction) != number.fraction.size())
        return false;
    while (number.whole.starts_with('0'))
        number.whole.remove_prefix(1);
    return true;
}

// The digits of a number rounded to `places` behind the point, all in a row.
std::string Rounded(const Number& number, std::size_t places)
{
    std::string digits(number.whole);
    digits += number.fraction.substr(0, places);
    digits.resize(number.whole.size() + places, '0');
    if (number.fraction.size() <= places || number.fraction[places] < '5')
        return digits;
    for (std::size_t i = digits.size(); i-- > 0; digits[i] = '0')
        if (digits[i] != '9') {
            ++digits[i];
            return digits;
        }
    return '1' + digits;
}

// The sizes of the groups of digits, from the point upwards.
class Groups {
public:
    explicit Groups(UINT grouping)
    {
        m_repeats = grouping % 10 != 0;
        for (grouping = m_repeats ? grouping : grouping / 10; grouping != 0; grouping /= 10)
            m_sizes[--m_first] = grouping % 10;
    }
    // The size of a group when `rest` digits are left.
    std::size_t Size(std::size_t group, std::size_t rest) const
    {
        const std::size_t at = std::min(m_first + group, MaxSizes - 1);
        if (m_first == MaxSizes || (!m_repeats && m_first + group >= MaxSizes))
            return rest;
        return std::min<std::size_t>(m_sizes[at], rest);
    }

private:
    static constexpr std::size_t MaxSizes = 10; // digits of a UINT
    UINT m_sizes[MaxSizes] = {};
    std::size_t m_first = MaxSizes;
    bool m_repeats;
};

// Writes backwards, up to the end of the buffer; what finds no room is only counted.
class Writer {
public:
    Writer(char* buffer, std::size_t room) : m_end(buffer + room), m_room(room) {}
    void Put(char c)
    {
        if (++m_length <= m_room)
            *(m_end - m_length) = c;
    }
    void Put(std::string_view text)
    {
        for (std::size_t i = text.size(); i > 0; --i)
            Put(text[i - 1]);
    }
    void PutGrouped(std::string_view digits, const Groups& groups, std::string_view separator)
    {
        std::size_t group = 0;
        std::size_t left = groups.Size(group, digits.size());
        for (std::size_t rest = digits.size(); rest > 0; --rest, --left) {
            for (; left == 0; left = groups.Size(++group, rest)) // an empty group puts two together
                Put(separator);
            Put(digits[rest - 1]);
        }
    }
    std::size_t Length() const { return m_length; }

private:
    char* m_end;
    std::size_t m_room;
    std::size_t m_length = 0;
};

struct Sign {
    std::string_view before, behind;
};
constexpr Sign Signs[] = {{"(", ")"}, {"-", ""}, {"- ", ""}, {"", "-"}, {"", " -"}};

bool IsInRange(const NUMBERFMTA* format)
{
    return format != nullptr && format->NumDigits <= 9 && format->LeadingZero <= 1 &&
           format->lpDecimalSep != nullptr && format->lpThousandSep != nullptr;
}

int Fail(DWORD error)
{
    SetLastError(error);
    return 0;
}

} // namespace

int GetNumberFormatA(LCID, DWORD flags, const char* value, const NUMBERFMTA* format, char* buffer, int size)
{
    if (flags != 0)
        return Fail(ERROR_INVALID_FLAGS);
    Number number;
    if (value == nullptr || size < 0 || !IsInRange(format) || !Parse(value, number) ||
        (number.isNegative && format->NegativeOrder >= std::size(Signs)))
        return Fail(ERROR_INVALID_PARAMETER);
    std::string rounded;
    if (!number.fraction.empty() || format->NumDigits > 0) {
        rounded = Rounded(number, format->NumDigits);
        number.whole = std::string_view(rounded).substr(0, rounded.size() - format->NumDigits);
        number.fraction = std::string_view(rounded).substr(number.whole.size());
    }
    if (number.whole.empty() && (format->LeadingZero != 0 || number.fraction.empty()))
        number.whole = "0";
    const Sign sign = number.isNegative ? Signs[format->NegativeOrder] : Sign{};
    const std::string_view separator = format->lpThousandSep;
    const std::string_view point = number.fraction.empty() ? "" : format->lpDecimalSep;
    const Groups groups(format->Grouping);
    Writer out(buffer, static_cast<std::size_t>(size));
    out.Put('\0');
    out.Put(sign.behind);
    out.Put(number.fraction);
    out.Put(point);
    out.PutGrouped(number.whole, groups, separator);
    out.Put(sign.before);
    const std::size_t needed = out.Length();
    if (needed > MaxFormatted || (size > 0 && std::cmp_less(size, needed)))
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    if (size > 0)
        std::memmove(buffer, buffer + size - needed, needed);
    return static_cast<int>(needed);
}
