// The writers of text files: one for each encoding. What is written lies in a buffer until that is full, or
// until Flush.
#pragma once

#include <bit>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "CString.h"
#include "platform/Platform.h"

// Writes to the open file from where it stands. The handle stays the caller's. After a WriteError nothing
// more is written, and every operation answers with it; what was not flushed at the end is dropped.
class TextFileWriter {
public:
    enum Result : int { Written = 0, WriteError = -2 };

    TextFileWriter(const TextFileWriter&) = delete;
    TextFileWriter& operator=(const TextFileWriter&) = delete;
    virtual ~TextFileWriter();

protected:
    virtual std::string_view Mark() const = 0; // the byte-order mark of the encoding; empty without one

public:
    // A run of narrow text of the code page, in the writer's encoding. Nothing for no text, or a length of 0
    // or less. A run that the system does not convert (a code page it does not know) is a WriteError.
    virtual int WriteText(const char* text, int length, unsigned int codePage) = 0;
    // The step before any text of a line: writes the mark if it is pending, which it is not any more.
    virtual int BeforeText(bool& isMarkPending);

    int EndLine() // CR LF
    {
        if (m_hasFailed || BufferSize - m_used < sizeof m_lineEnd) [[unlikely]]
            return PutPastBuffer({m_lineEnd, m_lineEndSize});
        std::memcpy(m_buffer.get() + m_used, m_lineEnd, sizeof m_lineEnd); // all of it: no call for two bytes
        m_used += m_lineEndSize;
        return Written;
    }
    virtual int WriteLine(const CString& line, unsigned int codePage) // WriteText and EndLine
    {
        const int result = WriteText(line, line.GetLength(), codePage);
        return result == Written ? EndLine() : result;
    }
    int Flush();

protected:
    TextFileWriter(HANDLE file, std::string_view lineEnd);

    int Put(std::string_view bytes)
    {
        if (m_hasFailed || bytes.size() > BufferSize - m_used) [[unlikely]]
            return PutPastBuffer(bytes);
        m_used += bytes.copy(m_buffer.get() + m_used, bytes.size());
        return Written;
    }
    // Where so many bytes can be put; null where there is no room. Took says how many of them were.
    char* Place(std::size_t size)
    {
        const bool isRoom = !m_hasFailed && size <= BufferSize - m_used;
        return isRoom ? m_buffer.get() + m_used : nullptr;
    }
    void Took(std::size_t size) { m_used += size; }
    // The same for a whole line: where it can be put, its end behind it, and the size of the line alone.
    char* PlaceLine(std::size_t size) { return Place(size + sizeof m_lineEnd); }
    void TookLine(std::size_t size)
    {
        std::memcpy(m_buffer.get() + m_used + size, m_lineEnd, sizeof m_lineEnd);
        m_used += size + m_lineEndSize;
    }
    // The whole of WriteText for 16-bit units.
    int WriteWide(std::endian byteOrder, std::string_view text, unsigned int codePage);

private:
    static constexpr std::size_t BufferSize = 1 << 17;

    int PutPastBuffer(std::string_view bytes);
    void WriteOut(std::string_view bytes);

    HANDLE m_file;
    char m_lineEnd[4] = {}; // in the encoding
    std::size_t m_lineEndSize;
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_used = 0;
    bool m_hasFailed = false;
    std::basic_string<WCHAR> m_wide; // a run in UTF-16; its room is used again
};

// The bytes as they are, whatever the code page.
class ANSI_TextFileWriter : public TextFileWriter {
public:
    explicit ANSI_TextFileWriter(HANDLE file) : TextFileWriter(file, "\r\n") {}
    int WriteText(const char* text, int length, unsigned int codePage) override;
    int WriteLine(const CString& line, unsigned int codePage) override;

protected:
    std::string_view Mark() const override;
};

// Kept: takes every byte as the Latin-1 character of that number, whatever the code page, so that the
// characters of 80 to 9F (the euro sign, curly quotes) become control characters.
class UTF8_TextFileWriter : public TextFileWriter {
public:
    explicit UTF8_TextFileWriter(HANDLE file) : TextFileWriter(file, "\r\n") {}
    int WriteText(const char* text, int length, unsigned int codePage) override;

protected:
    std::string_view Mark() const override;
};

class UTF16LE_TextFileWriter : public TextFileWriter {
public:
    explicit UTF16LE_TextFileWriter(HANDLE file) : TextFileWriter(file, std::string_view("\r\0\n\0", 4)) {}
    int WriteText(const char* text, int length, unsigned int codePage) override;

protected:
    std::string_view Mark() const override;
};

class UTF16BE_TextFileWriter : public TextFileWriter {
public:
    explicit UTF16BE_TextFileWriter(HANDLE file) : TextFileWriter(file, std::string_view("\0\r\0\n", 4)) {}
    int WriteText(const char* text, int length, unsigned int codePage) override;

protected:
    std::string_view Mark() const override;
};
