// The bytes of a file under inspection, as an archive that knows where it stands. The file is read at once
// and let go, so that it is in nobody's way.
#pragma once

#include <kvt01.h>

#include <vector>

class Source {
public:
    explicit Source(const CString& fileName) : Source(ReadAll(fileName)) {} // throws CFileException

    CRewindArchive& Archive() { return m_archive; }
    uint64 Position() const { return m_bytes.size() - BytesLeft(); }
    uint64 BytesLeft() const { return m_archive.GetBytesAhead(); }

    // The next word without taking it; CArchiveException without one.
    WORD PeekWord()
    {
        WORD word = 0;
        m_archive >> word;
        m_archive.DoRewindWORD();
        return word;
    }

private:
    explicit Source(std::vector<BYTE> bytes)
        : m_bytes(std::move(bytes)), m_file(m_bytes.data(), m_bytes.size()),
          m_archive(&m_file, CArchive::load)
    {
    }
    static std::vector<BYTE> ReadAll(const CString& fileName)
    {
        constexpr std::size_t Step = 64 * 1024;
        CFile file(fileName, CFile::modeRead | CFile::shareDenyNone);
        std::vector<BYTE> bytes;
        std::size_t got = 0;
        do {
            const std::size_t done = bytes.size();
            bytes.resize(done + Step);
            got = file.Read(bytes.data() + done, Step);
            bytes.resize(done + got);
        } while (got > 0);
        return bytes;
    }

    std::vector<BYTE> m_bytes;
    CMemFile m_file;
    CRewindArchive m_archive;
};
