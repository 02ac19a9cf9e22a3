#include "framework/RuntimeText.h"

#include "platform/Platform.h"

namespace RuntimeText {

int CompareNoCase(const char* a, const char* b) noexcept
{
    return _stricmp(a, b);
}

} // namespace RuntimeText
