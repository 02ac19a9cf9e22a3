#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <set>

#include "MRUArray.h"
#include "MRUArrayByTime.h"
#include "support/ArchiveBytes.h"
#include "support/Cases.h"
#include "support/RandomTexts.h"
#include "support/TextModels.h"

namespace {

// ---- the rules as they read -----------------------------------------------------------------------------

// Texts with the highest rank first, in the order in which they came to a rank; searched from the front.
template <class Rank>
struct Ranked : std::vector<std::pair<Rank, CString>> {
    auto Find(const CString& text)
    {
        return std::find_if(this->begin(), this->end(),
                            [&](const auto& entry) { return entry.second.Compare(text) == 0; });
    }
    void File(Rank rank, const CString& text)
    {
        const auto isLower = [&](const auto& entry) { return entry.first < rank; };
        this->insert(std::find_if(this->begin(), this->end(), isLower), {rank, text});
    }
    Rank Take(const CString& text)
    {
        const auto at = Find(text);
        const Rank rank = at == this->end() ? Rank{} : at->first;
        if (at != this->end())
            this->erase(at);
        return rank;
    }
    Texts First(uint64 most) const
    {
        Texts texts;
        for (const auto& [rank, text] : *this)
            if (texts.size() < most)
                texts.push_back(text);
        return texts;
    }
    Texts All() const { return First(this->size()); }
    // As after storing and loading: up to the limit, and each text once.
    void Reload(uint64 most)
    {
        Ranked kept;
        for (std::size_t i = 0; i < this->size() && i < most; ++i)
            if (kept.Find((*this)[i].second) == kept.end())
                kept.push_back((*this)[i]);
        *this = kept;
    }
};

struct SlowLists {
    uint64 maxRecent = 14, maxPopular = 7;
    Ranked<int> recent, popular;

    void SetRestrictions(uint64 recentLimit, uint64 popularLimit)
    {
        maxRecent = recentLimit;
        maxPopular = popularLimit;
    }
    void AddToRecent(const CString& text)
    {
        const auto at = recent.Find(text);
        const CString moved = at == recent.end() ? text : at->second;
        if (maxRecent > 0) {
            recent.Take(text);
            recent.insert(recent.begin(), {0, moved});
        }
    }
    void AddToPopular(const CString& text)
    {
        if (maxPopular > 0)
            popular.File(popular.Take(text) + 1, text);
    }
    void Add(const CString& text)
    {
        AddToRecent(text);
        AddToPopular(text);
    }
    void Remove(const CString& text)
    {
        if (maxRecent > 0)
            recent.Take(text);
        if (maxPopular > 0)
            popular.Take(text);
    }
    void ReplaceInAll(const CString& from, const CString& to)
    {
        for (auto* list : {&recent, &popular})
            for (auto& [rank, text] : *list)
                if (!from.IsEmpty() && !to.IsEmpty())
                    text.Replace(from, to);
    }
    void Clear() { recent = popular = {}; }
};

struct SlowTimes : Ranked<uint64> {
    void ApplyDuration(const CString& text, uint64 total) { File(total, text); }
    void Add(const CString& text, uint64 duration) { File(Take(text) + duration, text); }
    void Remove(const CString& text) { Take(text); }
    void RemoveAllBut(const TextArray& keep)
    {
        std::erase_if(*this, [&](const auto& entry) { return !keep.Have(entry.second); });
    }
    void Rename(const CString& from, const CString& to)
    {
        if (const auto at = Find(from); at != end())
            at->second = to;
    }
};

template <class Lists>
std::string StoredBytesOf(Lists& lists)
{
    return StoredBy([&](CArchive& archive) { lists.Serialize(archive); });
}

template <class Lists>
void Load(Lists& lists, const std::string& bytes)
{
    LoadFrom(bytes, [&](CArchive& archive) {
        lists.Serialize(archive);
        EXPECT_EQ(archive.GetBytesAhead(), 0u);
    });
}

template <class Lists>
void Reload(Lists& lists)
{
    Load(lists, StoredBytesOf(lists));
}

void Reload(SlowLists& lists)
{
    lists.recent.Reload(lists.maxRecent);
    lists.popular.Reload(lists.maxPopular);
}

void Reload(SlowTimes&) {}

// ---- comparing with them --------------------------------------------------------------------------------

void ExpectSame(const MRUArray& lists, SlowLists& slow)
{
    TextArray all, limited, popular, popularLimited;
    lists.GetRecent(all, false);
    lists.GetRecent(limited, true);
    lists.GetPopular(popular, false);
    lists.GetPopular(popularLimited, true);
    const Texts recent = slow.recent.All();
    std::set<int> counts;
    for (const auto& [count, text] : slow.popular)
        counts.insert(count);
    ASSERT_EQ(TextsOf(all), recent);
    ASSERT_EQ(TextsOf(limited), slow.recent.First(slow.maxRecent));
    ASSERT_EQ(TextsOf(popular), slow.popular.All());
    ASSERT_EQ(TextsOf(popularLimited), slow.popular.First(std::min<uint64>(slow.maxPopular, counts.size())));
    ASSERT_EQ(lists.GetRecentCount(), limited.GetCount());
    ASSERT_TRUE(lists.HaveRecent() == !all.IsEmpty() && lists.HavePopular() == !popular.IsEmpty());
    for (const std::size_t i : {0u, 1u, 31u, 32u, 33u, 60u, 1000u})
        ASSERT_EQ(lists.GetRecentAt(i), all.GetCopyAt(i));
    for (const CString& current : {CString(), all.GetFirst(), CString("b")}) {
        const auto isOther = [&](const CString& text) {
            return current.IsEmpty() || text.Compare(current) != 0;
        };
        const auto other = std::find_if(recent.begin(), recent.end(), isOther);
        ASSERT_EQ(lists.GetRecent(current), other == recent.end() ? CString() : *other);
        ASSERT_EQ(lists.HaveRecent(current), all.Have(current));
    }
}

void ExpectSame(const MRUArrayByTime& times, SlowTimes& slow)
{
    for (const int count : {-1, 0, 1, 3, 1000, std::numeric_limits<int>::min()}) {
        TextArray popular;
        times.GetPopular(popular, count);
        ASSERT_EQ(TextsOf(popular), count < 0 ? slow.All() : slow.First(static_cast<uint64>(count)));
    }
    ASSERT_EQ(times.HavePopular(), !slow.empty());
}

// One operation for the lists and for their model.
template <class Lists, class Slow>
struct Operation {
    template <class Change>
    Operation(Change change) : lists(change), slow(change)
    {
    }
    std::function<void(Lists&)> lists;
    std::function<void(Slow&)> slow;
};

// Short texts of few letters, so that they meet often; some go on behind a NUL, where Compare does not look.
CString RandomText(RandomTexts& random)
{
    return random.Make(std::string("abc\xE9"), random.Below(4)) +
           std::string("\0x", random.OneIn(10) ? 2 : 0);
}

template <class Lists, class Slow, class Choose>
void Follow(RandomTexts& random, Choose choose)
{
    Lists lists;
    Slow slow;
    for (int step = 0; step < 6000; ++step) {
        Lists assigned;
        assigned = lists;
        const Lists copy = assigned;
        Slow before = slow;
        const Operation<Lists, Slow> operation = choose(RandomText(random), RandomText(random));
        operation.lists(lists);
        operation.slow(slow);
        ASSERT_NO_FATAL_FAILURE(ExpectSame(lists, slow)) << "step " << step;
        ASSERT_NO_FATAL_FAILURE(ExpectSame(copy, before)) << "the copy, step " << step;
    }
}

TEST(MruArray, FollowsItsRulesThroughRandomOperations)
{
    RandomTexts random;
    using Step = Operation<MRUArray, SlowLists>;
    Follow<MRUArray, SlowLists>(random, [&](const CString& text, const CString& other) {
        const auto limit = [&] { return random.OneIn(8) ? random.Below(15) : 1000; }; // mostly long lists
        const uint64 recent = limit(), popular = limit();
        const Step steps[] = {[=](auto& l) { l.AddToRecent(text); },
                              [=](auto& l) { l.AddToPopular(text); },
                              [=](auto& l) { l.Remove(text); },
                              [=](auto& l) { l.Remove(text); },
                              [=](auto& l) { l.ReplaceInAll(text, other); },
                              [=](auto& l) { l.SetRestrictions(recent, popular); },
                              [=](auto& l) { Reload(l); }};
        const Step clear = [](auto& l) { l.Clear(); };
        const Step add = [=](auto& l) { l.Add(text); };
        return random.OneIn(500) ? clear : random.OneIn(2) ? add : random.Pick(steps);
    });
}

TEST(MruArrayByTime, FollowsItsRulesThroughRandomOperations)
{
    RandomTexts random;
    using Step = Operation<MRUArrayByTime, SlowTimes>;
    Follow<MRUArrayByTime, SlowTimes>(random, [&](const CString& text, const CString& other) {
        const uint64 duration = random.OneIn(50) ? ~uint64{0} - random.Below(5) : random.Below(5);
        TextArray keep;
        for (std::size_t count = random.Below(30); count > 0; --count)
            keep.Add(RandomText(random));
        const Step steps[] = {
            [=](auto& t) { t.ApplyDuration(text, duration); }, // may hold it twice from now on
            [=](auto& t) { t.Remove(text); }, [=](auto& t) { t.Remove(text); },
            [=](auto& t) { t.Rename(text, other); }, [=](auto& t) { Reload(t); }};
        const Step trim = [=](auto& t) { t.RemoveAllBut(keep); };
        const Step add = [=](auto& t) { t.Add(text, duration); };
        return random.OneIn(200) ? trim : random.OneIn(2) ? add : random.Pick(steps);
    });
}

TEST(MruArray, SortsAlsoWhatStoodInTheOutput)
{
    TextArray out = ListOf("b;a");
    MRUArray().GetRecent(out, true, true, true);
    EXPECT_EQ(LineOf(out), "a;b");
}

// ---- records --------------------------------------------------------------------------------------------

const char* const records[] = {
    "0100 0200 02000000 0000 01 61 0100 1000 fd4fbd9aabe269f05709321db75a6855 01000000 02000000 0200 "
    "01000000 0000 01 63",
    "0200 0300 0100 0200000000000000 0000 01 61 0000 01 62 01000000 02000000 0200 01000000 0100 1000 "
    "5e9afbeb64916af0b250c04079ee9f2d",
    "0300 0300 0100 0200000000000000 0100 1000 ec24106160bdd9ce45acc154b8c61894 0000 01 62 "
    "0100 0100000000000000 02000000 0300 0100 0100000000000000 0100 1000 5e9afbeb64916af0b250c04079ee9f2d",
    "0400 0400 0100 0200000000000000 01 61 01 62 "
    "0100 0100000000000000 02000000 0400 0100 0100000000000000 01 63",
};

// Damaged records either load or raise one of two exceptions, which leave the lists as they were.
template <class Lists>
void SurvivesDamage(const std::string& bytes, Lists before)
{
    constexpr int Cut = 256; // the record ends there
    const std::string wanted = StoredBytesOf(before);
    for (std::size_t at = 0; at < bytes.size(); ++at)
        for (int value = 0; value <= Cut; ++value) {
            std::string damaged = bytes;
            damaged.replace(at, value == Cut ? bytes.size() : 1, value != Cut, static_cast<char>(value));
            Lists lists = before;
            bool isLoaded = false;
            try {
                LoadFrom(damaged, [&](CArchive& archive) { lists.Serialize(archive); });
                isLoaded = true;
            } catch (const CArchiveException&) {
            } catch (const std::length_error&) {
            }
            EXPECT_FALSE(isLoaded && (value == Cut || (at == 0 && value > 4))); // no such version
            EXPECT_TRUE(isLoaded || StoredBytesOf(lists) == wanted);
        }
}

TEST(MruArray, ReadsEveryRecordVersionAndWritesTheLast)
{
    for (const char* hex : records) {
        SCOPED_TRACE(hex);
        MRUArray lists;
        lists.Add("kept");
        SurvivesDamage(BytesOf(hex), lists);
        Load(lists, BytesOf(hex));
        EXPECT_EQ(HexOf(StoredBytesOf(lists)), HexOf(BytesOf(records[3])));
    }
}

TEST(MruArray, UnusualRecordsAreMadeGood)
{
    MRUArray lists;
    Load(lists, BytesOf("0400 0400 0100 0300000000000000 01 61 01 62 01 61"
                        "0100 0300000000000000"
                        "FFFFFFFF 0400 0100 0000000000000000" // an empty bucket
                        "01000000 0400 0100 0200000000000000 01 61 01 62"
                        "FFFFFF7F 0400 0100 0200000000000000 01 61 01 63"));
    TextArray recent, popular;
    lists.GetRecent(recent);
    lists.AddToPopular("a"); // no count is above INT_MAX
    lists.GetPopular(popular, false);
    EXPECT_EQ(LineOf(recent) + "," + LineOf(popular), "a;b,c;a;b");
}

TEST(MruArrayByTime, ReadsBothLayouts)
{
    for (const auto& [record, texts] : Cases<2>("time records")) {
        SCOPED_TRACE(record);
        MRUArrayByTime times;
        times.Add("old", 1);
        Load(times, BytesOf(record));
        TextArray popular;
        times.GetPopular(popular, -1);
        EXPECT_EQ(LineOf(popular), texts);
    }
    MRUArrayByTime times;
    times.Add("a", 5);
    times.Add("b", 258);
    const std::string stored = StoredBytesOf(times);
    EXPECT_EQ(HexOf(stored), HexOf(BytesOf("0100 0100 0200000000000000" // from the largest total down
                                           "0201000000000000 0400 0100 0100000000000000 01 62"
                                           "0500000000000000 0400 0100 0100000000000000 01 61")));
    SurvivesDamage(stored, times);
}

// Just the number of totals at which a current count could be mistaken for a legacy one.
TEST(MruArrayByTime, ReadsManyTotalsBack)
{
    MRUArrayByTime times;
    for (uint64 i = 0; i < 65536; ++i)
        times.ApplyDuration("", i);
    MRUArrayByTime loaded = times;
    Reload(loaded);
    EXPECT_TRUE(StoredBytesOf(loaded) == StoredBytesOf(times));
}

} // namespace
