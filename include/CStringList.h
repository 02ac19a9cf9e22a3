// CStringList: a linked list of strings, walked by positions.
//
//   for (POSITION at = list.GetHeadPosition(); at != nullptr;)
//       Use(list.GetNext(at));
//
// A position stays good while its element is in the list, whatever happens to the others; it is of use to its
// own list only. Without an element (an empty list, a null position) readers answer with an empty string and
// changers do nothing, except where an operation says what it does. Nothing throws but std::bad_alloc, and
// Serialize what an archive does. One thread at a time may use a list.
//
// Of a list that may be changed, readers give the element itself; where there is none, the reference is to a
// spare element, reset by each such call.
#pragma once

#include "CString.h"
#include "Kvt01Api.h"

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <list>
#include <utility>

class CArchive;

class POSITION {
public:
    POSITION() = default;
    POSITION(std::nullptr_t) {}
    explicit operator bool() const { return m_isSet; }
    friend bool operator==(const POSITION& a, const POSITION& b)
    {
        return a.m_isSet == b.m_isSet && (!a.m_isSet || a.m_at == b.m_at);
    }

private:
    friend class CStringList;
    explicit POSITION(std::list<CString>::const_iterator at) : m_at(at), m_isSet(true) {}

    std::list<CString>::const_iterator m_at{};
    bool m_isSet = false;
};

class CStringList {
public:
    CStringList() = default;
    CStringList(std::initializer_list<CString> texts) : m_items(texts) {}

    std::ptrdiff_t GetSize() const noexcept { return static_cast<std::ptrdiff_t>(m_items.size()); }
    std::ptrdiff_t GetCount() const noexcept { return GetSize(); }
    bool IsEmpty() const noexcept { return m_items.empty(); }
    auto begin() noexcept { return m_items.begin(); }
    auto end() noexcept { return m_items.end(); }
    auto begin() const noexcept { return m_items.begin(); }
    auto end() const noexcept { return m_items.end(); }
    friend bool operator==(const CStringList& a, const CStringList& b) { return a.m_items == b.m_items; }

    // ---- both ends; a list given by pointer is added as a whole, in its order, and may be this one ------
    CString& GetHead() { return IsEmpty() ? Spare() : m_items.front(); }
    CString& GetTail() { return IsEmpty() ? Spare() : m_items.back(); }
    CString GetHead() const { return IsEmpty() ? CString() : m_items.front(); }
    CString GetTail() const { return IsEmpty() ? CString() : m_items.back(); }
    POSITION AddHead(const CString& s) { return POSITION(m_items.insert(m_items.begin(), s)); }
    POSITION AddTail(const CString& s) { return POSITION(m_items.insert(m_items.end(), s)); }
    void AddHead(const CStringList* list) { Splice(m_items.begin(), list); }
    void AddTail(const CStringList* list) { Splice(m_items.end(), list); }
    CString RemoveHead() { return Take(m_items.begin()); }
    CString RemoveTail() { return Take(IsEmpty() ? m_items.end() : std::prev(m_items.end())); }
    void RemoveAll() noexcept { m_items.clear(); }

    // ---- walking: GetNext and GetPrev answer with the element at the position and move on, to null at the
    // end
    POSITION GetHeadPosition() const { return PositionOf(m_items.begin()); }
    POSITION GetTailPosition() const { return IsEmpty() ? POSITION() : POSITION(std::prev(m_items.end())); }
    CString& GetNext(POSITION& at) { return GetAt(StepOn(at)); }
    CString& GetPrev(POSITION& at) { return GetAt(StepBack(at)); }
    CString GetNext(POSITION& at) const { return GetAt(StepOn(at)); }
    CString GetPrev(POSITION& at) const { return GetAt(StepBack(at)); }

    // ---- at a position ----------------------------------------------------------------------------------
    CString& GetAt(const POSITION& at) { return at == nullptr ? Spare() : *Changeable(at); }
    CString GetAt(const POSITION& at) const { return at == nullptr ? CString() : *at.m_at; }
    void SetAt(const POSITION& at, const CString& s)
    {
        if (at != nullptr)
            *Changeable(at) = s;
    }
    void RemoveAt(const POSITION& at)
    {
        if (at != nullptr)
            m_items.erase(at.m_at);
    }
    POSITION InsertBefore(const POSITION& at, const CString& s) // null: at the head
    {
        return POSITION(m_items.insert(at == nullptr ? m_items.cbegin() : at.m_at, s));
    }
    POSITION InsertAfter(const POSITION& at, const CString& s) // null: at the tail
    {
        return POSITION(m_items.insert(at == nullptr ? m_items.cend() : std::next(at.m_at), s));
    }

    // ---- searching, in time proportional to the steps; null when there is none --------------------------
    POSITION Find(const CString& s, const POSITION& after = nullptr) const // equal as whole counted texts
    {
        auto at = after == nullptr ? m_items.begin() : std::next(after.m_at);
        while (at != m_items.end() && *at != s)
            ++at;
        return PositionOf(at);
    }
    POSITION FindIndex(std::ptrdiff_t index) const
    {
        return index < 0 || index >= GetSize() ? POSITION() : POSITION(std::next(m_items.begin(), index));
    }

    // Stored: the number of texts as CArchive::WriteCount writes it, and the texts, the bytes of a
    // CStringArray. Loading replaces what the list held; at the end of the data, which raises
    // CArchiveException, it has the texts that were there.
    KVT01_API void Serialize(CArchive& archive);

private:
    using Items = std::list<CString>;

    CString& Spare() { return m_spare = CString(); }
    // The position, which moves on.
    POSITION StepOn(POSITION& at) const
    {
        const POSITION here = at;
        if (here != nullptr)
            at = PositionOf(std::next(here.m_at));
        return here;
    }
    POSITION StepBack(POSITION& at) const
    {
        const POSITION here = at;
        if (here != nullptr)
            at = here.m_at == m_items.begin() ? POSITION() : POSITION(std::prev(here.m_at));
        return here;
    }
    POSITION PositionOf(Items::const_iterator at) const
    {
        return at == m_items.end() ? POSITION() : POSITION(at);
    }
    Items::iterator Changeable(const POSITION& at) { return m_items.erase(at.m_at, at.m_at); }
    CString Take(Items::iterator at)
    {
        if (at == m_items.end())
            return {};
        CString taken = std::move(*at);
        m_items.erase(at);
        return taken;
    }
    void Splice(Items::const_iterator before, const CStringList* list)
    {
        if (list != nullptr)
            m_items.splice(before, Items(list->m_items));
    }

    Items m_items;
    CString m_spare;
};
