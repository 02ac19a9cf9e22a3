#include "text/FileNameOrder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "LocaleUtils.h"
#include "NumberTextConv.h"
#include "StringUtils.h"
#include "TextArray.h"
#include "framework/PathParts.h"
#include "framework/RuntimeText.h"
#include "text/PackedText.h"

namespace {

// ---- the rule -------------------------------------------------------------------------------------------

constexpr double Tolerance = 0.001; // numbers that differ by less are equal

bool IsDigit(char c)
{
    return c >= 0 && StringUtils::m_tableIsDigit[static_cast<unsigned char>(c)] != 0;
}

int PlaceOf(char c, bool caseSensitive)
{
    if (caseSensitive)
        return c; // signed: a byte of 128 or more stands before all others
    return c < 0 ? 0 : StringUtils::m_tableLowercase[static_cast<unsigned char>(c)];
}

FileNameOrder::Number ReadNumber(std::string_view base, std::size_t first, const CString& decimal)
{
    std::size_t last = first;
    while (last < base.size() && (IsDigit(base[last]) || (!decimal.IsEmpty() && base[last] == decimal[0])))
        ++last;
    const std::string_view digits = base.substr(first, last - first);
    return {first, digits.size(), NumberTextConv::GetDoubleFromString(CString(digits), false)};
}

// `leftNumber` and `rightNumber` give the number that begins at an index of the left and the right name.
template <class LeftNumber, class RightNumber>
int CompareBaseNames(std::string_view a, std::string_view b, bool caseSensitive, LeftNumber leftNumber,
                     RightNumber rightNumber)
{
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common;) {
        if (IsDigit(a[i]) && IsDigit(b[i])) {
            const FileNameOrder::Number left = leftNumber(i);
            const FileNameOrder::Number right = rightNumber(i);
            const double difference = left.value - right.value;
            if (std::abs(difference) >= Tolerance) // two infinite values are equal
                return difference < 0 ? -1 : 1;
            i += std::min(left.length, right.length);
        } else {
            const int difference = PlaceOf(a[i], caseSensitive) - PlaceOf(b[i], caseSensitive);
            if (difference != 0)
                return difference < 0 ? -1 : 1;
            ++i;
        }
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

int CompareExtensions(const char* a, const char* b, bool caseSensitive)
{
    return caseSensitive ? std::strcmp(a, b) : RuntimeText::CompareNoCase(a, b);
}

// ---- the keys -------------------------------------------------------------------------------------------

constexpr unsigned char NumberCodes = 9;
constexpr unsigned char WideNumber = 8;                // added to the first code: the bits of a double follow
constexpr std::ptrdiff_t MaxPlainDigits = 14;          // their values are below 2^48
constexpr double MaxScaledInteger = 0x1p48;            // a hundred times a smaller one takes seven bytes
constexpr std::uint64_t MaxScaledDecimal = 1ull << 32; // up to here the sums of decimals are exact enough
constexpr std::ptrdiff_t MaxLength = 127;              // of a number whose length is written

constexpr bool IsDigitAtLoad(int c)
{
    return c >= '0' && c <= '9';
}

constexpr int LowercaseAtLoad(int c)
{
    return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c;
}

constexpr int PlaceAtLoad(int c, bool caseSensitive)
{
    return caseSensitive ? c : c < 0 ? 0 : LowercaseAtLoad(c);
}

struct Codes {
    std::array<unsigned char, 256> table{};
    unsigned char numbers = 0;
};

// Codes in the order of the characters' places, from 1; the numbers' stand where the digits are.
consteval Codes MakeCodes(bool caseSensitive)
{
    Codes codes;
    int next = 1;
    for (int place = -128; place <= 127; ++place) {
        if (place == '0') {
            codes.numbers = static_cast<unsigned char>(next);
            next += NumberCodes;
        }
        bool isUsed = false;
        for (int c = -128; c <= 127; ++c) {
            if (IsDigitAtLoad(c) || PlaceAtLoad(c, caseSensitive) != place)
                continue;
            codes.table[static_cast<unsigned char>(c)] = static_cast<unsigned char>(next);
            isUsed = true;
        }
        next += isUsed ? 1 : 0;
    }
    if (next > 256)
        throw "the codes do not fit a byte";
    return codes;
}

constexpr Codes CodesWithCase = MakeCodes(true);
constexpr Codes CodesNoCase = MakeCodes(false);

// The tables are the host's to change; the codes hold only for what they are at load.
bool TablesAreAsAtLoad()
{
    for (int c = 0; c < 128; ++c)
        if (StringUtils::m_tableLowercase[c] != LowercaseAtLoad(c) ||
            (StringUtils::m_tableIsDigit[c] != 0) != IsDigitAtLoad(c))
            return false;
    return true;
}

// The code for the count of bytes, then the bytes; up to seven.
unsigned char* WriteScaled(unsigned char* out, unsigned char numbers, std::uint64_t hundredths)
{
    const int bytes = static_cast<int>(std::bit_width(hundredths) + 7) / 8;
    *out++ = static_cast<unsigned char>(numbers + bytes);
    PackedText::StoreEight(bytes == 0 ? 0 : hundredths << (64 - 8 * bytes), out);
    return out + bytes;
}

} // namespace

FileNameOrder::Pieces FileNameOrder::Split(const CString& path)
{
    const char* const text = path;
    const char* const end = text + path.GetLength();
    const auto size = static_cast<std::size_t>(end - text);
    const bool hasFolder =
        std::memchr(text, '\\', size) != nullptr || std::memchr(text, '/', size) != nullptr;
    const char* first = hasFolder ? end : text; // most names have none, and are not walked
    while (first != text && !PathParts::IsSeparator(first[-1]))
        --first;
    const char* behindDot = end;
    while (behindDot != first && behindDot[-1] != '.')
        --behindDot;
    const bool hasDot = behindDot != first;
    const char* const baseEnd = hasDot ? behindDot - 1 : end;
    return {{text, static_cast<std::size_t>(first - text)},
            {first, static_cast<std::size_t>(baseEnd - first)},
            hasDot ? behindDot : end};
}

int FileNameOrder::Compare(const CString& a, const CString& b, bool caseSensitive)
{
    const Pieces left = Split(a);
    const Pieces right = Split(b);
    const CString decimal = TextArray::m_csDecimal;
    const int bases = CompareBaseNames(
        left.base, right.base, caseSensitive,
        [&](std::size_t i) { return ReadNumber(left.base, i, decimal); },
        [&](std::size_t i) { return ReadNumber(right.base, i, decimal); });
    return bases != 0 ? bases : CompareExtensions(left.extension, right.extension, caseSensitive);
}

FileNameOrder::ReadName::ReadName(const CString& path, const CString& decimal)
    : m_pieces(Split(path)), m_decimal(decimal)
{
    const std::string_view base = m_pieces.base;
    for (std::size_t i = 0; i < base.size();) {
        if (!IsDigit(base[i])) {
            ++i;
            continue;
        }
        m_numbers.push_back(ReadNumber(base, i, decimal));
        i += m_numbers.back().length;
    }
}

FileNameOrder::Number FileNameOrder::ReadName::NumberAt(std::size_t at) const
{
    const auto found =
        std::lower_bound(m_numbers.begin(), m_numbers.end(), at,
                         [](const Number& number, std::size_t place) { return number.at < place; });
    const bool isRead = found != m_numbers.end() && found->at == at;
    return isRead ? *found : ReadNumber(m_pieces.base, at, m_decimal); // inside a number: by odd tables only
}

int FileNameOrder::ReadName::Compare(const ReadName& a, const ReadName& b, bool caseSensitive)
{
    const int bases = CompareBaseNames(
        a.m_pieces.base, b.m_pieces.base, caseSensitive, [&](std::size_t i) { return a.NumberAt(i); },
        [&](std::size_t i) { return b.NumberAt(i); });
    return bases != 0 ? bases : CompareExtensions(a.m_pieces.extension, b.m_pieces.extension, caseSensitive);
}

FileNameKeys::FileNameKeys(bool caseSensitive)
{
    const Codes& codes = caseSensitive ? CodesWithCase : CodesNoCase;
    m_codes = codes.table.data();
    m_numbers = codes.numbers;
    const auto order = RuntimeText::CaseOrder();
    for (int c = 0; c < 256; ++c) {
        const char byte = static_cast<char>(c);
        m_extensions[c] = static_cast<unsigned char>(caseSensitive ? byte : order(byte));
    }
    ReadNumber("0", 0, CString()); // reads the separators that follow, unless they have been read
    const char point = LocaleUtils::m_csDecimalSeparator[0];
    const char thousands = LocaleUtils::m_csThousandsSeparator[0];
    m_hasDecimal = !TextArray::m_csDecimal.IsEmpty();
    m_decimal = TextArray::m_csDecimal[0];
    m_isPoint = m_decimal == '.' && point == '.' && thousands != '.';
    m_isUsable = TablesAreAsAtLoad() && !IsDigit(point) && !IsDigit(thousands) && !IsDigit(m_decimal);
}

FileNameKeys::Key FileNameKeys::Write(const FileNameOrder::Pieces& name, unsigned char* out) const
{
    if (!m_isUsable)
        return {out, false};
    const unsigned char* const codes = m_codes;
    const char* at = name.base.data();
    const char* const end = at + name.base.size();
    while (at != end) {
        const unsigned char code = codes[static_cast<unsigned char>(*at)];
        if (code != 0) {
            *out++ = code;
            ++at;
            continue;
        }
        const Place behind = WriteNumber({at, out}, end);
        if (behind.at == nullptr)
            return {out, false};
        at = behind.at;
        out = behind.out;
    }
    *out++ = 0;
    for (const char* c = name.extension; *c != '\0'; ++c)
        *out++ = m_extensions[static_cast<unsigned char>(*c)];
    if (m_extensions[0] != 0)
        *out++ = m_extensions[0]; // what stands for the NUL, where that is not the lowest byte
    return {out, true};
}

FileNameKeys::Place FileNameKeys::WriteNumber(Place place, const char* end) const
{
    const char* const first = place.at;
    const char* at = first;
    std::uint64_t value = 0;
    for (; at != end && IsDigitAtLoad(*at) && at - first <= MaxPlainDigits; ++at)
        value = value * 10 + static_cast<std::uint64_t>(*at - '0');
    place.at = at;
    if (at - first > MaxPlainDigits)
        return WriteWide(place, end, first);
    if (at != end && m_hasDecimal && *at == m_decimal) {
        place = WriteDecimal(place, end, value);
        return place.at == nullptr ? place : WriteLength(place, end, place.at - first);
    }
    place.out = WriteScaled(place.out, m_numbers, value * 100);
    const bool hasLeadingZero = *first == '0' && at - first > 1;
    return hasLeadingZero ? WriteLength(place, end, at - first) : place;
}

// Of a number that continues with a decimal separator. Several separators begin the decimals anew and all
// decimals add up; a third decimal other than 0 is too near to the tolerance.
FileNameKeys::Place FileNameKeys::WriteDecimal(Place place, const char* end, std::uint64_t integer) const
{
    if (!m_isPoint || integer >= MaxScaledDecimal)
        return {nullptr, place.out};
    std::uint64_t hundredths = integer * 100;
    std::uint64_t unit = 0;
    for (; place.at != end && (IsDigitAtLoad(*place.at) || *place.at == m_decimal); ++place.at) {
        if (*place.at == m_decimal) {
            unit = 10;
            continue;
        }
        if (unit == 0 && *place.at != '0')
            return {nullptr, place.out};
        hundredths += unit * static_cast<std::uint64_t>(*place.at - '0');
        unit /= 10;
    }
    return {place.at, WriteScaled(place.out, m_numbers, hundredths)};
}

// Of a number of many digits that began at `first`.
FileNameKeys::Place FileNameKeys::WriteWide(Place place, const char* end, const char* first) const
{
    while (place.at != end && IsDigitAtLoad(*place.at))
        ++place.at;
    const std::ptrdiff_t length = place.at - first;
    if (length > MaxLength || (place.at != end && m_hasDecimal && *place.at == m_decimal))
        return {nullptr, place.out};
    const double value = ReadNumber({first, static_cast<std::size_t>(length)}, 0, CString()).value;
    if (value < MaxScaledInteger) {
        place.out = WriteScaled(place.out, m_numbers, static_cast<std::uint64_t>(value) * 100);
    } else {
        *place.out++ = static_cast<unsigned char>(m_numbers + WideNumber);
        PackedText::StoreEight(std::bit_cast<std::uint64_t>(value), place.out);
        place.out += sizeof value;
    }
    return WriteLength(place, end, length);
}

FileNameKeys::Place FileNameKeys::WriteLength(Place place, const char* end, std::ptrdiff_t length) const
{
    if (length > MaxLength)
        return {nullptr, place.out};
    const bool isHighNext = place.at != end && m_codes[static_cast<unsigned char>(*place.at)] > m_numbers;
    *place.out++ = m_numbers;
    *place.out++ = static_cast<unsigned char>(isHighNext ? 255 - length : length);
    return place;
}
