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

int ANSI_TextFileReader::ReadText(std::string_view& text, unsigned int, const char*, int* usedDefault)
{
    std::string_view raw;
    const int result = ReadRawLine(raw);
    return result == LineDelivered ? Deliver(raw, text, usedDefault) : result;
}

int UTF8_TextFileReader::ReadText(std::string_view& text, unsigned int codePage, const char* defaultChar,
                                  int* usedDefault)
{
    std::string_view raw;
    if (const int result = ReadRawLine(raw); result != LineDelivered)
        return result;
    if (AsciiText::IsKeptBy(codePage) && IsAscii(raw))
        return Deliver(raw, text, usedDefault);
    m_wide.resize(raw.size());
    m_wide.resize(DecodeUtf8(raw, m_wide.data()));
    return Convert(m_wide, text, codePage, defaultChar, usedDefault);
}

// ---- 16-bit units ---------------------------------------------------------------------------------------

template <std::endian ByteOrder>
static char16_t UnitOf(const char* bytes)
{
    WCHAR unit;
    std::memcpy(&unit, bytes, sizeof unit);
    return ByteOrder == std::endian::native ? unit : static_cast<WCHAR>(unit << 8 | unit >> 8);
}

char16_t UTF16LE_TextFileReader::UnitAt(const char* bytes) const
{
    return UnitOf<std::endian::little>(bytes);
}

char16_t UTF16BE_TextFileReader::UnitAt(const char* bytes) const
{
    return UnitOf<std::endian::big>(bytes);
}

// Copies the ASCII that the units begin with; how many those are.
template <std::endian ByteOrder>
static std::size_t NarrowAscii(const char* units, std::size_t count, char* to)
{
    constexpr std::size_t block = 32;
    std::size_t done = 0;
    for (; count - done >= block; done += block) {
        char16_t all = 0;
        for (std::size_t i = done; i < done + block; ++i) { // without a way out: so many are taken at once
            const char16_t unit = UnitOf<ByteOrder>(units + i * sizeof unit);
            all = static_cast<char16_t>(all | unit);
            to[i] = static_cast<char>(unit);
        }
        if (all >= 0x80)
            break;
    }
    for (; done < count && UnitOf<ByteOrder>(units + done * sizeof(WCHAR)) < 0x80; ++done)
        to[done] = static_cast<char>(UnitOf<ByteOrder>(units + done * sizeof(WCHAR)));
    return done;
}

// The line narrowed, if all of it is ASCII and lies in the buffer: then what follows it is narrowed too.
template <std::endian ByteOrder>
const char* TextFileReader::Narrowed(std::string_view raw)
{
    if (!m_line.empty())
        return nullptr;
    if (!m_narrow)
        m_narrow.reset(new char[ReadSize / sizeof(WCHAR)]);
    const auto begin = static_cast<std::size_t>(raw.data() - m_buffer.get());
    char* const narrow = m_narrow.get() + begin / sizeof(WCHAR);
    if (m_asciiEnd <= begin) {
        const std::size_t count = NarrowAscii<ByteOrder>(raw.data(), (m_end - begin) / sizeof(WCHAR), narrow);
        m_asciiEnd = begin + count * sizeof(WCHAR);
    }
    return begin + raw.size() <= m_asciiEnd ? narrow : nullptr;
}

template <std::endian ByteOrder>
int TextFileReader::ReadWideText(std::string_view& text, unsigned int codePage, const char* defaultChar,
                                 int* usedDefault)
{
    std::string_view raw;
    if (const int result = ReadRawLine(raw); result != LineDelivered)
        return result;
    const std::size_t count = raw.size() / sizeof(WCHAR);
    if (AsciiText::IsKeptBy(codePage))
        if (const char* const narrow = Narrowed<ByteOrder>(raw); narrow != nullptr)
            return Deliver({narrow, count}, text, usedDefault);
    m_wide.resize(count);
    for (std::size_t i = 0; i < count; ++i)
        m_wide[i] = UnitOf<ByteOrder>(raw.data() + i * sizeof(WCHAR));
    return Convert(m_wide, text, codePage, defaultChar, usedDefault);
}

int UTF16LE_TextFileReader::ReadText(std::string_view& text, unsigned int codePage, const char* defaultChar,
                                     int* usedDefault)
{
    return ReadWideText<std::endian::little>(text, codePage, defaultChar, usedDefault);
}

int UTF16BE_TextFileReader::ReadText(std::string_view& text, unsigned int codePage, const char* defaultChar,
                                     int* usedDefault)
{
    return ReadWideText<std::endian::big>(text, codePage, defaultChar, usedDefault);
}
