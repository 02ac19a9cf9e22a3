// The framework's containers in an archive: a count and the elements. A count that is loaded is a claim:
// memory grows with the elements that are really there.
#include <algorithm>

#include "CArchive.h"
#include "CByteArray.h"
#include "CStringArray.h"
#include "CStringList.h"

namespace {

template <class Container, class Append>
void SerializeTexts(CArchive& archive, Container& texts, Append append)
{
    if (archive.IsStoring()) {
        archive.WriteCount(static_cast<uint64>(texts.GetCount()));
        for (const CString& text : texts)
            archive << text;
        return;
    }
    const uint64 count = archive.ReadCount();
    texts.RemoveAll();
    for (uint64 i = 0; i < count; ++i) {
        CString text;
        archive >> text;
        append(text);
    }
}

void LoadBytes(CArchive& archive, CByteArray& bytes)
{
    constexpr uint64 FirstStep = 64 * 1024;
    const uint64 count = archive.ReadCount();
    bytes.RemoveAll();
    for (uint64 done = 0; done < count;) {
        const uint64 step = std::min(count - done, std::max(done, FirstStep));
        bytes.SetSize(static_cast<CByteArray::Index>(done + step));
        const std::size_t got = archive.Read(bytes.GetData() + done, static_cast<std::size_t>(step));
        done += got;
        if (got < step) {
            bytes.SetSize(static_cast<CByteArray::Index>(done));
            throw CArchiveException(CArchiveException::endOfFile);
        }
    }
}

} // namespace

void CByteArray::Serialize(CArchive& archive)
{
    if (!archive.IsStoring())
        return LoadBytes(archive, *this);
    archive.WriteCount(static_cast<uint64>(GetSize()));
    archive.Write(GetData(), static_cast<std::size_t>(GetSize()));
}

void CStringArray::Serialize(CArchive& archive)
{
    SerializeTexts(archive, *this, [this](const CString& text) { Add(text); });
}

void CStringList::Serialize(CArchive& archive)
{
    SerializeTexts(archive, *this, [this](const CString& text) { AddTail(text); });
}
