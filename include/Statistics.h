// Statistics: descriptive statistics of a sample of doubles.
//
// An empty sample gives 0 everywhere. Sums, means and deviations follow the floating-point rules for
// infinities and NaNs. Where values are put in order, every NaN comes after all numbers.
#pragma once

#include <cstddef>
#include <vector>

#include "Kvt01Api.h"

class KVT01_API Statistics {
public:
    // Added from the first value to the last.
    static double GetSumTotal(const std::vector<double>& sample);
    static double GetSampleMean(const std::vector<double>& sample);

    // The value at index count / 2 of the ascending order: of an even count the upper of the two middle
    // values, never their mean. 1, 2, 3, 4 -> 3. Linear time.
    static double GetSampleMedian(const std::vector<double>& sample);

    // With the divisor count - 1. 0 for fewer than two values, and where the quotient under the root is not
    // positive; that includes a NaN, so a sample with a NaN or an infinity gives 0.
    static double GetSampleStandardDeviation(const std::vector<double>& sample);

    // The most frequent value and how often it occurs, all values being cut toward zero to an int first; of
    // equally frequent ones the one met first: 1.9, 1.2, 2.0, 2.5 -> 1, count 2. What has no int (a NaN, an
    // infinity, a value outside the int range) counts as -2147483648. n log n.
    static int GetSampleMode(const std::vector<double>& sample, std::size_t& count);

    // The smallest and the largest value. NaNs are passed over; with nothing else both are NaN.
    static void GetSampleRange(const std::vector<double>& sample, double& minimum, double& maximum);

    // Sorts the sample and takes off the values that are at least (1 - percent / 100) x its largest one, and
    // as many from the bottom; where that is half the sample or more, nothing remains. The threshold is
    // relative to the largest value, not to the count: 1 .. 10 and 20 percent leave 4 .. 7, and a sample that
    // has only negative values keeps all of them. A sample with a NaN is only sorted. 0 percent changes
    // nothing, 100 empties the sample; above 100 the rule is the same, with a threshold of the opposite sign.
    static void TrimSample(std::vector<double>& sample, std::size_t percent);
};
