// The answers of the locale items against those of the original platform, and the exceptions, each with its
// reason.
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

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

// Where the platform's data and ICU's differ.
struct Exception {
    std::string locale, item;
    const char* ours; // an answer from a new version of the data that is neither is a failure
    const char* reason;
};
const Exception Exceptions[] = {
    {"tr_TR", "LOCALE_INEGCURR", "1", "ICU's accounting form has no parentheses, so a minus goes in front"},
};

struct Row {
    std::string locale, item, expected;
    LCTYPE number;
};

Row RowOf(const std::vector<std::string>& cells)
{
    const bool isText = cells[1].starts_with("LOCALE_S");
    return {cells[0], cells[1], isText ? InCodePage(cells[4]) : cells[3],
            static_cast<LCTYPE>(std::stoul(cells[2]))};
}

TEST(LocaleAgreement, WithTheOriginalPlatform)
{
    std::string known;
    LocaleAnswers answers;
    int compared = 0, equal = 0;
    std::vector<const Exception*> used;
    for (const auto& cells : Table::Read("locale-answers.tsv")) {
        const Row row = RowOf(cells);
        if (row.locale != known)
            answers = AnswersForLocale(row.locale + ".UTF-8", IcuLoader::Get);
        known = row.locale;
        ++compared;
        const std::string& ours = answers[row.number].text;
        if (ours == row.expected) {
            ++equal;
            continue;
        }
        const auto exception =
            std::find_if(std::begin(Exceptions), std::end(Exceptions), [&](const Exception& candidate) {
                return candidate.locale == row.locale && candidate.item == row.item && candidate.ours == ours;
            });
        if (exception == std::end(Exceptions))
            ADD_FAILURE() << row.locale << ' ' << row.item << ": '" << ours << "' instead of '"
                          << row.expected << "'";
        else
            used.push_back(exception);
    }
    std::cout << "locale agreement: " << compared << " items compared, " << equal << " equal, " << used.size()
              << " excepted\n";
    for (const Exception* exception : used)
        std::cout << "  " << exception->locale << ' ' << exception->item << ": " << exception->reason << '\n';
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
