// What a target tries, chosen by the bytes of its input. When they are used up, every choice is the first
// one, so that a shorter input tries something smaller.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "tests/support/Picking.h"

class Choices : public Picking<Choices> {
public:
    explicit Choices(std::string_view bytes) : m_rest(bytes) {}

    std::size_t Below(std::size_t end)
    {
        std::size_t number = 0;
        for (std::size_t reach = 1; reach < end && !m_rest.empty(); reach *= 256, m_rest.remove_prefix(1))
            number = number * 256 + static_cast<unsigned char>(m_rest.front());
        return number % end;
    }
    bool OneIn(std::size_t count) { return Below(count) == count - 1; }
    bool Flag() { return OneIn(2); }
    bool AreLeft() const { return !m_rest.empty(); }
    std::string Rest() { return std::string(std::exchange(m_rest, {})); }

private:
    std::string_view m_rest;
};
