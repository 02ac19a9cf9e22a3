// KVTDouble: comparison of doubles with a tolerance.
#pragma once

#include "Kvt01Api.h"

class KVT01_API KVTDouble {
public:
    // Whether |a - b| < tolerance, the difference itself not being enough: IsEqual(1.0, 1.5, 0.5) is false.
    // Never true for a tolerance of 0 or less, for a NaN anywhere, or for two infinities of the same sign,
    // whose difference is a NaN.
    static bool IsEqual(double a, double b, double tolerance);

    // Whether |x| < 0.001. The tolerance is fixed, whatever the size of the caller's numbers: hosts count on
    // it. False for a NaN.
    static bool IsZero(double x);
};
