// COleDateTime: a moment as an OLE automation date, with a status beside it.
//
// `m_dt` counts days from 30 December 1899, midnight; its fraction is the time of day. Before that day the
// fraction still counts forward: -1.25 is 29 December 1899, 6:00. The calendar is Gregorian throughout, also
// before 1582, and reaches from 1 January 100 (-657434) to 31 December 9999 (2958465).
//
// Both fields are open: whoever writes one answers for the other.
#pragma once

#include "Kvt01Api.h"

class KVT01_API COleDateTime {
public:
    enum DateTimeStatus { error = -1, valid = 0, invalid = 1, null = 2 };

    double m_dt = 0;
    DateTimeStatus m_status = valid;

    COleDateTime() = default;           // 30 December 1899, 0:00, valid
    COleDateTime(double date) noexcept; // invalid when outside the range
    COleDateTime(int year, int month, int day, int hour, int minute, int second) noexcept; // as SetDateTime

    DateTimeStatus GetStatus() const noexcept { return m_status; }
    void SetStatus(DateTimeStatus status) noexcept { m_status = status; }

    // The status afterwards: valid, or invalid with `m_dt` unchanged when the calendar above has no such day
    // (the year below 100 or above 9999 included) or the clock no such time. SetDate means midnight, SetTime
    // the day 0.
    DateTimeStatus SetDateTime(int year, int month, int day, int hour, int minute, int second) noexcept;
    DateTimeStatus SetDate(int year, int month, int day) noexcept;
    DateTimeStatus SetTime(int hour, int minute, int second) noexcept;

    // The parts, rounded to the nearest second; -1 when the status is not valid or `m_dt` is out of range.
    // GetDayOfWeek: 1 = Sunday ... 7 = Saturday.
    int GetYear() const noexcept;
    int GetMonth() const noexcept;
    int GetDay() const noexcept;
    int GetHour() const noexcept;
    int GetMinute() const noexcept;
    int GetSecond() const noexcept;
    int GetDayOfWeek() const noexcept;

    // Equal status and equal date; the order of two dates is that of `m_dt` only from 30 December 1899 on.
    friend bool operator==(const COleDateTime& a, const COleDateTime& b) = default;
};
