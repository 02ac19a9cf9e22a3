#include "Regional.h"

#include "Terminal.h"

namespace {

CString TwoDigits(int number, bool leadingZero)
{
    return NumberTextConv::NumberToString(number, false, leadingZero ? 2 : 1, "0");
}

} // namespace

CString Regional::Date(const DateTime& moment)
{
    unsigned int dayAt = 0;
    unsigned int monthAt = 0;
    unsigned int yearAt = 0;
    LocaleUtils::GetDateOrdering(dayAt, monthAt, yearAt);
    CString parts[3];
    parts[dayAt] = TwoDigits(moment.GetDay(), LocaleUtils::GetDayHasLeadingZero());
    parts[monthAt] = TwoDigits(moment.GetMonth(), LocaleUtils::GetMonthHasLeadingZero());
    parts[yearAt] = LocaleUtils::GetFullYearDisplay() ? NumberTextConv::NumberToString(moment.GetYear())
                                                      : TwoDigits(moment.GetYear() % 100, true);
    const CString separator = LocaleUtils::GetDateSeparator();
    return ForTerminal(parts[0] + separator + parts[1] + separator + parts[2]);
}

CString Regional::Time(const DateTime& moment)
{
    bool markerFirst = false;
    const bool is12Hour = LocaleUtils::Get12HourTime(markerFirst);
    const int hour = moment.GetHour();
    const int shown = is12Hour ? (hour + 11) % 12 + 1 : hour;
    const CString time = TwoDigits(shown, LocaleUtils::GetHourHasLeadingZero()) +
                         LocaleUtils::GetTimeSeparator() + TwoDigits(moment.GetMinute(), true);
    if (!is12Hour)
        return ForTerminal(time);
    const CString marker = hour < 12 ? LocaleUtils::GetTimeAM() : LocaleUtils::GetTimePM();
    return ForTerminal(markerFirst ? marker + " " + time : time + " " + marker);
}

CString Regional::Count(uint64 number)
{
    return ForTerminal(NumberTextConv::NumberToString(number, true));
}
