#include "platform/posix/WildcardMatch.h"

#include <bitset>
#include <cstddef>

namespace {

constexpr std::size_t LongestName = 1023;

// After each character of the mask: the lengths of the fronts of the name that the mask fits so far.
using Fronts = std::bitset<LongestName + 1>;

// Right before a dot a star does not take the last dot of the name.
Fronts AfterStar(const Fronts& fronts, std::string_view name, bool isBeforeDot)
{
    const std::size_t lastDot = isBeforeDot ? name.rfind('.') : std::string_view::npos;
    Fronts after;
    bool isReached = false;
    for (std::size_t front = 0; front <= name.size(); ++front) {
        if (front != 0 && front - 1 == lastDot)
            isReached = false;
        isReached = isReached || fronts[front];
        after[front] = isReached;
    }
    return after;
}

// At a dot and at the end of the name a question mark takes nothing.
Fronts AfterQuestionMark(const Fronts& fronts, std::string_view name)
{
    Fronts after;
    for (std::size_t front = 0; front <= name.size(); ++front) {
        const bool takesNothing = front == name.size() || name[front] == '.';
        if (fronts[front])
            after.set(takesNothing ? front : front + 1);
    }
    return after;
}

Fronts AfterCharacter(const Fronts& fronts, std::string_view name, char c)
{
    Fronts after;
    for (std::size_t front = 0; front < name.size(); ++front)
        after[front + 1] = fronts[front] && name[front] == c;
    return after;
}

} // namespace

bool MatchesWildcards(std::string_view name, std::string_view mask) noexcept
{
    if (name.size() > LongestName)
        return false;
    Fronts fronts(1);
    for (std::size_t i = 0; i < mask.size() && fronts.any(); ++i) {
        const char next = i + 1 < mask.size() ? mask[i + 1] : '\0';
        const bool fitsWhole = fronts[name.size()];
        fronts = mask[i] == '*'   ? AfterStar(fronts, name, next == '.')
                 : mask[i] == '?' ? AfterQuestionMark(fronts, name)
                                  : AfterCharacter(fronts, name, mask[i]);
        // A dot before wildcards or at the end of the mask also fits the end of the name.
        if (mask[i] == '.' && fitsWhole && (next == '*' || next == '?' || next == '\0'))
            fronts.set(name.size());
    }
    return fronts[name.size()];
}
