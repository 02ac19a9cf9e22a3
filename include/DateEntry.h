// DateEntry: a rule for a date that comes back every year, with a description and an identifier of the
// caller's.
//
// The rule is a fixed day of a month, or the n-th or last of a weekday in a month. Either may be moved to the
// nearest given weekday on or before it, or on or after it, and then off a weekend. A year filter says where
// it applies. Weekdays are those of DateTime::GetDayOfWeek, 1 = Sunday ... 7 = Saturday, and so are their
// oddities.
//
// Nothing is checked when it is set: IsValid tells. A rule that makes no sense gives no date. Nothing throws
// but Serialize and, for want of memory, what stores a description. Every operation takes constant time.
#pragma once

#include "CString.h"
#include "DateTime.h"
#include "Kvt01Api.h"

class CArchive;

class KVT01_API DateEntry {
public:
    // The numbers are stored in archives.
    enum OCCURRENCE : int {
        OccurrenceNone = 0, // no weekday rule: a fixed day
        OccurrenceFirst = 1,
        OccurrenceSecond = 2,
        OccurrenceThird = 3,
        OccurrenceFourth = 4,
        OccurrenceFifth = 5,
        OccurrenceSixth = 6, // no month has it
        OccurrenceLast = 7
    };
    enum YEARTYPE : int {
        YearEvery = 0,
        YearOdd = 1,
        YearEven = 2,
        YearOnly = 3,       // the reference year
        YearAndLater = 4,   // the reference year and all after it
        YearAndEarlier = 5, // the reference year and all before it
    };

    DateEntry() = default; // every field 0, false or empty, the ID -1: not a valid rule
    virtual ~DateEntry();
    DateEntry(const DateEntry&) = default;
    DateEntry(DateEntry&&) = default;
    DateEntry& operator=(const DateEntry&) = default;
    DateEntry& operator=(DateEntry&&) = default;

    // ---- the archive. Stored: the 16-bit word 1, then occurrence, year type (32 bits each), weekend flag
    // (16-bit word 1 or 0), day, day of week, before/after, month, year, ID (32 bits each), and the
    // description. A record of another version leaves the rule as it was. Throws CArchiveException at the end
    // of the data, the rule unchanged.
    //   the Monday on or before 24 May, "Queen", ID 7:
    //   01 00  00 00 00 00  00 00 00 00  00 00  18 00 00 00  00 00 00 00  FE FF FF FF  05 00 00 00  00 00 00
    //   00 07 00 00 00  05 51 75 65 65 6E
    virtual void Serialize(CArchive& archive);

    // Whether the fields make a rule: a description that is not blank, month 1..12, year 0 or 100..9999, and
    // either a day 1..31 or an occurrence with a day of week 1..7, but not both; before/after -7..7. Two
    // departures, both kept: with a before/after, day and day of week may both be set if an occurrence is;
    // and a fixed day with a before/after is refused when the year type is odd or even years.
    virtual bool IsValid() const;

    // ---- whole rules: what is not named here becomes 0 or false; the ID always stays --------------------
    void SetDay(const CString& desc, int day, int month); // before/after stays too, which hosts rely on
    void SetDayOfWeek(const CString& desc, OCCURRENCE occurrence, int dayOfWeek, int month);
    void SetBeforeAfterDay(const CString& desc, int day, int month, int beforeAfter);
    void SetBeforeAfterDayOfWeek(const CString& desc, OCCURRENCE occurrence, int dayOfWeek, int month,
                                 int beforeAfter);

    // ---- single fields ----------------------------------------------------------------------------------
    void SetOccurrence(OCCURRENCE occurrence) { m_occurrence = occurrence; }
    OCCURRENCE GetOccurrence() const { return m_occurrence; }
    void SetYearType(YEARTYPE yearType) { m_yearType = yearType; }
    YEARTYPE GetYearType() const { return m_yearType; }
    void SetWeekDay(bool weekDay) { m_bWeekDay = weekDay; } // a Saturday moves to Friday, a Sunday to Monday
    bool GetWeekDay() const { return m_bWeekDay; }
    void SetDay(int day) { m_nDay = day; }
    int GetDay() const { return m_nDay; }
    void SetDayOfWeek(int dayOfWeek) { m_nDayOfWeek = dayOfWeek; }
    int GetDayOfWeek() const { return m_nDayOfWeek; }
    void SetBeforeAfterDayOfWeek(int beforeAfter)
    {
        m_nBeforeAfter = beforeAfter;
    } // -7..-1 back to it, 1..7 on to it
    int GetBeforeAfterDayOfWeek() const { return m_nBeforeAfter; }
    void SetMonth(int month) { m_nMonth = month; }
    int GetMonth() const { return m_nMonth; }
    void SetYear(int year) { m_nYear = year; } // the reference year of the filter
    int GetYear() const { return m_nYear; }
    void SetID(int id) { m_nID = id; }
    int GetID() const { return m_nID; }
    void SetDesc(const CString& desc) { m_csDesc = desc; }
    const CString& GetDesc() const { return m_csDesc; }

    // ---- the rule's date --------------------------------------------------------------------------------
    // The date half is missing afterwards when the year has no such date (30 February, a fifth Friday, an
    // unknown weekday or occurrence); the time half stays. The year filter is not asked.
    void GetDateFor(int year, DateTime& date) const;
    // The day of the month of the n-th of the rule's weekday in its month; 0 if the month or the week has
    // none. It is the day of the first plus 7 for each further one, in 32 bits that wrap, and 0 only when
    // that is above the month's length: n below 1 gives a number of 0 or less.
    int GetOccurrenceDate(int n, int year) const;
    // Moves a date by before/after, then off the weekend. A step that would leave the range of dates is not
    // made; a missing date stays missing, and a before/after beyond -7..7 moves nothing.
    void ApplyBeforeAfterDay(DateTime& date) const;
    static int ConvertOccurrence(OCCURRENCE occurrence); // 1..6; 0 for every other value

    // ---- whether a day is the rule's date ---------------------------------------------------------------
    // All three parts match. The month is that of the rule, not of the date: what before/after moves into the
    // next month is matched by the rule's month with the moved day.
    bool IsMatch(int day, int month, int year) const;
    bool IsMonthMatch(int month) const;
    bool IsYearMatch(int year) const; // years 100..9999 only
    bool IsDayMatch(int day, int year) const;

private:
    bool IsValidUnmoved() const;
    bool IsValidMoved() const;
    void SetRule(const CString& desc, OCCURRENCE occurrence, int day, int dayOfWeek, int month);
    void SetToLastOccurrence(int year, DateTime& date) const;

    OCCURRENCE m_occurrence = OccurrenceNone;
    YEARTYPE m_yearType = YearEvery;
    bool m_bWeekDay = false;
    int m_nDay = 0;
    int m_nDayOfWeek = 0;
    int m_nBeforeAfter = 0;
    int m_nMonth = 0;
    int m_nYear = 0;
    int m_nID = -1;
    CString m_csDesc;
};
