// The registry of the current user on POSIX systems, under the platform's names.
//
// A key is a folder and a value a file in it that holds the text, below
// $XDG_CONFIG_HOME/kvt01/HKEY_CURRENT_USER (~/.config where that variable is not an absolute path). A line
// end at the end of a file is not part of the value, so that a person can write it with `echo`. Files keep
// mode 0600, folders 0700. A value is replaced as a whole: a reader sees the old text or the new one.
//
// The parts of a key's path stand between `\`; empty parts do not count, and letter case does. In a name '/',
// '%', NUL and, for values, '\' are written %2F, %25, %00 and %5C, a leading dot %2E, and the value without a
// name is the file `%`. No name therefore leads out of the tree or meets the temporary files. A name longer
// than 255 bytes in that form is ERROR_INVALID_PARAMETER and touches nothing. A value and a key below the
// same key cannot share a name: whichever comes second fails with ERROR_ACCESS_DENIED.
//
// Results are error numbers, 0 is success. What was read is kept in memory for at most a second; what is
// written here counts at once. Any thread may call.
#pragma once

#include "BasicTypes.h"

using LSTATUS = LONG;
using HKEY = struct RegistryKey*;
using REGSAM = DWORD;

inline const HKEY HKEY_CURRENT_USER = reinterpret_cast<HKEY>(0x80000001);

inline constexpr DWORD ERROR_MORE_DATA = 234;
inline constexpr REGSAM KEY_QUERY_VALUE = 1;
inline constexpr REGSAM KEY_SET_VALUE = 2;
inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr REGSAM KEY_WRITE = 0x20006;
inline constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

// Both give in `result` a key for RegCloseKey, on failure nullptr. Opening wants the key to exist
// (ERROR_FILE_NOT_FOUND), creating makes it and the keys above it. Class, options, access and security are
// the system's business here and ignored.
LSTATUS RegOpenKeyExA(HKEY parent, const char* path, DWORD options, REGSAM access, HKEY* result);
LSTATUS RegCreateKeyExA(HKEY parent, const char* path, DWORD reserved, char* keyClass, DWORD options,
                        REGSAM access, const void* security, HKEY* result, DWORD* disposition);
LSTATUS RegCloseKey(HKEY key);

// `size` is the room in bytes before the call and the size of the text with its NUL after it. Without `data`
// only type and size are told; a room that is too small gives ERROR_MORE_DATA and no text. A folder in the
// value's place is ERROR_FILE_NOT_FOUND, a file that may not be read ERROR_ACCESS_DENIED.
LSTATUS RegQueryValueExA(HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size);
// Only REG_SZ. `size` may count the final NUL or leave it out; further NULs are part of the text.
LSTATUS RegSetValueExA(HKEY key, const char* name, DWORD reserved, DWORD type, const BYTE* data, DWORD size);
LSTATUS RegDeleteValueA(HKEY key, const char* name);
