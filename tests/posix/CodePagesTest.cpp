// The conversions between narrow text and UTF-16 against slow models of the rules.
#include <gtest/gtest.h>

#include "support/Cases.h"
#include "support/Conversions.h"
#include "support/RandomSource.h"

using namespace Conversions;

namespace {

// The published table of 1252 has 698 units, and the sum of unit times byte over them is this.
TEST(CodePagesOnPosix, TheProcessPageHasAsManyLookalikesAsItsPublishedTable)
{
    int found = 0, exact = 0;
    unsigned long sum = 0;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const Units text(1, static_cast<WCHAR>(unit));
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
TEST(CodePagesOnPosix, AllPagesOfOneBytePerCharacterGoThereAndBack)
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
        EXPECT_EQ(ToNarrow(page, {WCHAR(0xFF21), WCHAR(0xFF5E)}), "417E") << page;
    }
    EXPECT_EQ(pages, 39);
    EXPECT_EQ(ToWide(CP_OEMCP, "\x80"), ToWide(437, "\x80"));
}

// ---- UTF-8, slowly --------------------------------------------------------------------------------------

bool IsIn(unsigned low, unsigned high, const std::string& text, std::size_t at)
{
    return at < text.size() && BYTE(text[at]) >= low && BYTE(text[at]) <= high;
}

// The units of the first piece of a text, which is taken off.
Units TakePiece(std::string& text, bool& isSound)
{
    std::size_t length = 1, whole = 0;
    static const auto sequences = NumberCases<unsigned, 5>("UTF-8 sequences");
    for (const auto& [low, high, secondLow, secondHigh, size] : sequences) {
        if (!IsIn(low, high, text, 0))
            continue;
        whole = size;
        while (length < whole && IsIn(0x80, 0xBF, text, length))
            ++length;
        if (length > 1 && !IsIn(secondLow, secondHigh, text, 1)) {
            whole = 0;
            length = 2; // these two lead nowhere
        }
    }
    unsigned long code = BYTE(text[0]) & 0xFFul >> (whole < 2 ? 0 : whole + 1);
    for (std::size_t i = 1; i < length; ++i)
        code = code * 64 + BYTE(text[i]) % 64;
    text.erase(0, length);
    if (length != whole) {
        isSound = false;
        return {WCHAR(0xFFFD)};
    }
    if (code < 0x10000)
        return {static_cast<WCHAR>(code)};
    return {static_cast<WCHAR>(0xD7C0 + code / 1024), static_cast<WCHAR>(0xDC00 + code % 1024)};
}

void CompareUtf8(const std::string& text)
{
    bool isSound = true;
    Units units;
    for (std::string rest = text; !rest.empty();)
        units += TakePiece(rest, isSound);
    ASSERT_EQ(ToWide(CP_UTF8, text), HexOf(units)) << HexOf(text);
    ASSERT_EQ(ToWide(CP_UTF8, text, MB_ERR_INVALID_CHARS), isSound ? HexOf(units) : "ERROR 1113")
        << HexOf(text);
}

// With U+FFFD for halves of pairs.
Units Paired(Units units)
{
    for (std::size_t i = 0; i < units.size(); ++i) {
        const bool isPair =
            units[i] / 1024 == 0xD800 / 1024 && i + 1 < units.size() && units[i + 1] / 1024 == 0xDC00 / 1024;
        if (isPair)
            ++i;
        else if (units[i] / 2048 == 0xD800 / 2048)
            units[i] = 0xFFFD;
    }
    return units;
}

TEST(CodePagesOnPosix, Utf8IsReadAsTheSlowModelReadsIt)
{
    const std::string bytes = FromHex<std::string>("00617F808F909FA0BFC0C1C2DFE0E1EDEFF0F1F4F5FF");
    for (const char a : bytes)
        for (const char b : bytes)
            for (const char c : bytes)
                for (const char d : {'a', '\x80', '\xBF', '\xC2', '\xF4'})
                    for (std::size_t length = 1; length <= 4; ++length)
                        CompareUtf8(std::string{a, b, c, d}.substr(0, length));
}

TEST(CodePagesOnPosix, LongTextsGoAsShortOnes)
{
    RandomSource random;
    const auto upTo = [&random](unsigned limit) { return static_cast<unsigned>(random()) % (limit + 1); };
    for (int round = 0; round < 1000; ++round) {
        std::string bytes, narrow, wide;
        Units units;
        const unsigned rare = 1 + upTo(40);
        for (unsigned i = 0, end = 1 + upTo(100); i < end; ++i) {
            bytes += static_cast<char>(upTo(rare) == 0 ? upTo(255) : upTo(127));
            const unsigned other = upTo(1) != 0 ? upTo(0xFFFF) : 0xD7F0 + upTo(0x820);
            units += static_cast<WCHAR>(upTo(rare) != 0 ? upTo(127) : other);
            narrow += ToNarrow(CP_ACP, Units(1, units.back()), "_").substr(0, 2);
            wide += ToWide(CP_ACP, bytes.substr(bytes.size() - 1));
        }
        CompareUtf8(bytes);
        const std::string utf8 = FromHex<std::string>(ToNarrow(CP_UTF8, units));
        CompareUtf8(utf8);
        EXPECT_EQ(ToWide(CP_UTF8, utf8, MB_ERR_INVALID_CHARS), HexOf(Paired(units)));
        EXPECT_EQ(ToNarrow(CP_ACP, units, "_").substr(0, narrow.size()), narrow);
        EXPECT_EQ(ToWide(CP_ACP, bytes), wide);
    }
}

} // namespace
