#include "KVTDouble.h"

#include <cmath>

bool KVTDouble::IsEqual(double a, double b, double tolerance)
{
    return std::abs(a - b) < tolerance;
}

bool KVTDouble::IsZero(double x)
{
    return std::abs(x) < 0.001;
}
