// Random numbers and texts for one test. A failure prints the seed; give it to the constructor to see the
// same failure again.
#pragma once

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

class RandomTexts {
public:
    explicit RandomTexts(unsigned int seed = std::random_device()())
        : m_engine(seed), m_trace("seed", 0, std::to_string(seed))
    {
    }

    std::size_t Below(std::size_t end) { return m_engine() % end; }
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
    std::mt19937& Engine() { return m_engine; }

private:
    std::mt19937 m_engine;
    testing::ScopedTrace m_trace;
};

// What stands between blanks.
inline std::vector<std::string> Words(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}
