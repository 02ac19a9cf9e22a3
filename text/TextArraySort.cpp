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
#include "framework/LargeMemory.h"
#include "text/BoundedSort.h"
#include "text/FileNameOrder.h"
#include "text/HashIndex.h"
#include "text/ItemEquality.h"
#include "text/KeySort.h"
#include "text/Prefetch.h"

namespace {

void FillDecimalSeparator()
{
    if (!TextArray::m_csDecimal.IsEmpty())
        return;
    if (LocaleUtils::m_csDecimalSeparator.IsEmpty())
        LocaleUtils::m_csDecimalSeparator = LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL);
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

// ---- keys -----------------------------------------------------------------------------------------------

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

// The different folders of an array of paths, byte by byte as they are compared; each is looked at once.
class Folders {
public:
    std::size_t NumberOf(std::string_view folder)
    {
        const std::uint64_t hash = HashText(folder, m_folding);
        const auto isSame = [&](std::size_t number) { return m_folders[number] == folder; };
        const std::size_t number = m_index.FindOrAdd(hash, m_folders.size(), isSame);
        if (number == m_folders.size())
            Add(folder, hash);
        return number;
    }
    // For each number the folder's place in the order of folders; folders that compare equal share one.
    std::vector<std::size_t> Places(bool caseSensitive) const;

private:
    // There are far fewer folders than paths: the index starts small and grows.
    void Add(std::string_view folder, std::uint64_t hash)
    {
        m_folders.push_back(folder);
        m_hashes.push_back(hash);
        if (m_folders.size() < m_room)
            return;
        m_room *= 4;
        m_index = HashIndex(m_room);
        for (std::size_t number = 0; number < m_hashes.size(); ++number)
            m_index.FindOrAdd(m_hashes[number], number, [](std::size_t) { return false; });
    }

    PackedText::CaseFolding m_folding = PackedText::CaseFolding::Exact();
    std::vector<std::string_view> m_folders;
    std::vector<std::uint64_t> m_hashes;
    std::size_t m_room = 64;
    HashIndex m_index{m_room};
};

std::vector<std::size_t> Folders::Places(bool caseSensitive) const
{
    struct Folder {
        CString text;
        std::size_t number;
    };
    std::vector<Folder> order;
    for (const std::string_view folder : m_folders)
        order.push_back({CString(folder), order.size()});
    BoundedSort::Sort(order, [=](const Folder& a, const Folder& b) {
        return CompareFolders(a.text, b.text, caseSensitive) < 0;
    });
    std::vector<std::size_t> places(order.size());
    std::size_t place = 0;
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i > 0 && CompareFolders(order[i - 1].text, order[i].text, caseSensitive) != 0)
            ++place;
        places[order[i].number] = place;
    }
    return places;
}

struct NameKeys {
    KeyMemory memory;
    std::vector<std::string_view> keys;
    bool areWhole = true;

    void Add(const FileNameKeys& writer, const CString& path, const FileNameOrder::Pieces& name,
             std::size_t bytesInFront)
    {
        unsigned char* const out = memory.Room(bytesInFront + FileNameKeys::MaxSize(path));
        const FileNameKeys::Key key = writer.Write(name, out + bytesInFront);
        keys.push_back(memory.Keep(key.end));
        areWhole = areWhole && key.isWhole;
    }
};

NameKeys MakeFileKeys(const std::vector<CString>& names, bool caseSensitive)
{
    NameKeys made;
    LargeMemory::Reserve(made.keys, names.size());
    const FileNameKeys writer(caseSensitive);
    for (const CString& name : names)
        made.Add(writer, name, FileNameOrder::Split(name), 0);
    return made;
}

// The folder's place, highest byte first, and the key of the name.
NameKeys MakePathKeys(const std::vector<CString>& paths, bool caseSensitive)
{
    const auto placeBytes = static_cast<std::size_t>(std::bit_width(paths.size()) + 7) / 8;
    NameKeys made;
    LargeMemory::Reserve(made.keys, paths.size());
    const FileNameKeys writer(caseSensitive);
    Folders folders;
    std::vector<std::size_t> numbers;
    numbers.reserve(paths.size());
    for (const CString& path : paths) {
        const FileNameOrder::Pieces pieces = FileNameOrder::Split(path);
        numbers.push_back(folders.NumberOf(ComparedFolder(pieces.folder)));
        made.Add(writer, path, pieces, placeBytes);
    }
    const std::vector<std::size_t> places = folders.Places(caseSensitive);
    for (std::size_t i = 0; i < paths.size(); ++i) {
        char* const key = const_cast<char*>(made.keys[i].data()); // in the memory that was kept for it
        for (std::size_t byte = 0; byte < placeBytes; ++byte)
            key[byte] = static_cast<char>(places[numbers[i]] >> (8 * (placeBytes - 1 - byte)));
    }
    return made;
}

// ---- sorting --------------------------------------------------------------------------------------------

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
    LargeMemory::Reserve(placed, strings.size());
    constexpr std::size_t Ahead = 16; // the strings lie anywhere: the processor is told of them in time
    for (std::size_t i = 0; i < order.size(); ++i) {
        Prefetch(&strings[order[std::min(i + Ahead, order.size() - 1)].index]);
        placed.push_back(std::move(strings[order[i].index]));
    }
    strings.swap(placed);
}

Order OrderOfTexts(const std::vector<CString>& texts, bool ascending, bool caseSensitive)
{
    std::vector<std::string_view> keys;
    LargeMemory::Reserve(keys, texts.size());
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
    const CString decimal = TextArray::m_csDecimal;
    std::vector<FileNameOrder::ReadName> readNames;
    readNames.reserve(names.size());
    for (const CString& name : names)
        readNames.emplace_back(name, decimal);
    const auto compare = [&](std::size_t a, std::size_t b) {
        const std::size_t common = std::min(keys[a].size(), keys[b].size());
        const int bytes = std::memcmp(keys[a].data(), keys[b].data(), common);
        return bytes != 0 ? bytes
                          : FileNameOrder::ReadName::Compare(readNames[a], readNames[b], caseSensitive);
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

Order OrderOfNames(const std::vector<CString>& names, const NameKeys& made, bool ascending,
                   bool caseSensitive)
{
    if (!made.areWhole)
        return OrderByRule(names, made.keys, ascending, caseSensitive);
    return KeySort(made.keys, PackedText::CaseFolding::Exact(), ascending).Sort();
}

// The keys are gone again when these return: the strings are moved into the memory that held them.
Order OrderOfPaths(const std::vector<CString>& paths, bool ascending, bool caseSensitive)
{
    return OrderOfNames(paths, MakePathKeys(paths, caseSensitive), ascending, caseSensitive);
}

Order OrderOfFiles(const std::vector<CString>& paths, bool ascending, bool caseSensitive)
{
    return OrderOfNames(paths, MakeFileKeys(paths, caseSensitive), ascending, caseSensitive);
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
    return CompareFolders(CString(ComparedFolder(FileNameOrder::Split(a).folder)),
                          CString(ComparedFolder(FileNameOrder::Split(b).folder)), caseSensitive);
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
        return PlaceInOrder(m_strings, OrderOfFiles(m_strings, ascending, caseSensitive));
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
