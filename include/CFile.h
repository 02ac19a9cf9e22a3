// CFile: a file of bytes, and the base of the other files. Nothing is buffered here: every Read and Write is
// one of the platform's (CArchive and CStdioFile buffer above it).
//
// Positions and lengths are 64-bit, counts size_t. Open answers with false; everything else reports failure
// by throwing CFileException (invalidFile when the file is not open). One thread at a time may use a file.
#pragma once

#include "BasicTypes.h"
#include "CFileException.h"
#include "CString.h"
#include "Kvt01Api.h"

#include <cstddef>

// What CFile::GetStatus finds out about a file or folder.
struct CFileStatus {
    uint64 m_size = 0; // 0 for a folder, and for a file that may not be read
    bool m_readOnly = false;
    bool m_folder = false;
};

// Headers of the operating system may have made a macro of this name; below it is the plain name.
#pragma push_macro("GetFileTitle")
#undef GetFileTitle

class KVT01_API CFile {
public:
    // One mode, at most one share, and any of the others.
    enum OpenFlags : UINT {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareCompat = 0x0000, // as shareExclusive
        shareExclusive = 0x0010,
        shareDenyWrite = 0x0020,
        shareDenyRead = 0x0030,
        shareDenyNone = 0x0040,
        modeNoInherit = 0x0080,  // always so: no handle is inherited
        modeCreate = 0x1000,     // make the file, or empty the one that is there
        modeNoTruncate = 0x2000, // with modeCreate: make it only when there is none, and keep what it holds
        typeText = 0x4000,       // means something to CStdioFile only
        typeBinary = 0x8000
    };
    enum SeekPosition { begin, current, end };

    CFile() noexcept = default;
    CFile(const char* fileName, UINT openFlags); // throws CFileException when it cannot be opened
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;
    virtual ~CFile(); // closes

    // A file that is open is closed first. On failure the result is false, `error` (if given) is filled, and
    // the file stays closed.
    virtual bool Open(const char* fileName, UINT openFlags, CFileException* error = nullptr);
    virtual void Close();          // closing a closed file does nothing
    virtual void Abort() noexcept; // closes and never throws

    // Read answers how many bytes it got: fewer than asked for only at the end of the file. Write writes all,
    // and makes the file longer where it writes beyond the end; the gap after a Seek beyond it reads as
    // zeros.
    virtual std::size_t Read(void* buffer, std::size_t count);
    virtual void Write(const void* buffer, std::size_t count);

    // The new position, counted from the beginning. A position below 0 raises badSeek and moves nothing.
    virtual uint64 Seek(int64 offset, UINT from);
    void SeekToBegin() { Seek(0, begin); }
    uint64 SeekToEnd() { return Seek(0, end); } // the length
    virtual uint64 GetPosition() const;
    virtual uint64 GetLength() const;
    virtual void SetLength(uint64 length); // the position moves to the new end
    virtual void Flush();                  // returns when the bytes are safe on disk

    // The parts of the name that was given to Open; empty while no file is open.
    //   "C:\\data\\report.txt" -> name "report.txt", title "report", path as it was given
    virtual CString GetFileName() const;
    virtual CString GetFileTitle() const;
    virtual CString GetFilePath() const { return m_strFileName; }
    virtual void SetFilePath(const char* fileName) { m_strFileName = fileName; }
    virtual bool IsOpen() const noexcept { return m_hFile != nullptr; }
    // The same as the static form finds out, of the open file itself; false, and nothing set, without one.
    bool GetStatus(CFileStatus& status) const;

    static void Remove(const char* fileName);
    static void Rename(const char* oldName, const char* newName);     // fails when the new name is taken
    static bool GetStatus(const char* fileName, CFileStatus& status); // false, and nothing set, without one

#ifdef _WIN32 // what such a macro makes of a caller's GetFileTitle: the same operation
    CString GetFileTitleA() const
    {
        return GetFileTitle();
    }
    CString GetFileTitleW() const
    {
        return GetFileTitle();
    }
#endif

protected:
    [[noreturn]] void ThrowLastError() const; // the platform's last error, as a CFileException of this file
    void RequireOpen() const;                 // throws invalidFile

    void* m_hFile = nullptr; // the platform's handle; nullptr while closed
    CString m_strFileName;
};

#pragma pop_macro("GetFileTitle")
