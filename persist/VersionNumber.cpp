#include "VersionNumber.h"

#include <string_view>
#include <tuple>

#include "CArchive.h"
#include "NumberTextConv.h"
#include "StringUtils.h"

// The number of the first piece, which is taken from the text; 0 when nothing is left.
static int TakeNumber(std::string_view& text, char separator)
{
    const auto end = text.find(separator);
    const std::string_view piece = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return NumberTextConv::GetNumberFromString(CString(piece)); // overlooks blanks around the digits
}

void VersionNumber::SetVersion(const CString& text)
{
    m_nMajor = m_nMinor = m_nSub = 0;
    if (StringUtils::IsEffectivelyEmpty(text))
        return;
    const char separator = text.Find('.') >= 0 ? '.' : ',';
    std::string_view rest = text.View();
    m_nMajor = TakeNumber(rest, separator);
    m_nMinor = TakeNumber(rest, separator);
    m_nSub = TakeNumber(rest, separator);
}

CString VersionNumber::GetString() const
{
    CString text;
    text.Format("%d.%d.%d", m_nMajor, m_nMinor, m_nSub);
    return text;
}

bool VersionNumber::operator<(const VersionNumber& other) const noexcept
{
    return std::tie(m_nMajor, m_nMinor, m_nSub) < std::tie(other.m_nMajor, other.m_nMinor, other.m_nSub);
}

void VersionNumber::Serialize(CArchive& archive)
{
    constexpr WORD RecordVersion = 1;
    if (archive.IsStoring()) {
        archive << RecordVersion << m_nMajor << m_nMinor << m_nSub;
        return;
    }
    VersionNumber loaded;
    WORD ignored = 0; // kept: any version is read as the only one there is
    archive >> ignored >> loaded.m_nMajor >> loaded.m_nMinor >> loaded.m_nSub;
    *this = loaded;
}
