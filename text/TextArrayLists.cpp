// TextArray's operations on whole lists: what is removed, repeated, or in another list as well. All of them
// go through an index by hash, so that their time grows with the number of elements and not with its square.
#include "TextArray.h"

#include <algorithm>
#include <utility>

#include "FileUtils.h"
#include "StringUtils.h"
#include "text/HashIndex.h"
#include "text/ItemEquality.h"

namespace {

// Keeps the others in their order. Asks once for each index, in order.
template <class ShouldGo>
bool RemoveWhere(std::vector<CString>& strings, ShouldGo shouldGo)
{
    const std::size_t count = strings.size();
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (shouldGo(i))
            continue;
        if (kept != i)
            strings[kept].Swap(strings[i]);
        ++kept;
    }
    strings.resize(kept);
    return kept < count;
}

// The elements of a list by what they hold; equal ones count as the first of them.
class ItemIndex {
public:
    ItemIndex(const std::vector<CString>& items, bool caseSensitive, TextArray::Content content)
        : m_items(items), m_equality(caseSensitive, content), m_index(items.size())
    {
    }

    // Where the first element equal to the one at `at` stands, of those given to this; `at` itself if none.
    std::size_t FindOrAdd(std::size_t at) { return FindOrAdd(m_items[at], at); }
    // The same when `item` is going to be kept at `at`.
    std::size_t FindOrAdd(const CString& item, std::size_t at)
    {
        return m_index.FindOrAdd(m_equality.HashOf(item), at, EqualTo{*this, item});
    }
    std::size_t Find(const CString& item) const
    {
        return m_index.Find(m_equality.HashOf(item), EqualTo{*this, item});
    }

private:
    struct EqualTo {
        const ItemIndex& index;
        const CString& item;
        bool operator()(std::size_t at) const { return index.m_equality.AreEqual(index.m_items[at], item); }
    };

    const std::vector<CString>& m_items;
    ItemEquality m_equality;
    HashIndex m_index;
};

// Whether a text begins with any of many prefixes, in one walk over the text.
class PrefixIndex {
public:
    PrefixIndex(const std::vector<CString>& prefixes, bool caseSensitive);
    bool HasPrefixOf(const CString& text) const;

private:
    std::uint64_t Extend(std::uint64_t hash, char c) const
    {
        const int folded = m_caseSensitive || c < 0 ? static_cast<unsigned char>(c) : StringUtils::ToLower(c);
        hash = (hash ^ static_cast<std::uint64_t>(folded)) * 0x9E3779B97F4A7C15;
        return hash ^ hash >> 32;
    }
    bool Matches(const CString& text, std::size_t prefix) const
    {
        return StringUtils::MatchFirstChars(text, m_prefixes[prefix], m_caseSensitive);
    }

    const std::vector<CString>& m_prefixes;
    bool m_caseSensitive;
    bool m_hasEmpty = false;
    std::vector<std::size_t> m_withNul; // without case, NUL matches each byte of 128 or more: no hash fits
    std::vector<bool> m_isLength;       // the lengths of the others
    HashIndex m_index;
};

PrefixIndex::PrefixIndex(const std::vector<CString>& prefixes, bool caseSensitive)
    : m_prefixes(prefixes), m_caseSensitive(caseSensitive), m_index(prefixes.size())
{
    for (std::size_t i = 0; i < prefixes.size(); ++i) {
        const CString& prefix = prefixes[i];
        const auto length = static_cast<std::size_t>(prefix.GetLength());
        m_hasEmpty = m_hasEmpty || length == 0;
        if (!caseSensitive && prefix.Find('\0') >= 0) {
            m_withNul.push_back(i);
            continue;
        }
        if (m_isLength.size() <= length)
            m_isLength.resize(length + 1);
        m_isLength[length] = true;
        std::uint64_t hash = 0;
        for (const char c : prefix)
            hash = Extend(hash, c);
        m_index.FindOrAdd(hash, i, [&](std::size_t other) { return prefixes[other] == prefix; });
    }
}

bool PrefixIndex::HasPrefixOf(const CString& text) const
{
    if (text.IsEmpty())
        return m_hasEmpty;
    if (std::any_of(m_withNul.begin(), m_withNul.end(), [&](std::size_t i) { return Matches(text, i); }))
        return true;
    std::uint64_t hash = 0;
    std::size_t length = 0;
    for (const char c : text) {
        if (++length >= m_isLength.size())
            return false;
        hash = Extend(hash, c);
        const auto matches = [&](std::size_t prefix) { return Matches(text, prefix); };
        if (m_isLength[length] && m_index.Find(hash, matches) != HashIndex::None)
            return true;
    }
    return false;
}

} // namespace

bool TextArray::RemoveDuplicates(bool caseSensitive, Content content)
{
    if (!HaveMultiple())
        return false;
    const ItemEquality equality(caseSensitive, content);
    std::size_t kept = 0; // the last one kept equals the element just before, wherever that has gone
    for (std::size_t i = 1; i < GetCount(); ++i)
        if (!equality.AreEqual(m_strings[kept], m_strings[i]) && ++kept != i)
            m_strings[kept].Swap(m_strings[i]);
    const bool removes = kept + 1 < GetCount();
    m_strings.resize(kept + 1);
    return removes;
}

bool TextArray::RemoveDuplicatesKeepOrder(bool caseSensitive, Content content)
{
    if (!ItemEquality::HasEqual(content))
        return false;
    ItemIndex index(m_strings, caseSensitive, content);
    std::size_t kept = 0;
    return RemoveWhere(m_strings, [&](std::size_t i) {
        const bool isFirst = index.FindOrAdd(m_strings[i], kept) == kept;
        kept += isFirst ? 1 : 0;
        return !isFirst;
    });
}

bool TextArray::RemoveNonDuplicates(bool caseSensitive, Content content)
{
    ItemIndex index(m_strings, caseSensitive, content);
    std::vector<bool> isRepeated(GetCount());
    for (std::size_t i = 0; i < GetCount() && ItemEquality::HasEqual(content); ++i) {
        const std::size_t first = index.FindOrAdd(i);
        if (first != i)
            isRepeated[first] = isRepeated[i] = true;
    }
    return RemoveWhere(m_strings, [&](std::size_t i) { return !isRepeated[i]; });
}

bool TextArray::RemoveBlanks()
{
    return RemoveWhere(m_strings,
                       [&](std::size_t i) { return StringUtils::IsEffectivelyEmpty(m_strings[i]); });
}

bool TextArray::RemoveMatches(const TextArray& list, bool caseSensitive)
{
    if (&list == this)
        return RemoveMatches(TextArray(list), caseSensitive);
    if (IsEmpty() || list.IsEmpty())
        return false;
    ItemIndex index(list.m_strings, caseSensitive, ContentText);
    std::vector<std::size_t> wanted(list.GetCount());
    for (std::size_t i = 0; i < list.GetCount(); ++i)
        ++wanted[index.FindOrAdd(i)];
    return RemoveWhere(m_strings, [&](std::size_t i) {
        const std::size_t entry = index.Find(m_strings[i]);
        return entry != HashIndex::None && wanted[entry] > 0 && wanted[entry]-- > 0;
    });
}

bool TextArray::RemoveNonMatches(const TextArray& list, bool caseSensitive)
{
    if (&list == this)
        return false;
    ItemIndex index(list.m_strings, caseSensitive, ContentText);
    for (std::size_t i = 0; i < list.GetCount(); ++i)
        index.FindOrAdd(i);
    return RemoveWhere(m_strings, [&](std::size_t i) { return index.Find(m_strings[i]) == HashIndex::None; });
}

bool TextArray::RemoveAllStartWith(const TextArray& prefixes, bool caseSensitive)
{
    if (&prefixes == this)
        return RemoveAllStartWith(TextArray(prefixes), caseSensitive);
    const PrefixIndex index(prefixes.m_strings, caseSensitive);
    return RemoveWhere(m_strings, [&](std::size_t i) { return index.HasPrefixOf(m_strings[i]); });
}

void TextArray::GetDuplicates(TextArray& result, bool caseSensitive)
{
    if (!HaveMultiple())
        return;
    Sort(true, caseSensitive, ContentText);
    const ItemEquality equality(caseSensitive, ContentText);
    std::vector<CString> repeated; // apart, for the result may be this array
    for (std::size_t i = 0; i < GetCount();) {
        std::size_t next = i + 1; // in sorted order all equal elements stand together
        while (next < GetCount() && equality.AreEqual(m_strings[i], m_strings[next]))
            ++next;
        if (next > i + 1)
            repeated.push_back(m_strings[i]);
        i = next;
    }
    result.CopyFromVector(repeated);
}

void TextArray::RemoveFilesWithExt(const TextArray& extensions)
{
    if (&extensions == this)
        return RemoveFilesWithExt(TextArray(extensions));
    if (extensions.IsEmpty())
        return;
    ItemIndex index(extensions.m_strings, false, ContentText);
    for (std::size_t i = 0; i < extensions.GetCount(); ++i)
        index.FindOrAdd(i);
    RemoveWhere(m_strings, [&](std::size_t i) {
        return index.Find(FileUtils::GetFileExt(m_strings[i])) != HashIndex::None;
    });
}

void TextArray::RemoveFilesNameEndsWith(const CString& ending, bool caseSensitive)
{
    const CString wanted = ending; // may be an element
    RemoveWhere(m_strings, [&](std::size_t i) {
        const CString name = FileUtils::ParseFileNameFromPath(m_strings[i], false);
        return StringUtils::MatchLastChars(name, wanted, caseSensitive);
    });
}
