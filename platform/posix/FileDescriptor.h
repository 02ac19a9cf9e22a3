// A descriptor that is closed with its owner.
#pragma once

#include <unistd.h>
#include <utility>

class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor = -1) noexcept : m_descriptor(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_descriptor(other.Release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~FileDescriptor()
    {
        if (IsOpen())
            close(m_descriptor);
    }

    bool IsOpen() const noexcept { return m_descriptor >= 0; }
    int Get() const noexcept { return m_descriptor; }
    int Release() noexcept { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor;
};
