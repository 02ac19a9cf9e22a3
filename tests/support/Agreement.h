// Recorded answers of the original platform against ours, row by row.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "support/Table.h"

namespace Agreement {

using Parts = std::vector<std::string>; // of a text that fits a pattern: what stands in its parentheses

inline bool Fits(const std::string& text, const char* pattern, Parts& parts)
{
    static std::map<std::string, std::regex> made;
    std::smatch match;
    if (!std::regex_match(text, match, made.try_emplace(pattern, pattern).first->second))
        return false;
    parts.assign(std::next(match.begin()), match.end());
    return true;
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
