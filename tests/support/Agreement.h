// Recorded answers of the original platform against ours, row by row.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <regex.h>
#include <string>
#include <vector>

#include "support/Table.h"

namespace Agreement {

using Parts = std::vector<std::string>; // of a text that fits a pattern: what stands in its parentheses

inline bool Fits(const std::string& text, const char* pattern, Parts& parts)
{
    regex_t expression;
    const int failure = regcomp(&expression, ("^(" + std::string(pattern) + ")$").c_str(), REG_EXTENDED);
    EXPECT_EQ(failure, 0) << pattern;
    if (failure != 0)
        return false;
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

// Answers for us the rows of an operation.
struct Question {
    const char* operation;
    std::string (*answer)(const Row& row);
};

// Where this system differs. Another answer of ours than the one here is a failure.
struct Exception {
    const char *operation, *pattern, *ours, *reason;
};

inline void Compare(const char* table, const std::vector<Question>& questions,
                    const std::vector<Exception>& exceptions)
{
    int compared = 0, equal = 0;
    std::map<std::string, int> excepted; // by reason
    for (const auto& cells : Table::Read(table)) {
        const Row row = {cells[0], Table::Unescaped(cells[1]), cells[2]};
        const auto question =
            std::find_if(questions.begin(), questions.end(),
                         [&](const Question& candidate) { return row.operation == candidate.operation; });
        if (question == questions.end())
            continue;
        ++compared;
        const std::string ours = question->answer(row);
        const bool isEqual = ours == Table::Unescaped(cells[3]);
        equal += isEqual ? 1 : 0;
        Parts parts;
        const auto exception =
            std::find_if(exceptions.begin(), exceptions.end(), [&](const Exception& candidate) {
                return row.operation == candidate.operation && ours == candidate.ours &&
                       Fits(row.what, candidate.pattern, parts);
            });
        if (!isEqual && exception == exceptions.end())
            ADD_FAILURE() << row.operation << ' ' << row.what << ": '" << ours << "' instead of '" << cells[3]
                          << "'";
        else if (!isEqual)
            ++excepted[exception->reason];
    }
    std::cout << table << ": " << compared << " answers compared, " << equal << " equal, " << compared - equal
              << " excepted\n";
    for (const auto& [reason, count] : excepted)
        std::cout << "  " << count << ": " << reason << '\n';
    EXPECT_GT(compared, 0);
}

} // namespace Agreement
