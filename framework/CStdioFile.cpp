#include "CStdioFile.h"

#include <algorithm>
#include <exception>

namespace {

constexpr std::size_t BufferSize = 1 << 16;

} // namespace

// ---- opening and closing --------------------------------------------------------------------------------

CStdioFile::CStdioFile(const char* fileName, UINT openFlags)
{
    CFileException error;
    if (!CStdioFile::Open(fileName, openFlags, &error))
        throw error;
}

CStdioFile::~CStdioFile()
{
    try {
        CStdioFile::Close();
    } catch (const std::exception&) {
        CStdioFile::Abort(); // a destructor cannot say so; whoever needs to know calls Close
    }
}

bool CStdioFile::Open(const char* fileName, UINT openFlags, CFileException* error)
{
    try {
        Close();
    } catch (const CFileException& notWritten) {
        Abort();
        if (error != nullptr)
            *error = notWritten;
        return false;
    }
    m_isText = (openFlags & typeBinary) == 0;
    return CFile::Open(fileName, openFlags, error);
}

void CStdioFile::Close()
{
    WriteOut();
    m_begin = m_end = 0;
    CFile::Close();
}

void CStdioFile::Abort() noexcept
{
    m_begin = m_end = m_pending = 0;
    CFile::Abort();
}

// ---- the buffer -----------------------------------------------------------------------------------------

std::string_view CStdioFile::Unread() const noexcept
{
    return {m_buffer.get() + m_begin, m_end - m_begin};
}

void CStdioFile::Take(std::size_t count) noexcept
{
    m_begin += count;
}

// Reads on behind what is unread, of which at most one byte may be left; false at the end of the file.
bool CStdioFile::Fill()
{
    RequireOpen();
    WriteOut();
    if (!m_buffer)
        m_buffer.reset(new char[BufferSize]);
    const std::size_t kept = Unread().size();
    if (kept > 0)
        m_buffer[0] = m_buffer[m_begin];
    m_begin = 0;
    m_end = kept;
    m_end += CFile::Read(m_buffer.get() + kept, BufferSize - kept);
    return m_end > kept;
}

// The bytes to be written are in the file afterwards, or dropped if that fails: they are not tried twice.
void CStdioFile::WriteOut()
{
    const std::size_t count = m_pending;
    m_pending = 0;
    if (count > 0)
        CFile::Write(m_buffer.get(), count);
}

// What was read ahead is forgotten, and the file stands where the reader is.
void CStdioFile::LeaveReading()
{
    const auto unread = static_cast<int64>(m_end - m_begin);
    m_begin = m_end = 0;
    if (unread > 0)
        CFile::Seek(-unread, current);
}

void CStdioFile::Put(std::string_view bytes)
{
    while (!bytes.empty()) {
        if (m_pending == BufferSize)
            WriteOut();
        const std::size_t count = bytes.copy(m_buffer.get() + m_pending, BufferSize - m_pending);
        m_pending += count;
        bytes.remove_prefix(count);
    }
}

// ---- reading --------------------------------------------------------------------------------------------

bool CStdioFile::ReadString(CString& line)
{
    line.Truncate(0); // its room is used again
    bool isAny = false;
    while (!Unread().empty() || Fill()) {
        isAny = true;
        const std::string_view unread = Unread();
        const auto lineEnd = unread.find('\n');
        const std::string_view piece = unread.substr(0, lineEnd);
        line += piece;
        Take(piece.size());
        if (lineEnd == std::string_view::npos)
            continue;
        Take(1);
        // The CR may have come with an earlier piece.
        if (m_isText && line[line.GetLength() - 1] == '\r')
            line.Truncate(line.GetLength() - 1);
        break;
    }
    return isAny;
}

char* CStdioFile::ReadString(char* line, UINT size)
{
    UINT length = 0;
    bool isEnded = size == 0;
    while (!isEnded && length + 1 < size && Read(line + length, 1) == 1)
        isEnded = line[length++] == '\n';
    if (size > 0)
        line[length] = '\0';
    return length > 0 ? line : nullptr;
}

// Whether the byte in front of the unread is a CR that an LF follows.
bool CStdioFile::DropCarriageReturn()
{
    const bool isDropped =
        Unread().starts_with("\r\n") || (Unread() == "\r" && Fill() && Unread()[1] == '\n');
    if (isDropped)
        Take(1);
    return isDropped;
}

std::size_t CStdioFile::Read(void* buffer, std::size_t count)
{
    auto* const to = static_cast<char*>(buffer);
    std::size_t done = 0;
    while (done < count && (!Unread().empty() || Fill())) {
        if (m_isText && Unread().front() == '\r' && DropCarriageReturn())
            continue;
        // Up to the next CR, but past one that stands here and stays.
        const auto stop = m_isText ? Unread().find('\r', 1) : std::string_view::npos;
        const std::size_t taken = Unread().substr(0, stop).copy(to + done, count - done);
        Take(taken);
        done += taken;
    }
    return done;
}

// ---- writing --------------------------------------------------------------------------------------------

void CStdioFile::WriteText(std::string_view text)
{
    Write(text.data(), text.size());
}

void CStdioFile::Write(const void* buffer, std::size_t count)
{
    RequireOpen();
    LeaveReading();
    if (!m_buffer)
        m_buffer.reset(new char[BufferSize]);
    std::string_view text(static_cast<const char*>(buffer), count);
    while (m_isText && !text.empty()) {
        const auto lineEnd = text.find('\n');
        if (lineEnd == std::string_view::npos)
            break;
        Put(text.substr(0, lineEnd));
        Put("\r\n");
        text.remove_prefix(lineEnd + 1);
    }
    Put(text);
}

// ---- position and length --------------------------------------------------------------------------------

uint64 CStdioFile::Seek(int64 offset, UINT from)
{
    WriteOut();
    LeaveReading();
    return CFile::Seek(offset, from);
}

uint64 CStdioFile::GetPosition() const
{
    return CFile::GetPosition() - (m_end - m_begin) + m_pending;
}

uint64 CStdioFile::GetLength() const
{
    return std::max(CFile::GetLength(), m_pending > 0 ? GetPosition() : 0);
}

void CStdioFile::SetLength(uint64 length)
{
    WriteOut();
    LeaveReading();
    CFile::SetLength(length);
}

void CStdioFile::Flush()
{
    WriteOut();
    CFile::Flush();
}
