// The runtime library's view of single bytes under the calling thread's current locale.
#pragma once

#include <array>
#include <cctype>
#include <cstdint>

namespace RuntimeText {

// What a whole table of tolower or toupper answers, fetched once for a loop over many characters.
class CaseTable {
public:
#ifdef __GLIBC__
    explicit CaseTable(const std::int32_t* table) : m_table(table) {}
#else
    explicit CaseTable(int (*convert)(int), int flip = 0) // the bits in `flip` are turned over
    {
        for (int c = 0; c < 256; ++c)
            m_table[static_cast<std::size_t>(c)] = convert(c) ^ flip;
    }
#endif
    char operator()(char c) const
    {
        return static_cast<char>(m_table[static_cast<unsigned char>(c)]);
    }

private:
#ifdef __GLIBC__
    const std::int32_t* m_table; // the runtime's own table of the current locale, indexed by the byte
#else
    std::array<int, 256> m_table;
#endif
};

#ifdef __GLIBC__
inline CaseTable Lowercase()
{
    return CaseTable(*__ctype_tolower_loc());
}
inline CaseTable Uppercase()
{
    return CaseTable(*__ctype_toupper_loc());
}
#else
inline CaseTable Lowercase()
{
    return CaseTable(std::tolower);
}
inline CaseTable Uppercase()
{
    return CaseTable(std::toupper);
}
#endif

// Whether the lower case is known to change A to Z alone, without a look at the table: so in the locale "C".
bool FoldsAsciiOnly() noexcept;

inline bool IsSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// strcasecmp, under whatever name the runtime has it; ends at the first NUL.
int CompareNoCase(const char* a, const char* b) noexcept;

// What CompareNoCase compares, as unsigned bytes: the lower case where the runtime does so too. Where it
// takes bytes of 128 and more for negative numbers, they come first, and even in front of the NUL at the end.
#ifdef __GLIBC__
inline CaseTable CaseOrder()
{
    return Lowercase();
}
#else
inline CaseTable CaseOrder()
{
    return CaseTable(std::tolower, CompareNoCase("\x80", "") < 0 ? 0x80 : 0);
}
#endif

} // namespace RuntimeText
