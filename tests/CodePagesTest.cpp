// The conversions between narrow text and UTF-16 against the answers of the original platform, and against
// slow models of the rules.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "framework/FailureMarkers.h"
#include "platform/Platform.h"
#include "platform/posix/IcuLoader.h"
#include "support/Table.h"

namespace {

using Units = std::u16string;

template <class Text>
std::string HexOf(const Text& text)
{
    std::string hex;
    for (const auto unit : text) {
        char digits[8];
        const auto number = static_cast<std::make_unsigned_t<decltype(unit)>>(unit);
        std::snprintf(digits, sizeof digits, "%0*X", static_cast<int>(2 * sizeof unit),
                      static_cast<unsigned>(number));
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

// Asks for the size first, then with just the room for it, and once with too little. In hexadecimal, or
// "ERROR n".
template <class Text, class Call>
std::string Converted(Call call)
{
    const int needed = call(nullptr, 0);
    if (needed == 0)
        return "ERROR " + std::to_string(GetLastError());
    Text text(static_cast<std::size_t>(needed) + 1, '#');
    EXPECT_EQ(call(text.data(), needed), needed);
    EXPECT_EQ(text.back(), '#');
    text.pop_back();
    if (needed > 1) {
        Text shorter(static_cast<std::size_t>(needed), '#');
        EXPECT_EQ(call(shorter.data(), needed - 1), 0);
        EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
        EXPECT_EQ(shorter.back(), '#');
        EXPECT_EQ(shorter.compare(0, shorter.size() - 1, text, 0, text.size() - 1), 0);
    }
    return HexOf(text);
}

std::string ToWide(UINT page, const std::string& text, DWORD flags = 0)
{
    return Converted<Units>([&](WCHAR* buffer, int size) {
        return MultiByteToWideChar(page, flags, text.data(), static_cast<int>(text.size()), buffer, size);
    });
}

// With " default" behind it where the default character was used.
std::string ToNarrow(UINT page, const Units& text, const char* defaultChar = nullptr, DWORD flags = 0)
{
    int used = 0;
    const std::string hex = Converted<std::string>([&](char* buffer, int size) {
        return WideCharToMultiByte(page, flags, text.data(), static_cast<int>(text.size()), buffer, size,
                                   defaultChar, page == CP_UTF8 ? nullptr : &used);
    });
    return used != 0 ? hex + " default" : hex;
}

// ---- the recorded answers -------------------------------------------------------------------------------

using Check = std::pair<std::string, std::string>; // ours, recorded

std::string AllBytes()
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

// All bytes of a page, there and back.
std::vector<Check> ChecksOfSummary(UINT page, const std::string& summary)
{
    const std::size_t upper = summary.find("upper=");
    if (upper == std::string::npos) // the process page, equal to 1252, and UTF-8
        return {};
    const std::string bytes = AllBytes(),
                      units = HexOf(Units(bytes.begin(), bytes.begin() + 128)) + summary.substr(upper + 6);
    const Units text = FromHex<Units>(units);
    return {{ToWide(page, bytes), units},
            {ToNarrow(page, text), HexOf(bytes)},
            {ToNarrow(page, text, "_", WC_NO_BEST_FIT_CHARS), HexOf(bytes)}};
}

std::vector<Check> ChecksOfWide(UINT page, const std::string& bytes, const std::string& units,
                                const std::string& strict)
{
    std::string inputs = FromHex<std::string>(bytes);
    if (bytes == "80-FF") // one by one
        inputs = AllBytes().substr(0x80);
    std::vector<Check> checks;
    for (std::size_t i = 0, length = bytes == "80-FF" ? 1 : inputs.size(); i < inputs.size(); i += length) {
        const std::string input = inputs.substr(i, length);
        checks.emplace_back(ToWide(page, input), units);
        checks.emplace_back(ToWide(page, input, MB_ERR_INVALID_CHARS), strict == "ok" ? units : strict);
    }
    return checks;
}

std::vector<Check> ChecksOfNarrow(UINT page, const std::vector<std::string>& cells)
{
    const Units text = FromHex<Units>(cells[2]);
    const std::string used = cells[4] == "1" ? " default" : "", &kind = cells[7];
    if (page == CP_UTF8)
        return {{ToNarrow(page, text), cells[3]},
                {ToNarrow(page, text, nullptr, WC_ERR_INVALID_CHARS),
                 kind == "replaced" ? "ERROR 1113" : cells[3]}};
    const std::string plain = ToNarrow(page, text, nullptr, WC_NO_BEST_FIT_CHARS);
    return {
        {ToNarrow(page, text), cells[3] + used},
        {ToNarrow(page, text, "?"), cells[5] + used},
        {ToNarrow(page, text, "_"), cells[6] + used},
        {kind == "exact" ? plain : plain.substr(plain.find(' ')), kind == "exact" ? cells[3] : " default"}};
}

TEST(CodePages, AgreeWithTheOriginalPlatform)
{
    int compared = 0, equal = 0;
    for (const auto& cells : Table::Read("codepage-answers.tsv")) {
        const auto page = static_cast<UINT>(std::stoul(cells[1]));
        for (const auto& [ours, recorded] : cells[0] == "summary" ? ChecksOfSummary(page, cells[3])
                                            : cells[0] == "to_wide"
                                                ? ChecksOfWide(page, cells[2], cells[3], cells[7])
                                                : ChecksOfNarrow(page, cells)) {
            ++compared;
            equal += ours == recorded ? 1 : 0;
            EXPECT_EQ(ours, recorded) << cells[0] << ' ' << page << ' ' << cells[2];
        }
    }
    std::cout << "code-page agreement: " << compared << " answers compared, " << equal
              << " equal, none excepted\n";
    EXPECT_GT(compared, 2500);
}

// The published table of 1252 has 698 units, and the sum of unit times byte over them is this.
TEST(CodePages, TheProcessPageHasAsManyLookalikesAsItsPublishedTable)
{
    int found = 0, exact = 0;
    unsigned long sum = 0;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const Units text(1, static_cast<char16_t>(unit));
        const std::string byte = ToNarrow(CP_ACP, text),
                          strict = ToNarrow(CP_ACP, text, nullptr, WC_NO_BEST_FIT_CHARS);
        found += byte.size() == 2;
        sum += byte.size() == 2 ? unit * std::stoul(byte, nullptr, 16) : 0;
        exact += strict.size() == 2;
        EXPECT_EQ(strict.size() == 2,
                  byte.size() == 2 && ToWide(CP_ACP, FromHex<std::string>(byte)) == HexOf(text));
    }
    EXPECT_EQ(found, 698);
    EXPECT_EQ(sum, 644894325u);
    EXPECT_EQ(exact, 256);
}

// Every page that is named opens, what it has goes there and back, and fullwidth letters become plain ones.
TEST(CodePages, AllPagesOfOneBytePerCharacterGoThereAndBack)
{
    int pages = 0;
    for (UINT page = 4; page < 30000; ++page) {
        const std::string bytes = AllBytes(), hex = ToWide(page, bytes);
        if (hex == "ERROR 87")
            continue;
        ++pages;
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::string unit = hex.substr(4 * byte, 4);
            EXPECT_EQ(ToNarrow(page, FromHex<Units>(unit), "#", WC_NO_BEST_FIT_CHARS),
                      unit == "FFFD" ? "23 default" : HexOf(bytes.substr(byte, 1)))
                << page;
        }
        EXPECT_EQ(ToNarrow(page, u"\uFF21\uFF5E"), "417E") << page;
    }
    EXPECT_EQ(pages, 39);
}

// In a process of its own, as the module is looked for only once. Exits with 0 when all is as it should be.
void ConvertWithoutTheModule()
{
    static int markers = 0;
    IcuLoader::moduleFolder = [] { return std::string("/nowhere"); };
    FailureMarkers::SetSink([](const CString&) { ++markers; });
    const bool isProcessPage = ToWide(437, "\x80") == "20AC" && ToNarrow(1251, u"\u20AC") == "80";
    std::exit(isProcessPage && ToWide(99, "a") == "ERROR 87" && markers == 1 ? 0 : 1);
}

TEST(CodePagesDeathTest, WithoutTheModuleAllPagesAreTheProcessPage)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(ConvertWithoutTheModule(), testing::ExitedWithCode(0), "");
}

// ---- UTF-8, slowly --------------------------------------------------------------------------------------

std::string Encoded(unsigned long code)
{
    const unsigned long leads[] = {0, 0, 0xC0, 0xE0, 0xF0};
    const std::size_t length = code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
    std::string rest;
    for (std::size_t k = 1; k < length; ++k, code /= 64)
        rest.insert(0, 1, static_cast<char>(0x80 + code % 64));
    return static_cast<char>(leads[length] + code) + rest;
}

std::string SlowUtf8(const Units& text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned long unit = text[i], next = i + 1 < text.size() ? text[i + 1] : 0;
        const bool isPair = unit / 1024 == 0xD800 / 1024 && next / 1024 == 0xDC00 / 1024;
        bytes += Encoded(isPair                         ? 0x10000 + unit % 1024 * 1024 + next % 1024
                         : unit / 2048 == 0xD800 / 2048 ? 0xFFFD
                                                        : unit);
        i += isPair;
    }
    return bytes;
}

// The character of a whole sequence, or 0xFFFFFFFF: what its bits say, if that is written so.
unsigned long CodeOf(const std::string& sequence)
{
    unsigned long code = static_cast<unsigned char>(sequence[0]);
    if (sequence.size() > 1)
        code %= 0x80ul >> sequence.size();
    for (std::size_t i = 1; i < sequence.size(); ++i)
        code = code * 64 + static_cast<unsigned char>(sequence[i]) % 64;
    const bool isCharacter = code <= 0x10FFFF && code / 2048 != 0xD800 / 2048;
    return isCharacter && Encoded(code) == sequence ? code : 0xFFFFFFFF;
}

// The units of the first piece of a text, and the length of that.
Units FirstPiece(const std::string& text, std::size_t& length, bool& isSound)
{
    const int lead = static_cast<unsigned char>(text[0]);
    const std::size_t whole = lead < 0x80   ? 1
                              : lead < 0xC2 ? 0
                              : lead < 0xE0 ? 2
                              : lead < 0xF0 ? 3
                              : lead < 0xF5 ? 4
                                            : 0;
    for (length = 1;
         length < whole && length < text.size() && static_cast<unsigned char>(text[length]) / 64 == 2;)
        ++length;
    const unsigned long code = length == whole ? CodeOf(text.substr(0, whole)) : 0xFFFFFFFF;
    if (code < 0x10000)
        return {static_cast<char16_t>(code)};
    if (code != 0xFFFFFFFF)
        return {static_cast<char16_t>(0xD800 + (code - 0x10000) / 1024),
                static_cast<char16_t>(0xDC00 + code % 1024)};
    isSound = false;
    if (length > 2 && CodeOf(text.substr(0, 2) + std::string(whole - 2, '\x80')) == 0xFFFFFFFF)
        length = 2; // these two lead nowhere
    return u"\uFFFD";
}

void CompareUtf8(const std::string& text)
{
    bool isSound = true;
    Units units;
    for (std::size_t at = 0, length = 0; at < text.size(); at += length)
        units += FirstPiece(text.substr(at), length, isSound);
    ASSERT_EQ(ToWide(CP_UTF8, text), HexOf(units)) << HexOf(text);
    ASSERT_EQ(ToWide(CP_UTF8, text, MB_ERR_INVALID_CHARS), isSound ? HexOf(units) : "ERROR 1113")
        << HexOf(text);
}

TEST(CodePages, Utf8IsReadAsTheSlowModelReadsIt)
{
    const std::string bytes = FromHex<std::string>("00617F808F909FA0BFC0C1C2DFE0E1EDEFF0F1F4F5FF");
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
    for (int round = 0; round < 1000; ++round) {
        std::string bytes, narrow, wide;
        Units units;
        const unsigned rare = 1 + upTo(40);
        for (unsigned i = 0, end = 1 + upTo(100); i < end; ++i) {
            bytes += static_cast<char>(upTo(rare) == 0 ? upTo(255) : upTo(127));
            const unsigned other = upTo(1) != 0 ? upTo(0xFFFF) : 0xD7F0 + upTo(0x820);
            units += static_cast<char16_t>(upTo(rare) != 0 ? upTo(127) : other);
            narrow += ToNarrow(CP_ACP, Units(1, units.back()), "_").substr(0, 2);
            wide += ToWide(CP_ACP, bytes.substr(bytes.size() - 1));
        }
        CompareUtf8(bytes);
        EXPECT_EQ(ToNarrow(CP_UTF8, units), HexOf(SlowUtf8(units)));
        EXPECT_EQ(ToNarrow(CP_ACP, units, "_").substr(0, narrow.size()), narrow);
        EXPECT_EQ(ToWide(CP_ACP, bytes), wide);
    }
}

// ---- arguments ------------------------------------------------------------------------------------------

TEST(CodePages, ArgumentsAreChecked)
{
    char narrow[8] = "abc";
    WCHAR wide[8] = u"abc";
    int used = 7;
    const auto widening = [](UINT page, DWORD flags, const char* text, int length, WCHAR* buffer, int size) {
        const int answer = MultiByteToWideChar(page, flags, text, length, buffer, size);
        return answer != 0 ? answer : -static_cast<int>(GetLastError());
    };
    const auto narrowing = [](UINT page, DWORD flags, const WCHAR* text, int length, char* buffer, int size,
                              const char* other = nullptr, int* isUsed = nullptr) {
        const int answer = WideCharToMultiByte(page, flags, text, length, buffer, size, other, isUsed);
        return answer != 0 ? answer : -static_cast<int>(GetLastError());
    };
    EXPECT_EQ(widening(CP_ACP, 0, "ab", -1, wide, 8), 3);
    EXPECT_EQ(widening(CP_ACP, 0, "ab", -7, wide, 3), 3);
    EXPECT_EQ(widening(CP_ACP, MB_PRECOMPOSED, "ab", 1, wide, 8), 1);
    EXPECT_EQ(widening(CP_UTF8, 0, "ab", -1, wide, 2), -122);
    EXPECT_EQ(widening(CP_ACP, 0, "ab", 0, wide, 8), -87);
    EXPECT_EQ(widening(CP_ACP, 0, nullptr, 2, wide, 8), -87);
    EXPECT_EQ(widening(CP_ACP, 0, "ab", 2, nullptr, 8), -87);
    EXPECT_EQ(widening(CP_ACP, 0, "ab", 2, wide, -1), -87);
    EXPECT_EQ(widening(CP_ACP, 2, "ab", 2, wide, 8), -1004);
    EXPECT_EQ(widening(CP_UTF8, 1, "ab", 2, wide, 8), -1004);
    EXPECT_EQ(widening(65000, 0, "ab", 2, wide, 8), -87);
    EXPECT_EQ(widening(CP_ACP, 0, reinterpret_cast<char*>(wide), 2, wide, 8), -87);
    EXPECT_EQ(narrowing(CP_THREAD_ACP, 0, u"ab", -1, narrow, 8), 3);
    EXPECT_EQ(narrowing(CP_ACP, 0, u"ab", 2, nullptr, 0), 2);
    EXPECT_EQ(narrowing(CP_ACP, 0, u"ab", -3, narrow, 2), -122);
    EXPECT_EQ(narrowing(CP_ACP, 0, u"ab", 0, narrow, 8), -87);
    EXPECT_EQ(narrowing(CP_ACP, 0, nullptr, 2, narrow, 8), -87);
    EXPECT_EQ(narrowing(CP_ACP, 0, u"ab", 2, nullptr, 1), -87);
    EXPECT_EQ(narrowing(CP_ACP, 0, u"ab", 2, narrow, -1), -87);
    EXPECT_EQ(narrowing(CP_ACP, WC_ERR_INVALID_CHARS, u"ab", 2, narrow, 8), -1004);
    EXPECT_EQ(narrowing(CP_UTF8, WC_NO_BEST_FIT_CHARS, u"ab", 2, narrow, 8), -1004);
    EXPECT_EQ(narrowing(CP_UTF8, 0, u"ab", 2, narrow, 8, "?"), -87);
    EXPECT_EQ(narrowing(CP_UTF8, 0, u"ab", 2, narrow, 8, nullptr, &used), -87);
    EXPECT_EQ(narrowing(99, 0, u"ab", 2, narrow, 8), -87);
    EXPECT_EQ(used, 7);
    EXPECT_EQ(ToWide(CP_OEMCP, "\x80"), "00C7");
}

} // namespace
