#include "CPI.h"

#include "DateTime.h"

namespace {

constexpr double pi = 3.141592653589793;
constexpr double degreesPerHour = 30;
constexpr double degreesPerMinute = 6;

} // namespace

double CPI::GetPI()
{
    return pi;
}

double CPI::ConvertRadiansToDegrees(double r)
{
    return r * 180 / pi;
}

double CPI::ConvertDegreesToRadians(double d)
{
    return d * pi / 180;
}

double CPI::ConvertClockHourToRadians(unsigned int h)
{
    return ConvertDegreesToRadians(h * degreesPerHour);
}

double CPI::ConvertClockMinsToRadians(unsigned int m)
{
    return ConvertDegreesToRadians(m * degreesPerMinute);
}

double CPI::ConvertHourTimeToRadians(const DateTime& t)
{
    if (!t.IsValid())
        return 0.0;
    // Not reduced to twelve hours: hosts tell afternoon from morning by the second turn.
    const double hours = t.GetHour() + t.GetMinute() / 60.0 + t.GetSecond() / 3600.0;
    return ConvertDegreesToRadians(hours * degreesPerHour);
}

double CPI::ConvertMinsTimeToRadians(const DateTime& t)
{
    if (!t.IsValid())
        return 0.0;
    const double minutes = t.GetMinute() + t.GetSecond() / 60.0;
    return ConvertDegreesToRadians(minutes * degreesPerMinute);
}
