// DateTime: a calendar day of the years 1 to 9999 and a time of day to the second, without a time zone.
//
// The two halves are valid or missing independently: a value may be a date alone, a time alone, or a moment.
// The calendar is Julian up to 4 October 1582 and Gregorian after it. A setter that rejects its input leaves
// the value as it was unless it says otherwise; only Serialize throws. Every operation takes constant time.
//
// Two 32-bit numbers are stored:
//   the day number     1 = 1 January 0001 ... MAXDAY = 31 December 9999, counting every day; 0 = no date
//   the second         0 ... 86399 of the day; -1 = no time
// Any other number also counts as missing; arithmetic that leaves the range produces such numbers.
//
// ---- Kept as stored dates depend on it: autumn 1582 -----------------------------------------------------
// October 1582 has the days 1 to 21, which read back as such and stand for 1 to 4 and 15 to 31; 22 to 31 are
// rejected. A date set in that autumn gets a lower day number than the one that reads back as this date: by
// 10 from 5 to 14 October, by 20 from 15 to 21 October, by 10 from day 15 of November and of December on. 15
// October 1582 is 577728, which reads as 25 September 1582. So SetDay, AddMonths and all else that sets a
// date there may give an earlier day. Up to 4 October 1582 (577737) and from 1 January 1583 (577816) on both
// directions agree.
#pragma once

#include "BasicTypes.h"
#include "COleDateTime.h"
#include "CString.h"
#include "FileTime.h"
#include "Kvt01Api.h"

#include <ctime>

class CArchive;

class KVT01_API DateTime {
public:
    static constexpr int MINDAY = 1;
    static constexpr int MAXDAY = 3652061;
    static constexpr int SECS_PER_DAY = 86400;
    static constexpr int SECS_PER_HOUR = 3600;
    static constexpr int SECS_PER_MIN = 60;

    DateTime() = default; // both halves missing
    // All or nothing: both halves are missing when any part is out of range. (Set differs.)
    DateTime(int year, int month, int day, int hour, int minute, int second) noexcept;

    // ---- setting: year 1..9999, month 1..12, day 1..GetDaysInMonth; hour 0..23, minute and second 0..59 -
    // Each half by itself: one that is out of range keeps what it had.
    void Set(int year, int month, int day, int hour, int minute, int second) noexcept;
    void SetDate(int year, int month, int day) noexcept;
    void SetTime(int hour, int minute, int second) noexcept;
    void SetDate(const DateTime& other) noexcept { m_nDay = other.m_nDay; } // missing or not
    void SetTime(const DateTime& other) noexcept { m_nSecond = other.m_nSecond; }
    void SetInvalid() noexcept { *this = DateTime(); }
    void SetInvalidDate() noexcept { m_nDay = NoDay; }
    void SetInvalidTime() noexcept { m_nSecond = NoSecond; }

    // One part, the others kept; nothing happens to a missing date. SetYear and SetMonth lower the day to the
    // last of the new month (29 February to 28 February); SetDay rejects a day that the month does not have.
    void SetYear(int year) noexcept;
    void SetMonth(int month) noexcept;
    void SetDay(int day) noexcept;
    void SetToFirstDay() noexcept; // of the month
    void SetToLastDay() noexcept;
    // The other parts are those that GetTime reads. A missing time reads as 0:00:-1, so SetHour and SetMinute
    // leave it missing, while SetSecond makes it 0:00 and that second.
    void SetHour(int hour) noexcept;
    void SetMinute(int minute) noexcept;
    void SetSecond(int second) noexcept;

    // ---- from other forms of a moment -------------------------------------------------------------------
    void Set(const std::tm& time) noexcept; // each half by itself
    // A moment in UTC, taken as local time; both halves are missing when the platform cannot convert it
    // (before 1970 or after the year 3000; a file time from 2^63 on). The local time of a moment goes by the
    // offset in force then, that of a file time by the offset in force today.
    void Set(const int64& secondsSince1970) noexcept;
    void Set(const FILETIME& fileTime) noexcept;
    // The same year, month and day, though OLE dates are Gregorian also before 1582, and the time to the
    // nearest second. Both halves are missing unless the status is valid, and stay as they were when the date
    // is out of range.
    void Set(const COleDateTime& date) noexcept;

    // ---- into other forms of a moment -------------------------------------------------------------------
    void Get(int& year, int& month, int& day, int& hour, int& minute, int& second) const noexcept;
    // Only from 1 January 1970 to 18 January 2038; other dates leave the output as it is and report a
    // failure. Weekday, day of the year and summer time are never written. A missing time is written as
    // 0:00:-1.
    void Get(std::tm& time) const;
    // The local date and time counted as if they were UTC. A date before 1970, with or without a time, leaves
    // the output as it is; else a missing half gives 0. Wraps to 32 bits after 19 January 2038, 3:14:07:
    // hosts store these numbers.
    void Get(int64& secondsSince1970) const noexcept;
    template <LongInt64 Number>
    void Get(Number& secondsSince1970) const noexcept
    {
        int64 seconds = secondsSince1970;
        Get(seconds);
        secondsSince1970 = seconds;
    }
    // Status invalid and date 0 when a half is missing or OLE dates have no such day: years below 100, 29
    // February 1500.
    void Get(COleDateTime& date) const noexcept;

    // ---- the parts; a missing date reads as 0, 0, 0, a missing time as 0, 0, -1 -------------------------
    void GetDate(int& year, int& month, int& day) const noexcept;
    int GetYear() const noexcept { return ReadDate().year; }
    int GetMonth() const noexcept { return ReadDate().month; }
    int GetDay() const noexcept { return ReadDate().day; }
    void GetTime(int& hour, int& minute, int& second) const noexcept;
    int GetHour() const noexcept { return m_nSecond / SECS_PER_HOUR; }
    int GetMinute() const noexcept { return m_nSecond % SECS_PER_HOUR / SECS_PER_MIN; }
    int GetSecond() const noexcept { return m_nSecond % SECS_PER_MIN; }
    bool IsValidDate() const noexcept { return m_nDay >= MINDAY && m_nDay <= MAXDAY; }
    bool IsValidTime() const noexcept { return m_nSecond >= 0 && m_nSecond < SECS_PER_DAY; }
    bool IsValid() const noexcept { return IsValidDate() && IsValidTime(); }
    bool IsMidnight() const noexcept { return m_nSecond == 0; }
    // 1 = Sunday ... 7 = Saturday; 6 for a missing date. The real weekday from 1600 to 2599 only: the century
    // code ends there, and before 1600 it is not adapted to the Julian calendar.
    int GetDayOfWeek() const noexcept;

    // ---- the calendar; 0 or false for what is out of range ----------------------------------------------
    static bool IsLeapYear(int year) noexcept;
    static int GetDaysInMonth(int year, int month) noexcept; // 21 in October 1582
    static int GetDaysInYear(int year) noexcept;             // 355 in 1582; 365 also for years out of range
    static int DayOfYear(int year, int month, int day) noexcept;
    static int GetDayOfWeek(int year, int month, int day) noexcept; // by the same rule as above
    int DaysFromDay1(int year, int month, int day) const noexcept;  // the day number

    // ---- the rule of the weekday: (year % 100 + month code + day + leap years + century code) % 7 + 1 ---
    // The century is year / 100. The code stops at 25, and all others get -1: kept, rules by weekday rely on
    // it.
    int GetCenturyCode(int century) const noexcept; // 5, 4, 2, 0 in turn
    int GetMonthCode(int month) const noexcept;     // 0 out of range
    // Leap years from the century's first year to this one, which itself does not count in January and
    // February. Year 0 never counts, and years out of range give 0.
    int GetCenturyLeapYearCount(int year, int month) const noexcept;

    // ---- arithmetic; nothing happens when n is 0 or the half that it starts from is missing -------------
    // The day number is not checked afterwards: outside its range the date is missing. Products and sums of
    // 32 bits wrap, here and in the next group.
    void AddDays(int n) noexcept;
    void AddWeeks(int n) noexcept;
    // Every midnight that is passed moves the day number by one, even that of a missing date.
    void AddHours(int n) noexcept;
    void AddMinutes(int n) noexcept;
    void AddSeconds(int n) noexcept;
    // The new year is limited to 1..9999. 29 February stays where it is when the new year has none. (SetYear
    // differs.)
    void AddYears(int n) noexcept;
    // The day is lowered to the new month's last: 31 January + 1 month is 28 or 29 February. A year
    // outside 1..9999 changes nothing.
    void AddMonths(int n) noexcept;
    // The same weekday with the same place in the month: from a second Tuesday to the second Tuesday. Nothing
    // changes where the new month has none (a fifth one).
    void AddMonthsSameDay(int n) noexcept;

    // ---- comparing --------------------------------------------------------------------------------------
    // -1, 0 or 1; a missing half comes before every other, and two missing ones are equal.
    int CompareDate(const DateTime& other) const noexcept;
    int CompareTime(const DateTime& other) const noexcept;
    // By date, then by time, in that sense. == compares the stored numbers, so two missing halves may differ.
    friend bool operator==(const DateTime& a, const DateTime& b) noexcept = default;
    friend bool operator<(const DateTime& a, const DateTime& b) noexcept { return IsBefore(a, b); }
    friend bool operator>(const DateTime& a, const DateTime& b) noexcept { return IsBefore(b, a); }

    // ---- spans of seconds -------------------------------------------------------------------------------
    // a - b; 0 unless all four halves are valid.
    static void ConvertDeltaToSeconds(const DateTime& a, const DateTime& b, int64& seconds) noexcept;
    template <LongInt64 Number>
    static void ConvertDeltaToSeconds(const DateTime& a, const DateTime& b, Number& seconds) noexcept
    {
        int64 delta = 0;
        ConvertDeltaToSeconds(a, b, delta);
        seconds = delta;
    }
    // Any numbers, negative ones too. Hours and minutes are multiplied in 32 bits and wrap there, all else
    // in 64.
    static void ConvertToSeconds(long days, int hours, int minutes, int seconds, int64& result) noexcept;
    template <LongInt64 Number>
    static void ConvertToSeconds(long days, int hours, int minutes, int seconds, Number& result) noexcept
    {
        int64 total = 0;
        ConvertToSeconds(days, hours, minutes, seconds, total);
        result = total;
    }
    // The parts of the magnitude: the sign is lost, -90 is 1 minute and 30 seconds.
    static void ConvertFromSeconds(int64 total, long& days, int& hours, int& minutes, int& seconds) noexcept;

    // ---- now, in local time. If the platform cannot tell it: SetToCurrent and SetToCurrentTime set midnight
    // and keep the date, SetToCurrentDate changes nothing, the outputs are 0, and today is day number 0.
    void SetToCurrent() noexcept;
    void SetToCurrentDate() noexcept;
    void SetToCurrentTime() noexcept;
    static void GetDateNow(int& year, int& month, int& day) noexcept;
    static void GetTimeNow(int& hour, int& minute, int& second) noexcept;
    static void GetDateTimeNow(int& year, int& month, int& day, int& hour, int& minute, int& second) noexcept;
    bool IsToday() const noexcept; // false for a missing date, as the next two
    bool IsYesterday() const noexcept;
    bool IsTomorrow() const noexcept;

    // ---- as text; empty for a missing half --------------------------------------------------------------
    // As the user writes them (31.12.2025 and 14:05:09, 12/31/2025 and 2:05:09 PM); without `local`, and
    // where the platform knows no form, as 2025-12-31 and 14:05:09.
    CString ConvertDateToText(bool local = true) const;
    CString ConvertTimeToText(bool local = true) const;

    // ---- the archive. Stored: the 16-bit word 3, the day number and the second, 32 bits each, both as they
    // are.
    //   2 January 0001, 0:00:10   03 00  02 00 00 00  0A 00 00 00
    // Older records carry hour, minute and second instead of the second, in three words of 16 bits (version
    // 1) or three numbers of 32 bits (version 2); a time that does not exist loads as missing. A record of
    // any other version leaves the value as it was. Throws CArchiveException at the end of the data, the
    // value unchanged.
    void Serialize(CArchive& archive);

private:
    struct Date {
        int year = 0, month = 0, day = 0;
    };
    static constexpr int NoDay = 0;
    static constexpr int NoSecond = -1;

    static bool IsDate(int year, int month, int day) noexcept;
    static int MonthLength(int year, int month) noexcept;
    static constexpr int NumberOf(int year, int month, int day) noexcept;
    static constexpr int NumberInAutumn1582(int julianNumber, int day) noexcept;
    static constexpr Date DateOf(int number) noexcept;
    static int WeekdayByRule(const Date& date) noexcept;
    Date ReadDate() const noexcept { return IsValidDate() ? DateOf(m_nDay) : Date(); }
    int DateRank() const noexcept { return IsValidDate() ? m_nDay : 0; }
    int TimeRank() const noexcept { return IsValidTime() ? m_nSecond + 1 : 0; }
    static inline bool IsBefore(const DateTime& a, const DateTime& b) noexcept;
    static int LoweredDay(int year, int month, int day) noexcept;
    static bool MoveMonths(Date& date, int n) noexcept;

    int m_nDay = NoDay;
    int m_nSecond = NoSecond;
};

#include "DateTimeInline.h"
