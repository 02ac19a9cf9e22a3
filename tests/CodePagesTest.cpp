// The conversions between narrow text and UTF-16 against the answers of the original platform, and against
// slow models of the rules.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "platform/Platform.h"
#include "support/Table.h"

namespace {

using Units = std::u16string;

// What the operations answer: the text, or "ERROR n".
struct Answer {
    std::string hex;
    int usedDefault = 0;
    bool operator==(const Answer&) const = default;
};

template <class Text>
std::string HexOf(const Text& text)
{
    std::string hex;
    char digits[8];
    for (const auto unit : text) {
        const auto width = static_cast<int>(2 * sizeof unit);
        std::snprintf(digits, sizeof digits, "%0*X", width,
                      static_cast<unsigned>(unit) & (width == 2 ? 0xFFu : 0xFFFFu));
        hex += digits;
    }
    return hex;
}

template <class Text>
Text FromHex(const std::string& hex)
{
    constexpr std::size_t width = 2 * sizeof(typename Text::value_type);
    Text text;
    for (std::size_t i = 0; i + width <= hex.size(); i += width)
        text += static_cast<typename Text::value_type>(std::stoul(hex.substr(i, width), nullptr, 16));
    return text;
}

std::string Failure()
{
    return "ERROR " + std::to_string(GetLastError());
}

// Asks for the size first, then with just the room for it, and once with too little.
template <class Text, class Call>
std::string Converted(Call call)
{
    const int needed = call(nullptr, 0);
    if (needed == 0)
        return Failure();
    Text text(static_cast<std::size_t>(needed) + 1, '#');
    EXPECT_EQ(call(text.data(), needed), needed);
    EXPECT_EQ(text.back(), '#');
    text.pop_back();
    Text shorter(static_cast<std::size_t>(needed), '#');
    if (needed > 1) {
        EXPECT_EQ(call(shorter.data(), needed - 1), 0);
        EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
        EXPECT_EQ(shorter, text.substr(0, text.size() - 1) + static_cast<typename Text::value_type>('#'));
    }
    return HexOf(text);
}

std::string ToWide(UINT page, const std::string& text, DWORD flags = 0)
{
    return Converted<Units>([&](WCHAR* buffer, int size) {
        return MultiByteToWideChar(page, flags, text.data(), static_cast<int>(text.size()), buffer, size);
    });
}

Answer ToNarrow(UINT page, const Units& text, const char* defaultChar = nullptr, DWORD flags = 0)
{
    Answer answer;
    int* const used = page == CP_UTF8 ? nullptr : &answer.usedDefault;
    answer.hex = Converted<std::string>([&](char* buffer, int size) {
        return WideCharToMultiByte(page, flags, text.data(), static_cast<int>(text.size()), buffer, size,
                                   defaultChar, used);
    });
    return answer;
}

// ---- the recorded answers -------------------------------------------------------------------------------

class RecordedAnswers {
public:
    void Compare(const std::vector<std::string>& cells)
    {
        const auto page = static_cast<UINT>(std::stoul(cells[1]));
        SCOPED_TRACE(cells[0] + ' ' + cells[1] + ' ' + cells[2]);
        if (cells[0] == "summary")
            CompareSummary(page, cells[3]);
        else if (cells[0] == "to_wide")
            CompareWide(page, cells[2], cells[3], cells[7]);
        else
            CompareNarrow(page, cells);
    }
    void Print() const
    {
        std::cout << "code-page agreement: " << m_compared << " answers compared, " << m_equal << " equal, "
                  << m_compared - m_equal << " excepted\n";
    }

private:
    template <class Value>
    void Expect(const Value& ours, const Value& recorded)
    {
        ++m_compared;
        m_equal += ours == recorded ? 1 : 0;
        EXPECT_TRUE(ours == recorded);
    }

    // All bytes of a page; the bytes below 80 are ASCII.
    void CompareSummary(UINT page, const std::string& summary)
    {
        const std::size_t upper = summary.find("upper=");
        if (upper == std::string::npos) {
            EXPECT_TRUE(page == CP_ACP || page == CP_UTF8);
            return;
        }
        Units expected;
        std::string bytes;
        for (int byte = 0; byte < 256; ++byte) {
            bytes += static_cast<char>(byte);
            expected += static_cast<char16_t>(byte);
        }
        expected.replace(128, 128, FromHex<Units>(summary.substr(upper + 6)));
        Expect(ToWide(page, bytes), HexOf(expected));
        Expect(ToNarrow(page, expected), Answer{HexOf(bytes)}); // and all the way back
        Expect(ToNarrow(page, expected, "_", WC_NO_BEST_FIT_CHARS), Answer{HexOf(bytes)});
    }
    void CompareWide(UINT page, const std::string& bytes, const std::string& units, const std::string& strict)
    {
        std::vector<std::string> inputs = {FromHex<std::string>(bytes)};
        if (bytes.find('-') != std::string::npos) {
            inputs.clear();
            for (unsigned byte = static_cast<unsigned>(std::stoul(bytes.substr(0, 2), nullptr, 16));
                 byte <= std::stoul(bytes.substr(3), nullptr, 16); ++byte)
                inputs.emplace_back(1, static_cast<char>(byte));
        }
        for (const std::string& input : inputs) {
            Expect(ToWide(page, input), units);
            Expect(ToWide(page, input, MB_ERR_INVALID_CHARS), strict == "ok" ? units : strict);
        }
    }
    void CompareNarrow(UINT page, const std::vector<std::string>& cells)
    {
        const Units text = FromHex<Units>(cells[2]);
        const int used = cells[4] == "1" ? 1 : 0;
        Expect(ToNarrow(page, text), Answer{cells[3], used});
        if (page == CP_UTF8) {
            Expect(ToNarrow(page, text, nullptr, WC_ERR_INVALID_CHARS),
                   Answer{cells[7] == "replaced" ? "ERROR 1113" : cells[3]});
            return;
        }
        Expect(ToNarrow(page, text, "?"), Answer{cells[5], used});
        Expect(ToNarrow(page, text, "_"), Answer{cells[6], used});
        if (cells[7] == "exact")
            Expect(ToNarrow(page, text, "_", WC_NO_BEST_FIT_CHARS), Answer{cells[3], 0});
        else
            Expect(ToNarrow(page, text, "_", WC_NO_BEST_FIT_CHARS).usedDefault, 1);
    }

    int m_compared = 0;
    int m_equal = 0;
};

TEST(CodePages, AgreeWithTheOriginalPlatform)
{
    RecordedAnswers answers;
    for (const auto& cells : Table::Read("codepage-answers.tsv"))
        answers.Compare(cells);
    answers.Print();
}

// ---- the rules, slowly ----------------------------------------------------------------------------------

// The sound sequences, written down one by one: Unicode's table of well-formed UTF-8. Each row: the ranges of
// the bytes.
const std::vector<std::vector<std::pair<int, int>>> SoundSequences = {
    {{0x00, 0x7F}},
    {{0xC2, 0xDF}, {0x80, 0xBF}},
    {{0xE0, 0xE0}, {0xA0, 0xBF}, {0x80, 0xBF}},
    {{0xE1, 0xEC}, {0x80, 0xBF}, {0x80, 0xBF}},
    {{0xED, 0xED}, {0x80, 0x9F}, {0x80, 0xBF}},
    {{0xEE, 0xEF}, {0x80, 0xBF}, {0x80, 0xBF}},
    {{0xF0, 0xF0}, {0x90, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}},
    {{0xF1, 0xF3}, {0x80, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}},
    {{0xF4, 0xF4}, {0x80, 0x8F}, {0x80, 0xBF}, {0x80, 0xBF}},
};

// How many bytes at the start of the text follow a row of the table.
std::size_t Fitting(const std::string& text, const std::vector<std::pair<int, int>>& row)
{
    std::size_t count = 0;
    while (count < std::min(row.size(), text.size())) {
        const int byte = static_cast<unsigned char>(text[count]);
        if (byte < row[count].first || byte > row[count].second)
            break;
        ++count;
    }
    return count;
}

Units SlowUtf16(std::string text, bool& isSound)
{
    Units units;
    while (!text.empty()) {
        std::size_t longest = 0;
        const std::vector<std::pair<int, int>>* best = nullptr;
        for (const auto& row : SoundSequences)
            if (const std::size_t count = Fitting(text, row); count > longest) {
                longest = count;
                best = &row;
            }
        if (best != nullptr && longest == best->size()) {
            unsigned long code = static_cast<unsigned char>(text[0]);
            if (longest > 1)
                code &= 0x7Ful >> longest;
            for (std::size_t i = 1; i < longest; ++i)
                code = code * 64 + static_cast<unsigned char>(text[i]) % 64;
            if (code >= 0x10000)
                units += static_cast<char16_t>(0xD800 + (code - 0x10000) / 1024);
            units += static_cast<char16_t>(code >= 0x10000 ? 0xDC00 + code % 1024 : code);
        } else {
            units += u'\uFFFD';
            isSound = false;
            // The second byte of a pair that leads nowhere is part of the bad piece.
            const bool isFollowed = text.size() > 1 && static_cast<unsigned char>(text[1]) / 64 == 2;
            longest = longest == 0 ? 1 : longest == 1 && isFollowed ? 2 : longest;
        }
        text.erase(0, longest);
    }
    return units;
}

std::string SlowUtf8(const Units& text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned long code = text[i];
        const unsigned long next = i + 1 < text.size() ? text[i + 1] : 0;
        if (code / 1024 == 0xD800 / 1024 && next / 1024 == 0xDC00 / 1024) {
            code = 0x10000 + code % 1024 * 1024 + next % 1024;
            ++i;
        } else if (code / 2048 == 0xD800 / 2048) {
            code = 0xFFFD;
        }
        std::string sequence;
        const unsigned long leads[] = {0, 0, 0xC0, 0xE0, 0xF0};
        const std::size_t length = code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
        for (std::size_t k = 1; k < length; ++k, code /= 64)
            sequence.insert(0, 1, static_cast<char>(0x80 + code % 64));
        bytes += static_cast<char>(leads[length] + code) + sequence;
    }
    return bytes;
}

void CompareUtf8(const std::string& text)
{
    bool isSound = true;
    const std::string expected = HexOf(SlowUtf16(text, isSound));
    ASSERT_EQ(ToWide(CP_UTF8, text), expected) << HexOf(text);
    ASSERT_EQ(ToWide(CP_UTF8, text, MB_ERR_INVALID_CHARS), isSound ? expected : "ERROR 1113") << HexOf(text);
}

TEST(CodePages, Utf8IsReadAsTheSlowModelReadsIt)
{
    const std::string bytes = {'a',    '\x7F', '\x80', '\x8F', '\x90', '\x9F', '\xA0', '\xBF',
                               '\xC0', '\xC1', '\xC2', '\xDF', '\xE0', '\xE1', '\xED', '\xEF',
                               '\xF0', '\xF1', '\xF4', '\xF5', '\xFF', '\0'};
    for (const char a : bytes)
        for (const char b : bytes)
            for (const char c : bytes)
                for (const char d : {'a', '\x80', '\xBF', '\xC2', '\xF4'})
                    for (std::size_t length = 1; length <= 4; ++length)
                        CompareUtf8(std::string{a, b, c, d}.substr(0, length));
}

TEST(CodePages, LongTextsGoAsShortOnes)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto upTo = [&random](unsigned limit) { return static_cast<unsigned>(random()) % (limit + 1); };
    for (int round = 0; round < 2000; ++round) {
        std::string bytes;
        Units units;
        const unsigned rare = 1 + upTo(40);
        for (unsigned i = 0, end = 1 + upTo(100); i < end; ++i) {
            bytes += static_cast<char>(upTo(rare) == 0 ? upTo(255) : upTo(127));
            units += static_cast<char16_t>(upTo(rare) != 0 ? upTo(127)
                                           : upTo(1) != 0  ? upTo(0xFFFF)
                                                           : 0xD7F0 + upTo(0x820));
        }
        CompareUtf8(bytes);
        EXPECT_EQ(ToNarrow(CP_UTF8, units).hex, HexOf(SlowUtf8(units)));
        std::string one, all = ToNarrow(CP_ACP, units, "_").hex;
        for (const char16_t unit : units)
            one += ToNarrow(CP_ACP, Units(1, unit), "_").hex;
        EXPECT_EQ(all, one);
        one.clear();
        for (const char byte : bytes)
            one += ToWide(CP_ACP, std::string(1, byte));
        EXPECT_EQ(ToWide(CP_ACP, bytes), one);
    }
}

// ---- arguments ------------------------------------------------------------------------------------------

TEST(CodePages, ArgumentsAreChecked)
{
    char narrow[8] = "abc";
    WCHAR wide[8] = u"abc";
    const struct {
        UINT page;
        DWORD flags;
        const char* text;
        int length;
        WCHAR* buffer;
        int size, answer;
        DWORD error;
    } toWide[] = {
        {CP_ACP, 0, "ab", -1, wide, 8, 3, 0},
        {CP_ACP, 0, "ab", -7, wide, 3, 3, 0},
        {CP_ACP, MB_PRECOMPOSED, "ab", 1, wide, 8, 1, 0},
        {CP_UTF8, 0, "ab", -1, wide, 2, 0, 122},
        {CP_ACP, 0, "ab", 0, wide, 8, 0, 87},
        {CP_ACP, 0, nullptr, 2, wide, 8, 0, 87},
        {CP_ACP, 0, "ab", 2, nullptr, 8, 0, 87},
        {CP_ACP, 0, "ab", 2, wide, -1, 0, 87},
        {CP_ACP, 2, "ab", 2, wide, 8, 0, 1004},
        {CP_UTF8, 1, "ab", 2, wide, 8, 0, 1004},
        {65000, 0, "ab", 2, wide, 8, 0, 87},
        {1200, 0, "ab", 2, wide, 8, 0, 87},
        {CP_ACP, 0, reinterpret_cast<char*>(wide), 2, wide, 8, 0, 87},
    };
    for (const auto& row : toWide) {
        SCOPED_TRACE(&row - toWide);
        SetLastError(0);
        EXPECT_EQ(MultiByteToWideChar(row.page, row.flags, row.text, row.length, row.buffer, row.size),
                  row.answer);
        EXPECT_EQ(GetLastError(), row.error);
    }
    int used = 7;
    const struct {
        UINT page;
        DWORD flags;
        const WCHAR* text;
        int length;
        char* buffer;
        int size;
        const char* defaultChar;
        int* used;
        int answer;
        DWORD error;
    } toNarrow[] = {
        {CP_THREAD_ACP, 0, u"ab", -1, narrow, 8, nullptr, nullptr, 3, 0},
        {CP_ACP, 0, u"ab", 2, nullptr, 0, nullptr, nullptr, 2, 0},
        {CP_ACP, 0, u"ab", -3, narrow, 2, nullptr, nullptr, 0, 122},
        {CP_ACP, 0, u"ab", 0, narrow, 8, nullptr, nullptr, 0, 87},
        {CP_ACP, 0, nullptr, 2, narrow, 8, nullptr, nullptr, 0, 87},
        {CP_ACP, 0, u"ab", 2, nullptr, 1, nullptr, nullptr, 0, 87},
        {CP_ACP, 0, u"ab", 2, narrow, -1, nullptr, nullptr, 0, 87},
        {CP_ACP, WC_ERR_INVALID_CHARS, u"ab", 2, narrow, 8, nullptr, nullptr, 0, 1004},
        {CP_UTF8, WC_NO_BEST_FIT_CHARS, u"ab", 2, narrow, 8, nullptr, nullptr, 0, 1004},
        {CP_UTF8, 0, u"ab", 2, narrow, 8, "?", nullptr, 0, 87},
        {CP_UTF8, 0, u"ab", 2, narrow, 8, nullptr, &used, 0, 87},
        {99, 0, u"ab", 2, narrow, 8, nullptr, nullptr, 0, 87},
    };
    for (const auto& row : toNarrow) {
        SCOPED_TRACE(&row - toNarrow);
        SetLastError(0);
        EXPECT_EQ(WideCharToMultiByte(row.page, row.flags, row.text, row.length, row.buffer, row.size,
                                      row.defaultChar, row.used),
                  row.answer);
        EXPECT_EQ(GetLastError(), row.error);
    }
    EXPECT_EQ(used, 7);
    EXPECT_EQ(ToWide(CP_OEMCP, "\x80"), "00C7");
}

// Every page that is named opens, and what it has goes there and back.
TEST(CodePages, AllPagesOfOneBytePerCharacterGoThereAndBack)
{
    int pages = 0;
    for (UINT page = 4; page < 30000; ++page) {
        std::string bytes;
        for (int byte = 0; byte < 256; ++byte)
            bytes += static_cast<char>(byte);
        const std::string hex = ToWide(page, bytes);
        if (hex == "ERROR 87")
            continue;
        ++pages;
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::string unit = hex.substr(4 * byte, 4);
            const Answer back = {unit == "FFFD" ? "23" : HexOf(bytes.substr(byte, 1)), unit == "FFFD"};
            EXPECT_EQ(ToNarrow(page, FromHex<Units>(unit), "#", WC_NO_BEST_FIT_CHARS), back) << page;
        }
        EXPECT_EQ(ToNarrow(page, u"\uFF21\uFF5E").hex, "417E") << page;
    }
    EXPECT_EQ(pages, 39);
}

// The published table of 1252 has 698 units.
TEST(CodePages, TheProcessPageHasALookalikeForAsManyUnitsAsItsPublishedTable)
{
    int found = 0, exact = 0;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const Units text(1, static_cast<char16_t>(unit));
        const bool isThere = ToNarrow(CP_ACP, text).usedDefault == 0;
        const bool isExact = ToNarrow(CP_ACP, text, nullptr, WC_NO_BEST_FIT_CHARS).usedDefault == 0;
        found += isThere;
        exact += isExact;
        EXPECT_TRUE(isThere || !isExact) << unit;
        EXPECT_EQ(isExact,
                  isThere && ToWide(CP_ACP, FromHex<std::string>(ToNarrow(CP_ACP, text).hex)) == HexOf(text));
    }
    EXPECT_EQ(found, 698);
    EXPECT_EQ(exact, 256);
}

} // namespace
