#include "TextArray.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <utility>

#include "CStringArray.h"
#include "CStringList.h"
#include "NumberTextConv.h"
#include "StringUtils.h"
#include "framework/NeverDestroyed.h"
#include "framework/TextSearch.h"

static constinit NeverDestroyed<CString> decimalSeparator;
constinit CString& TextArray::m_csDecimal = decimalSeparator.value;

const CString& TextArray::NoString()
{
    static constinit NeverDestroyed<CString> empty;
    return empty.value;
}

std::vector<CString>::iterator TextArray::Iterator(std::size_t index)
{
    return m_strings.begin() + static_cast<std::ptrdiff_t>(index);
}

void TextArray::CopyFromVector(const std::vector<CString>& list)
{
    if (&list == &m_strings)
        return CopyFromVector(std::vector<CString>(list));
    m_strings.insert(m_strings.end(), list.begin(), list.end());
}

void TextArray::Insert(std::size_t index, const CString& s)
{
    m_strings.insert(Iterator(std::min(index, GetCount())), CString(s));
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
        m_strings.erase(Iterator(index));
}

void TextArray::Remove(const CString& s)
{
    bool found = false;
    Remove(Find(s, true, found));
}

void TextArray::MakeLower()
{
    for (CString& element : m_strings)
        element.MakeLower();
}

void TextArray::ReplaceInAll(const CString& from, const CString& to)
{
    const CString wanted = from; // both may be elements
    const CString replacement = to;
    for (CString& element : m_strings)
        element.Replace(wanted, replacement);
}

bool TextArray::MoveToFirst(const CString& s, bool caseSensitive)
{
    bool found = false;
    const std::size_t at = Find(s, caseSensitive, found);
    if (!HaveMultiple() || !found || at == 0)
        return false;
    std::rotate(m_strings.begin(), Iterator(at), Iterator(at + 1));
    return true;
}

bool TextArray::MoveToLast(const CString& s, bool caseSensitive)
{
    bool found = false;
    const std::size_t at = Find(s, caseSensitive, found);
    if (!HaveMultiple() || !found || at == GetCount() - 1)
        return false;
    std::rotate(Iterator(at), Iterator(at + 1), m_strings.end());
    return true;
}

void TextArray::RemoveCharsFromIndex(std::size_t index, std::size_t position, std::size_t count)
{
    const std::size_t length = GetLengthAt(index);
    if (position < length)
        m_strings[index].Delete(static_cast<int>(position),
                                static_cast<int>(std::min(count, length - position)));
}

void TextArray::AdjustEntries(const CString& text, bool atFront)
{
    const CString added = text; // may be an element
    if (added.IsEmpty())
        return;
    for (CString& element : m_strings)
        element = atFront ? added + element : element + added;
}

void TextArray::AddValuesRange(int from, int to, bool grouped)
{
    if (from > to)
        return;
    const int64 count = int64{to} - from + 1;
    m_strings.reserve(m_strings.size() + static_cast<std::size_t>(count));
    for (int64 value = from; value <= to; ++value)
        m_strings.push_back(NumberTextConv::NumberToString(static_cast<int>(value), grouped, 0, CString()));
}

CString TextArray::ConvertIntoOneLine(const CString& separator) const
{
    CString line;
    for (std::size_t i = 0; i < GetCount(); ++i) {
        if (i > 0)
            line += separator;
        line += m_strings[i];
    }
    return line;
}

void TextArray::CopyToVector(std::vector<CString>& list) const
{
    list = m_strings;
}

void TextArray::CopyToStringArray(CStringArray& list) const
{
    list.RemoveAll();
    for (const CString& element : m_strings)
        list.Add(element);
}

void TextArray::CopyFromStringArray(const CStringArray& list)
{
    m_strings.insert(m_strings.end(), list.begin(), list.end());
}

void TextArray::CopyToList(CStringList& list) const
{
    list.RemoveAll();
    for (const CString& element : m_strings)
        list.AddTail(element);
}

void TextArray::CopyFromList(const CStringList& list)
{
    m_strings.insert(m_strings.end(), list.begin(), list.end());
}

void TextArray::Dump() const
{
    for (std::size_t i = 0; i < GetCount(); ++i)
        std::fprintf(stderr, "[%zu] %s\n", i, m_strings[i].GetString());
}

namespace {

// One text that many are compared with. Most others are turned away by their first characters: those that
// differ in other bits than the cases of a character do.
class WantedText {
public:
    WantedText(const CString& text, bool caseSensitive, std::size_t others)
        : m_text(text), m_caseSensitive(caseSensitive)
    {
        constexpr std::size_t WorthFolding = 64; // to learn the locale's cases costs about as many looks
        m_ignored.fill(0xFF);
        m_front.fill(0xFF);
        if (caseSensitive)
            TakeFront(TextSearch::Exact);
        else if (others >= WorthFolding)
            TakeFront(TextSearch::RuntimeLowercase());
    }
    bool operator()(const CString& other) const
    {
        std::uint64_t different = 0;
        for (std::size_t i = 0; i < CString::FrontSize; i += 8)
            different |=
                (EightFrom(other.GetFront() + i) | EightFrom(&m_ignored[i])) ^ EightFrom(&m_front[i]);
        return different == 0 && (m_caseSensitive ? other.Compare(m_text) : other.CompareNoCase(m_text)) == 0;
    }

private:
    static std::uint64_t EightFrom(const void* bytes)
    {
        std::uint64_t word;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }
    void TakeFront(const TextSearch::ByteFold& fold)
    {
        const char* const text = m_text.GetString();
        const std::size_t told = std::min(std::strlen(text) + 1, m_front.size()); // the closing NUL as well
        for (std::size_t i = 0; i < told; ++i) {
            m_ignored[i] = fold.VaryingBits(text[i]);
            m_front[i] = static_cast<std::uint8_t>(static_cast<std::uint8_t>(text[i]) | m_ignored[i]);
        }
    }

    const CString& m_text;
    bool m_caseSensitive;
    static_assert(CString::FrontSize == 2 * sizeof(std::uint64_t));
    std::array<std::uint8_t, CString::FrontSize> m_ignored; // the bits that tell nothing; behind a NUL, all
    std::array<std::uint8_t, CString::FrontSize> m_front;   // with the ignored bits set
};

} // namespace

std::size_t TextArray::Find(const CString& s, bool caseSensitive, bool& found) const
{
    const auto at =
        std::find_if(m_strings.begin(), m_strings.end(), WantedText(s, caseSensitive, GetCount()));
    found = at != m_strings.end();
    return static_cast<std::size_t>(at - m_strings.begin());
}

std::size_t TextArray::FindCount(const CString& s, bool caseSensitive) const
{
    return static_cast<std::size_t>(
        std::count_if(m_strings.begin(), m_strings.end(), WantedText(s, caseSensitive, GetCount())));
}

bool TextArray::Have(const CString& s, bool caseSensitive) const
{
    bool found = false;
    Find(s, caseSensitive, found);
    return found;
}

std::size_t TextArray::FindWithin(const CString& s, bool& found, std::size_t start, bool caseSensitive) const
{
    std::size_t at = std::min(start, GetCount());
    while (at < GetCount() && !StringUtils::MatchFirstChars(m_strings[at], s, caseSensitive))
        ++at;
    found = at < GetCount();
    return at;
}

void TextArray::AddNoDuplicates(const CString& s, bool caseSensitive)
{
    if (!Have(s, caseSensitive))
        Add(s);
}
