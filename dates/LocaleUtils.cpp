#include "LocaleUtils.h"

#include <cstdlib>
#include <iterator>
#include <memory>

#include "framework/FailureMarkers.h"
#include "framework/NeverDestroyed.h"
#include "platform/Platform.h"

namespace {

constinit NeverDestroyed<CString> currencySymbol;
constinit NeverDestroyed<CString> decimalSeparator;
constinit NeverDestroyed<CString> thousandsSeparator;
constinit NeverDestroyed<CString> currencyDecimalSeparator;
constinit NeverDestroyed<CString> currencyThousandsSeparator;

constexpr std::size_t UsualRoom = 96; // bytes; the platform's longest usual answer has 80

// An empty answer is asked for again at the next call.
const CString& ReadWhenEmpty(CString& kept, LCTYPE item)
{
    if (kept.IsEmpty())
        kept = LocaleUtils::GetLocaleInfoFor(item);
    return kept;
}

unsigned int Number(LCTYPE item)
{
    unsigned int value = 0;
    LocaleUtils::GetLocaleInfoNumberFor(item, value);
    return value;
}

// ---- the platform's numbers for forms, each as an index; a number past the end counts as the last row ---

struct DateOrder {
    unsigned int day, month, year;
};
constexpr DateOrder DateOrders[] = {{1, 0, 2}, {0, 1, 2}, {2, 1, 0}};

struct NegativeNumber {
    bool spaceAfterSign, signFirst, parentheses;
};
constexpr NegativeNumber NegativeNumbers[] = {
    {false, false, true},  // (1.1)
    {false, true, false},  // -1.1
    {true, true, false},   // - 1.1
    {false, false, false}, // 1.1-
    {true, false, false},  // 1.1 -
};

struct CurrencyPlace {
    bool isPrefix, separated;
};
constexpr CurrencyPlace CurrencyPlaces[] = {{true, false}, {false, false}, {true, true}, {false, true}};

struct NegativeCurrency {
    bool useMinus, minusBeforeSymbol, minusAfterNumber, parentheses;
};
constexpr NegativeCurrency InParentheses = {false, false, false, true};
constexpr NegativeCurrency MinusFirst = {true, true, false, false};
constexpr NegativeCurrency MinusBehindSymbol = {true, false, false, false};
constexpr NegativeCurrency MinusBehindNumber = {true, true, true, false};
constexpr NegativeCurrency MinusLast = {true, false, true, false};
constexpr NegativeCurrency NegativeCurrencies[] = {
    InParentheses,     // ($1.1)
    MinusFirst,        // -$1.1
    MinusBehindSymbol, // $-1.1
    MinusLast,         // $1.1-
    InParentheses,     // (1.1$)
    MinusFirst,        // -1.1$
    MinusBehindNumber, // 1.1-$
    MinusLast,         // 1.1$-
    MinusFirst,        // -1.1 $
    MinusFirst,        // -$ 1.1
    MinusLast,         // 1.1 $-
    MinusLast,         // $ 1.1-
    MinusBehindSymbol, // $ -1.1
    MinusBehindNumber, // 1.1- $
    InParentheses,     // ($ 1.1)
    InParentheses,     // (1.1 $)
    MinusLast,         // no form of the platform
};

template <class Row, std::size_t Count>
const Row& Chosen(const Row (&rows)[Count], LCTYPE item)
{
    const unsigned int number = Number(item);
    return rows[number < Count ? number : Count - 1];
}

// ---- the registry ---------------------------------------------------------------------------------------

struct CloseKey {
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using Key = std::unique_ptr<std::remove_pointer_t<HKEY>, CloseKey>;

// A text of the current user; empty when it is missing.
CString ReadSetting(const char* path, const char* name)
{
    CString text;
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_READ, &opened) != 0)
        return text;
    const Key key(opened);
    DWORD type = 0;
    DWORD size = 0;
    if (RegQueryValueExA(opened, name, nullptr, &type, nullptr, &size) != 0 || type != REG_SZ ||
        size > static_cast<DWORD>(CString::MaxLength))
        return text;
    char* const buffer = text.GetBuffer(static_cast<int>(size));
    const LSTATUS status =
        RegQueryValueExA(opened, name, nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size);
    buffer[status == 0 ? size : 0] = '\0'; // the platform need not have ended it
    text.ReleaseBuffer();
    return text;
}

} // namespace

constinit CString& LocaleUtils::m_csCurrencySymbol = currencySymbol.value;
constinit CString& LocaleUtils::m_csDecimalSeparator = decimalSeparator.value;
constinit CString& LocaleUtils::m_csThousandsSeparator = thousandsSeparator.value;
constinit CString& LocaleUtils::m_csCurrencyDecimalSeparator = currencyDecimalSeparator.value;
constinit CString& LocaleUtils::m_csCurrencyThousandsSeparator = currencyThousandsSeparator.value;

CString LocaleUtils::GetLocaleInfoFor(unsigned long lcType)
{
    const auto item = static_cast<LCTYPE>(lcType);
    char usual[UsualRoom]; // enough for nearly every answer, and then one question is enough too
    if (const int written = GetLocaleInfoA(LOCALE_USER_DEFAULT, item, usual, sizeof usual); written > 0)
        return CString(usual, written - 1);
    const int size = GetLocaleInfoA(LOCALE_USER_DEFAULT, item, nullptr, 0);
    if (size == 0) {
        FailureMarkers::Report("{5F7F49DE-1922-43EA-A2DF-CF45C26EE41B}");
        return CString();
    }
    CString text;
    const int written = GetLocaleInfoA(LOCALE_USER_DEFAULT, item, text.GetBuffer(size), size);
    text.ReleaseBuffer(written > 0 ? written - 1 : 0);
    if (written == 0) // it became longer in between
        FailureMarkers::Report("{7114CF88-F357-4D2B-8CF2-47EB7E370B39}");
    return text;
}

void LocaleUtils::GetLocaleInfoNumberFor(unsigned long lcType, unsigned int& value)
{
    GetLocaleInfoA(LOCALE_USER_DEFAULT, static_cast<LCTYPE>(lcType) | LOCALE_RETURN_NUMBER,
                   reinterpret_cast<char*>(&value), sizeof value);
}

CString LocaleUtils::GetCurrencySymbol()
{
    return ReadWhenEmpty(m_csCurrencySymbol, LOCALE_SCURRENCY);
}
CString LocaleUtils::GetDecimalSeparator()
{
    return ReadWhenEmpty(m_csDecimalSeparator, LOCALE_SDECIMAL);
}
CString LocaleUtils::GetThousandsSeparator()
{
    return ReadWhenEmpty(m_csThousandsSeparator, LOCALE_STHOUSAND);
}
CString LocaleUtils::GetCurrencyDecimalSeparator()
{
    return ReadWhenEmpty(m_csCurrencyDecimalSeparator, LOCALE_SMONDECIMALSEP);
}
CString LocaleUtils::GetCurrencyThousandsSeparator()
{
    return ReadWhenEmpty(m_csCurrencyThousandsSeparator, LOCALE_SMONTHOUSANDSEP);
}
CString LocaleUtils::GetDateSeparator()
{
    return GetLocaleInfoFor(LOCALE_SDATE);
}
CString LocaleUtils::GetTimeSeparator()
{
    return GetLocaleInfoFor(LOCALE_STIME);
}
CString LocaleUtils::GetTimeAM()
{
    return GetLocaleInfoFor(LOCALE_S1159);
}
CString LocaleUtils::GetTimePM()
{
    return GetLocaleInfoFor(LOCALE_S2359);
}
CString LocaleUtils::GetCountryName()
{
    return GetLocaleInfoFor(LOCALE_SENGCOUNTRY);
}
CString LocaleUtils::GetLanguageName()
{
    return GetLocaleInfoFor(LOCALE_SENGLANGUAGE);
}

CString LocaleUtils::GetMonthName(int month, bool abbreviated)
{
    if (month == 13)
        return GetLocaleInfoFor(abbreviated ? LOCALE_SABBREVMONTHNAME13 : LOCALE_SMONTHNAME13);
    if (month < 1 || month > 12) {
        FailureMarkers::Report("{408654B2-6791-46be-96AE-DECE99832073}");
        return CString();
    }
    const LCTYPE january = abbreviated ? LOCALE_SABBREVMONTHNAME1 : LOCALE_SMONTHNAME1;
    return GetLocaleInfoFor(january + static_cast<LCTYPE>(month - 1));
}

CString LocaleUtils::GetDayName(int day, bool abbreviated)
{
    if (day < 1 || day > 7) {
        FailureMarkers::Report("{9358F711-98BB-411f-8F4C-A9BE05892568}");
        return CString();
    }
    const LCTYPE monday = abbreviated ? LOCALE_SABBREVDAYNAME1 : LOCALE_SDAYNAME1;
    return GetLocaleInfoFor(monday + static_cast<LCTYPE>((day + 5) % 7));
}

unsigned int LocaleUtils::GetCountryCode()
{
    return Number(LOCALE_ICOUNTRY);
}
unsigned int LocaleUtils::GetNumberFractionalDigits()
{
    return Number(LOCALE_IDIGITS);
}
unsigned int LocaleUtils::GetCurrencyFractionalDigits()
{
    return Number(LOCALE_ICURRDIGITS);
}
bool LocaleUtils::GetLeadingZero()
{
    return Number(LOCALE_ILZERO) != 0;
}
bool LocaleUtils::GetFullYearDisplay()
{
    return Number(LOCALE_ICENTURY) == 1;
}
bool LocaleUtils::GetDayHasLeadingZero()
{
    return Number(LOCALE_IDAYLZERO) != 0;
}
bool LocaleUtils::GetMonthHasLeadingZero()
{
    return Number(LOCALE_IMONLZERO) != 0;
}
bool LocaleUtils::GetHourHasLeadingZero()
{
    return Number(LOCALE_ITLZERO) != 0;
}
bool LocaleUtils::GetUSMeasurementSystem()
{
    return Number(LOCALE_IMEASURE) != 0;
}

int LocaleUtils::GetFirstDayOfWeek()
{
    const unsigned int fromMonday = Number(LOCALE_IFIRSTDAYOFWEEK); // 0 is Monday, 6 Sunday
    return fromMonday <= 5 ? static_cast<int>(fromMonday) + 2 : 1;
}

bool LocaleUtils::Get12HourTime(bool& markerFirst)
{
    markerFirst = Number(LOCALE_ITIMEMARKPOSN) != 0;
    return Number(LOCALE_ITIME) == 0;
}

void LocaleUtils::GetDateOrdering(unsigned int& dayPos, unsigned int& monthPos, unsigned int& yearPos)
{
    const DateOrder& order = Chosen(DateOrders, LOCALE_IDATE);
    dayPos = order.day;
    monthPos = order.month;
    yearPos = order.year;
}

void LocaleUtils::GetNegNumberFormat(bool& spaceAfterSign, bool& signFirst, bool& parentheses)
{
    const NegativeNumber& form = Chosen(NegativeNumbers, LOCALE_INEGNUMBER);
    spaceAfterSign = form.spaceAfterSign;
    signFirst = form.signFirst;
    parentheses = form.parentheses;
}

bool LocaleUtils::GetCurrencySymbolIsPrefix(bool& separated)
{
    const CurrencyPlace& place = Chosen(CurrencyPlaces, LOCALE_ICURRENCY);
    separated = place.separated;
    return place.isPrefix;
}

void LocaleUtils::GetNegCurrencySymbolFormat(bool& useMinus, bool& minusBeforeSymbol, bool& minusAfterNumber,
                                             bool& parentheses)
{
    const NegativeCurrency& form = Chosen(NegativeCurrencies, LOCALE_INEGCURR);
    useMinus = form.useMinus;
    minusBeforeSymbol = form.minusBeforeSymbol;
    minusAfterNumber = form.minusAfterNumber;
    parentheses = form.parentheses;
}

unsigned int LocaleUtils::GetDigitGrouping()
{
    return ConvertGrouping(GetLocaleInfoFor(LOCALE_SGROUPING));
}

unsigned int LocaleUtils::GetCurrencyGrouping()
{
    return ConvertGrouping(GetLocaleInfoFor(LOCALE_SMONGROUPING));
}

unsigned int LocaleUtils::ConvertGrouping(const CString& grouping)
{
    unsigned int result = 0;
    for (const char c : grouping)
        if (c >= '1' && c <= '8') // kept: a 9 is skipped like the separators
            result = result * 10 + static_cast<unsigned int>(c - '0');
    return result;
}

int LocaleUtils::GetTwoDigitYearMax()
{
    constexpr int Usual = 29;
    const CString value = ReadSetting("Control Panel\\International\\Calendars\\TwoDigitYearMax", "1");
    return value.GetLength() < 2 ? Usual : std::atoi(value.Right(2));
}
