// Hard cases as rows of tests/data/text-cases.txt: cells between '|', with the escapes of Table::Unescaped. A
// line
// "= name: columns" begins a section; one that begins with '#' explains the row below it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "support/Table.h"

template <std::size_t Columns>
std::array<std::string, Columns> CaseOf(const std::string& line)
{
    EXPECT_EQ(static_cast<std::size_t>(std::count(line.begin(), line.end(), '|')), Columns - 1) << line;
    std::array<std::string, Columns> cells;
    std::istringstream stream(line);
    for (std::string& cell : cells) {
        std::getline(stream, cell, '|');
        cell = Table::Unescaped(cell);
    }
    return cells;
}

template <std::size_t Columns>
std::vector<std::array<std::string, Columns>> Cases(const std::string& section)
{
    std::ifstream file(KVT01_TEST_DATA "/text-cases.txt");
    std::vector<std::array<std::string, Columns>> cases;
    bool isInside = false;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("= "))
            isInside = line.starts_with("= " + section + ":");
        else if (isInside && !line.empty() && line[0] != '#')
            cases.push_back(CaseOf<Columns>(line));
    }
    EXPECT_FALSE(cases.empty()) << section;
    return cases;
}
