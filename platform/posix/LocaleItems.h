// The locale items that are answered, each with its category and the name of the user's own setting.
#pragma once

#include <array>
#include <cstddef>

#include "platform/posix/PosixLocale.h"

namespace LocaleItems {

enum class Category { Numeric, Monetary, Time, Measurement, Messages };
inline constexpr std::size_t CategoryCount = 5;

struct Row {
    LCTYPE first;
    LCTYPE count; // of items in a row that are alike
    Category category;
    bool isNumber;
    const char* setting; // its name in the registry, or nullptr
};

inline constexpr Row Rows[] = {
    {LOCALE_SDECIMAL, 1, Category::Numeric, false, "sDecimal"},
    {LOCALE_STHOUSAND, 1, Category::Numeric, false, "sThousand"},
    {LOCALE_SGROUPING, 1, Category::Numeric, false, "sGrouping"},
    {LOCALE_IDIGITS, 1, Category::Numeric, true, "iDigits"},
    {LOCALE_ILZERO, 1, Category::Numeric, true, "iLZero"},
    {LOCALE_INEGNUMBER, 1, Category::Numeric, true, "iNegNumber"},
    {LOCALE_SCURRENCY, 1, Category::Monetary, false, "sCurrency"},
    {LOCALE_SMONDECIMALSEP, 1, Category::Monetary, false, "sMonDecimalSep"},
    {LOCALE_SMONTHOUSANDSEP, 1, Category::Monetary, false, "sMonThousandSep"},
    {LOCALE_SMONGROUPING, 1, Category::Monetary, false, "sMonGrouping"},
    {LOCALE_ICURRDIGITS, 1, Category::Monetary, true, "iCurrDigits"},
    {LOCALE_ICURRENCY, 1, Category::Monetary, true, "iCurrency"},
    {LOCALE_INEGCURR, 1, Category::Monetary, true, "iNegCurr"},
    {LOCALE_SSHORTDATE, 1, Category::Time, false, "sShortDate"},
    {LOCALE_SLONGDATE, 1, Category::Time, false, "sLongDate"},
    {LOCALE_STIMEFORMAT, 1, Category::Time, false, "sTimeFormat"},
    {LOCALE_SDATE, 1, Category::Time, false, "sDate"},
    {LOCALE_STIME, 1, Category::Time, false, "sTime"},
    {LOCALE_IDATE, 1, Category::Time, true, "iDate"},
    {LOCALE_ITIME, 1, Category::Time, true, "iTime"},
    {LOCALE_ICENTURY, 1, Category::Time, true, "iCentury"},
    {LOCALE_ITLZERO, 1, Category::Time, true, "iTLZero"},
    {LOCALE_IDAYLZERO, 1, Category::Time, true, "iDayLZero"},
    {LOCALE_IMONLZERO, 1, Category::Time, true, "iMonLZero"},
    {LOCALE_ITIMEMARKPOSN, 1, Category::Time, true, "iTimePrefix"},
    {LOCALE_IFIRSTDAYOFWEEK, 1, Category::Time, true, "iFirstDayOfWeek"},
    {LOCALE_S1159, 1, Category::Time, false, "s1159"},
    {LOCALE_S2359, 1, Category::Time, false, "s2359"},
    {LOCALE_SDAYNAME1, 14, Category::Time, false, nullptr},
    {LOCALE_SMONTHNAME1, 24, Category::Time, false, nullptr},
    {LOCALE_SMONTHNAME13, 2, Category::Time, false, nullptr},
    {LOCALE_IMEASURE, 1, Category::Measurement, true, "iMeasure"},
    {LOCALE_ICOUNTRY, 1, Category::Messages, true, "iCountry"},
    {LOCALE_SENGCOUNTRY, 1, Category::Messages, false, "sCountry"},
    {LOCALE_SENGLANGUAGE, 1, Category::Messages, false, nullptr},
    {LOCALE_SISO639LANGNAME, 1, Category::Messages, false, nullptr},
    {LOCALE_SISO3166CTRYNAME, 1, Category::Messages, false, nullptr},
};

// The numbers of items lie in 0..127 and 4096..4223: a table that is indexed by SlotOf has all of them.
inline constexpr std::size_t SlotCount = 256;
constexpr bool IsInRange(LCTYPE item)
{
    return item < 128 || (item >= 4096 && item < 4224);
}
constexpr std::size_t SlotOf(LCTYPE item)
{
    return item < 128 ? item : item - 4096 + 128;
}

// Numbers of rows, counted from 1: a table of pointers would have to be written to at load.
inline constexpr auto RowNumberOfSlot = [] {
    std::array<unsigned char, SlotCount> table{};
    unsigned char number = 0;
    for (const Row& row : Rows) {
        ++number;
        for (LCTYPE i = 0; i < row.count; ++i)
            table[SlotOf(row.first + i)] = number;
    }
    return table;
}();

// nullptr for an item that is not answered.
constexpr const Row* RowOf(LCTYPE item)
{
    const std::size_t number = IsInRange(item) ? RowNumberOfSlot[SlotOf(item)] : 0;
    return number == 0 ? nullptr : &Rows[number - 1];
}

} // namespace LocaleItems
