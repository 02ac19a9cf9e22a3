// What a source of choices makes of its Below(end), which gives a number from 0 on.
#pragma once

#include <cstddef>
#include <iterator>
#include <string>

template <class Source>
class Picking {
public:
    template <class List>
    const auto& Pick(const List& list)
    {
        return list[static_cast<Source*>(this)->Below(std::size(list))];
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
};
