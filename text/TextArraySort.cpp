// The orders of TextArray, and sorting by them.
//
// SortCompareItems and what it calls are the rule. Sort looks at each string once: it makes keys that compare
// as bytes in the order of the rule, and sorts those. Only where a key cannot express the rule (the tolerance
// between numbers makes no strict ordering) does a merge sort ask the rule itself.
#include "TextArray.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <string_view>

#include "LocaleUtils.h"
#include "text/BoundedSort.h"
#include "text/FileNameOrder.h"
#include "text/HashIndex.h"
#include "text/ItemEquality.h"
#include "text/KeySort.h"

namespace {

constexpr unsigned long DecimalSeparatorItem = 14; // LOCALE_SDECIMAL

void FillDecimalSeparator()
{
    if (!TextArray::m_csDecimal.IsEmpty())
        return;
    if (LocaleUtils::m_csDecimalSeparator.IsEmpty())
        LocaleUtils::m_csDecimalSeparator = LocaleUtils::GetLocaleInfoFor(DecimalSeparatorItem);
    TextArray::m_csDecimal = LocaleUtils::m_csDecimalSeparator;
}

int CompareFolders(const CString& a, const CString& b, bool caseSensitive)
{
    return caseSensitive ? a.Collate(b) : a.CompareNoCase(b);
}

// The rule's three-way answer; 0 for an unknown content.
int CompareItems(const CString& a, const CString& b, bool caseSensitive, TextArray::Content content)
{
    switch (content) {
    case TextArray::ContentText:
        return caseSensitive ? a.Compare(b) : a.CompareNoCase(b);
    case TextArray::ContentPaths:
        if (const int folders = TextArray::CompareDirs(a, b, caseSensitive); folders != 0)
            return folders;
        return TextArray::CompareFiles(a, b, caseSensitive);
    case TextArray::ContentFiles:
        return TextArray::CompareFiles(a, b, caseSensitive);
    default:
        return 0;
    }
}

// ---- keys
// -------------------------------------------------------------------------------------------------------------

// Memory that stays where it is while more is taken.
class KeyMemory {
public:
    unsigned char* Room(std::size_t size) // until Keep says how much of it was used
    {
        if (size > m_left) {
            m_left = std::max(size, BlockSize);
            m_blocks.push_back(std::make_unique_for_overwrite<unsigned char[]>(m_left));
            m_next = m_blocks.back().get();
        }
        return m_next;
    }
    std::string_view Keep(unsigned char* end)
    {
        const auto size = static_cast<std::size_t>(end - m_next);
        const std::string_view key(reinterpret_cast<const char*>(m_next), size);
        m_next = end;
        m_left -= size;
        return key;
    }

private:
    static constexpr std::size_t BlockSize = 256 * 1024;

    std::vector<std::unique_ptr<unsigned char[]>> m_blocks;
    unsigned char* m_next = nullptr;
    std::size_t m_left = 0;
};

// The places of the paths' folders in the order of folders; folders that compare equal share one. Each
// different folder is looked at once.
class FolderPlaces {
public:
    FolderPlaces(const std::vector<CString>& paths, bool caseSensitive);

    unsigned char* Write(std::size_t path, unsigned char* out) const
    {
        for (int shift = 8 * (m_bytes - 1); shift >= 0; shift -= 8)
            *out++ = static_cast<unsigned char>(m_places[m_folders[path]] >> shift);
        return out;
    }

private:
    std::vector<std::string_view> FindFolders(const std::vector<CString>& paths);

    std::vector<std::size_t> m_folders; // for each path: which of the different folders
    std::vector<std::size_t> m_places;  // for each different folder
    int m_bytes = 0;                    // that hold any place
};

FolderPlaces::FolderPlaces(const std::vector<CString>& paths, bool caseSensitive)
{
    struct Folder {
        CString text;
        std::size_t number;
    };
    std::vector<Folder> folders;
    for (const std::string_view folder : FindFolders(paths))
        folders.push_back({CString(folder), folders.size()});
    BoundedSort::Sort(folders, [=](const Folder& a, const Folder& b) {
        return CompareFolders(a.text, b.text, caseSensitive) < 0;
    });
    m_places.resize(folders.size());
    std::size_t place = 0;
    for (std::size_t i = 0; i < folders.size(); ++i) {
        if (i > 0 && CompareFolders(folders[i - 1].text, folders[i].text, caseSensitive) != 0)
            ++place;
        m_places[folders[i].number] = place;
    }
    m_bytes = static_cast<int>(std::bit_width(place) + 7) / 8;
}

// The different folders, byte by byte, as they are compared.
std::vector<std::string_view> FolderPlaces::FindFolders(const std::vector<CString>& paths)
{
    const auto folding = PackedText::CaseFolding::Exact();
    std::vector<std::string_view> folders;
    HashIndex index(paths.size());
    m_folders.reserve(paths.size());
    for (const CString& path : paths) {
        const std::string_view folder = ComparedFolder(path);
        const auto isSame = [&](std::size_t number) { return folders[number] == folder; };
        m_folders.push_back(index.FindOrAdd(HashText(folder, folding), folders.size(), isSame));
        if (m_folders.back() == folders.size())
            folders.push_back(folder);
    }
    return folders;
}

struct NameKeys {
    KeyMemory memory;
    std::vector<std::string_view> keys;
    bool areWhole = true;
};

NameKeys MakeNameKeys(const std::vector<CString>& names, bool caseSensitive, const FolderPlaces* folders)
{
    NameKeys made;
    made.keys.reserve(names.size());
    const FileNameKeys writer(caseSensitive);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto length = static_cast<std::size_t>(names[i].GetLength());
        unsigned char* out = made.memory.Room(sizeof(std::size_t) + FileNameKeys::MaxSize(length));
        if (folders != nullptr)
            out = folders->Write(i, out);
        const FileNameKeys::Key key = writer.Write(names[i], out);
        made.keys.push_back(made.memory.Keep(key.end));
        made.areWhole = made.areWhole && key.isWhole;
    }
    return made;
}

// ---- sorting
// ----------------------------------------------------------------------------------------------------------

using Order = std::vector<KeySort::Entry>;

void PlaceInOrder(std::vector<CString>& strings, const Order& order)
{
    std::size_t inPlace = 0;
    std::size_t mirrored = 0;
    for (std::size_t i = 0; i < order.size(); ++i) {
        inPlace += order[i].index == i ? 1 : 0;
        mirrored += order[i].index == order.size() - 1 - i ? 1 : 0;
    }
    if (inPlace == order.size())
        return;
    if (mirrored == order.size())
        return std::reverse(strings.begin(), strings.end());
    std::vector<CString> placed;
    placed.reserve(strings.size());
    for (const KeySort::Entry& entry : order)
        placed.push_back(std::move(strings[entry.index]));
    strings.swap(placed);
}

Order OrderOfTexts(const std::vector<CString>& texts, bool ascending, bool caseSensitive)
{
    std::vector<std::string_view> keys;
    keys.reserve(texts.size());
    for (const CString& text : texts)
        keys.emplace_back(text.GetString()); // up to the first NUL
    const auto folding =
        caseSensitive ? PackedText::CaseFolding::Exact() : PackedText::CaseFolding::Runtime();
    return KeySort(keys, folding, ascending).Sort();
}

// By the keys as far as they go, then by the rule.
Order OrderByRule(const std::vector<CString>& names, const std::vector<std::string_view>& keys,
                  bool ascending, bool caseSensitive)
{
    const auto compare = [&](std::size_t a, std::size_t b) {
        const std::size_t common = std::min(keys[a].size(), keys[b].size());
        const int bytes = std::memcmp(keys[a].data(), keys[b].data(), common);
        return bytes != 0 ? bytes : FileNameOrder::Compare(names[a], names[b], caseSensitive);
    };
    Order order(names.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i].index = i;
    BoundedSort::Sort(order, [&](const KeySort::Entry& a, const KeySort::Entry& b) {
        const int result = compare(a.index, b.index);
        return ascending ? result < 0 : result > 0;
    });
    return order;
}

Order OrderOfNames(const std::vector<CString>& names, bool ascending, bool caseSensitive,
                   const FolderPlaces* folders)
{
    const NameKeys made = MakeNameKeys(names, caseSensitive, folders);
    if (!made.areWhole)
        return OrderByRule(names, made.keys, ascending, caseSensitive);
    return KeySort(made.keys, PackedText::CaseFolding::Exact(), ascending).Sort();
}

Order OrderOfPaths(const std::vector<CString>& paths, bool ascending, bool caseSensitive)
{
    const FolderPlaces folders(paths, caseSensitive);
    return OrderOfNames(paths, ascending, caseSensitive, &folders);
}

} // namespace

bool TextArray::SortCompareItems(const CString& a, const CString& b, bool ascending, bool caseSensitive,
                                 Content content)
{
    const int result = CompareItems(a, b, caseSensitive, content);
    return ascending ? result < 0 : result > 0;
}

int TextArray::CompareDirs(const CString& a, const CString& b, bool caseSensitive)
{
    return CompareFolders(CString(ComparedFolder(a)), CString(ComparedFolder(b)), caseSensitive);
}

int TextArray::CompareFiles(const CString& a, const CString& b, bool caseSensitive)
{
    return FileNameOrder::Compare(a, b, caseSensitive);
}

int TextArray::DoCompareFiles(const CString& a, const CString& b, bool caseSensitive)
{
    FillDecimalSeparator();
    return CompareFiles(a, b, caseSensitive);
}

void TextArray::Sort(bool ascending, bool caseSensitive, Content content)
{
    if (!HaveMultiple())
        return;
    FillDecimalSeparator();
    switch (content) {
    case ContentText:
        return PlaceInOrder(m_strings, OrderOfTexts(m_strings, ascending, caseSensitive));
    case ContentPaths:
        return PlaceInOrder(m_strings, OrderOfPaths(m_strings, ascending, caseSensitive));
    case ContentFiles:
        return PlaceInOrder(m_strings, OrderOfNames(m_strings, ascending, caseSensitive, nullptr));
    default: // nothing comes before anything
        return;
    }
}

std::size_t TextArray::AddSorted(const CString& s, bool ascending, bool caseSensitive, Content content)
{
    if (IsEmpty()) {
        Add(s);
        return 0;
    }
    FillDecimalSeparator();
    if (ascending && SortCompareItems(m_strings.back(), s, true, caseSensitive, content)) {
        Add(s);
        return GetCount() - 1;
    }
    // Kept: puts s in front of a greater element, so that a descending list loses its order.
    if (!ascending && SortCompareItems(m_strings.front(), s, false, caseSensitive, content)) {
        Insert(0, s);
        return 0;
    }
    const CString added = s; // s may be an element of this array
    Insert(ascending ? GetCount() : 0, added);
    Sort(ascending, caseSensitive, content);
    bool found = false;
    return Find(added, caseSensitive, found);
}
