// CFileException: an operation on a file failed. m_lOsError is the platform's own error number (0 when the
// failure is not the platform's), m_strFileName the file as it was named on opening (empty for a file in
// memory).
#pragma once

#include "BasicTypes.h"
#include "CException.h"
#include "CString.h"

class KVT01_API CFileException : public CException {
public:
    enum {
        none,
        genericException,
        fileNotFound,
        badPath,
        tooManyOpenFiles,
        accessDenied,
        invalidFile, // the file is not open
        removeCurrentDir,
        directoryFull,
        badSeek,
        hardIO,
        sharingViolation,
        lockViolation,
        diskFull, // also: a file in memory that may not grow
        endOfFile
    };

    explicit CFileException(int cause = none, LONG osError = 0, const CString& fileName = CString());
    const char* what() const noexcept override { return m_text.GetString(); }

    // The cause that fits a number of GetLastError; genericException for those without a cause of their own.
    static int OsErrorToException(LONG osError) noexcept;

    LONG m_lOsError;
    CString m_strFileName;

private:
    CString m_text;
};
