#include "DateEntry.h"

#include "StringUtils.h"
#include "dates/WrappingArithmetic.h"

namespace {

constexpr int Sunday = 1;
constexpr int Saturday = 7;
constexpr int DaysPerWeek = 7;
constexpr int FirstRuleYear = 100;
constexpr int LastRuleYear = 9999;

bool IsWeekday(int dayOfWeek)
{
    return dayOfWeek >= Sunday && dayOfWeek <= Saturday;
}

bool IsDayOfMonth(int day)
{
    return day >= 1 && day <= 31;
}

bool IsMonth(int month)
{
    return month >= 1 && month <= 12;
}

bool IsRuleYear(int year)
{
    return year >= FirstRuleYear && year <= LastRuleYear;
}

// False when the range of dates ends here.
bool Step(DateTime& date, int days)
{
    DateTime moved = date;
    moved.AddDays(days);
    if (!moved.IsValidDate())
        return false;
    date.SetDate(moved);
    return true;
}

// In single steps, at most thirteen: where the numbering of weekdays jumps (between some centuries, and in
// 1582) the one looked for can be more than a week away.
void StepToWeekday(DateTime& date, int dayOfWeek, int days)
{
    while (date.GetDayOfWeek() != dayOfWeek && Step(date, days)) {
    }
}

} // namespace

DateEntry::~DateEntry() = default;

// ---- validity -------------------------------------------------------------------------------------------

bool DateEntry::IsValid() const
{
    if (StringUtils::IsEffectivelyEmpty(m_csDesc) || !IsMonth(m_nMonth))
        return false;
    if (m_nYear != 0 && !IsRuleYear(m_nYear))
        return false;
    return m_nBeforeAfter == 0 ? IsValidUnmoved() : IsValidMoved();
}

bool DateEntry::IsValidUnmoved() const
{
    if (m_nDay == 0)
        return IsWeekday(m_nDayOfWeek) && m_occurrence != OccurrenceNone;
    return IsDayOfMonth(m_nDay) && m_occurrence == OccurrenceNone && m_nDayOfWeek == 0;
}

bool DateEntry::IsValidMoved() const
{
    // Odd and even years send a fixed day into the test of weekday rules, where it fails: kept.
    const bool fixedDay = m_occurrence == OccurrenceNone && m_nDayOfWeek == 0 && m_yearType != YearOdd &&
                          m_yearType != YearEven;
    const bool complete =
        fixedDay ? IsDayOfMonth(m_nDay) : IsWeekday(m_nDayOfWeek) && m_occurrence != OccurrenceNone;
    return complete && m_nBeforeAfter >= -DaysPerWeek && m_nBeforeAfter <= DaysPerWeek;
}

// ---- whole rules ----------------------------------------------------------------------------------------

void DateEntry::SetRule(const CString& desc, OCCURRENCE occurrence, int day, int dayOfWeek, int month)
{
    m_csDesc = desc;
    m_occurrence = occurrence;
    m_yearType = YearEvery;
    m_bWeekDay = false;
    m_nDay = day;
    m_nDayOfWeek = dayOfWeek;
    m_nMonth = month;
    m_nYear = 0;
}

void DateEntry::SetDay(const CString& desc, int day, int month)
{
    SetRule(desc, OccurrenceNone, day, 0, month); // before/after stays as it was: kept
}

void DateEntry::SetDayOfWeek(const CString& desc, OCCURRENCE occurrence, int dayOfWeek, int month)
{
    SetBeforeAfterDayOfWeek(desc, occurrence, dayOfWeek, month, 0);
}

void DateEntry::SetBeforeAfterDay(const CString& desc, int day, int month, int beforeAfter)
{
    SetRule(desc, OccurrenceNone, day, 0, month);
    m_nBeforeAfter = beforeAfter;
}

void DateEntry::SetBeforeAfterDayOfWeek(const CString& desc, OCCURRENCE occurrence, int dayOfWeek, int month,
                                        int beforeAfter)
{
    SetRule(desc, occurrence, 0, dayOfWeek, month);
    m_nBeforeAfter = beforeAfter;
}

// ---- the rule's date ------------------------------------------------------------------------------------

void DateEntry::GetDateFor(int year, DateTime& date) const
{
    date.SetInvalidDate();
    if (m_occurrence == OccurrenceNone)
        date.SetDate(year, m_nMonth, m_nDay);
    else if (m_occurrence == OccurrenceLast)
        SetToLastOccurrence(year, date);
    else
        date.SetDate(year, m_nMonth, GetOccurrenceDate(ConvertOccurrence(m_occurrence), year));
    ApplyBeforeAfterDay(date);
}

void DateEntry::SetToLastOccurrence(int year, DateTime& date) const
{
    if (!IsWeekday(m_nDayOfWeek))
        return;
    date.SetDate(year, m_nMonth, DateTime::GetDaysInMonth(year, m_nMonth));
    if (date.IsValidDate())
        StepToWeekday(date, m_nDayOfWeek, -1);
}

int DateEntry::GetOccurrenceDate(int n, int year) const
{
    for (int day = 1; day <= DaysPerWeek; ++day) {
        if (DateTime::GetDayOfWeek(year, m_nMonth, day) != m_nDayOfWeek)
            continue;
        // Not checked for being below 1: kept, for an n below 1 answers with a day before the month.
        const int nthDay = Wrapping::Sum(Wrapping::Product(Wrapping::Sum(n, -1), DaysPerWeek), day);
        return nthDay <= DateTime::GetDaysInMonth(year, m_nMonth) ? nthDay : 0;
    }
    return 0;
}

void DateEntry::ApplyBeforeAfterDay(DateTime& date) const
{
    if (!date.IsValidDate())
        return;
    if (m_nBeforeAfter < 0 && m_nBeforeAfter >= -DaysPerWeek)
        StepToWeekday(date, -m_nBeforeAfter, -1);
    if (m_nBeforeAfter > 0 && m_nBeforeAfter <= DaysPerWeek)
        StepToWeekday(date, m_nBeforeAfter, 1);
    if (!m_bWeekDay)
        return;
    const int dayOfWeek = date.GetDayOfWeek();
    if (dayOfWeek == Sunday)
        Step(date, 1);
    else if (dayOfWeek == Saturday)
        Step(date, -1);
}

int DateEntry::ConvertOccurrence(OCCURRENCE occurrence)
{
    return occurrence >= OccurrenceFirst && occurrence <= OccurrenceSixth ? occurrence : 0;
}

// ---- whether a day is the rule's date -------------------------------------------------------------------

bool DateEntry::IsMatch(int day, int month, int year) const
{
    return IsMonthMatch(month) && IsYearMatch(year) && IsDayMatch(day, year);
}

bool DateEntry::IsMonthMatch(int month) const
{
    return IsMonth(month) && month == m_nMonth;
}

bool DateEntry::IsYearMatch(int year) const
{
    if (!IsRuleYear(year))
        return false;
    switch (m_yearType) {
    case YearEvery:
        return true;
    case YearOdd:
        return year % 2 != 0;
    case YearEven:
        return year % 2 == 0;
    case YearOnly:
        return year == m_nYear;
    case YearAndLater:
        return year >= m_nYear;
    case YearAndEarlier:
        return year <= m_nYear;
    }
    return false;
}

bool DateEntry::IsDayMatch(int day, int year) const
{
    if (!IsDayOfMonth(day))
        return false;
    DateTime date;
    GetDateFor(year, date);
    return date.IsValidDate() && date.GetDay() == day;
}
