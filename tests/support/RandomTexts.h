// Random numbers and texts for one test; where it fails, its seed is told.
#pragma once

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "support/RandomSource.h"

class RandomTexts : public RandomSource {
public:
    using RandomSource::RandomSource;

    std::size_t Below(std::size_t end) { return (*this)() % end; }
    bool OneIn(std::size_t count) { return Below(count) == 0; }
    template <class List>
    const auto& Pick(const List& list)
    {
        return list[Below(std::size(list))];
    }
    // So many characters of a string, or texts of a list, in a row.
    template <class List>
    std::string Make(const List& pieces, std::size_t count)
    {
        std::string text;
        for (; count > 0; --count)
            text += Pick(pieces);
        return text;
    }
    std::mt19937& Engine() { return *this; }
};

// What stands between blanks.
inline std::vector<std::string> Words(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}
