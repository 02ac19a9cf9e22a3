#include "platform/posix/WildcardMatch.h"

#include <cstddef>

namespace {

// A walk of a mask along a name, that can go back to the last `*`. Going back no further is enough: the
// earliest place where the part between two stars fits leaves the most room for what follows.
class Walk {
public:
    Walk(std::string_view name, std::string_view mask) noexcept
        : m_name(name), m_mask(mask), m_lastDot(name.rfind('.'))
    {
    }

    bool Matches() noexcept
    {
        while (m_inMask < m_mask.size() || m_inName < m_name.size())
            if (!Step() && !TakeOneMoreByStar())
                return false;
        return true;
    }

private:
    bool IsAtEnd() const noexcept { return m_inName == m_name.size(); }
    bool IsNameAt(char c) const noexcept { return !IsAtEnd() && m_name[m_inName] == c; }

    // One character of the mask.
    bool Step() noexcept
    {
        if (m_inMask == m_mask.size())
            return false;
        const char c = m_mask[m_inMask];
        if (c == '*') {
            m_afterStar = m_inMask + 1;
            m_resume = m_inName;
        } else if (c == '?') {
            m_inName += IsAtEnd() || IsNameAt('.') ? 0 : 1;
        } else if (IsNameAt(c)) {
            ++m_inName;
        } else if (c != '.' || !IsAtEnd() || !IsOptionalDot()) {
            return false;
        }
        ++m_inMask;
        return true;
    }

    // Before wildcards or at the end of the mask.
    bool IsOptionalDot() const noexcept
    {
        const std::size_t next = m_inMask + 1;
        return next == m_mask.size() || m_mask[next] == '*' || m_mask[next] == '?';
    }

    bool TakeOneMoreByStar() noexcept
    {
        if (m_afterStar == 0 || m_resume == m_name.size())
            return false;
        const bool isBeforeDot = m_afterStar < m_mask.size() && m_mask[m_afterStar] == '.';
        if (isBeforeDot && m_resume == m_lastDot)
            return false;
        m_inName = ++m_resume;
        m_inMask = m_afterStar;
        return true;
    }

    const std::string_view m_name;
    const std::string_view m_mask;
    const std::size_t m_lastDot;
    std::size_t m_inName = 0;
    std::size_t m_inMask = 0;
    std::size_t m_afterStar = 0; // in the mask; 0 before the first star
    std::size_t m_resume = 0;    // in the name: what that star does not take
};

} // namespace

bool MatchesWildcards(std::string_view name, std::string_view mask) noexcept
{
    return Walk(name, mask).Matches();
}
