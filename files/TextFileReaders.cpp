// The readers of the single encodings: what a unit is, and how a raw line becomes text.
#include <bit>
#include <cstring>

#include "files/AsciiText.h"
#include "files/TextFileReader.h"

namespace {

unsigned int ByteAt(const char* bytes)
{
    return static_cast<unsigned char>(*bytes);
}

// ---- UTF-8 ----------------------------------------------------------------------------------------------

constexpr char32_t ReplacementCharacter = 0xFFFD;
constexpr char32_t LastCode = 0x10FFFF;

// Takes characters off the front of a line, by the lenient rules that the reader's declaration tells.
class LenientDecoder {
public:
    explicit LenientDecoder(std::string_view bytes) : m_bytes(bytes) {}

    bool HasMore() const { return !m_bytes.empty(); }
    char32_t Next()
    {
        const unsigned int lead = ByteAt(m_bytes.data());
        if (lead < 0x80)
            Take(1, lead);
        else if (lead < 0xE0) // kept: also 80 to BF
            Take(2, lead & 0x1F);
        else if (lead < 0xF0)
            Take(3, lead & 0x0F);
        else if (lead < 0xF8)
            Take(4, lead & 0x07);
        else
            Take(1, ReplacementCharacter);
        return m_code;
    }

private:
    void Take(std::size_t length, char32_t code)
    {
        if (length > m_bytes.size()) { // kept: cut short, it leaves the code as it was
            m_bytes = {};
            return;
        }
        for (std::size_t i = 1; i < length; ++i)
            code = code << 6 | (ByteAt(m_bytes.data() + i) & 0x3F); // kept: whatever byte it is
        m_code = std::min(code, LastCode);
        m_bytes.remove_prefix(length);
    }

    std::string_view m_bytes;
    char32_t m_code = ReplacementCharacter;
};

// `wide` has room for a unit per byte, which is enough: the one unit more that a pair may take at the end of
// the line was saved by the four bytes that the pair stood in before. Answers how many units there are.
std::size_t DecodeUtf8(std::string_view bytes, WCHAR* wide)
{
    WCHAR* to = wide;
    for (LenientDecoder decoder(bytes); decoder.HasMore();) {
        const char32_t code = decoder.Next();
        if (code < 0x10000) {
            *to++ = static_cast<WCHAR>(code);
        } else {
            *to++ = static_cast<WCHAR>((code >> 10) + 0xD7C0);
            *to++ = static_cast<WCHAR>((code & 0x3FF) + 0xDC00);
        }
    }
    return static_cast<std::size_t>(to - wide);
}

} // namespace

// ---- bytes ----------------------------------------------------------------------------------------------

char16_t ANSI_TextFileReader::UnitAt(const char* bytes) const
{
    return static_cast<char16_t>(ByteAt(bytes));
}

char16_t UTF8_TextFileReader::UnitAt(const char* bytes) const
{
    return static_cast<char16_t>(ByteAt(bytes));
}

int ANSI_TextFileReader::ReadLine(CString& line, unsigned int, const char*, int* usedDefault)
{
    std::string_view raw;
    const int result = ReadRawLine(raw);
    return result == LineDelivered ? Deliver(CString(raw), line, usedDefault) : result;
}

int UTF8_TextFileReader::ReadLine(CString& line, unsigned int codePage, const char* defaultChar,
                                  int* usedDefault)
{
    std::string_view raw;
    if (const int result = ReadRawLine(raw); result != LineDelivered)
        return result;
    if (AsciiText::IsKeptBy(codePage) && AsciiText::Is(raw))
        return Deliver(CString(raw), line, usedDefault);
    m_wide.resize(raw.size());
    m_wide.resize(DecodeUtf8(raw, m_wide.data()));
    return Convert(m_wide, line, codePage, defaultChar, usedDefault);
}

// ---- 16-bit units ---------------------------------------------------------------------------------------

char16_t UTF16LE_TextFileReader::UnitAt(const char* bytes) const
{
    return static_cast<char16_t>(ByteAt(bytes) | ByteAt(bytes + 1) << 8);
}

char16_t UTF16BE_TextFileReader::UnitAt(const char* bytes) const
{
    return static_cast<char16_t>(ByteAt(bytes) << 8 | ByteAt(bytes + 1));
}

// False when there is more than ASCII; `to` then holds nothing of use.
static bool CopyAscii(std::basic_string_view<WCHAR> wide, char* to)
{
    char16_t all = 0;
    for (std::size_t i = 0; i < wide.size(); ++i) { // without a way out on the way: so many are taken at once
        all = static_cast<char16_t>(all | wide[i]);
        to[i] = static_cast<char>(wide[i]);
    }
    return all < 0x80;
}

int TextFileReader::ReadWideLine(std::endian byteOrder, CString& line, unsigned int codePage,
                                 const char* defaultChar, int* usedDefault)
{
    std::string_view raw;
    if (const int result = ReadRawLine(raw); result != LineDelivered)
        return result;
    m_wide.resize(raw.size() / sizeof(WCHAR));
    std::memcpy(m_wide.data(), raw.data(), raw.size());
    if (byteOrder != std::endian::native)
        for (WCHAR& unit : m_wide)
            unit = static_cast<WCHAR>(unit << 8 | unit >> 8);
    char ascii[512]; // longer lines can wait for the system's conversion
    if (m_wide.size() <= sizeof ascii && AsciiText::IsKeptBy(codePage) && CopyAscii(m_wide, ascii))
        return Deliver(CString(std::string_view(ascii, m_wide.size())), line, usedDefault);
    return Convert(m_wide, line, codePage, defaultChar, usedDefault);
}

int UTF16LE_TextFileReader::ReadLine(CString& line, unsigned int codePage, const char* defaultChar,
                                     int* usedDefault)
{
    return ReadWideLine(std::endian::little, line, codePage, defaultChar, usedDefault);
}

int UTF16BE_TextFileReader::ReadLine(CString& line, unsigned int codePage, const char* defaultChar,
                                     int* usedDefault)
{
    return ReadWideLine(std::endian::big, line, codePage, defaultChar, usedDefault);
}
