// The answers of the locale items against those of the original platform.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "platform/Platform.h"
#include "platform/posix/IcuLoader.h"
#include "platform/posix/LocaleAnswers.h"
#include "support/Cases.h"

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

TEST(LocaleAgreement, WithTheOriginalPlatform)
{
    std::string known;
    LocaleAnswers answers;
    int compared = 0;
    for (const auto& cells : RecordedRows("locale-answers.tsv")) {
        const std::string &locale = cells[0], &item = cells[1];
        if (std::exchange(known, locale) != locale)
            answers = AnswersForLocale(locale + ".UTF-8", IcuLoader::Get);
        // ICU's accounting form has no parentheses there, so a minus goes in front.
        const bool isExcepted = locale == "tr_TR" && item == "LOCALE_INEGCURR";
        const std::string recorded = item.starts_with("LOCALE_S") ? InCodePage(cells[4]) : cells[3];
        EXPECT_EQ(answers[static_cast<LCTYPE>(std::stoul(cells[2]))].text, isExcepted ? "1" : recorded)
            << locale << ' ' << item;
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
