#include "platform/posix/PosixShell.h"

#include <cstdlib>
#include <string_view>

namespace {

const char* AbsolutePathIn(const char* variable) noexcept
{
    const char* const path = std::getenv(variable);
    return path != nullptr && path[0] == '/' ? path : nullptr;
}

int PutWide(std::string_view text, WCHAR* room) noexcept
{
    const auto length = static_cast<int>(text.size());
    return MultiByteToWideChar(CP_ACP, 0, text.data(), length, room, length);
}

} // namespace

HRESULT SHGetKnownFolderPath(const KNOWNFOLDERID& folder, DWORD, HANDLE, WCHAR** path) noexcept
{
    *path = nullptr;
    if (folder != FOLDERID_LocalAppData)
        return E_FAIL;
    const char* const state = AbsolutePathIn("XDG_STATE_HOME");
    const char* const base = state != nullptr ? state : AbsolutePathIn("HOME");
    if (base == nullptr)
        return E_FAIL;
    const std::string_view front(base);
    const std::string_view back(state != nullptr ? "" : "/.local/state");
    auto* const wide = static_cast<WCHAR*>(std::malloc((front.size() + back.size() + 1) * sizeof(WCHAR)));
    if (wide == nullptr)
        return E_OUTOFMEMORY;
    WCHAR* const middle = wide + PutWide(front, wide);
    middle[PutWide(back, middle)] = 0;
    *path = wide;
    return S_OK;
}

void CoTaskMemFree(void* memory) noexcept
{
    std::free(memory);
}
