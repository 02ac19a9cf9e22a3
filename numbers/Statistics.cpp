#include "Statistics.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <numeric>

namespace {

// The ascending order, complete: without a place for NaNs a sort could leave the array.
bool IsBelow(double a, double b)
{
    return a < b || (std::isnan(b) && !std::isnan(a));
}

// What has no int becomes the lowest one, as the processor's own conversion has it.
int TruncateToInt(double value)
{
    constexpr double beyondMinimum = -2147483649.0;
    constexpr double beyondMaximum = 2147483648.0;
    const bool hasInt = value > beyondMinimum && value < beyondMaximum;
    return hasInt ? static_cast<int>(value) : std::numeric_limits<int>::min();
}

std::size_t GetLongestRun(const std::vector<int>& sorted)
{
    std::size_t longest = 0;
    for (auto start = sorted.begin(); start != sorted.end();) {
        const auto end = std::find_if(start, sorted.end(), [start](int value) { return value != *start; });
        longest = std::max(longest, static_cast<std::size_t>(end - start));
        start = end;
    }
    return longest;
}

} // namespace

double Statistics::GetSumTotal(const std::vector<double>& sample)
{
    return std::accumulate(sample.begin(), sample.end(), 0.0);
}

double Statistics::GetSampleMean(const std::vector<double>& sample)
{
    return sample.empty() ? 0.0 : GetSumTotal(sample) / static_cast<double>(sample.size());
}

double Statistics::GetSampleMedian(const std::vector<double>& sample)
{
    if (sample.empty())
        return 0.0;
    std::vector<double> ordered = sample;
    const auto middle = ordered.begin() + std::ssize(ordered) / 2;
    std::nth_element(ordered.begin(), middle, ordered.end(), IsBelow);
    return *middle;
}

double Statistics::GetSampleStandardDeviation(const std::vector<double>& sample)
{
    if (sample.size() < 2)
        return 0.0;
    const double mean = GetSampleMean(sample);
    double squares = 0.0;
    for (const double value : sample)
        squares += (value - mean) * (value - mean);
    const double variance = squares / static_cast<double>(sample.size() - 1);
    return variance > 0.0 ? std::sqrt(variance) : 0.0;
}

int Statistics::GetSampleMode(const std::vector<double>& sample, std::size_t& count)
{
    count = 0;
    if (sample.empty())
        return 0;
    std::vector<int> sorted(sample.size());
    std::transform(sample.begin(), sample.end(), sorted.begin(), TruncateToInt);
    std::sort(sorted.begin(), sorted.end());
    const std::size_t longest = GetLongestRun(sorted);
    const auto occursMostOften = [&sorted, longest](double value) {
        const auto [first, last] = std::equal_range(sorted.begin(), sorted.end(), TruncateToInt(value));
        return static_cast<std::size_t>(last - first) == longest;
    };
    count = longest;
    return TruncateToInt(*std::find_if(sample.begin(), sample.end(), occursMostOften));
}

void Statistics::GetSampleRange(const std::vector<double>& sample, double& minimum, double& maximum)
{
    double smallest = sample.empty() ? 0.0 : sample.front();
    double largest = smallest;
    for (const double value : sample) {
        if (value < smallest || std::isnan(smallest))
            smallest = value;
        if (value > largest || std::isnan(largest))
            largest = value;
    }
    minimum = smallest;
    maximum = largest;
}

void Statistics::TrimSample(std::vector<double>& sample, std::size_t percent)
{
    if (sample.empty() || percent == 0)
        return;
    if (percent == 100) {
        sample.clear();
        return;
    }
    std::sort(sample.begin(), sample.end(), IsBelow);
    const double threshold = (1.0 - static_cast<double>(percent) / 100.0) * sample.back();
    const auto isBelowThreshold = [threshold](double value) { return !(value >= threshold); };
    const auto kept = std::find_if(sample.rbegin(), sample.rend(), isBelowThreshold);
    const auto removed = kept - sample.rbegin();
    if (2 * removed >= std::ssize(sample)) {
        sample.clear();
        return;
    }
    sample.erase(sample.end() - removed, sample.end());
    sample.erase(sample.begin(), sample.begin() + removed);
}
