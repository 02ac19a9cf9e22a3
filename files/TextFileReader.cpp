// What all readers of text files share: filling the buffer, finding line ends, converting.
#include "files/TextFileReader.h"

#include <algorithm>
#include <cstring>

#include "files/AsciiText.h"

namespace {

constexpr char16_t CarriageReturn = '\r';
constexpr char16_t LineFeed = '\n';

std::size_t FillSize(int bufferSize, std::size_t unitSize)
{
    if (bufferSize < 0)
        return 0;
    const std::size_t size =
        bufferSize == 0 ? TextFileReader::UsualFill : static_cast<std::size_t>(bufferSize);
    return std::max(size / unitSize * unitSize, unitSize);
}

} // namespace

TextFileReader::TextFileReader(const CString& fileName, HANDLE file, int bufferSize)
    : TextFileReader(fileName, file, bufferSize, 1)
{
}

TextFileReader::TextFileReader(const CString& fileName, HANDLE file, int bufferSize, std::size_t unitSize)
    : m_fileName(fileName), m_file(file), m_unitSize(unitSize), m_fillSize(FillSize(bufferSize, unitSize))
{
}

TextFileReader::~TextFileReader() = default;

char16_t TextFileReader::UnitAt(const char*) const
{
    return 0;
}

int TextFileReader::ReadText(std::string_view&, unsigned int, const char*, int*)
{
    return EndOfFile;
}

int TextFileReader::ReadLine(CString& line, unsigned int codePage, const char* defaultChar, int* usedDefault)
{
    std::string_view text;
    const int result = ReadText(text, codePage, defaultChar, usedDefault);
    if (result == LineDelivered)
        line = CString(text);
    return result;
}

// ---- the buffer -----------------------------------------------------------------------------------------

// Reads on when everything was handed out. At least one byte came, but perhaps no whole unit.
int TextFileReader::Fill()
{
    if (m_isAtEnd || m_fillSize == 0)
        return EndOfFile;
    if (!m_buffer)
        m_buffer.reset(new char[ReadSize]);
    std::memmove(m_buffer.get(), m_buffer.get() + m_end, m_halfUnit);
    m_bufferAt += m_end;
    m_begin = m_end = m_asciiEnd = 0;
    DWORD count = 0;
    if (!ReadFile(m_file, m_buffer.get() + m_halfUnit, static_cast<DWORD>(ReadSize - m_halfUnit), &count,
                  nullptr))
        return ReadError;
    m_isAtEnd = count == 0;
    const std::size_t held = m_halfUnit + count;
    m_halfUnit = held % m_unitSize;
    m_end = held - m_halfUnit;
    return m_isAtEnd ? EndOfFile : LineDelivered;
}

inline bool TextFileReader::IsUnit(const char* bytes, char16_t unit) const
{
    return m_unitSize == 1 ? static_cast<unsigned char>(*bytes) == unit : UnitAt(bytes) == unit;
}

// Of the unread units; null when there is none.
inline const char* TextFileReader::FindLineFeed() const
{
    const char* from = m_buffer.get() + m_begin;
    const char* const end = m_buffer.get() + m_end;
    while (from < end) {
        const auto* const found =
            static_cast<const char*>(std::memchr(from, LineFeed, static_cast<std::size_t>(end - from)));
        if (found == nullptr || m_unitSize == 1)
            return found;
        const auto offset = static_cast<std::size_t>(found - m_buffer.get());
        const char* const unit = found - (offset & (m_unitSize - 1)); // it may be either byte of one
        if (IsUnit(unit, LineFeed))
            return unit;
        from = unit + m_unitSize;
    }
    return nullptr;
}

// Positions must be asked for in ascending order.
bool TextFileReader::StartsFill(uint64 position)
{
    while (m_nextFill < position)
        m_nextFill += m_fillSize;
    return m_nextFill == position;
}

// ---- lines ----------------------------------------------------------------------------------------------

// The line before an LF in the buffer, which is taken out of it.
inline std::string_view TextFileReader::EndLine(const char* lineFeed)
{
    const char* const from = m_buffer.get() + m_begin;
    std::string_view raw(from, static_cast<std::size_t>(lineFeed - from));
    m_begin += raw.size() + m_unitSize;
    if (!m_line.empty())
        raw = m_line.append(raw);
    const bool endsInReturn = !raw.empty() && IsUnit(raw.data() + raw.size() - m_unitSize, CarriageReturn);
    const auto lineFeedAt = m_bufferAt + static_cast<std::size_t>(lineFeed - m_buffer.get());
    if (endsInReturn && !StartsFill(lineFeedAt))
        raw.remove_suffix(m_unitSize);
    return raw;
}

int TextFileReader::ReadRawLine(std::string_view& raw)
{
    m_line.clear();
    const char* const lineFeed = FindLineFeed();
    if (lineFeed == nullptr)
        return GatherLine(raw);
    raw = EndLine(lineFeed);
    return LineDelivered;
}

// A line of which the buffer holds only the front, if anything.
int TextFileReader::GatherLine(std::string_view& raw)
{
    constexpr std::size_t mostGathered =
        CString::MaxLength - ReadSize; // units: with one read more a CString's
    for (;;) {
        if (const char* const lineFeed = FindLineFeed(); lineFeed != nullptr) {
            raw = EndLine(lineFeed);
            return LineDelivered;
        }
        if (m_begin < m_end) {
            m_line.append(m_buffer.get() + m_begin, m_end - m_begin);
            m_begin = m_end;
        }
        if (m_line.size() / m_unitSize > mostGathered)
            return ReadError;
        const int result = Fill();
        if (result == EndOfFile && !m_line.empty()) {
            raw = m_line;
            return LineDelivered;
        }
        if (result != LineDelivered)
            return result;
    }
}

bool TextFileReader::IsAscii(std::string_view raw)
{
    if (!m_line.empty())
        return AsciiText::Is(raw);
    const auto begin = static_cast<std::size_t>(raw.data() - m_buffer.get());
    if (m_asciiEnd <= begin)
        m_asciiEnd = begin + AsciiText::FrontSize({raw.data(), m_end - begin});
    return begin + raw.size() <= m_asciiEnd;
}

// ---- from the raw line to the text ----------------------------------------------------------------------

// False when the system does not convert it.
static bool NarrowBySystem(std::basic_string_view<WCHAR> wide, std::string& narrow, unsigned int codePage,
                           const char* defaultChar, int* usedDefault)
{
    const auto convert = [&](int room) {
        narrow.resize(static_cast<std::size_t>(room));
        return WideCharToMultiByte(codePage, 0, wide.data(), static_cast<int>(wide.size()),
                                   room == 0 ? nullptr : narrow.data(), room, defaultChar, usedDefault);
    };
    int count = convert(static_cast<int>(wide.size())); // enough for pages of one byte
    if (count <= 0 && GetLastError() == ERROR_INSUFFICIENT_BUFFER) {
        const int needed = convert(0);
        count = needed > 0 && needed <= CString::MaxLength ? convert(needed) : 0;
    }
    narrow.resize(static_cast<std::size_t>(std::max(count, 0)));
    return !narrow.empty() || wide.empty();
}

int TextFileReader::Convert(std::basic_string_view<WCHAR> wide, std::string_view& text, unsigned int codePage,
                            const char* defaultChar, int* usedDefault)
{
    int isDefaultUsed = FALSE;
    const bool isUtf8 = codePage == CP_UTF8; // which lacks nothing, and whose conversion takes neither
    if (!NarrowBySystem(wide, m_converted, codePage, isUtf8 ? nullptr : defaultChar,
                        isUtf8 ? nullptr : &isDefaultUsed))
        return ReadError;
    Deliver(m_converted, text, usedDefault);
    if (usedDefault != nullptr)
        *usedDefault = isDefaultUsed;
    return LineDelivered;
}
