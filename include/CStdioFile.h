// CStdioFile: a file of lines, buffered in both directions.
//
// In text mode, which is the default, a line ends with CR LF in the file and with LF in the program: writing
// turns every LF into CR LF, reading turns CR LF into LF, and a CR anywhere else stays. With typeBinary bytes
// stay what they are. Positions, lengths and Seek count bytes of the file in both modes; Read and Write may
// be mixed with lines, and reading with writing.
//
// What was written is in the file after Flush (safe on the disk), Close or a Seek; a failure to write may
// come up only there, as a CFileException. Abort, and a Close in the destructor that fails, drop what is not
// yet written. One thread at a time may use a file.
#pragma once

#include "CFile.h"

#include <memory>
#include <string_view>

class KVT01_API CStdioFile : public CFile {
public:
    CStdioFile() noexcept = default;
    CStdioFile(const char* fileName, UINT openFlags); // throws CFileException when it cannot be opened
    ~CStdioFile() override;

    bool Open(const char* fileName, UINT openFlags, CFileException* error = nullptr) override;
    void Close() override;
    void Abort() noexcept override;

    // The next line without its end; false, and an empty line, when nothing is left. The text after the last
    // line end is a line too, if there is any. NULs are characters like others. Throws std::length_error for
    // a line that no CString can hold.
    //   "a\r\n\r\nb" -> "a", "", "b", false          in binary mode: "a\r", "\r", "b", false
    bool ReadString(CString& line);
    // The next line with its LF, or as much of it as fits into `size` bytes with a NUL behind it; what does
    // not fit is read next. nullptr, and an empty text, when nothing is left or fits.
    char* ReadString(char* line, UINT size);
    // The text as it is: nothing is added to it.
    void WriteString(const char* text) { WriteText(text == nullptr ? std::string_view() : text); }
    void WriteString(const CString& text) { WriteText(text.View()); }

    // In text mode the count is that of the bytes after CR LF became LF, and Write's that before LF became CR
    // LF.
    std::size_t Read(void* buffer, std::size_t count) override;
    void Write(const void* buffer, std::size_t count) override;

    uint64 Seek(int64 offset, UINT from) override;
    uint64 GetPosition() const override;
    uint64 GetLength() const override;
    void SetLength(uint64 length) override;
    void Flush() override;

private:
    bool Fill();
    std::string_view Unread() const noexcept;
    void Take(std::size_t count) noexcept;
    bool DropCarriageReturn();
    void Put(std::string_view bytes);
    void WriteText(std::string_view text);
    void WriteOut();
    void LeaveReading();

    std::unique_ptr<char[]> m_buffer; // made at the first use
    std::size_t m_begin = 0;          // of what is read ahead
    std::size_t m_end = 0;
    std::size_t m_pending = 0; // bytes to be written; never together with bytes read ahead
    bool m_isText = true;
};
