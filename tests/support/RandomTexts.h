// Random numbers and texts for one test; where it fails, its seed is told.
#pragma once

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "support/Picking.h"
#include "support/RandomSource.h"

class RandomTexts : public RandomSource, public Picking<RandomTexts> {
public:
    using RandomSource::RandomSource;

    std::size_t Below(std::size_t end) { return (*this)() % end; }
    bool OneIn(std::size_t count) { return Below(count) == 0; }
};

// What stands between blanks.
inline std::vector<std::string> Words(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}
