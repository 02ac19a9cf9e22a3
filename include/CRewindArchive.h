// CRewindArchive: an archive that can step back over a version word or a 32-bit value that was just loaded,
// so that it can be loaded again (to try an older layout after a look at what comes).
//
// A step back beyond the place where the archive began raises CArchiveException::badIndex and moves nothing;
// on a storing archive it raises writeOnly.
#pragma once

#include "CArchive.h"

class KVT01_API CRewindArchive : public CArchive {
public:
    using CArchive::CArchive;
    ~CRewindArchive() override;

    void DoRewindWORD() { RewindRead(sizeof(WORD)); }
    void DoRewindInt() { RewindRead(sizeof(int)); }
};
