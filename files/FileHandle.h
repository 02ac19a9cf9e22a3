// An open file of the platform's, closed with its owner.
#pragma once

#include <utility>

#include "platform/Platform.h"

class FileHandle {
public:
    FileHandle() = default;
    explicit FileHandle(HANDLE handle) : m_handle(handle) {}
    FileHandle(FileHandle&& other) noexcept : m_handle(std::exchange(other.m_handle, INVALID_HANDLE_VALUE)) {}
    FileHandle& operator=(FileHandle&& other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~FileHandle() { Close(); }

    bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return m_handle; }
    bool Close() // false when what was written may not have arrived; true for a closed one
    {
        const HANDLE handle = std::exchange(m_handle, INVALID_HANDLE_VALUE);
        return handle == INVALID_HANDLE_VALUE || CloseHandle(handle);
    }

private:
    HANDLE m_handle = INVALID_HANDLE_VALUE;
};
