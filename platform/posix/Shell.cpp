#include <cstdio>
#include <cstdlib>

#include "platform/posix/PosixPlatform.h"

namespace {

const char* AbsolutePathIn(const char* variable) noexcept
{
    const char* const path = std::getenv(variable);
    return path != nullptr && path[0] == '/' ? path : nullptr;
}

} // namespace

HRESULT SHGetFolderPathA(HANDLE, int folder, HANDLE, DWORD, char* path) noexcept
{
    path[0] = '\0';
    if (folder != CSIDL_LOCAL_APPDATA)
        return E_INVALIDARG;
    const char* const state = AbsolutePathIn("XDG_STATE_HOME");
    const char* const home = AbsolutePathIn("HOME");
    if (state == nullptr && home == nullptr)
        return E_FAIL;
    const int length = state != nullptr ? std::snprintf(path, MAX_PATH, "%s", state)
                                        : std::snprintf(path, MAX_PATH, "%s/.local/state", home);
    if (length < MAX_PATH)
        return S_OK;
    path[0] = '\0';
    return E_FAIL;
}
