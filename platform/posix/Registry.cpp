#include <algorithm>
#include <cstring>
#include <memory>

#include "platform/posix/PosixPlatform.h"
#include "platform/posix/RegistryTree.h"

struct RegistryKey {
    std::string folder;
};

namespace {

LSTATUS Status(DWORD error)
{
    return static_cast<LSTATUS>(error);
}

std::string FolderOf(HKEY key)
{
    return key == HKEY_CURRENT_USER ? RegistryTree::Root() : key == nullptr ? std::string() : key->folder;
}

// The file or folder for a name below a key; the status says why there is none.
template <class Append>
LSTATUS Locate(HKEY key, const char* name, Append append, std::string& path)
{
    path = FolderOf(key);
    if (path.empty())
        return Status(key == nullptr ? ERROR_INVALID_HANDLE : ERROR_PATH_NOT_FOUND);
    return Status(append(path, name == nullptr ? "" : name) ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER);
}

} // namespace

LSTATUS RegOpenKeyExA(HKEY parent, const char* path, DWORD, REGSAM, HKEY* result)
{
    *result = nullptr;
    auto key = std::make_unique<RegistryKey>();
    if (const LSTATUS status = Locate(parent, path, RegistryTree::AppendKey, key->folder))
        return status;
    if (!RegistryTree::HasKey(key->folder))
        return Status(ERROR_FILE_NOT_FOUND);
    *result = key.release();
    return 0;
}

LSTATUS RegCreateKeyExA(HKEY parent, const char* path, DWORD, char*, DWORD, REGSAM, const void*, HKEY* result,
                        DWORD* disposition)
{
    *result = nullptr;
    auto key = std::make_unique<RegistryKey>();
    if (const LSTATUS status = Locate(parent, path, RegistryTree::AppendKey, key->folder))
        return status;
    const bool existed = RegistryTree::HasKey(key->folder);
    if (const LSTATUS status = RegistryTree::CreateKey(key->folder))
        return status;
    if (disposition != nullptr)
        *disposition = existed ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
    *result = key.release();
    return 0;
}

LSTATUS RegCloseKey(HKEY key)
{
    if (key == nullptr)
        return Status(ERROR_INVALID_HANDLE);
    if (key != HKEY_CURRENT_USER)
        delete key;
    return 0;
}

LSTATUS RegQueryValueExA(HKEY key, const char* name, DWORD*, DWORD* type, BYTE* data, DWORD* size)
{
    if (data != nullptr && size == nullptr)
        return Status(ERROR_INVALID_PARAMETER);
    std::string path;
    if (const LSTATUS status = Locate(key, name, RegistryTree::AppendValue, path))
        return status;
    RegistryTree::Value value = RegistryTree::Read(path);
    const bool isKept = value.length == value.text.size();
    if (value.status == 0 && !isKept && data != nullptr && value.length < *size)
        value = RegistryTree::ReadFile(path, *size - 1);
    if (value.status != 0)
        return value.status;
    if (type != nullptr)
        *type = REG_SZ;
    if (size == nullptr)
        return 0;
    const DWORD room = *size;
    *size = static_cast<DWORD>(std::min<std::size_t>(value.length + 1, 0xFFFFFFFF));
    if (data == nullptr)
        return 0;
    if (room < *size)
        return Status(ERROR_MORE_DATA);
    std::memcpy(data, value.text.c_str(), *size);
    return 0;
}

LSTATUS RegSetValueExA(HKEY key, const char* name, DWORD, DWORD type, const BYTE* data, DWORD size)
{
    if (type != REG_SZ || (data == nullptr && size > 0))
        return Status(ERROR_INVALID_PARAMETER);
    std::string path;
    if (const LSTATUS status = Locate(key, name, RegistryTree::AppendValue, path))
        return status;
    std::string_view text(reinterpret_cast<const char*>(data), size);
    if (text.ends_with('\0'))
        text.remove_suffix(1);
    return RegistryTree::Write(path, text);
}

LSTATUS RegDeleteValueA(HKEY key, const char* name)
{
    std::string path;
    if (const LSTATUS status = Locate(key, name, RegistryTree::AppendValue, path))
        return status;
    return RegistryTree::Delete(path);
}
