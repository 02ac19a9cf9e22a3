// How a container lies in an archive, once for all of them: the header, and the elements of each type. A
// value type becomes storable in containers by one overload each of StoreValue and LoadValue.
#pragma once

#include <algorithm>
#include <bit>
#include <map>
#include <stdexcept>
#include <utility>
#include <vector>

#include "CArchive.h"
#include "CRect.h"
#include "Crypto.h"
#include "DateTime.h"
#include "SerializeData.h"
#include "TextArray.h"
#include "framework/LargeMemory.h"

namespace ContainerRecord {

// ---- the header -----------------------------------------------------------------------------------------

inline constexpr WORD CurrentVersion = 1;

inline void StoreHeader(CArchive& archive, uint64 count, WORD version = CurrentVersion)
{
    archive << version;
    SerializeData::SerializeLoopCounter(archive, count);
}

inline std::size_t CheckedCount(uint64 count, uint64 most)
{
    if (count > most)
        throw std::length_error("container in the archive is too long");
    return static_cast<std::size_t>(count);
}

// Makes room for the claimed elements of a list, but for more than a few only as far as the data ahead make
// them likely; beyond that the list grows as it is filled.
template <class Element>
void ReserveLikely(const CArchive& archive, std::vector<Element>& list, std::size_t count)
{
    constexpr std::size_t Few = 64;
    // Short texts take more memory than room in the archive.
    constexpr uint64 MemoryPerByte = std::is_arithmetic_v<Element> ? 1 : 8;
    if (count > Few) {
        const uint64 likely = Few + archive.GetBytesAhead() / sizeof(Element) * MemoryPerByte;
        count = static_cast<std::size_t>(std::min<uint64>({count, likely, list.max_size()}));
    }
    LargeMemory::Reserve(list, count);
}

// ---- values ---------------------------------------------------------------------------------------------

template <class Container>
void Store(CArchive& archive, const Container& container);
template <class Container>
void Load(CArchive& archive, Container& container, bool legacy);

// A container as a value in another one; below, the values that are no containers.
template <class Container>
void StoreValue(CArchive& archive, const Container& container)
{
    Store(archive, container);
}
template <class Container>
void LoadValue(CArchive& archive, Container& container, bool legacy)
{
    Load(archive, container, legacy);
}

template <class Value>
concept Streamed = ArchiveNumber<Value> || OneOf<Value, bool, CString, std::string>;

template <Streamed Value>
void StoreValue(CArchive& archive, const Value& value)
{
    archive << value;
}
template <Streamed Value>
void LoadValue(CArchive& archive, Value& value, bool)
{
    archive >> value;
}

inline void StoreValue(CArchive& archive, const CRect& rect)
{
    archive << rect.left << rect.top << rect.right << rect.bottom;
}
inline void LoadValue(CArchive& archive, CRect& rect, bool)
{
    archive >> rect.left >> rect.top >> rect.right >> rect.bottom;
}

inline void StoreValue(CArchive& archive, DateTime date)
{
    date.Serialize(archive);
}
inline void LoadValue(CArchive& archive, DateTime& date, bool)
{
    date.Serialize(archive);
}

inline void StoreValue(CArchive& archive, const TextArray& texts)
{
    const_cast<TextArray&>(texts).Serialize(archive); // storing changes nothing
}
inline void LoadValue(CArchive& archive, TextArray& texts, bool)
{
    texts.Serialize(archive);
}

// How the elements of a container are loaded: each by the rule of its type, or
struct PlainValue {
    bool legacy;
    template <class Value>
    void operator()(CArchive& archive, Value& value) const
    {
        LoadValue(archive, value, legacy);
    }
};
// the texts as encrypted-string records.
struct ProtectedValue {
    void operator()(CArchive& archive, CString& text) const { Crypto::Serialize(archive, text); }
    void operator()(CArchive& archive, TextArray& texts) const { texts.Serialize(archive, true); }
    void operator()(CArchive& archive, int& value) const { archive >> value; }
};

// ---- elements -------------------------------------------------------------------------------------------

template <class Element>
concept Block = ArchiveNumber<Element> && std::endian::native == std::endian::little;

template <class Container>
void StoreElements(CArchive& archive, const Container& container)
{
    for (const auto& element : container)
        StoreValue(archive, element);
}
template <class Key, class Value, class Order>
void StoreElements(CArchive& archive, const std::map<Key, Value, Order>& map)
{
    for (const auto& [key, value] : map) {
        StoreValue(archive, key);
        StoreValue(archive, value);
    }
}
template <Block Number>
void StoreElements(CArchive& archive, const std::vector<Number>& list)
{
    archive.Write(list.data(), list.size() * sizeof(Number));
}
inline void StoreElements(CArchive& archive, const std::vector<bool>& list)
{
    for (const bool element : list)
        archive << element;
}

template <class Element, class LoadOne>
constexpr bool IsPlainText = std::is_same_v<Element, CString>&& std::is_same_v<LoadOne, PlainValue>;

// A new element. Plain texts are nearly always made straight from the archive's buffer.
template <class Element, class LoadOne>
Element Loaded(CArchive& archive, LoadOne loadOne)
{
    if constexpr (IsPlainText<Element, LoadOne>)
        if (std::string_view text; archive.TakeBufferedText(text))
            return CString(text.data(), static_cast<int>(text.size()));
    Element element{};
    loadOne(archive, element);
    return element;
}

template <class Element, class LoadOne>
void LoadElements(CArchive& archive, std::vector<Element>& list, std::size_t count, LoadOne loadOne)
{
    if constexpr (OneOf<Element, CString, std::string>) // texts are replaced where they stand
        if (count == list.size()) {
            for (Element& element : list)
                loadOne(archive, element);
            return;
        }
    list.clear();
    ReserveLikely(archive, list, count);
    while (list.size() < count) {
        if constexpr (IsPlainText<Element, LoadOne>)
            archive.TakeBufferedTexts(count - list.size(), [&](const char* text, int length) {
                list.emplace_back(text, length); // nearly all of them
            });
        if (list.size() < count)
            list.push_back(Loaded<Element>(archive, loadOne));
    }
}

// Numbers move in blocks that stay in the processor's cache between being made and being filled.
template <Block Number, class LoadOne>
void LoadElements(CArchive& archive, std::vector<Number>& list, std::size_t count, LoadOne)
{
    constexpr std::size_t Step = 128 * 1024 / sizeof(Number);
    list.clear();
    ReserveLikely(archive, list, count);
    for (std::size_t done = 0; done < count;) {
        const std::size_t step = std::min(count - done, Step);
        list.resize(done + step);
        const std::size_t got = archive.Read(list.data() + done, step * sizeof(Number)) / sizeof(Number);
        done += got;
        if (got < step) {
            list.resize(done);
            throw CArchiveException(CArchiveException::endOfFile);
        }
    }
}

// Stored sets and maps are sorted, so the place of the next element is nearly always the end.
template <class Set, class LoadOne>
requires requires
{
    typename Set::key_type;
}
void LoadElements(CArchive& archive, Set& set, std::size_t count, LoadOne loadOne)
{
    set.clear();
    for (std::size_t i = 0; i < count; ++i)
        set.insert(set.end(), Loaded<typename Set::key_type>(archive, loadOne));
}
template <class Key, class Value, class Order, class LoadOne>
void LoadElements(CArchive& archive, std::map<Key, Value, Order>& map, std::size_t count, LoadOne loadOne)
{
    map.clear();
    for (std::size_t i = 0; i < count; ++i) {
        Key key = Loaded<Key>(archive, loadOne);
        Value value = Loaded<Value>(archive, loadOne);
        map.emplace_hint(map.end(), std::move(key), Value())->second = std::move(value);
    }
}

// ---- whole containers -----------------------------------------------------------------------------------

template <class Container>
void Store(CArchive& archive, const Container& container)
{
    StoreHeader(archive, container.size());
    StoreElements(archive, container);
}

template <class Container, class LoadOne>
void LoadBy(CArchive& archive, Container& container, bool legacy, LoadOne loadOne)
{
    WORD version = 0;
    const uint64 count = SerializeData::DeserializeLoopCounter(archive, legacy, version);
    LoadElements(archive, container, CheckedCount(count, container.max_size()), loadOne);
}
template <class Container>
void Load(CArchive& archive, Container& container, bool legacy)
{
    LoadBy(archive, container, legacy, PlainValue{legacy});
}

template <class Container>
void Serialize(CArchive& archive, Container& container, bool legacy)
{
    if (archive.IsStoring())
        Store(archive, container);
    else
        Load(archive, container, legacy);
}

} // namespace ContainerRecord
