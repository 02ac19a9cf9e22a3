// FrameworkArray: what CByteArray and CStringArray have in common.
//
// Elements lie contiguously in index order. Sizes and indexes are std::ptrdiff_t, so the upper bound of an
// empty array is -1. An index outside the array is never an error: reading there gives a default value (0, an
// empty string), writing does nothing, except where an operation says that it grows the array. Nothing throws
// but std::length_error and std::bad_alloc. One thread at a time may use an array.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <vector>

template <class T>
class FrameworkArray {
public:
    using Index = std::ptrdiff_t;

    // ---- size -------------------------------------------------------------------------------------------
    Index GetSize() const noexcept { return static_cast<Index>(m_items.size()); }
    Index GetCount() const noexcept { return GetSize(); }
    Index GetUpperBound() const noexcept { return GetSize() - 1; }
    bool IsEmpty() const noexcept { return m_items.empty(); }
    // New elements have the default value; a size below 0 counts as 0. The second argument is a hint that
    // nothing depends on.
    void SetSize(Index size, Index = -1)
    {
        m_items.resize(static_cast<std::size_t>(std::max<Index>(size, 0)));
    }
    void RemoveAll() noexcept { m_items.clear(); }
    void FreeExtra() { m_items.shrink_to_fit(); }

    // ---- elements ---------------------------------------------------------------------------------------
    T GetAt(Index index) const { return IsInside(index) ? Item(index) : T(); }
    void SetAt(Index index, const T& value)
    {
        if (IsInside(index))
            Item(index) = value;
    }
    // Outside the array the reference is to a spare element, reset by each such call.
    T& ElementAt(Index index)
    {
        if (IsInside(index))
            return Item(index);
        return m_spare = T();
    }
    T& operator[](Index index) { return ElementAt(index); }
    T operator[](Index index) const { return GetAt(index); }
    // The first of GetSize() elements; may be null when there is none. Holds until the next change of size.
    T* GetData() noexcept { return m_items.data(); }
    const T* GetData() const noexcept { return m_items.data(); }
    auto begin() noexcept { return m_items.begin(); }
    auto end() noexcept { return m_items.end(); }
    auto begin() const noexcept { return m_items.begin(); }
    auto end() const noexcept { return m_items.end(); }
    friend bool operator==(const FrameworkArray& a, const FrameworkArray& b)
    {
        return a.m_items == b.m_items;
    }

    // ---- adding and removing ----------------------------------------------------------------------------
    Index Add(const T& value) // the index of the new element
    {
        m_items.push_back(value);
        return GetUpperBound();
    }
    Index Append(const FrameworkArray& other) // the index of the first new element
    {
        const Index first = GetSize();
        InsertAt(first, other);
        return first;
    }
    void Copy(const FrameworkArray& other) { m_items = other.m_items; }
    // An index past the end fills the gap with default values; one below 0 does nothing.
    void SetAtGrow(Index index, const T& value)
    {
        const T copy = value; // may be one of our own
        GrowTo(index < 0 ? 0 : index + 1);
        SetAt(index, copy);
    }
    void InsertAt(Index index, const T& value, Index count = 1)
    {
        if (index < 0 || count <= 0)
            return;
        const T copy = value;
        GrowTo(index);
        m_items.insert(m_items.begin() + index, static_cast<std::size_t>(count), copy);
    }
    void InsertAt(Index index, const FrameworkArray& other)
    {
        if (index < 0)
            return;
        const std::vector<T> copies = other.m_items; // may be this one
        GrowTo(index);
        m_items.insert(m_items.begin() + index, copies.begin(), copies.end());
    }
    template <std::derived_from<FrameworkArray> Array> // a template, so that a 0 stays an element
    void InsertAt(Index index, const Array* other)     // nothing for a null pointer
    {
        if (other != nullptr)
            InsertAt(index, *other);
    }
    // As many of the elements from `index` on as there are.
    void RemoveAt(Index index, Index count = 1)
    {
        if (!IsInside(index) || count <= 0)
            return;
        const auto first = m_items.begin() + index;
        m_items.erase(first, first + std::min(count, GetSize() - index));
    }

private:
    bool IsInside(Index index) const noexcept { return index >= 0 && index < GetSize(); }
    T& Item(Index index) { return m_items[static_cast<std::size_t>(index)]; }
    const T& Item(Index index) const { return m_items[static_cast<std::size_t>(index)]; }
    void GrowTo(Index size)
    {
        if (size > GetSize())
            SetSize(size);
    }

    std::vector<T> m_items;
    T m_spare{};
};
