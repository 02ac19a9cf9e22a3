#include "MRUApplications.h"

#include <algorithm>

#include "CArchive.h"
#include "FileUtils.h"
#include "SerializeData.h"
#include "TextArray.h"
#include "framework/NamesOnDisk.h"
#include "persist/ContainerRecord.h"
#include "persist/TextRecord.h"

static CString DisplayNameOf(const CString& path)
{
    const CString description = FileUtils::GetVersionText(path, "FileDescription");
    return description.IsEmpty() ? FileUtils::ParseFileNameFromPath(path) : description;
}

// The first entry with that text there, ignoring case, or the end.
template <class Entries, class Member>
static auto FindBy(Member member, Entries& entries, const CString& text)
{
    return std::find_if(entries.begin(), entries.end(),
                        [&](const auto& entry) { return (entry.*member).CompareNoCase(text) == 0; });
}

void MRUApplications::AddEntry(const CString& path)
{
    if (NamesOnDisk::IsFile(path) && FindBy(&Entry::path, m_entries, path) == m_entries.end())
        m_entries.insert(m_entries.begin(), Entry{DisplayNameOf(path), path});
}

bool MRUApplications::MoveToTop(const CString& pathOrName)
{
    auto found = FindBy(&Entry::path, m_entries, pathOrName);
    if (found == m_entries.end())
        found = FindBy(&Entry::name, m_entries, pathOrName);
    if (found == m_entries.end())
        return false;
    std::rotate(m_entries.begin(), found, found + 1);
    return true;
}

CString MRUApplications::GetAppPath(uint64 index) const
{
    return index < m_entries.size() ? m_entries[static_cast<std::size_t>(index)].path : CString();
}

void MRUApplications::GetMRUAppNames(TextArray& out) const
{
    constexpr std::size_t MostNames = 20;
    const std::size_t most = std::min(m_entries.size(), MostNames);
    for (const Entry& entry : m_entries) {
        out.Add(entry.name);
        if (out.GetCount() >= most)
            return;
    }
}

// ---- the record -----------------------------------------------------------------------------------------

namespace {

enum : WORD {
    LegacyProtected = 1, // a count of 4 bytes, texts as encrypted-string records
    FirstProtected = 2,  // a count of 8 bytes, texts as encrypted-string records
    LastProtected = 3,   // the same
    Plain = 4            // what is stored
};

} // namespace

void MRUApplications::Serialize(CArchive& archive)
{
    if (archive.IsStoring()) {
        archive << WORD{Plain};
        SerializeData::SerializeLoopCounter(archive, m_entries.size());
        for (const Entry& entry : m_entries)
            archive << entry.name << entry.path;
        return;
    }
    WORD version = 0;
    archive >> version;
    if (version < LegacyProtected || version > Plain)
        throw CArchiveException(CArchiveException::badSchema);
    const uint64 count = SerializeData::SerializeLoopCounter(archive, 0, version == LegacyProtected);
    std::vector<Entry> loaded; // grows as the entries arrive: the count is only a claim
    for (std::size_t left = ContainerRecord::CheckedCount(count, loaded.max_size()); left > 0; --left) {
        Entry& entry = loaded.emplace_back();
        LoadText(archive, entry.name, version < Plain);
        LoadText(archive, entry.path, version < Plain);
    }
    m_entries = std::move(loaded);
}
