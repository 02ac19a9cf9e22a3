#include "CMemFile.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

CMemFile::~CMemFile()
{
    Release();
}

void CMemFile::Release() noexcept
{
    if (!m_attached)
        std::free(m_bytes);
    m_bytes = nullptr;
    m_capacity = m_length = 0;
    m_position = 0;
    m_attached = false;
}

void CMemFile::Attach(BYTE* bytes, std::size_t count, std::size_t growBytes) noexcept
{
    Release();
    m_bytes = bytes;
    m_capacity = bytes == nullptr ? 0 : count;
    m_growBytes = growBytes;
    m_length = growBytes == 0 ? m_capacity : 0;
    m_attached = true;
}

BYTE* CMemFile::Detach() noexcept
{
    BYTE* const bytes = m_bytes;
    m_attached = true; // whoever asked for them has them now
    Release();
    return bytes;
}

bool CMemFile::Open(const char*, UINT, CFileException* error)
{
    if (error != nullptr)
        *error = CFileException(CFileException::genericException);
    return false;
}

// Doubles at least, so that n bytes in small pieces cost O(n) moves; room that is not used costs no memory
// yet.
void CMemFile::EnsureCapacity(uint64 needed)
{
    if (needed <= m_capacity)
        return;
    if (m_growBytes == 0)
        throw CFileException(CFileException::diskFull);
    if (needed > static_cast<uint64>(PTRDIFF_MAX))
        throw std::bad_alloc();
    const std::size_t least =
        m_capacity + std::max(m_capacity, std::min<std::size_t>(m_growBytes, PTRDIFF_MAX));
    const std::size_t capacity = std::max(static_cast<std::size_t>(needed), least);
    void* const memory = std::realloc(m_attached ? nullptr : m_bytes, capacity);
    if (memory == nullptr)
        throw std::bad_alloc();
    if (m_attached && m_length > 0)
        std::memcpy(memory, m_bytes, m_length);
    m_bytes = static_cast<BYTE*>(memory);
    m_capacity = capacity;
    m_attached = false;
}

std::size_t CMemFile::Read(void* buffer, std::size_t count)
{
    if (m_position >= m_length)
        return 0;
    const auto position = static_cast<std::size_t>(m_position);
    count = std::min(count, m_length - position);
    if (count > 0)
        std::memcpy(buffer, m_bytes + position, count);
    m_position += count;
    return count;
}

void CMemFile::Write(const void* buffer, std::size_t count)
{
    if (count == 0)
        return;
    if (count > static_cast<uint64>(PTRDIFF_MAX)) // with a position that is no more, the sum cannot overflow
        throw std::bad_alloc();
    EnsureCapacity(m_position + count);
    const auto position = static_cast<std::size_t>(m_position);
    if (position > m_length)
        std::memset(m_bytes + m_length, 0, position - m_length);
    std::memcpy(m_bytes + position, buffer, count);
    m_position += count;
    m_length = std::max(m_length, position + count);
}

uint64 CMemFile::Seek(int64 offset, UINT from)
{
    const uint64 origin = from == begin ? 0 : from == current ? m_position : m_length;
    const uint64 target = origin + static_cast<uint64>(offset);
    if (target > static_cast<uint64>(INT64_MAX)) // below 0, or too far
        throw CFileException(CFileException::badSeek);
    m_position = target;
    return m_position;
}

void CMemFile::SetLength(uint64 length)
{
    EnsureCapacity(length);
    const auto wanted = static_cast<std::size_t>(length);
    if (wanted > m_length)
        std::memset(m_bytes + m_length, 0, wanted - m_length);
    m_length = wanted;
    m_position = length;
}
