#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "CPI.h"
#include "DateTime.h"
#include "KVTDouble.h"

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double huge = std::numeric_limits<double>::max();

TEST(TolerantComparison, IsStrictAndFalseForWhatHasNoDifference)
{
    const struct {
        double a, b, tolerance;
        bool equal;
    } rows[] = {
        {1.0, 1.5, 0.5, false},
        {1.0, 1.5, 0.500001, true},
        {1.5, 1.0, 0.500001, true},
        {2.0, 2.0, 0.0, false},
        {2.0, 2.0, -1.0, false},
        {2.0, 2.0, 5e-324, true},
        {nan, nan, infinity, false},
        {1.0, 1.0, nan, false},
        {infinity, infinity, infinity, false},
        {infinity, 1.0, infinity, false},
        {huge, -huge, infinity, false},
        {huge, 0.0, infinity, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.a << ", " << row.b << " within " << row.tolerance);
        EXPECT_EQ(KVTDouble::IsEqual(row.a, row.b, row.tolerance), row.equal);
    }
    for (const double zero : {0.0, -0.0, 0.0009, -0.0009, std::nextafter(0.001, 0.0)})
        EXPECT_TRUE(KVTDouble::IsZero(zero)) << zero;
    for (const double other : {0.001, -0.001, 1.0, infinity, -infinity, nan})
        EXPECT_FALSE(KVTDouble::IsZero(other)) << other;
}

constexpr double fullTurn = 6.283185307179586;

TEST(ClockAngles, KeepWholeTurnsAndDoNotWrap)
{
    EXPECT_DOUBLE_EQ(CPI::ConvertRadiansToDegrees(fullTurn), 360);
    EXPECT_DOUBLE_EQ(CPI::ConvertDegreesToRadians(-90), -fullTurn / 4);
    EXPECT_EQ(CPI::ConvertRadiansToDegrees(-huge), -infinity);
    EXPECT_TRUE(std::isnan(CPI::ConvertDegreesToRadians(nan)));
    EXPECT_DOUBLE_EQ(CPI::ConvertClockHourToRadians(3), fullTurn / 4);
    EXPECT_DOUBLE_EQ(CPI::ConvertClockHourToRadians(13), fullTurn * 13 / 12);
    EXPECT_DOUBLE_EQ(CPI::ConvertClockHourToRadians(4294967295), fullTurn * 357913941.25);
    EXPECT_DOUBLE_EQ(CPI::ConvertClockMinsToRadians(75), fullTurn * 1.25);
    EXPECT_DOUBLE_EQ(CPI::ConvertClockMinsToRadians(4294967295), fullTurn * 71582788.25);
}

TEST(ClockAngles, OfATimeCountMinutesAndSecondsAndNeedBothHalves)
{
    const DateTime afternoon(2024, 2, 29, 13, 30, 36);
    EXPECT_DOUBLE_EQ(CPI::ConvertHourTimeToRadians(afternoon), fullTurn * 405.3 / 360);
    EXPECT_DOUBLE_EQ(CPI::ConvertMinsTimeToRadians(afternoon), fullTurn * 183.6 / 360);
    DateTime noDate(afternoon);
    noDate.SetInvalidDate();
    DateTime noTime(afternoon);
    noTime.SetInvalidTime();
    for (const DateTime& half : {noDate, noTime, DateTime()}) {
        EXPECT_EQ(CPI::ConvertHourTimeToRadians(half), 0.0);
        EXPECT_EQ(CPI::ConvertMinsTimeToRadians(half), 0.0);
    }
}

} // namespace
