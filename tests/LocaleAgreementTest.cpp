// The answers of the locale items against those of the original platform.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "platform/posix/IcuLoader.h"
#include "platform/posix/LocaleAnswers.h"
#include "support/Table.h"

namespace {

// From the published table of Windows-1252: the characters of the bytes 80 to 9F; 0 where there is none.
constexpr char32_t Bytes80To9F[] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char ByteOf(char32_t character)
{
    if (character < 0x80 || (character >= 0xA0 && character < 0x100))
        return static_cast<char>(character);
    const auto found = std::find(std::begin(Bytes80To9F), std::end(Bytes80To9F), character);
    return found == std::end(Bytes80To9F) ? '?' : static_cast<char>(0x80 + (found - Bytes80To9F));
}

// UTF-8, known to be sound, in the code page; '?' for what does not fit.
std::string InCodePage(const std::string& utf8)
{
    std::string text;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto lead = static_cast<unsigned char>(utf8[i]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        char32_t character = length == 1 ? lead : lead & (0x7Fu >> length);
        for (std::size_t k = 1; k < length; ++k)
            character = character << 6 | (static_cast<unsigned char>(utf8[i + k]) & 0x3F);
        text += ByteOf(character);
        i += length;
    }
    return text;
}

// Where the platform's data and ICU's differ. An answer from a new version of the data that is neither is a
// failure.
const char* const Exceptions[][3] = {
    {"tr_TR", "LOCALE_INEGCURR", "1"}, // ICU's accounting form has no parentheses, so a minus goes in front
};

TEST(LocaleAgreement, WithTheOriginalPlatform)
{
    std::string known;
    LocaleAnswers answers;
    int compared = 0;
    for (const auto& cells : Table::Read("locale-answers.tsv")) {
        const std::string& locale = cells[0];
        const std::string& item = cells[1];
        if (locale != known)
            answers = AnswersForLocale(locale + ".UTF-8", IcuLoader::Get);
        known = locale;
        const std::string& ours = answers[static_cast<LCTYPE>(std::stoul(cells[2]))].text;
        const bool isExcepted =
            std::any_of(std::begin(Exceptions), std::end(Exceptions), [&](const auto& row) {
                return row[0] == locale && row[1] == item && row[2] == ours;
            });
        const std::string expected = item.starts_with("LOCALE_S") ? InCodePage(cells[4]) : cells[3];
        EXPECT_EQ(ours, isExcepted ? ours : expected) << locale << ' ' << item;
        ++compared;
    }
    EXPECT_GT(compared, 2900);
}

// What is compiled in is what the module says.
TEST(LocaleAgreement, OfTheBuiltInEnglishWithTheModule)
{
    static const LocaleAnswers builtIn = AnswersForLocale("C", IcuLoader::Get);
    const auto compare = [](void* told, DWORD item, const char* text) {
        ++*static_cast<int*>(told);
        EXPECT_EQ(builtIn[item].text, text) << item;
    };
    int told = 0;
    ASSERT_NE(IcuLoader::Get(), nullptr);
    EXPECT_TRUE(IcuLoader::Get()->describeLocale("en_US", compare, &told));
    EXPECT_GT(told, 50);
}

} // namespace
