// Recorded answers of the original platform against those of this one.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "support/Cases.h"

namespace Agreement {

using Parts = std::vector<std::string>; // of a text that fits a pattern: what stands in its parentheses

inline bool Fits(const std::string& text, const std::string& pattern, Parts& parts)
{
    static std::map<std::string, std::regex> expressions;
    std::smatch found;
    const bool fits = std::regex_match(text, found, expressions.try_emplace(pattern, pattern).first->second);
    parts.assign(found.begin() + (fits ? 1 : 0), found.end());
    return fits;
}

// Where this platform differs, a section of cases with its name behind `exceptions` tells: the operation, a
// pattern of what, the answer here, which no other may replace, and the reason.
class Comparison {
public:
    Comparison(const std::string& name, const std::string& exceptions)
        : m_name(name), m_known(Cases<4>(exceptions + " " KVT01_PLATFORM))
    {
    }
    Comparison(const Comparison&) = delete;
    Comparison& operator=(const Comparison&) = delete;
    ~Comparison()
    {
        std::cout << m_name << ": " << m_compared << " answers compared\n";
        for (const auto& [reason, count] : m_excepted)
            std::cout << "  " << count << " excepted: " << reason << '\n';
    }

    void Check(const std::string& operation, const std::string& what, const std::string& here,
               const std::string& recorded)
    {
        ++m_compared;
        if (here == recorded)
            return;
        Parts parts;
        const auto exception = std::find_if(m_known.begin(), m_known.end(), [&](const auto& candidate) {
            return operation == candidate[0] && Fits(what, candidate[1], parts) && here == candidate[2];
        });
        if (exception != m_known.end())
            ++m_excepted[(*exception)[3]];
        else
            EXPECT_EQ(here, recorded) << operation << ' ' << what;
    }

private:
    const std::string m_name;
    const std::vector<std::array<std::string, 4>> m_known;
    int m_compared = 0;
    std::map<std::string, int> m_excepted; // by reason
};

struct Row {
    std::string operation, what, zone;
};

// Answers here the rows of the operations whose names fit a pattern; "" where it cannot be asked.
struct Question {
    const char* operations;
    std::string (*answer)(const Row& row);
};

inline void CompareFiles(const std::vector<Question>& questions)
{
    Parts parts;
    for (const char* table : {"files-answers.tsv", "files-asserted.tsv"}) {
        Comparison comparison(table, "file exceptions");
        for (const auto& cells : RecordedRows(table)) {
            const Row row = {cells[0], Unescaped(cells[1]), cells[2]};
            for (const Question& question : questions)
                if (Fits(row.operation, question.operations, parts))
                    if (const std::string here = question.answer(row); !here.empty())
                        comparison.Check(row.operation, row.what, here, Unescaped(cells[3]));
        }
    }
}

} // namespace Agreement
