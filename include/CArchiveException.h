// CArchiveException: an archive cannot go on: its data end too early, it is used against its direction, or
// what it holds cannot be read. The object that was being loaded keeps what it has got so far.
#pragma once

#include "CException.h"

class KVT01_API CArchiveException : public CException {
public:
    enum {
        none,
        genericException, // malformed data, or an archive that is closed
        readOnly,         // storing into an archive that loads
        endOfFile,        // the data end before the value does
        writeOnly,        // loading from an archive that stores
        badIndex,         // a step back beyond the place where the archive began
        badClass,
        badSchema // a record in a layout that cannot be read
    };

    explicit CArchiveException(int cause = none) noexcept : CException(cause) {}
    const char* what() const noexcept override;
};
