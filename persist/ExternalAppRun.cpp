#include "ExternalAppRun.h"

#include "CArchive.h"
#include "ExeUtils.h"
#include "StringUtils.h"
#include "framework/NamesOnDisk.h"
#include "persist/TextRecord.h"

bool ExternalAppRun::CanRun() const
{
    for (const CString* name : {&m_csPath, &m_csInitDir})
        if (StringUtils::IsEffectivelyEmpty(*name) || !NamesOnDisk::Exists(*name))
            return false;
    return true;
}

bool ExternalAppRun::Run(bool minimized) const
{
    return CanRun() && ExeUtils::LaunchApp(m_csPath, m_csArgs, m_csInitDir, m_csTitle, minimized);
}

// Kept: a greater title does not end the comparison.
bool ExternalAppRun::operator<(const ExternalAppRun& other) const
{
    return m_csTitle.Compare(other.m_csTitle) < 0 || m_csPath.Compare(other.m_csPath) < 0;
}

// Kept: nor does a lower one here.
bool ExternalAppRun::operator>(const ExternalAppRun& other) const
{
    return m_csTitle.Compare(other.m_csTitle) > 0 || m_csPath.Compare(other.m_csPath) > 0;
}

// ---- the record -----------------------------------------------------------------------------------------

namespace {

enum : WORD {
    FirstProtected = 1, // texts as encrypted-string records
    Protected = 2,      // the same
    Plain = 3           // what is stored
};

} // namespace

void ExternalAppRun::Serialize(CArchive& archive)
{
    if (archive.IsStoring()) {
        archive << WORD{Plain} << m_csPath << m_csArgs << m_csInitDir << m_csTitle;
        return;
    }
    WORD version = 0;
    archive >> version;
    if (version < FirstProtected || version > Plain)
        throw CArchiveException(CArchiveException::badSchema);
    ExternalAppRun loaded;
    for (CString* text : {&loaded.m_csPath, &loaded.m_csArgs, &loaded.m_csInitDir, &loaded.m_csTitle})
        LoadText(archive, *text, version < Plain);
    *this = std::move(loaded);
}
