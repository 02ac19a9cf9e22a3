#include "TextArray.h"

#include <algorithm>
#include <utility>

#include "framework/NeverDestroyed.h"

static constinit NeverDestroyed<CString> decimalSeparator;
constinit CString& TextArray::m_csDecimal = decimalSeparator.value;

const CString& TextArray::NoString()
{
    static constinit NeverDestroyed<CString> empty;
    return empty.value;
}

void TextArray::CopyFromVector(const std::vector<CString>& list)
{
    const std::size_t count = list.size(); // the list may be our own
    m_strings.reserve(m_strings.size() + count);
    for (std::size_t i = 0; i < count; ++i)
        m_strings.push_back(list[i]);
}

void TextArray::Insert(std::size_t index, const CString& s)
{
    const auto at = static_cast<std::ptrdiff_t>(std::min(index, GetCount()));
    m_strings.insert(m_strings.begin() + at, CString(s));
}

void TextArray::Replace(std::size_t index, const CString& s)
{
    if (index < GetCount())
        m_strings[index] = s;
}

void TextArray::Trim(std::size_t count)
{
    if (count < GetCount())
        m_strings.resize(count);
}

void TextArray::Reverse()
{
    std::reverse(m_strings.begin(), m_strings.end());
}

void TextArray::Swap(std::size_t i, std::size_t j)
{
    if (i < GetCount() && j < GetCount())
        std::swap(m_strings[i], m_strings[j]);
}

void TextArray::RemoveLast()
{
    if (!IsEmpty())
        m_strings.pop_back();
}

void TextArray::Remove(std::size_t index)
{
    if (index < GetCount())
        m_strings.erase(m_strings.begin() + static_cast<std::ptrdiff_t>(index));
}

std::size_t TextArray::Find(const CString& s, bool caseSensitive, bool& found) const
{
    const auto isEqual = [&](const CString& element) {
        return (caseSensitive ? element.Compare(s) : element.CompareNoCase(s)) == 0;
    };
    const auto at = std::find_if(m_strings.begin(), m_strings.end(), isEqual);
    found = at != m_strings.end();
    return static_cast<std::size_t>(at - m_strings.begin());
}

bool TextArray::Have(const CString& s, bool caseSensitive) const
{
    bool found = false;
    Find(s, caseSensitive, found);
    return found;
}

void TextArray::AddNoDuplicates(const CString& s, bool caseSensitive)
{
    if (!Have(s, caseSensitive))
        Add(s);
}
