// Texts in buckets by rank, the highest rank first; inside a bucket they have an order of their own. An index
// from the text to its entries makes finding, moving and removing cost the same at every size; only the
// number of different ranks counts, by its logarithm, and how many times the same text is held.
//
// Texts are equal by CString::Compare. The same text may be held several times; Find gives the first. Copying
// is member by member: entries are linked by their places in a vector.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "BasicTypes.h"
#include "CString.h"

template <class Rank>
class RankedTexts {
public:
    using Place = std::uint32_t;
    static constexpr Place None = std::numeric_limits<Place>::max();

    std::size_t GetCount() const { return m_count; }
    std::size_t GetRankCount() const { return m_buckets.size(); }
    bool IsEmpty() const { return m_count == 0; }
    const CString& GetText(Place place) const { return m_entries[place].text; }
    Rank GetRank(Place place) const { return m_entries[place].rank; }

    // The first equal text in order, or None.
    Place Find(const CString& text) const
    {
        const std::size_t hash = HashOf(text);
        Place first = None;
        for (Place place = FirstInSlot(hash); place != None; place = m_entries[place].nextInSlot) {
            const Entry& entry = m_entries[place];
            if (entry.hash == hash && entry.text.Compare(text) == 0 &&
                (first == None || StandsBefore(entry, m_entries[first])))
                first = place;
        }
        return first;
    }

    void Append(Rank rank, const CString& text)
    {
        MakeRoom(rank);
        LinkLast(NewEntry(text), rank);
    }
    void Prepend(Rank rank, const CString& text)
    {
        MakeRoom(rank);
        LinkFirst(NewEntry(text), rank);
    }

    // To the end of a bucket, in another wording of an equal text.
    void MoveToEndOf(Rank rank, Place place, const CString& text)
    {
        m_entries[place].text = text;
        if (m_entries[place].rank == rank && m_entries[place].after == None)
            return;
        m_buckets[rank]; // the only step that can fail comes first
        Unlink(place);
        LinkLast(place, rank);
    }
    void MoveToFront(Place place)
    {
        const Rank rank = m_entries[place].rank;
        if (m_entries[place].before == None)
            return;
        Unlink(place);
        LinkFirst(place, rank);
    }
    void Remove(Place place)
    {
        Unlink(place);
        RemoveFromSlot(place);
        m_entries[place].text.Empty();
        m_entries[place].after = m_free;
        m_free = place;
        --m_count;
    }
    void SetText(Place place, const CString& text)
    {
        RemoveFromSlot(place);
        m_entries[place].text = text;
        m_entries[place].hash = HashOf(text);
        AddToSlot(place);
    }

    // Calls visit(place), which changes nothing here, for every entry in order until it answers false.
    template <class Visit>
    void ForEach(Visit visit) const
    {
        for (const auto& [rank, bucket] : m_buckets)
            for (Place place = bucket.first; place != None; place = m_entries[place].after)
                if (!visit(place))
                    return;
    }

private:
    struct Entry {
        CString text;
        std::size_t hash = 0;
        int64 order = 0; // smaller stands before greater inside a bucket
        Rank rank{};
        Place before = None; // in the bucket
        Place after = None;  // in the bucket; among the free entries, the next of them
        Place nextInSlot = None;
    };
    struct Bucket {
        Place first = None;
        Place last = None;
    };

    static std::size_t HashOf(const CString& text)
    {
        return std::hash<std::string_view>()(text.GetString()); // as far as Compare looks
    }
    static bool StandsBefore(const Entry& a, const Entry& b)
    {
        return a.rank != b.rank ? a.rank > b.rank : a.order < b.order;
    }

    // ---- entries ----------------------------------------------------------------------------------------
    // All that can fail when an entry is added, before anything is changed.
    void MakeRoom(Rank rank)
    {
        if (m_free == None && m_entries.size() >= None)
            throw std::length_error("too many texts");
        if (m_free == None && m_entries.size() == m_entries.capacity())
            m_entries.reserve(2 * m_entries.size() + 1);
        if (m_count == m_slots.size())
            GrowSlots();
        m_buckets[rank];
    }
    Place NewEntry(const CString& text)
    {
        Place place = m_free;
        if (place != None) {
            m_free = m_entries[place].after;
        } else {
            place = static_cast<Place>(m_entries.size());
            m_entries.emplace_back();
        }
        m_entries[place].text = text;
        m_entries[place].hash = HashOf(text);
        ++m_count;
        AddToSlot(place);
        return place;
    }

    // ---- the index --------------------------------------------------------------------------------------
    std::size_t SlotOf(std::size_t hash) const { return hash & (m_slots.size() - 1); }
    Place FirstInSlot(std::size_t hash) const { return m_slots.empty() ? None : m_slots[SlotOf(hash)]; }
    void AddToSlot(Place place)
    {
        Place& slot = m_slots[SlotOf(m_entries[place].hash)];
        m_entries[place].nextInSlot = slot;
        slot = place;
    }
    void RemoveFromSlot(Place place)
    {
        Place* link = &m_slots[SlotOf(m_entries[place].hash)];
        while (*link != place)
            link = &m_entries[*link].nextInSlot;
        *link = m_entries[place].nextInSlot;
    }
    void GrowSlots()
    {
        constexpr std::size_t FirstSize = 16;
        m_slots = std::vector<Place>(m_slots.empty() ? FirstSize : m_slots.size() * 2, None);
        ForEach([this](Place place) {
            AddToSlot(place);
            return true;
        });
    }

    // ---- buckets ----------------------------------------------------------------------------------------
    void LinkLast(Place place, Rank rank)
    {
        Bucket& bucket = m_buckets[rank];
        Entry& entry = m_entries[place];
        entry.rank = rank;
        entry.order = ++m_lastOrder;
        entry.before = bucket.last;
        entry.after = None;
        (bucket.last == None ? bucket.first : m_entries[bucket.last].after) = place;
        bucket.last = place;
    }
    void LinkFirst(Place place, Rank rank)
    {
        Bucket& bucket = m_buckets[rank];
        Entry& entry = m_entries[place];
        entry.rank = rank;
        entry.order = --m_firstOrder;
        entry.before = None;
        entry.after = bucket.first;
        (bucket.first == None ? bucket.last : m_entries[bucket.first].before) = place;
        bucket.first = place;
    }
    void Unlink(Place place)
    {
        const Entry& entry = m_entries[place];
        if (entry.before != None && entry.after != None) {
            m_entries[entry.before].after = entry.after;
            m_entries[entry.after].before = entry.before;
            return;
        }
        const auto at = m_buckets.find(entry.rank);
        Bucket& bucket = at->second;
        (entry.before == None ? bucket.first : m_entries[entry.before].after) = entry.after;
        (entry.after == None ? bucket.last : m_entries[entry.after].before) = entry.before;
        if (bucket.first == None)
            m_buckets.erase(at);
    }

    std::vector<Entry> m_entries;
    std::vector<Place> m_slots; // the first entry of each hash value; a power of two
    std::map<Rank, Bucket, std::greater<Rank>> m_buckets;
    std::size_t m_count = 0;
    Place m_free = None;
    int64 m_firstOrder = 0;
    int64 m_lastOrder = 0;
};
