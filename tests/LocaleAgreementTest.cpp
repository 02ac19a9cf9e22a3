// The answers of the locale items against those of the original platform.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "platform/Platform.h"
#include "platform/posix/IcuLoader.h"
#include "platform/posix/LocaleAnswers.h"
#include "support/Table.h"

namespace {

// The conversions have a test of their own.
std::string InCodePage(const std::u16string& text)
{
    std::string narrow(text.size(), '\0');
    const auto length = static_cast<int>(text.size());
    WideCharToMultiByte(CP_ACP, 0, text.data(), length, narrow.data(), length, nullptr, nullptr);
    return narrow;
}

std::string InCodePage(const std::string& utf8)
{
    std::u16string text(utf8.size(), u'\0');
    const auto length = static_cast<int>(utf8.size());
    const int written =
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), length, text.data(), length);
    text.resize(static_cast<std::size_t>(written));
    return InCodePage(text);
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
    const auto compare = [](void* told, DWORD item, const char16_t* text) {
        ++*static_cast<int*>(told);
        EXPECT_EQ(builtIn[item].text, InCodePage(std::u16string(text))) << item;
    };
    int told = 0;
    ASSERT_NE(IcuLoader::Get(), nullptr);
    EXPECT_TRUE(IcuLoader::Get()->describeLocale("en_US", compare, &told));
    EXPECT_GT(told, 50);
}

} // namespace
