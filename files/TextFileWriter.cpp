#include "files/TextFileWriter.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "files/AsciiText.h"
#include "files/TextEncoding.h"

TextFileWriter::TextFileWriter(HANDLE file, std::string_view lineEnd)
    : m_file(file), m_lineEndSize(lineEnd.copy(m_lineEnd, sizeof m_lineEnd)), m_buffer(new char[BufferSize])
{
}

TextFileWriter::~TextFileWriter() = default;

int TextFileWriter::BeforeText(bool& isMarkPending)
{
    if (!isMarkPending)
        return m_hasFailed ? WriteError : Written;
    isMarkPending = false;
    return Put(Mark());
}

// ---- the buffer -----------------------------------------------------------------------------------------

void TextFileWriter::WriteOut(std::string_view bytes)
{
    while (!bytes.empty() && !m_hasFailed) {
        const auto step = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1 << 30));
        DWORD count = 0;
        m_hasFailed = !WriteFile(m_file, bytes.data(), step, &count, nullptr) || count == 0;
        bytes.remove_prefix(count);
    }
}

int TextFileWriter::Flush()
{
    WriteOut({m_buffer.get(), m_used});
    m_used = 0;
    return m_hasFailed ? WriteError : Written;
}

// What the buffer has no room for.
int TextFileWriter::PutPastBuffer(std::string_view bytes)
{
    Flush();
    if (!m_hasFailed && bytes.size() <= BufferSize)
        return Put(bytes);
    WriteOut(bytes);
    return m_hasFailed ? WriteError : Written;
}

// ---- bytes ----------------------------------------------------------------------------------------------

static std::size_t Size(int length)
{
    return static_cast<std::size_t>(length);
}

static std::string_view Run(const char* text, int length)
{
    return text == nullptr || length <= 0 ? std::string_view() : std::string_view(text, Size(length));
}

std::string_view ANSI_TextFileWriter::Mark() const
{
    return TextEncoding::MarkOf(TextEncoding::Ansi);
}

int ANSI_TextFileWriter::WriteText(const char* text, int length, unsigned int)
{
    return Put(Run(text, length));
}

int ANSI_TextFileWriter::WriteLine(const CString& line, unsigned int codePage)
{
    const std::size_t size = Size(line.GetLength());
    char* const to = PlaceLine(line.IsInline() ? CString::MaxInline : size);
    if (to == nullptr)
        return TextFileWriter::WriteLine(line, codePage);
    if (line.IsInline())
        std::memcpy(to, line.GetString(), CString::MaxInline); // all of it: no call for a few bytes
    else
        std::memcpy(to, line.GetString(), size);
    TookLine(size);
    return Written;
}

std::string_view UTF8_TextFileWriter::Mark() const
{
    return TextEncoding::MarkOf(TextEncoding::Utf8);
}

// `to` has room for two bytes each. Answers how many there are.
static std::size_t EncodeLatin1(std::string_view text, char* to)
{
    const char* const from = to;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            *to++ = c;
        } else {
            *to++ = static_cast<char>(0xC0 | byte >> 6);
            *to++ = static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return static_cast<std::size_t>(to - from);
}

int UTF8_TextFileWriter::WriteText(const char* text, int length, unsigned int)
{
    std::string_view rest = Run(text, length);
    if (char* const to = Place(2 * rest.size()); to != nullptr) {
        Took(AsciiText::Copy(rest, to) ? rest.size() : EncodeLatin1(rest, to));
        return Written;
    }
    int result = Put({}); // an error from before
    while (!rest.empty() && result == Written) {
        char encoded[4096];
        const std::string_view piece = rest.substr(0, sizeof encoded / 2);
        result = Put({encoded, EncodeLatin1(piece, encoded)});
        rest.remove_prefix(piece.size());
    }
    return result;
}

// ---- 16-bit units ---------------------------------------------------------------------------------------

// False when the system does not convert the text.
static bool Widen(std::string_view text, unsigned int codePage, std::basic_string<WCHAR>& wide)
{
    wide.resize(text.size()); // no page makes more units than there are bytes
    if (AsciiText::IsKeptBy(codePage) && AsciiText::Is(text)) {
        std::copy(text.begin(), text.end(), wide.begin());
        return true;
    }
    const auto length = static_cast<int>(text.size());
    const int count = MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), length);
    wide.resize(static_cast<std::size_t>(std::max(count, 0)));
    return count > 0;
}

int TextFileWriter::WriteWide(std::endian byteOrder, std::string_view text, unsigned int codePage)
{
    m_hasFailed = m_hasFailed || (!text.empty() && !Widen(text, codePage, m_wide));
    if (m_hasFailed || text.empty())
        return m_hasFailed ? WriteError : Written;
    if (byteOrder != std::endian::native)
        for (WCHAR& unit : m_wide)
            unit = static_cast<WCHAR>(unit << 8 | unit >> 8);
    return Put({reinterpret_cast<const char*>(m_wide.data()), m_wide.size() * sizeof(WCHAR)});
}

std::string_view UTF16LE_TextFileWriter::Mark() const
{
    return TextEncoding::MarkOf(TextEncoding::Utf16LittleEndian);
}

int UTF16LE_TextFileWriter::WriteText(const char* text, int length, unsigned int codePage)
{
    return WriteWide(std::endian::little, Run(text, length), codePage);
}

std::string_view UTF16BE_TextFileWriter::Mark() const
{
    return TextEncoding::MarkOf(TextEncoding::Utf16BigEndian);
}

int UTF16BE_TextFileWriter::WriteText(const char* text, int length, unsigned int codePage)
{
    return WriteWide(std::endian::big, Run(text, length), codePage);
}
