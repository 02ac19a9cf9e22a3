#include "text/ItemEquality.h"

#include <cstring>

#include "StringUtils.h"
#include "framework/PathParts.h"
#include "framework/RuntimeText.h"
#include "text/FileNameOrder.h"
#include "text/HashIndex.h"

namespace {

// The part of a text that Compare and CompareNoCase see.
std::string_view UntilNul(std::string_view text)
{
    return text.substr(0, text.find('\0'));
}

bool AreTextsEqual(std::string_view a, std::string_view b, bool caseSensitive)
{
    a = UntilNul(a);
    b = UntilNul(b);
    if (caseSensitive || a.size() != b.size())
        return a == b;
    const auto lowercase = RuntimeText::Lowercase();
    std::size_t i = 0;
    while (i < a.size() && lowercase(a[i]) == lowercase(b[i]))
        ++i;
    return i == a.size();
}

bool IsSpace(char c)
{
    return c >= 0 && StringUtils::IsSpace(c);
}

} // namespace

std::string_view ComparedFolder(std::string_view folder)
{
    while (!folder.empty() && IsSpace(folder.back()))
        folder.remove_suffix(1);
    while (!folder.empty() && IsSpace(folder.front()))
        folder.remove_prefix(1);
    if (!folder.empty() && PathParts::IsSeparator(folder.back()))
        folder.remove_suffix(1);
    return folder;
}

bool TextArray::AreDirsEqual(const CString& a, const CString& b, bool caseSensitive)
{
    return AreTextsEqual(ComparedFolder(FileNameOrder::Split(a).folder),
                         ComparedFolder(FileNameOrder::Split(b).folder), caseSensitive);
}

bool TextArray::AreFilesEqual(const CString& a, const CString& b, bool caseSensitive)
{
    const auto left = FileNameOrder::Split(a);
    const auto right = FileNameOrder::Split(b);
    return AreTextsEqual(left.base, right.base, caseSensitive) &&
           AreTextsEqual(left.extension, right.extension, caseSensitive);
}

bool TextArray::ArePathsEqual(const CString& a, const CString& b, bool caseSensitive, Content content)
{
    switch (content) {
    case ContentPaths:
        return AreDirsEqual(a, b, caseSensitive) && AreFilesEqual(a, b, caseSensitive);
    case ContentFiles:
        return AreFilesEqual(a, b, caseSensitive);
    default: // plain text too: who has text compares it himself
        return false;
    }
}

ItemEquality::ItemEquality(bool caseSensitive, TextArray::Content content)
    : m_caseSensitive(caseSensitive), m_content(content),
      m_folding(caseSensitive ? PackedText::CaseFolding::Exact() : PackedText::CaseFolding::Runtime())
{
}

bool ItemEquality::AreEqual(const CString& a, const CString& b) const
{
    if (m_content == TextArray::ContentText)
        return (m_caseSensitive ? a.Compare(b) : a.CompareNoCase(b)) == 0;
    return TextArray::ArePathsEqual(a, b, m_caseSensitive, m_content);
}

std::uint64_t ItemEquality::HashOf(const CString& item) const
{
    if (m_content == TextArray::ContentText)
        return HashText(item.GetString(), m_folding);
    const auto pieces = FileNameOrder::Split(item);
    const std::uint64_t name = HashText(UntilNul(pieces.base), m_folding);
    const std::uint64_t file = HashText(pieces.extension, m_folding, name);
    return m_content == TextArray::ContentPaths
               ? HashText(UntilNul(ComparedFolder(pieces.folder)), m_folding, file)
               : file;
}
