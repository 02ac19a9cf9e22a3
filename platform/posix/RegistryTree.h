// The folders and files behind the registry of PosixRegistry.h.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/posix/PosixRegistry.h"

namespace RegistryTree {

enum class NameOf { Key, Value };

// The folder of HKEY_CURRENT_USER, without a separator at its end; empty when the environment names none.
std::string Root();

// A key's or a value's name as the name of a file: any bytes in, one part of a path inside the tree out.
std::string EscapedName(std::string_view name, NameOf kind);

// Adds the parts of a key's path to a folder; false when a part is too long for the file system.
bool AppendKey(std::string& folder, std::string_view path);
// Adds a value's name; false when it is too long.
bool AppendValue(std::string& path, std::string_view name);

struct Value {
    LSTATUS status;
    std::size_t length; // of the whole text
    std::string text;   // empty where the text is longer than the room for it
};

// The first two answer from memory what was asked within the last second. `Read` has room for ShortText
// bytes.
inline constexpr std::size_t ShortText = 1024;
bool HasKey(const std::string& folder);
Value Read(const std::string& path);
Value ReadFile(const std::string& path, std::size_t room);

LSTATUS CreateKey(const std::string& folder);
LSTATUS Write(const std::string& path, std::string_view text);
LSTATUS Delete(const std::string& path);

// Another number after each change made by the last three.
unsigned int Generation() noexcept;

} // namespace RegistryTree
