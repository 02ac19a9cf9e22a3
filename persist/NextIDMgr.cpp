#include "NextIDMgr.h"

#include "CArchive.h"

// Wraps at INT_MAX.
static int Following(int id) noexcept
{
    return static_cast<int>(static_cast<UINT>(id) + 1);
}

int NextIDMgr::GetNextID() noexcept
{
    const int id = m_nNextID;
    m_nNextID = Following(id);
    return id;
}

void NextIDMgr::UpdateNextID(int id) noexcept
{
    if (IsValidID(id) && id >= m_nNextID)
        m_nNextID = Following(id);
}

void NextIDMgr::Serialize(CArchive& archive)
{
    constexpr WORD RecordVersion = 1;
    if (archive.IsStoring()) {
        archive << RecordVersion << m_nNextID;
        return;
    }
    WORD ignored = 0; // kept: any version is read as the only one there is
    archive >> ignored >> m_nNextID;
}
