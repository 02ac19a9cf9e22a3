#include "framework/RuntimeText.h"

#include <clocale>

#include "platform/Platform.h"

namespace RuntimeText {

#ifdef __GLIBC__
bool FoldsAsciiOnly() noexcept
{
    static const locale_t c = newlocale(LC_ALL_MASK, "C", nullptr); // the runtime's own, nothing is made
    return c != nullptr && *__ctype_tolower_loc() == c->__ctype_tolower;
}
#else
bool FoldsAsciiOnly() noexcept
{
    return false;
}
#endif

int CompareNoCase(const char* a, const char* b) noexcept
{
    return _stricmp(a, b);
}

} // namespace RuntimeText
