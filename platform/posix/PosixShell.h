// Where the system keeps a user's files, under the platform's names.
#pragma once

#include "platform/posix/PosixPlatform.h"

using HRESULT = LONG;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);
inline constexpr int CSIDL_LOCAL_APPDATA = 0x1C;

// The folder, which need not exist, in a buffer of MAX_PATH bytes. Only CSIDL_LOCAL_APPDATA, what programs
// keep for this user on this machine: $XDG_STATE_HOME where that is an absolute path, else
// $HOME/.local/state. E_INVALIDARG for others, E_FAIL where the environment names none or the path does not
// fit.
HRESULT SHGetFolderPathA(HANDLE window, int folder, HANDLE user, DWORD flags, char* path) noexcept;
