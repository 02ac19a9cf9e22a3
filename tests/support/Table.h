// Tables of recorded answers: tab-separated cells below one line of headings.
#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace Table {

inline std::vector<std::string> Cells(const std::string& line)
{
    std::vector<std::string> cells;
    std::istringstream stream(line + '\t');
    for (std::string cell; std::getline(stream, cell, '\t');)
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
