// An open text file: what it is, and its reader or writer.
#pragma once

#include <memory>

#include "CString.h"
#include "files/FileHandle.h"
#include "files/TextFileReader.h"
#include "files/TextFileWriter.h"

class TextFile {
public:
    // Any other mode writes too, from the beginning of a file that is opened as it is, or made.
    enum Mode : int { Read = 1, Write = 2 };
    enum Result : int { Done = 0, EndOfFile = -1, SystemError = -2, WrongEncoding = -3 };
    static constexpr unsigned int NoMarkExpected = 0x200; // the one option

    TextFile() = default;
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;
    ~TextFile() { Close(); }

    // Done, or what went wrong: the file is then closed. Opened for reading it is shared for reading, and
    // opened for writing too. An encoding that is neither read nor written is a WrongEncoding, and nothing is
    // done to the file.
    //
    // For reading, TextEncoding::Automatic takes the mark's encoding, ANSI without one. An encoding asked for
    // must have its mark (else WrongEncoding), unless the option says that there is none: then reading begins
    // with the first byte. For writing, Automatic is ANSI; the mark is written before the first text.
    int Open(const CString& fileName, int mode, int encoding, unsigned int options = 0);
    // SystemError when something was not written or the file could not be closed; closing twice is Done.
    int Close();

    int ReadLine(CString& line);          // Done, EndOfFile or SystemError
    int ReadText(std::string_view& text); // the same; the text holds until the next call
    int WriteLine(const CString& line)    // with CR LF behind it; Done or SystemError
    {
        if (!m_writer)
            return SystemError;
        if (m_isMarkPending && m_writer->BeforeText(m_isMarkPending) != TextFileWriter::Written)
            return SystemError;
        if (m_writer->WriteLine(line, m_codePage) != TextFileWriter::Written)
            return SystemError;
        ++m_linesWritten;
        return Done;
    }

    int GetEncoding() const { return m_encoding; } // after opening for reading, what was found
    const CString& GetFileName() const { return m_fileName; }
    uint64 GetSize() const;                            // in bytes; 0 when it is not known
    uint64 GetPosition() const;                        // of the reader, counted behind the mark
    DWORD GetLinesRead() const { return m_linesRead; } // since it was opened, modulo 2^32
    DWORD GetLinesWritten() const { return m_linesWritten; }
    // From now on. No default character is the system's own, a question mark.
    void SetCodePage(unsigned int codePage, const CString& defaultChar = CString());

private:
    int OpenForReading();
    int OpenForWriting();
    std::unique_ptr<TextFileReader> MakeReader(bool isEmpty) const;
    std::unique_ptr<TextFileWriter> MakeWriter() const;

    CString m_fileName;
    int m_mode = Read;
    int m_encoding = 0;
    unsigned int m_options = 0;
    DWORD m_linesRead = 0;
    DWORD m_linesWritten = 0;
    FileHandle m_file;
    std::unique_ptr<TextFileReader> m_reader;
    std::unique_ptr<TextFileWriter> m_writer;
    bool m_isMarkPending = false;
    unsigned int m_codePage = CP_ACP;
    CString m_defaultChar;
};
