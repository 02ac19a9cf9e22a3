// The writers of text files: one for each encoding. What is written lies in a buffer until that is full, or
// until Flush.
#pragma once

#include <bit>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Platform.h"

// Writes to the open file from where it stands. The handle stays the caller's. After a WriteError nothing
// more is written, and every operation answers with it; what was not flushed at the end is dropped.
class TextFileWriter {
public:
    enum Result : int { Written = 0, WriteError = -2 };

    explicit TextFileWriter(HANDLE file) : m_file(file) {}
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

    int Flush();

protected:
    int Put(std::string_view bytes);
    // The whole of WriteText for 16-bit units.
    int WriteWide(std::endian byteOrder, std::string_view text, unsigned int codePage);

private:
    void WriteOut(std::string_view bytes);

    HANDLE m_file;
    std::unique_ptr<char[]> m_buffer; // made at the first use
    std::size_t m_used = 0;
    bool m_hasFailed = false;
    std::u16string m_wide; // a run in UTF-16; its room is used again
};

// The bytes as they are, whatever the code page.
class ANSI_TextFileWriter : public TextFileWriter {
public:
    using TextFileWriter::TextFileWriter;
    int WriteText(const char* text, int length, unsigned int codePage) override;

protected:
    std::string_view Mark() const override;
};

// Kept: takes every byte as the Latin-1 character of that number, whatever the code page, so that the
// characters of 80 to 9F (the euro sign, curly quotes) become control characters.
class UTF8_TextFileWriter : public TextFileWriter {
public:
    using TextFileWriter::TextFileWriter;
    int WriteText(const char* text, int length, unsigned int codePage) override;

protected:
    std::string_view Mark() const override;
};

class UTF16LE_TextFileWriter : public TextFileWriter {
public:
    using TextFileWriter::TextFileWriter;
    int WriteText(const char* text, int length, unsigned int codePage) override;

protected:
    std::string_view Mark() const override;
};

class UTF16BE_TextFileWriter : public TextFileWriter {
public:
    using TextFileWriter::TextFileWriter;
    int WriteText(const char* text, int length, unsigned int codePage) override;

protected:
    std::string_view Mark() const override;
};
