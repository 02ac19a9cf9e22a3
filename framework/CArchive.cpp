#include "CArchive.h"

#include <algorithm>
#include <iterator>

#include "CFile.h"
#include "CRewindArchive.h"
#include "platform/Platform.h"

namespace {

// What stands in a length prefix (and, from the word on, in the count of a byte array) when more follows.
constexpr WORD MoreThanWord = 0xFFFF;
constexpr WORD WideMark = 0xFFFE;
constexpr DWORD MoreThanDword = 0xFFFFFFFF;

// Texts of a claimed length are fetched in steps: this much at first, then as much again as is there already.
constexpr std::size_t FirstStep = 64 * 1024;

std::size_t NextStep(std::size_t done, uint64 wanted)
{
    return static_cast<std::size_t>(std::min<uint64>(wanted - done, std::max(done, FirstStep)));
}

void RequireTextLength(uint64 length)
{
    if (length > static_cast<uint64>(CString::MaxLength))
        throw CArchiveException(CArchiveException::genericException);
}

} // namespace

const char* CArchiveException::what() const noexcept
{
    static constexpr const char* texts[] = {
        "no archive error",
        "the archive is closed or its data are malformed",
        "storing into an archive that was opened for loading",
        "the archive ended before the value did",
        "loading from an archive that was opened for storing",
        "step back beyond the beginning of the archive",
        "unexpected class in the archive",
        "record layout that cannot be read",
    };
    const bool isKnown = m_cause >= none && m_cause <= badSchema;
    return texts[isKnown ? m_cause : genericException];
}

// ---- opening and closing --------------------------------------------------------------------------------

CArchive::CArchive(CFile* file, UINT mode, int bufferSize, void* buffer)
    : m_file(file), m_mode(mode), m_bufferSize(static_cast<std::size_t>(std::max(bufferSize, MinBuffer))),
      m_ownsBuffer(buffer == nullptr || bufferSize < MinBuffer)
{
    m_buffer = m_ownsBuffer ? new BYTE[m_bufferSize] : static_cast<BYTE*>(buffer);
    m_current = m_loadLimit = m_storeLimit = m_buffer;
    if (IsStoring())
        m_storeLimit += m_bufferSize;
    if (m_file == nullptr)
        LetGo();
}

CArchive::~CArchive()
{
    if (m_file == nullptr)
        return;
    try {
        if ((m_mode & bNoFlushOnDelete) == 0)
            Flush();
    } catch (...) { // a destructor must not throw; whoever needs to know calls Close
    }
    LetGo();
}

CRewindArchive::~CRewindArchive() = default; // here, so that the library holds what is virtual in the class

void CArchive::Close()
{
    Flush();
    LetGo();
}

void CArchive::Abort() noexcept
{
    LetGo();
}

void CArchive::LetGo() noexcept
{
    if (m_ownsBuffer)
        delete[] m_buffer;
    m_current = m_storeLimit = m_loadLimit = m_buffer = nullptr;
    m_file = nullptr;
}

void CArchive::Flush()
{
    if (m_file == nullptr)
        return;
    if (IsStoring())
        WritePending();
    else
        GiveBackUnread();
}

void CArchive::RequireStoring() const
{
    if (m_file == nullptr)
        throw CArchiveException(CArchiveException::genericException);
    if (!IsStoring())
        throw CArchiveException(CArchiveException::readOnly);
}

void CArchive::RequireLoading() const
{
    if (m_file == nullptr)
        throw CArchiveException(CArchiveException::genericException);
    if (!IsLoading())
        throw CArchiveException(CArchiveException::writeOnly);
}

// ---- storing --------------------------------------------------------------------------------------------

// What the file refuses is dropped, so that a later try cannot write the same bytes twice.
void CArchive::WritePending()
{
    const auto count = static_cast<std::size_t>(m_current - m_buffer);
    m_current = m_buffer;
    if (count > 0)
        m_file->Write(m_buffer, count);
}

// Room for one number.
void CArchive::MakeRoom(std::size_t count)
{
    RequireStoring();
    if (m_storeLimit - m_current < static_cast<std::ptrdiff_t>(count))
        WritePending();
}

void CArchive::Write(const void* buffer, std::size_t count)
{
    RequireStoring();
    if (count == 0)
        return;
    if (count > static_cast<std::size_t>(m_storeLimit - m_current)) {
        WritePending();
        if (count >= m_bufferSize)
            return m_file->Write(buffer, count);
    }
    std::memcpy(m_current, buffer, count);
    m_current += count;
}

CArchive& CArchive::StoreText(std::string_view text)
{
    const std::size_t length = text.size();
    if (length < LongMark)
        *this << static_cast<BYTE>(length);
    else if (length < WideMark)
        *this << LongMark << static_cast<WORD>(length);
    else if (length < MoreThanDword)
        *this << LongMark << MoreThanWord << static_cast<DWORD>(length);
    else
        *this << LongMark << MoreThanWord << MoreThanDword << static_cast<uint64>(length);
    Write(text.data(), length);
    return *this;
}

void CArchive::WriteCount(uint64 count)
{
    if (count < MoreThanWord)
        *this << static_cast<WORD>(count);
    else if (count < MoreThanDword)
        *this << MoreThanWord << static_cast<DWORD>(count);
    else
        *this << MoreThanWord << MoreThanDword << count;
}

// ---- loading --------------------------------------------------------------------------------------------

// Fills the buffer behind what is unread; 0 at the end of the data.
std::size_t CArchive::Fetch()
{
    const std::size_t unread = Unread();
    std::memmove(m_buffer, m_current, unread);
    m_current = m_buffer;
    m_loadLimit = m_buffer + unread;
    const std::size_t got = m_file->Read(m_loadLimit, m_bufferSize - unread);
    m_loadLimit += got;
    m_fetched += got;
    return got;
}

// For one number, which is smaller than any buffer.
void CArchive::FetchAtLeast(std::size_t count)
{
    RequireLoading();
    while (Unread() < count)
        if (Fetch() == 0)
            throw CArchiveException(CArchiveException::endOfFile);
}

std::size_t CArchive::TakeFetched(BYTE* to, std::size_t count) noexcept
{
    count = std::min(count, Unread());
    std::copy_n(m_current, count, to);
    m_current += count;
    return count;
}

std::size_t CArchive::Read(void* buffer, std::size_t count)
{
    RequireLoading();
    auto* const to = static_cast<BYTE*>(buffer);
    std::size_t done = TakeFetched(to, count);
    while (done < count) {
        const std::size_t left = count - done;
        std::size_t got = 0;
        if (left >= m_bufferSize) {
            m_current = m_loadLimit = m_buffer; // what it holds is no longer what was read last
            m_fetched += got = m_file->Read(to + done, left);
        } else if (Fetch() > 0) {
            got = TakeFetched(to + done, left);
        }
        if (got == 0)
            break;
        done += got;
    }
    return done;
}

void CArchive::EnsureRead(void* buffer, std::size_t count)
{
    if (Read(buffer, count) != count)
        throw CArchiveException(CArchiveException::endOfFile);
}

uint64 CArchive::GetBytesAhead() const noexcept
{
    if (m_file == nullptr || !IsLoading())
        return 0;
    try {
        const uint64 length = m_file->GetLength();
        const uint64 position = m_file->GetPosition();
        return Unread() + (length > position ? length - position : 0);
    } catch (...) {
        return Unread();
    }
}

void CArchive::GiveBackUnread()
{
    const auto unread = static_cast<int64>(Unread());
    if (unread > 0)
        m_file->Seek(-unread, CFile::current);
    m_fetched -= static_cast<uint64>(unread);
    m_current = m_loadLimit = m_buffer;
}

void CArchive::RewindRead(std::size_t count)
{
    RequireLoading();
    if (m_fetched - Unread() < count)
        throw CArchiveException(CArchiveException::badIndex);
    if (static_cast<std::size_t>(m_current - m_buffer) >= count) {
        m_current -= count;
        return;
    }
    GiveBackUnread();
    m_file->Seek(-static_cast<int64>(count), CFile::current);
    m_fetched -= count;
}

uint64 CArchive::ReadCount()
{
    WORD word = 0;
    *this >> word;
    return LoadCountAfter(word);
}

uint64 CArchive::LoadCountAfter(WORD word)
{
    if (word != MoreThanWord)
        return word;
    DWORD dword = 0;
    *this >> dword;
    if (dword != MoreThanDword)
        return dword;
    uint64 count = 0;
    *this >> count;
    return count;
}

// ---- texts ----------------------------------------------------------------------------------------------

uint64 CArchive::LoadTextLength(bool& isWide)
{
    BYTE byte = 0;
    *this >> byte;
    if (byte != LongMark)
        return byte;
    WORD word = 0;
    *this >> word;
    if (word == WideMark) {
        if (isWide) // the mark does not stand twice
            throw CArchiveException(CArchiveException::genericException);
        isWide = true;
        return LoadTextLength(isWide);
    }
    return LoadCountAfter(word);
}

void CArchive::LoadLongText(CString& text)
{
    bool isWide = false;
    const uint64 length = LoadTextLength(isWide);
    RequireTextLength(length);
    if (isWide)
        LoadWideText(text, length);
    else
        LoadNarrowText(text, length);
}

void CArchive::LoadNarrowText(CString& text, uint64 length)
{
    CString loaded;
    for (std::size_t done = 0; done < length;) {
        const std::size_t step = NextStep(done, length);
        EnsureRead(loaded.GetBuffer(static_cast<int>(done + step)) + done, step);
        done += step;
        loaded.ReleaseBuffer(static_cast<int>(done));
    }
    text = std::move(loaded);
}

void CArchive::LoadWideText(CString& text, uint64 length)
{
    CString loaded;
    WCHAR units[256];
    char bytes[std::size(units)];
    for (uint64 left = length; left > 0;) {
        const auto count = static_cast<int>(std::min<uint64>(left, std::size(units)));
        for (int i = 0; i < count; ++i) {
            WORD unit = 0;
            *this >> unit;
            units[i] = static_cast<WCHAR>(unit);
        }
        WideCharToMultiByte(CP_ACP, 0, units, count, bytes, count, nullptr, nullptr);
        loaded.Append(bytes, count);
        left -= static_cast<uint64>(count);
    }
    text = std::move(loaded);
}

bool CArchive::ReadString(CString& line)
{
    RequireLoading();
    CString loaded;
    bool isAny = false;
    bool isEnded = false;
    while (!isEnded && (Unread() > 0 || Fetch() > 0)) {
        isAny = true;
        const std::string_view unread(reinterpret_cast<const char*>(m_current), Unread());
        const std::string_view piece = unread.substr(0, unread.find('\n'));
        RequireTextLength(static_cast<uint64>(loaded.GetLength()) + piece.size());
        loaded += piece;
        isEnded = piece.size() < unread.size();
        m_current += piece.size() + (isEnded ? 1 : 0);
    }
    if (isEnded && loaded.View().ends_with('\r'))
        loaded.Truncate(loaded.GetLength() - 1);
    line = std::move(loaded);
    return isAny;
}

CArchive& CArchive::operator>>(std::string& text)
{
    std::string_view shortText;
    if (TakeBufferedText(shortText)) {
        text = shortText;
        return *this;
    }
    CString loaded;
    LoadLongText(loaded);
    text = loaded.View();
    return *this;
}
