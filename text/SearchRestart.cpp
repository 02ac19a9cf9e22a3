#include "text/SearchRestart.h"

#include <algorithm>

using TextSearch::ByteFold;

namespace {

// The lower-case table for characters from strings: all bytes of 128 or more count as 0.
constexpr ByteFold LowercaseTable([](unsigned int byte) {
    const bool isUpper = byte >= 'A' && byte <= 'Z';
    return byte > 127 ? 0 : isUpper ? byte + ('a' - 'A') : byte;
});

} // namespace

RestartScan::RestartScan(std::string_view text, std::string_view pattern, bool caseSensitive,
                         NextAttempt nextAttempt, std::size_t start) noexcept
    : m_text(text), m_pattern(pattern), m_fold(caseSensitive ? TextSearch::Exact : LowercaseTable),
      m_skipped(nextAttempt == NextAttempt::BehindStop ? 1 : 0), m_next(start),
      m_candidates(text, pattern, m_fold)
{
    for (const char c : pattern)
        m_occurs[m_fold(c)] = true;
}

// All matches are candidates, so attempts are needed only around those. A text character that occurs nowhere
// in the pattern stops every attempt, so the first attempt that matters begins behind the last one of them.
int RestartScan::Next() noexcept
{
    auto candidate = m_candidates.Next(m_next);
    for (; candidate != TextSearch::None; candidate = m_candidates.Next(m_next)) {
        m_next = FreshAttempt(candidate);
        while (m_next <= candidate) {
            const std::size_t start = m_next;
            if (Attempt())
                return static_cast<int>(start);
        }
    }
    return -1;
}

std::size_t RestartScan::FreshAttempt(std::size_t candidate) const noexcept
{
    while (candidate > m_next && m_occurs[m_fold(m_text[candidate - 1])])
        --candidate;
    return candidate;
}

// One attempt at m_next, which moves to the start of the one after; whether it was a match.
bool RestartScan::Attempt() noexcept
{
    const std::size_t end = std::min(m_text.size() - m_next, m_pattern.size());
    std::size_t matched = 0;
    while (matched < end && m_fold(m_text[m_next + matched]) == m_fold(m_pattern[matched]))
        ++matched;
    m_next += std::max<std::size_t>(matched + m_skipped, 1);
    return matched == m_pattern.size();
}
