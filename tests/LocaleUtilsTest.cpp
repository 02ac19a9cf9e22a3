#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <thread>
#include <vector>

#include "support/Cases.h"
#include "support/MarkerLines.h"
#include "support/UserSettings.h"

namespace {

const char* const TwoDigitYears = "Control Panel\\International\\Calendars\\TwoDigitYearMax";

class Locale : public testing::Test, public UserSettings {
protected:
    MarkerLines markers;
};

TEST_F(Locale, FoldsGroupings)
{
    for (const auto& [grouping, number] : Cases<2>("groupings"))
        EXPECT_EQ(LocaleUtils::ConvertGrouping(grouping), std::stoul(number)) << grouping;
    Use("sGrouping", "3;2;0");
    Use("sMonGrouping", "4;0");
    EXPECT_EQ(LocaleUtils::GetDigitGrouping(), 32u);
    EXPECT_EQ(LocaleUtils::GetCurrencyGrouping(), 4u);
}

TEST_F(Locale, NamesDaysFromSundayAndMonthsUpToThirteen)
{
    CString names;
    for (int day = 1; day <= 7; ++day)
        names += LocaleUtils::GetDayName(day, false) + ' ' + LocaleUtils::GetDayName(day, true) + ' ';
    EXPECT_EQ(names, "Sunday Sun Monday Mon Tuesday Tue Wednesday Wed Thursday Thu Friday Fri Saturday Sat ");
    EXPECT_EQ(LocaleUtils::GetMonthName(1, false) + LocaleUtils::GetMonthName(12, true), "JanuaryDec");
    EXPECT_EQ(LocaleUtils::GetMonthName(13, false) + LocaleUtils::GetMonthName(13, true), "");
    EXPECT_EQ(markers.Take(), std::vector<CString>());
    for (const int wild : {INT_MIN, -1, 0, 14, INT_MAX}) {
        EXPECT_EQ(LocaleUtils::GetMonthName(wild, false) + LocaleUtils::GetDayName(wild, true), "");
        EXPECT_EQ(markers.Take(), (std::vector<CString>{"{9358F711-98BB-411f-8F4C-A9BE05892568}",
                                                        "{408654B2-6791-46be-96AE-DECE99832073}"}));
    }
    for (const unsigned long item : {0ul, 128ul, 4095ul, 4224ul, 0x1FFFFFFFul, ~0ul}) {
        EXPECT_EQ(LocaleUtils::GetLocaleInfoFor(item), "");
        EXPECT_EQ(markers.Take(), std::vector<CString>{"{5F7F49DE-1922-43EA-A2DF-CF45C26EE41B}"}) << item;
        unsigned int value = 77;
        LocaleUtils::GetLocaleInfoNumberFor(item == 0 ? LOCALE_SDECIMAL : item, value);
        EXPECT_EQ(value, 77u);
    }
}

template <class... Values>
std::string Digits(Values... values)
{
    return (std::to_string(values) + ...);
}

// What the getters make of the settings, by the setting's name.
std::map<std::string, std::string> Forms()
{
    bool space = false, first = false, parentheses = false, separated = false, minus = false, before = false,
         after = false, enclosed = false;
    LocaleUtils::GetNegNumberFormat(space, first, parentheses);
    LocaleUtils::GetNegCurrencySymbolFormat(minus, before, after, enclosed);
    const bool isPrefix = LocaleUtils::GetCurrencySymbolIsPrefix(separated);
    return {{"iNegNumber", Digits(space, first, parentheses)},
            {"iCurrency", Digits(isPrefix, separated)},
            {"iNegCurr", Digits(minus, before, after, enclosed)},
            {"iFirstDayOfWeek", Digits(LocaleUtils::GetFirstDayOfWeek())},
            {"iLZero", Digits(LocaleUtils::GetLeadingZero())},
            {"iMeasure", Digits(LocaleUtils::GetUSMeasurementSystem())},
            {"iDigits", Digits(LocaleUtils::GetNumberFractionalDigits())},
            {"iCurrDigits", Digits(LocaleUtils::GetCurrencyFractionalDigits())}};
}

TEST_F(Locale, ReadsTheFormsOffTheirNumbers)
{
    for (const auto& [setting, forms] : Cases<2>("forms"))
        for (int number = 0; const std::string& form : CellsOf(forms, ' ')) {
            Use(setting, std::to_string(number));
            EXPECT_EQ(Forms()[setting], form) << setting << ' ' << number;
            ++number;
        }
}

TEST_F(Locale, ReadsFormsOffAUsersPatterns)
{
    for (const auto& [shortDate, timeFormat, forms] : Cases<3>("patterns")) {
        Use("sShortDate", shortDate);
        Use("sTimeFormat", timeFormat);
        unsigned int day = 9, month = 9, year = 9;
        bool markerFirst = false;
        LocaleUtils::GetDateOrdering(day, month, year);
        const bool is12Hour = LocaleUtils::Get12HourTime(markerFirst);
        EXPECT_EQ(Digits(day, month, year) + ' ' +
                      Digits(LocaleUtils::GetDayHasLeadingZero(), LocaleUtils::GetMonthHasLeadingZero(),
                             LocaleUtils::GetFullYearDisplay()) +
                      ' ' + Digits(is12Hour, markerFirst, LocaleUtils::GetHourHasLeadingZero()) + ' ' +
                      LocaleUtils::GetDateSeparator() + LocaleUtils::GetTimeSeparator(),
                  forms);
    }
}

TEST_F(Locale, SeesChangesAtOnceButKeepsFiveSeparators)
{
    const struct {
        CString (*get)();
        const char *setting, *text;
    } kept[] = {{&LocaleUtils::GetDecimalSeparator, "sDecimal", ","},
                {&LocaleUtils::GetThousandsSeparator, "sThousand", "."},
                {&LocaleUtils::GetCurrencySymbol, "sCurrency", "\x80"},
                {&LocaleUtils::GetCurrencyDecimalSeparator, "sMonDecimalSep", ","},
                {&LocaleUtils::GetCurrencyThousandsSeparator, "sMonThousandSep", "."}};
    for (const auto& row : kept) {
        Use(row.setting, ""); // an empty text is asked for again
        EXPECT_EQ(row.get(), "") << row.setting;
        for (const char* text : {row.text, "*"}) {
            Use(row.setting, text);
            EXPECT_EQ(row.get(), row.text) << row.setting;
        }
    }
    EXPECT_EQ(LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL), "*");
    EXPECT_EQ(LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL | LOCALE_NOUSEROVERRIDE), ".");
}

TEST_F(Locale, HasATwoDigitYearLimit)
{
    EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), 29);
    auto rows = Cases<2>("limit of two digits");
    rows.push_back({std::string(1'000'000, '1'), "11"});
    for (const auto& [setting, limit] : rows) {
        Use("1", setting, TwoDigitYears);
        EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), std::stoi(limit)) << setting.substr(0, 10);
    }
}

TEST_F(Locale, MayBeAskedByManyThreads)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 5000; ++round) {
                EXPECT_EQ(LocaleUtils::GetDayName(round % 7 + 1, true).GetLength(), 3);
                EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax() / 10, 2);
            }
        });
    for (int i = 0; i < 100; ++i)
        Use("1", "202" + std::to_string(i % 10), TwoDigitYears);
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
