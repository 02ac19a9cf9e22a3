// Where the system keeps a user's files, under the platform's names.
#pragma once

#include "platform/posix/PosixCodePages.h"
#include "platform/posix/PosixPlatform.h"

using HRESULT = LONG;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);

enum class KNOWNFOLDERID { LocalAppData, ProgramFiles };
inline constexpr KNOWNFOLDERID FOLDERID_LocalAppData = KNOWNFOLDERID::LocalAppData;
inline constexpr KNOWNFOLDERID FOLDERID_ProgramFiles = KNOWNFOLDERID::ProgramFiles; // E_FAIL: there is none

// The folder, which need not exist, of any length, in the wide form of CP_ACP; to be given to CoTaskMemFree.
// What programs keep for this user on this machine lies in $XDG_STATE_HOME where that is an absolute path,
// else in $HOME/.local/state. E_FAIL, and null, where the environment names none.
HRESULT SHGetKnownFolderPath(const KNOWNFOLDERID& folder, DWORD flags, HANDLE user, WCHAR** path) noexcept;
void CoTaskMemFree(void* memory) noexcept;
