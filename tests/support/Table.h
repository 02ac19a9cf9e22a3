// Tables in tests/data. Recorded answers: tab-separated cells below one line of headings.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace Table {

inline std::vector<std::string> Cells(const std::string& line, char separator = '\t')
{
    std::vector<std::string> cells;
    std::istringstream stream(line + separator);
    for (std::string cell; std::getline(stream, cell, separator);)
        cells.push_back(cell);
    return cells;
}

inline std::vector<std::vector<std::string>> Read(const std::string& name)
{
    std::ifstream file(std::string(KVT01_TEST_DATA) + '/' + name);
    std::vector<std::vector<std::string>> rows;
    std::string line;
    for (std::getline(file, line); std::getline(file, line);)
        rows.push_back(Cells(line));
    return rows;
}

// The rows of a section of value-cases.txt, their cells between '|'. A line "= name: columns" begins a
// section; one that begins with '#' explains what is below it.
inline std::vector<std::vector<std::string>> Section(const std::string& name)
{
    std::ifstream file(KVT01_TEST_DATA "/value-cases.txt");
    std::vector<std::vector<std::string>> rows;
    bool isInside = false;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("= "))
            isInside = line.starts_with("= " + name + ':');
        else if (isInside && !line.empty() && line[0] != '#')
            rows.push_back(Cells(line, '|'));
    }
    EXPECT_FALSE(rows.empty()) << name;
    return rows;
}

// The same for whole numbers only.
inline std::vector<std::vector<long long>> Numbers(const std::string& section)
{
    std::vector<std::vector<long long>> rows;
    for (const auto& cells : Section(section)) {
        rows.emplace_back();
        for (const std::string& cell : cells)
            rows.back().push_back(std::stoll(cell));
    }
    return rows;
}

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

} // namespace Table
