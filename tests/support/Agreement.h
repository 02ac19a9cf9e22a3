// Recorded answers of the original platform against ours, row by row.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <regex.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Cases.h"

namespace Agreement {

using Parts = std::vector<std::string>; // of a text that fits a pattern: what stands in its parentheses

inline bool Fits(const std::string& text, const std::string& pattern, Parts& parts)
{
    regex_t expression;
    if (regcomp(&expression, ("^(" + pattern + ")$").c_str(), REG_EXTENDED) != 0)
        throw std::invalid_argument(pattern);
    regmatch_t found[10];
    const bool fits = regexec(&expression, text.c_str(), std::size(found), found, 0) == 0;
    parts.clear();
    for (std::size_t i = 2; fits && i <= expression.re_nsub; ++i) {
        const auto start = static_cast<std::size_t>(std::max(found[i].rm_so, 0));
        parts.push_back(text.substr(start, static_cast<std::size_t>(found[i].rm_eo - found[i].rm_so)));
    }
    regfree(&expression);
    return fits;
}

struct Row {
    std::string operation, what, zone;
};

// Answers for us the rows of the operations whose names fit a pattern.
struct Question {
    const char* operations;
    std::string (*answer)(const Row& row);
};

// The rows that the questions fit. Where this system differs, `exceptions` names a section of cases: the
// operation, a pattern of what, our answer, which no other may replace, and the reason.
inline void Compare(const char* table, const std::vector<Question>& questions,
                    const char* exceptions = nullptr)
{
    using Exceptions = std::vector<std::array<std::string, 4>>;
    const Exceptions known = exceptions == nullptr ? Exceptions() : Cases<4>(exceptions);
    int compared = 0;
    std::map<std::string, int> excepted; // by reason
    Parts parts;
    for (const auto& cells : RecordedRows(table)) {
        const Row row = {cells[0], Unescaped(cells[1]), cells[2]};
        for (const Question& question : questions) {
            if (!Fits(row.operation, question.operations, parts))
                continue;
            ++compared;
            const std::string ours = question.answer(row);
            const auto exception = std::find_if(known.begin(), known.end(), [&](const auto& candidate) {
                return row.operation == candidate[0] && Fits(row.what, candidate[1], parts) &&
                       ours == candidate[2];
            });
            if (ours != Unescaped(cells[3]) && exception != known.end())
                ++excepted[(*exception)[3]];
            else
                EXPECT_EQ(ours, Unescaped(cells[3])) << row.operation << ' ' << row.what;
        }
    }
    std::cout << table << ": " << compared << " answers compared\n";
    for (const auto& [reason, count] : excepted)
        std::cout << "  " << count << " excepted: " << reason << '\n';
    EXPECT_GT(compared, 0);
}

} // namespace Agreement
