// Random numbers for one test; where it fails, its seed is told.
#pragma once

#include <gtest/gtest.h>

#include <random>

class RandomSource : public std::mt19937 {
public:
    explicit RandomSource(unsigned seed = std::random_device()())
        : std::mt19937(seed), m_trace(__FILE__, __LINE__, testing::Message() << "seed " << seed)
    {
    }
    int From(int low, int high) { return std::uniform_int_distribution<>(low, high)(*this); }

private:
    testing::ScopedTrace m_trace;
};
