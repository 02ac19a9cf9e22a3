// CMemFile: a file that lies in memory. It is open from the beginning, takes any Seek and grows where it is
// written to; growth is geometric, so writing n bytes in small pieces costs O(n).
//
// Bytes of the caller's may be attached. They stay the caller's and must live as long as they are attached:
//   growBytes == 0   the file holds these bytes and never gets longer: a Write beyond them raises diskFull
//                    and writes nothing
//   growBytes > 0    the file starts empty, fills these bytes first, and moves to memory of its own when they
//                    no longer suffice
#pragma once

#include "CArchive.h"
#include "CFile.h"

class KVT01_API CMemFile : public CFile {
public:
    explicit CMemFile(std::size_t growBytes = 1024) noexcept : m_growBytes(growBytes) {} // the least growth
    CMemFile(BYTE* bytes, std::size_t count, std::size_t growBytes = 0) noexcept
    {
        Attach(bytes, count, growBytes);
    }
    ~CMemFile() override;

    void Attach(BYTE* bytes, std::size_t count, std::size_t growBytes = 0) noexcept;
    // The bytes of the file, which is empty afterwards. Attached ones go back to their owner; memory of the
    // file's own becomes the caller's, to be released with std::free.
    BYTE* Detach() noexcept;

    bool Open(const char* fileName, UINT openFlags, CFileException* error = nullptr) override; // false
    void Close() override { Release(); } // the file is empty afterwards, and can be used again
    void Abort() noexcept override { Release(); }
    std::size_t Read(void* buffer, std::size_t count) override;
    void Write(const void* buffer, std::size_t count) override;
    uint64 Seek(int64 offset, UINT from) override;
    uint64 GetPosition() const override { return m_position; }
    uint64 GetLength() const override { return m_length; }
    void SetLength(uint64 length) override;
    void Flush() override {}
    bool IsOpen() const noexcept override { return true; }

private:
    void Release() noexcept;
    void EnsureCapacity(uint64 needed);

    BYTE* m_bytes = nullptr;
    std::size_t m_capacity = 0;
    std::size_t m_length = 0;
    uint64 m_position = 0; // may lie beyond the length
    std::size_t m_growBytes = 0;
    bool m_attached = false;
};
