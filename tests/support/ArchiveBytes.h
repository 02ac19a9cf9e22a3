// What tests of archives share: bytes as hexadecimal text, and what an operation stores or loads.
#pragma once

#include <cctype>
#include <cstdio>
#include <string>

#include "CArchive.h"
#include "CMemFile.h"

// "0400 0102" -> the bytes 4, 0, 1, 2; blanks stand where they help the reader.
inline std::string BytesOf(const std::string& hex)
{
    std::string digits;
    for (const char c : hex)
        if (std::isxdigit(static_cast<unsigned char>(c)))
            digits += c;
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    return bytes;
}

inline std::string HexOf(const std::string& bytes)
{
    std::string hex;
    for (const char c : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
        hex += digits;
    }
    return hex;
}

inline std::string ContentOf(CMemFile& file)
{
    std::string bytes(static_cast<std::size_t>(file.GetLength()), '\0');
    file.SeekToBegin();
    bytes.resize(file.Read(bytes.data(), bytes.size()));
    return bytes;
}

template <class Store>
std::string StoredBy(Store store, int bufferSize = 4096)
{
    CMemFile file;
    CArchive archive(&file, CArchive::store, bufferSize);
    store(archive);
    archive.Close();
    return ContentOf(file);
}

template <class Transfer>
void LoadFrom(std::string bytes, Transfer load, int bufferSize = 4096)
{
    CMemFile file(reinterpret_cast<BYTE*>(bytes.data()), bytes.size());
    CArchive archive(&file, CArchive::load, bufferSize);
    load(archive);
}

// The record of a value, and a value from its record.
template <class Value>
std::string StoredBytesOf(Value& value)
{
    return StoredBy([&](CArchive& archive) { value.Serialize(archive); });
}

template <class Value>
void Load(Value& value, const std::string& bytes)
{
    LoadFrom(bytes, [&](CArchive& archive) { value.Serialize(archive); });
}
