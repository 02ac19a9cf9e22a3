// LocaleUtils: the user's regional settings, one question each.
//
// Every call asks the platform anew, so that a change of the settings counts at the next call (one made by
// another process within a second). Five separators are the exception: they are read once and kept. A text is
// in the process code page; the platform's failure gives an empty text or 0 and, for texts, a line in the
// application log. Nothing throws but std::bad_alloc. Getters cost well under a microsecond, those of the
// five separators a few nanoseconds, after the first question about a locale, which may take some
// milliseconds.
//
// Weekdays count 1 = Sunday .. 7 = Saturday, months 1 .. 12, and 13 for calendars that have one more.
//
// Threads: any thread may ask. The first fill of a kept separator is not locked, so let one thread fill it.
#pragma once

#include "BasicTypes.h"
#include "CString.h"
#include "Kvt01Api.h"

// The platform's numbers of the items that are asked for here, which its own headers have as macros. Day
// names begin with Monday.
#ifndef LOCALE_SDECIMAL
// clang-format off
inline constexpr DWORD
    LOCALE_ICOUNTRY = 5, LOCALE_IMEASURE = 13, LOCALE_SDECIMAL = 14, LOCALE_STHOUSAND = 15,
    LOCALE_SGROUPING = 16, LOCALE_IDIGITS = 17, LOCALE_ILZERO = 18, LOCALE_SCURRENCY = 20,
    LOCALE_SMONDECIMALSEP = 22, LOCALE_SMONTHOUSANDSEP = 23, LOCALE_SMONGROUPING = 24,
    LOCALE_ICURRDIGITS = 25, LOCALE_ICURRENCY = 27, LOCALE_INEGCURR = 28, LOCALE_SDATE = 29,
    LOCALE_STIME = 30, LOCALE_IDATE = 33, LOCALE_ITIME = 35, LOCALE_ICENTURY = 36, LOCALE_ITLZERO = 37,
    LOCALE_IDAYLZERO = 38, LOCALE_IMONLZERO = 39, LOCALE_S1159 = 40, LOCALE_S2359 = 41,
    LOCALE_SDAYNAME1 = 42, LOCALE_SDAYNAME2 = 43, LOCALE_SDAYNAME3 = 44, LOCALE_SDAYNAME4 = 45,
    LOCALE_SDAYNAME5 = 46, LOCALE_SDAYNAME6 = 47, LOCALE_SDAYNAME7 = 48,
    LOCALE_SABBREVDAYNAME1 = 49, LOCALE_SABBREVDAYNAME2 = 50, LOCALE_SABBREVDAYNAME3 = 51,
    LOCALE_SABBREVDAYNAME4 = 52, LOCALE_SABBREVDAYNAME5 = 53, LOCALE_SABBREVDAYNAME6 = 54,
    LOCALE_SABBREVDAYNAME7 = 55,
    LOCALE_SMONTHNAME1 = 56, LOCALE_SMONTHNAME2 = 57, LOCALE_SMONTHNAME3 = 58, LOCALE_SMONTHNAME4 = 59,
    LOCALE_SMONTHNAME5 = 60, LOCALE_SMONTHNAME6 = 61, LOCALE_SMONTHNAME7 = 62, LOCALE_SMONTHNAME8 = 63,
    LOCALE_SMONTHNAME9 = 64, LOCALE_SMONTHNAME10 = 65, LOCALE_SMONTHNAME11 = 66, LOCALE_SMONTHNAME12 = 67,
    LOCALE_SABBREVMONTHNAME1 = 68, LOCALE_SABBREVMONTHNAME2 = 69, LOCALE_SABBREVMONTHNAME3 = 70,
    LOCALE_SABBREVMONTHNAME4 = 71, LOCALE_SABBREVMONTHNAME5 = 72, LOCALE_SABBREVMONTHNAME6 = 73,
    LOCALE_SABBREVMONTHNAME7 = 74, LOCALE_SABBREVMONTHNAME8 = 75, LOCALE_SABBREVMONTHNAME9 = 76,
    LOCALE_SABBREVMONTHNAME10 = 77, LOCALE_SABBREVMONTHNAME11 = 78, LOCALE_SABBREVMONTHNAME12 = 79,
    LOCALE_SENGLANGUAGE = 4097, LOCALE_SENGCOUNTRY = 4098, LOCALE_ITIMEMARKPOSN = 4101,
    LOCALE_IFIRSTDAYOFWEEK = 4108, LOCALE_SMONTHNAME13 = 4110, LOCALE_SABBREVMONTHNAME13 = 4111,
    LOCALE_INEGNUMBER = 4112;
// clang-format on
#endif

class KVT01_API LocaleUtils {
public:
    // What the five getters that answer from memory keep; empty until the first answer that is not. A change
    // of the user's settings is not seen after that.
    static CString& m_csCurrencySymbol;
    static CString& m_csDecimalSeparator;
    static CString& m_csThousandsSeparator;
    static CString& m_csCurrencyDecimalSeparator;
    static CString& m_csCurrencyThousandsSeparator;

    // ---- any item, by the platform's number for it, one of those above among them; a failure leaves `value`
    // alone
    static CString GetLocaleInfoFor(unsigned long lcType);
    static void GetLocaleInfoNumberFor(unsigned long lcType, unsigned int& value);

    // ---- texts ------------------------------------------------------------------------------------------
    static CString GetCurrencySymbol();
    static CString GetDecimalSeparator();
    static CString GetThousandsSeparator();
    static CString GetCurrencyDecimalSeparator();
    static CString GetCurrencyThousandsSeparator();
    static CString GetDateSeparator();
    static CString GetTimeSeparator();
    static CString GetTimeAM();
    static CString GetTimePM();
    static CString GetCountryName();  // in English
    static CString GetLanguageName(); // in English
    // Outside 1..13 and 1..7: empty, with a line in the log.
    static CString GetMonthName(int month, bool abbreviated = false);
    static CString GetDayName(int day, bool abbreviated = false);

    // ---- numbers ----------------------------------------------------------------------------------------
    static unsigned int GetCountryCode(); // of the telephone
    static unsigned int GetNumberFractionalDigits();
    static unsigned int GetCurrencyFractionalDigits();
    static bool GetLeadingZero(); // 0.5 rather than .5
    static bool GetFullYearDisplay();
    static bool GetDayHasLeadingZero();
    static bool GetMonthHasLeadingZero();
    static bool GetHourHasLeadingZero();
    static bool GetUSMeasurementSystem(); // rather than metric
    static int GetFirstDayOfWeek();
    // Whether the clock has 12 hours; whether AM or PM stands in front of the time.
    static bool Get12HourTime(bool& markerFirst);
    // The places 0, 1, 2 of day, month and year in a short date.
    static void GetDateOrdering(unsigned int& dayPos, unsigned int& monthPos, unsigned int& yearPos);

    // ---- forms of negative numbers and of money ---------------------------------------------------------
    static void GetNegNumberFormat(bool& spaceAfterSign, bool& signFirst, bool& parentheses);
    static bool GetCurrencySymbolIsPrefix(bool& separated);
    static void GetNegCurrencySymbolFormat(bool& useMinus, bool& minusBeforeSymbol, bool& minusAfterNumber,
                                           bool& parentheses);

    // ---- groups of digits as the decimal digits of one number: 3 is threes, 32 one three and then twos --
    static unsigned int GetDigitGrouping();
    static unsigned int GetCurrencyGrouping();
    // The digits 1 to 8 of the text in a row, all else skipped; a number beyond 32 bits wraps.
    //   "3;0" -> 3   "3;2;0" -> 32   "3" -> 3   "9;0" -> 0   "" -> 0
    static unsigned int ConvertGrouping(const CString& grouping);

    // The last year of this century that two digits stand for: the last two characters of the user's setting,
    // read by atoi; 29 without one, and when it is shorter than two characters.
    static int GetTwoDigitYearMax();
};
