// A file that is opened with the platform's own access, share modes and disposition, and knows which one it
// is.
#pragma once

#include <optional>

#include "CFile.h"
#include "platform/Platform.h"

// A file as it is at a moment: equal for the same file as long as it is not written and a handle for it is
// open.
struct FileIdentity {
    DWORD volume, indexHigh, indexLow, sizeHigh, sizeLow, writtenHigh, writtenLow;

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

class SharedFile : public CFile {
public:
    static constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    static constexpr DWORD OnlyToAsk = 0; // the access that disturbs nobody

    // False with the reason in GetLastError. A file that is made is like the model, where there is one.
    bool OpenShared(const CString& path, DWORD access, DWORD share, DWORD disposition,
                    const SharedFile* model = nullptr)
    {
        Abort();
        const HANDLE handle = CreateFileA(path, access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                                          model != nullptr ? model->m_hFile : nullptr);
        if (handle == INVALID_HANDLE_VALUE)
            return false;
        m_hFile = handle;
        return true;
    }

    std::optional<FileIdentity> Identity() const
    {
        BY_HANDLE_FILE_INFORMATION facts;
        if (!GetFileInformationByHandle(m_hFile, &facts))
            return std::nullopt;
        return FileIdentity{facts.dwVolumeSerialNumber,
                            facts.nFileIndexHigh,
                            facts.nFileIndexLow,
                            facts.nFileSizeHigh,
                            facts.nFileSizeLow,
                            facts.ftLastWriteTime.dwHighDateTime,
                            facts.ftLastWriteTime.dwLowDateTime};
    }
};
