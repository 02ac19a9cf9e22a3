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

bool IsAllDigits(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool Parse(std::string_view text, Number& number)
{
    number.isNegative = text.starts_with('-');
    text.remove_prefix(number.isNegative ? 1 : 0);
    const std::size_t point = std::min(text.find('.'), text.size());
    number.whole = text.substr(0, point);
    number.fraction = text.substr(std::min(point + 1, text.size()));
    if (!IsAllDigits(number.whole) || !IsAllDigits(number.fraction))
        return false;
    number.whole.remove_prefix(std::min(number.whole.find_first_not_of('0'), number.whole.size()));
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

std::size_t CountSeparators(std::size_t digits, const Groups& groups)
{
    std::size_t group = 0;
    for (std::size_t rest = digits; (rest -= groups.Size(group, rest)) > 0;)
        ++group;
    return group;
}

// Writes backwards.
class Writer {
public:
    explicit Writer(char* end) : m_at(end) {}
    void Put(std::string_view text)
    {
        m_at -= text.size();
        std::memcpy(m_at, text.data(), text.size());
    }
    void PutGrouped(std::string_view digits, const Groups& groups, std::string_view separator)
    {
        for (std::size_t group = 0;; ++group) {
            const std::size_t size = groups.Size(group, digits.size());
            Put(digits.substr(digits.size() - size));
            digits.remove_suffix(size);
            if (digits.empty())
                return;
            Put(separator);
        }
    }

private:
    char* m_at;
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
    const std::size_t length = sign.before.size() + number.whole.size() +
                               CountSeparators(number.whole.size(), groups) * separator.size() +
                               point.size() + number.fraction.size() + sign.behind.size();
    if (length >= MaxFormatted || (size > 0 && std::cmp_less_equal(size, length)))
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    const int needed = static_cast<int>(length + 1);
    if (size == 0)
        return needed;
    Writer out(buffer + needed);
    out.Put(std::string_view("", 1));
    out.Put(sign.behind);
    out.Put(number.fraction);
    out.Put(point);
    out.PutGrouped(number.whole, groups, separator);
    out.Put(sign.before);
    return needed;
}
