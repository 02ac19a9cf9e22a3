// The conversions between narrow text and UTF-16 against the answers of the original platform, and against
// slow models of the rules.
#include <gtest/gtest.h>

#include <numeric>

#include "platform/Platform.h"
#include "support/Agreement.h"
#include "support/RandomSource.h"

namespace {

using Units = std::basic_string<WCHAR>;

template <class Text>
std::string HexOf(const Text& text)
{
    std::string hex;
    for (const auto unit : text)
        for (std::size_t shift = 8 * sizeof unit; shift > 0;)
            hex += "0123456789ABCDEF"[static_cast<unsigned>(unit) >> (shift -= 4) & 15];
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
    Text text(static_cast<std::size_t>(needed) + 1, '#'), shorter = text;
    EXPECT_EQ(call(text.data(), needed), needed);
    EXPECT_EQ(text.back(), '#');
    text.pop_back();
    if (needed > 1) {
        EXPECT_EQ(call(shorter.data(), needed - 1), 0);
        EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
        EXPECT_EQ(shorter, text.substr(0, text.size() - 1) + Text(2, '#'));
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

std::string AllBytes()
{
    std::string bytes(256, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    return bytes;
}

// Calls check(what, ours, recorded) for a row of the table; a row of 80-FF stands for each of these bytes.
template <class Check>
void CompareWide(UINT page, const std::vector<std::string>& cells, Check check)
{
    const bool isOneByOne = cells[2] == "80-FF";
    const std::string inputs = isOneByOne ? AllBytes().substr(0x80) : FromHex<std::string>(cells[2]);
    for (std::size_t i = 0, length = isOneByOne ? 1 : inputs.size(); i < inputs.size(); i += length) {
        const std::string input = inputs.substr(i, length);
        check("", ToWide(page, input), cells[3]);
        check(" strictly", ToWide(page, input, MB_ERR_INVALID_CHARS), cells[7] == "ok" ? cells[3] : cells[7]);
    }
}

template <class Check>
void CompareNarrow(UINT page, const std::vector<std::string>& cells, Check check)
{
    const Units text = FromHex<Units>(cells[2]);
    const std::string used = cells[4] == "1" ? " default" : "", &kind = cells[7];
    check("", ToNarrow(page, text), cells[3] + used);
    if (page == CP_UTF8)
        return check(" strictly", ToNarrow(page, text, nullptr, WC_ERR_INVALID_CHARS),
                     kind == "replaced" ? "ERROR 1113" : cells[3]);
    check(" else ?", ToNarrow(page, text, "?"), cells[5] + used);
    check(" else _", ToNarrow(page, text, "_"), cells[6] + used);
    const std::string plain = ToNarrow(page, text, nullptr, WC_NO_BEST_FIT_CHARS);
    check(" strictly", kind == "exact" ? plain : plain.substr(plain.find(' ')),
          kind == "exact" ? cells[3] : " default");
}

TEST(CodePages, AgreeWithTheOriginalPlatform)
{
    Agreement::Comparison comparison("codepage-answers.tsv", "code page exceptions");
    for (const auto& cells : RecordedRows("codepage-answers.tsv")) {
        const auto check = [&](const char* how, const std::string& here, const std::string& recorded) {
            comparison.Check(cells[0], cells[1] + ' ' + cells[2] + how, here, recorded);
        };
        const auto page = static_cast<UINT>(std::stoul(cells[1]));
        cells[0] == "to_wide" ? CompareWide(page, cells, check) : CompareNarrow(page, cells, check);
    }
}

// The published table of 1252 has 698 units, and the sum of unit times byte over them is this.
TEST(CodePages, TheProcessPageHasAsManyLookalikesAsItsPublishedTable)
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
