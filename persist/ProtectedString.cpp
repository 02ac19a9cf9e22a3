#include "persist/ProtectedString.h"

// Without the cipher, encrypted bytes are refused and plain texts are read.
void LoadProtectedString(CArchive& archive, CString& text)
{
    constexpr WORD Encrypted = 1;
    WORD flag = 0;
    archive >> flag;
    if (flag == Encrypted)
        throw CArchiveException(CArchiveException::badSchema);
    archive >> text;
}
