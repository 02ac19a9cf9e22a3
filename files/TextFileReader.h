// The readers of text files: one for each encoding, and the base, which by itself is the reader of an empty
// file.
//
// A line ends at an LF, which belongs to no line; a CR alone ends none. What follows the last LF is a line if
// there is anything. NULs are characters like others. Half a 16-bit unit at the end of a file is dropped.
//
// A CR in front of the LF is dropped, unless the two stand in different fills: then it stays in the line.
// This is kept; files were read so. Fills are counted by position, however much is read at once and however
// little the system gives: the first begins where the file stands when the reader is made (behind the mark),
// the next a buffer size further on. So with the usual 4096 bytes the CR stays where the LF is the byte 4096,
// 8192, ... behind the mark.
#pragma once

#include <bit>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "CString.h"
#include "platform/Platform.h"

// Reads the open file from where it stands. The handle stays the caller's.
class TextFileReader {
public:
    enum Result : int { LineDelivered = 0, EndOfFile = -1, ReadError = -2 };
    static constexpr std::size_t UsualFill = 4096;

    // The buffer size is that of a fill, in bytes: 0 is the usual one, and with less than 0 there is no
    // buffer, and every file ends at once. For 16-bit units it is rounded down to whole units, but not to
    // none.
    TextFileReader(const CString& fileName, HANDLE file, int bufferSize = 0);
    TextFileReader(const TextFileReader&) = delete;
    TextFileReader& operator=(const TextFileReader&) = delete;
    virtual ~TextFileReader();

protected:
    // The unit that begins here: a line is ended by looking at it and at the one before.
    virtual char16_t UnitAt(const char* bytes) const;

public:
    // The next line in the code page; the last two arguments are those of WideCharToMultiByte (`usedDefault`
    // may be null, and is FALSE for what needed no conversion). After anything but LineDelivered the line is
    // what it was. A line of more units than a CString can hold, and one that the system does not convert (a
    // code page it does not know), is a ReadError. Takes the memory of the line in the file, in UTF-16 and in
    // the code page besides the result, and keeps it for the next.
    virtual int ReadLine(CString& line, unsigned int codePage, const char* defaultChar, int* usedDefault);
    // The same; the text holds until the next call.
    virtual int ReadText(std::string_view& text, unsigned int codePage, const char* defaultChar,
                         int* usedDefault);

    uint64 GetPosition() const { return m_bufferAt + m_begin; } // what was read, in bytes

protected:
    TextFileReader(const CString& fileName, HANDLE file, int bufferSize, std::size_t unitSize);

    // The bytes of the next line without its end; they hold until the next call.
    int ReadRawLine(std::string_view& raw);
    // Whether that line, of bytes, is ASCII. It may also say no because of what stands behind the line.
    bool IsAscii(std::string_view raw);
    // The steps from there to the text, each with a Result.
    static int Deliver(std::string_view narrow, std::string_view& text, int* usedDefault)
    {
        text = narrow;
        if (usedDefault != nullptr)
            *usedDefault = FALSE;
        return LineDelivered;
    }
    int Convert(std::basic_string_view<WCHAR> wide, std::string_view& text, unsigned int codePage,
                const char* defaultChar, int* usedDefault);
    // The whole of ReadText for 16-bit units.
    template <std::endian ByteOrder>
    int ReadWideText(std::string_view& text, unsigned int codePage, const char* defaultChar,
                     int* usedDefault);

    // The line in UTF-16, and as the system converts it; their room is used again.
    std::basic_string<WCHAR> m_wide;
    std::string m_converted;

private:
    static constexpr std::size_t ReadSize = 1 << 17; // at once: whole units, and few enough for the cache

    int Fill();
    bool IsUnit(const char* bytes, char16_t unit) const;
    const char* FindLineFeed() const;
    bool StartsFill(uint64 position);
    std::string_view EndLine(const char* lineFeed);
    int GatherLine(std::string_view& raw);
    template <std::endian ByteOrder>
    const char* Narrowed(std::string_view raw);

    CString m_fileName;
    HANDLE m_file;
    const std::size_t m_unitSize;
    std::size_t m_fillSize;
    uint64 m_nextFill = 0;            // the first fill that the position asked for last is not behind
    std::unique_ptr<char[]> m_buffer; // made at the first read
    uint64 m_bufferAt = 0;            // the position of its first byte
    std::size_t m_begin = 0;          // of what is unread in it
    std::size_t m_end = 0;            // of its whole units
    std::size_t m_halfUnit = 0;       // bytes behind them: of a unit whose rest is to come
    std::size_t m_asciiEnd = 0;       // up to there it is ASCII, from the line on that asked for it last
    std::unique_ptr<char[]> m_narrow; // for 16-bit units: the ASCII in front of m_asciiEnd
    bool m_isAtEnd = false;
    std::string m_line; // of a line that lies in more than one read, what came with the earlier ones
};

// The bytes are delivered as they are, whatever the code page.
class ANSI_TextFileReader : public TextFileReader {
public:
    explicit ANSI_TextFileReader(const CString& fileName, HANDLE file, int bufferSize = 0)
        : TextFileReader(fileName, file, bufferSize)
    {
    }
    int ReadText(std::string_view& text, unsigned int codePage, const char* defaultChar,
                 int* usedDefault) override;

protected:
    char16_t UnitAt(const char* bytes) const override;
};

// Decodes leniently, byte by byte; this is kept. 80 to DF begin two bytes (so also 80 to BF, which should not
// begin any), E0 to EF three, F0 to F7 four; of the bytes that follow, whatever they are, the low six bits
// count. F8 and above is U+FFFD. What the end of the line cuts short is the character before it once more, or
// U+FFFD without one. Codes beyond U+10FFFF become that one.
class UTF8_TextFileReader : public TextFileReader {
public:
    explicit UTF8_TextFileReader(const CString& fileName, HANDLE file, int bufferSize = 0)
        : TextFileReader(fileName, file, bufferSize)
    {
    }
    int ReadText(std::string_view& text, unsigned int codePage, const char* defaultChar,
                 int* usedDefault) override;

protected:
    char16_t UnitAt(const char* bytes) const override;
};

class UTF16LE_TextFileReader : public TextFileReader {
public:
    explicit UTF16LE_TextFileReader(const CString& fileName, HANDLE file, int bufferSize = 0)
        : TextFileReader(fileName, file, bufferSize, 2)
    {
    }
    int ReadText(std::string_view& text, unsigned int codePage, const char* defaultChar,
                 int* usedDefault) override;

protected:
    char16_t UnitAt(const char* bytes) const override;
};

class UTF16BE_TextFileReader : public TextFileReader {
public:
    explicit UTF16BE_TextFileReader(const CString& fileName, HANDLE file, int bufferSize = 0)
        : TextFileReader(fileName, file, bufferSize, 2)
    {
    }
    int ReadText(std::string_view& text, unsigned int codePage, const char* defaultChar,
                 int* usedDefault) override;

protected:
    char16_t UnitAt(const char* bytes) const override;
};
