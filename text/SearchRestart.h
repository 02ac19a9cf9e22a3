// The forward scan that the searches by the tables are defined by. It compares the pattern from its start
// with the text at some place, an attempt; where the attempt stops, at a difference or after a match, the
// next one begins, there or one character further. It never goes back into text that was compared, so it
// misses occurrences that overlap an attempt which failed: "aab" in "aaab". Which ones it finds is a promise.
#pragma once

#include <array>
#include <string_view>

#include "framework/TextSearch.h"

class RestartScan {
public:
    // Where the next attempt begins, as seen from the character at which the last one stopped.
    enum class NextAttempt { AtStop, BehindStop };

    // With case by bytes, without by the lower-case table. The views must outlive the scan.
    RestartScan(std::string_view text, std::string_view pattern, bool caseSensitive, NextAttempt nextAttempt,
                std::size_t start = 0) noexcept;
    // Where the next match starts, or -1. Linear in the length of the text over all calls.
    int Next() noexcept;

private:
    std::size_t FreshAttempt(std::size_t candidate) const noexcept;
    bool Attempt() noexcept;

    std::string_view m_text;
    std::string_view m_pattern;
    const TextSearch::ByteFold& m_fold;
    std::size_t m_skipped; // by the next attempt: the character where the last one stopped
    std::size_t m_next;    // where the next attempt begins
    TextSearch::Candidates m_candidates;
    std::array<bool, 256> m_occurs{}; // in the pattern, by what a byte counts as
};
