// The tables in tests/data.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

// \xHH, \t and \\ as the characters that they stand for.
inline std::string Unescaped(const std::string& cell)
{
    std::string text;
    for (std::size_t i = 0; i < cell.size(); ++i) {
        if (cell[i] != '\\') {
            text += cell[i];
        } else if (cell[++i] == 'x') {
            text += static_cast<char>(std::stoi(cell.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            text += cell[i] == 't' ? '\t' : '\\';
        }
    }
    return text;
}

inline std::vector<std::string> CellsOf(const std::string& line, char separator)
{
    std::vector<std::string> cells;
    std::istringstream stream(line + separator);
    for (std::string cell; std::getline(stream, cell, separator);)
        cells.push_back(cell);
    return cells;
}

// Recorded answers: tab-separated cells, as they stand there, below one line of headings.
inline std::vector<std::vector<std::string>> RecordedRows(const std::string& file)
{
    std::ifstream stream(KVT01_TEST_DATA "/" + file);
    std::vector<std::vector<std::string>> rows;
    std::string line;
    for (std::getline(stream, line); std::getline(stream, line);)
        rows.push_back(CellsOf(line, '\t'));
    return rows;
}

// Hard cases: the rows of a section of text-cases.txt or value-cases.txt, their unescaped cells between '|'.
// A line "= name: columns" begins a section; one that begins with '#' explains the row below it.
inline std::vector<std::vector<std::string>> Rows(const std::string& section)
{
    std::vector<std::vector<std::string>> rows;
    bool isInside = false;
    for (const char* file : {"/text-cases.txt", "/value-cases.txt"}) {
        std::ifstream stream(KVT01_TEST_DATA + std::string(file));
        for (std::string line; std::getline(stream, line);) {
            if (line.starts_with("= "))
                isInside = line.starts_with("= " + section + ":");
            else if (isInside && !line.empty() && line[0] != '#')
                for (std::string& cell : rows.emplace_back(CellsOf(line, '|')))
                    cell = Unescaped(cell);
        }
    }
    EXPECT_TRUE(!rows.empty() || section.find("exceptions") != std::string::npos) << section;
    return rows;
}

template <std::size_t Columns>
std::vector<std::array<std::string, Columns>> Cases(const std::string& section)
{
    std::vector<std::array<std::string, Columns>> cases;
    for (const auto& row : Rows(section)) {
        EXPECT_EQ(row.size(), Columns) << section << ": " << row[0];
        std::copy_n(row.begin(), std::min(row.size(), Columns), cases.emplace_back().begin());
    }
    return cases;
}

// The same for whole numbers only.
template <class Number, std::size_t Columns>
std::vector<std::array<Number, Columns>> NumberCases(const std::string& section)
{
    std::vector<std::array<Number, Columns>> rows;
    for (const auto& cells : Cases<Columns>(section))
        std::transform(cells.begin(), cells.end(), rows.emplace_back().begin(),
                       [](const std::string& cell) { return static_cast<Number>(std::stoll(cell)); });
    return rows;
}
