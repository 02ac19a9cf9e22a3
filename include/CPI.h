// CPI: pi, and the angles of a clock's hands. Angles begin at twelve o'clock and grow clockwise.
#pragma once

#include "DateTime.h"
#include "Kvt01Api.h"

class KVT01_API CPI {
public:
    static double GetPI(); // 3.141592653589793

    // The product is formed before the division: NaNs and infinities pass through, and what overflows on the
    // way is an infinity.
    static double ConvertRadiansToDegrees(double r);
    static double ConvertDegreesToRadians(double d);

    // The angle in radians after h hours (30 degrees each) or m minutes (6 degrees each), computed in double
    // and thus without wrapping for any argument. Whole turns are kept: 13 hours are 390 degrees.
    static double ConvertClockHourToRadians(unsigned int h);
    static double ConvertClockMinsToRadians(unsigned int m);

    // The angle in radians of the hour hand, moved on by minutes and seconds, and of the minute hand, moved
    // on by seconds. The hour is 0..23, so the hour hand's angle reaches almost two turns. 0.0 when the date
    // or the time of t is invalid; the date counts although no angle depends on it.
    static double ConvertHourTimeToRadians(const DateTime& t);
    static double ConvertMinsTimeToRadians(const DateTime& t);
};
