#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "MRUArray.h"
#include "MRUArrayByTime.h"
#include "support/ArchiveBytes.h"

namespace {

using List = std::vector<CString>;
template <class Rank>
using Buckets = std::map<Rank, List, std::greater<Rank>>;

List AsList(const TextArray& texts)
{
    return List(texts.begin(), texts.end());
}

TextArray AsArray(const List& list)
{
    TextArray texts;
    texts.CopyFromVector(list);
    return texts;
}

List::iterator FindIn(List& list, const CString& text)
{
    return std::find_if(list.begin(), list.end(), [&](const CString& s) { return s.Compare(text) == 0; });
}

// ---- the rules as they read, with nothing but lists searched from the front -----------------------------

template <class Rank>
bool TakeFromBuckets(Buckets<Rank>& buckets, const CString& text, Rank& rank)
{
    for (auto& [bucketRank, bucket] : buckets)
        if (const auto at = FindIn(bucket, text); at != bucket.end()) {
            rank = bucketRank;
            bucket.erase(at);
            if (bucket.empty())
                buckets.erase(bucketRank);
            return true;
        }
    return false;
}

template <class Rank>
List Flattened(const Buckets<Rank>& buckets)
{
    List all;
    for (const auto& [rank, bucket] : buckets)
        all.insert(all.end(), bucket.begin(), bucket.end());
    return all;
}

List FirstOf(List list, uint64 most)
{
    list.resize(static_cast<std::size_t>(std::min<uint64>(most, list.size())));
    return list;
}

struct SlowLists {
    uint64 maxRecent = 14, maxPopular = 7;
    List recent;
    Buckets<int> popular;

    void AddToRecent(const CString& text)
    {
        if (maxRecent == 0)
            return;
        if (FindIn(recent, text) == recent.end())
            recent.push_back(text);
        const auto at = FindIn(recent, text);
        std::rotate(recent.begin(), at, at + 1);
    }
    void AddToPopular(const CString& text)
    {
        if (maxPopular == 0)
            return;
        int count = 0;
        TakeFromBuckets(popular, text, count);
        popular[count + 1].push_back(text);
    }
    void Remove(const CString& text)
    {
        if (const auto at = FindIn(recent, text); maxRecent > 0 && at != recent.end())
            recent.erase(at);
        int count = 0;
        if (maxPopular > 0)
            TakeFromBuckets(popular, text, count);
    }
    void ReplaceInAll(const CString& from, const CString& to)
    {
        if (from.IsEmpty() || to.IsEmpty())
            return;
        for (CString& text : recent)
            text.Replace(from, to);
        for (auto& [count, bucket] : popular)
            for (CString& text : bucket)
                text.Replace(from, to);
    }
    CString GetRecent(const CString& current) const
    {
        for (const CString& text : recent)
            if (current.IsEmpty() || text.Compare(current) != 0)
                return text;
        return CString();
    }
    // What is left after storing and loading.
    void StoreAndLoad()
    {
        recent = FirstOf(recent, maxRecent);
        DropRepeated(recent);
        Buckets<int> kept;
        uint64 room = maxPopular;
        List seen;
        for (const auto& [count, bucket] : popular)
            for (const CString& text : bucket) {
                if (room == 0)
                    break;
                --room;
                if (FindIn(seen, text) == seen.end())
                    kept[count].push_back(text);
                seen.push_back(text);
            }
        popular = kept;
    }
    static void DropRepeated(List& list)
    {
        List once;
        for (const CString& text : list)
            if (FindIn(once, text) == once.end())
                once.push_back(text);
        list = once;
    }
};

void ExpectSame(const MRUArray& lists, const SlowLists& slow)
{
    TextArray all, limited, popular, popularLimited;
    lists.GetRecent(all, false);
    lists.GetRecent(limited, true);
    lists.GetPopular(popular, false);
    lists.GetPopular(popularLimited, true);
    const List flat = Flattened(slow.popular);
    ASSERT_EQ(AsList(all), slow.recent);
    ASSERT_EQ(AsList(limited), FirstOf(slow.recent, slow.maxRecent));
    ASSERT_EQ(AsList(popular), flat);
    ASSERT_EQ(AsList(popularLimited), FirstOf(flat, std::min<uint64>(slow.maxPopular, slow.popular.size())));
    ASSERT_EQ(lists.GetRecentCount(), std::min<uint64>(slow.maxRecent, slow.recent.size()));
    ASSERT_TRUE(lists.HaveRecent() == !slow.recent.empty() && lists.HavePopular() == !flat.empty());
    for (const std::size_t i : {0u, 1u, 31u, 32u, 33u, 60u, 1000u})
        ASSERT_EQ(lists.GetRecentAt(i), i < slow.recent.size() ? slow.recent[i] : CString());
    for (const CString& current : {CString(), lists.GetRecentAt(0), CString("none")})
        ASSERT_EQ(lists.GetRecent(current), slow.GetRecent(current));
}

std::string StoredBytesOf(MRUArray& lists)
{
    return StoredBy([&](CArchive& archive) { lists.Serialize(archive); });
}

// Short texts of few letters, so that they meet often; some go on behind a NUL, where Compare does not look.
CString RandomText(std::mt19937& random)
{
    std::string text(random() % 4, ' ');
    for (char& c : text)
        c = "abc\xE9"[random() % 4];
    if (random() % 10 == 0)
        text += std::string("\0x", 2);
    return text;
}

TEST(MruArray, FollowsItsRulesThroughRandomOperations)
{
    const auto seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    MRUArray lists;
    SlowLists slow;
    for (int step = 0; step < 6000; ++step) {
        const CString text = RandomText(random);
        switch (random() % 16) {
        case 0:
            lists.AddToRecent(text);
            slow.AddToRecent(text);
            break;
        case 1:
            lists.AddToPopular(text);
            slow.AddToPopular(text);
            break;
        case 2:
        case 3:
            lists.Remove(text);
            slow.Remove(text);
            break;
        case 4: {
            const CString to = RandomText(random);
            lists.ReplaceInAll(text, to);
            slow.ReplaceInAll(text, to);
            break;
        }
        case 5: {
            slow.maxRecent = random() % 20;
            slow.maxPopular = random() % 10;
            lists.SetRestrictions(slow.maxRecent, slow.maxPopular);
            break;
        }
        case 6: {
            MRUArray loaded;
            loaded.SetRestrictions(slow.maxRecent, slow.maxPopular);
            LoadFrom(StoredBytesOf(lists), [&](CArchive& archive) { loaded.Serialize(archive); });
            lists = loaded;
            slow.StoreAndLoad();
            break;
        }
        default:
            lists.Add(text);
            slow.AddToRecent(text);
            slow.AddToPopular(text);
        }
        if (random() % 500 == 0) {
            lists.Clear();
            slow.recent.clear();
            slow.popular.clear();
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(lists, slow)) << "step " << step;
        ASSERT_EQ(lists.HaveRecent(text), FindIn(slow.recent, text) != slow.recent.end());
    }
}

TEST(MruArray, LimitsHideAndNeverDrop)
{
    MRUArray lists;
    for (int i = 0; i < 20; ++i)
        lists.Add(CString('a', i + 1));
    TextArray all, popular;
    lists.GetRecent(all, false);
    lists.GetPopular(popular, true);
    EXPECT_TRUE(all.GetCount() == 20 && lists.GetRecentCount() == 14);
    EXPECT_EQ(AsList(popular), List{"a"}); // one count, so one text
    const MRUArray copy = lists;
    lists.Clear();
    lists.GetRecent(all, false, true, false);
    EXPECT_EQ(all.GetFirst(), CString('a', 20)); // what stood in `all` is sorted, though nothing is added
    EXPECT_EQ(copy.GetRecentAt(19), "a");
}

TEST(MruArray, StoresWhatTheLimitsLetThrough)
{
    MRUArray lists;
    lists.SetRestrictions(2, 2);
    for (const char* text : {"a", "b", "b", "c", "a"})
        lists.Add(text);
    EXPECT_EQ(HexOf(StoredBytesOf(lists)),
              HexOf(BytesOf("0400"
                            "0400 0100 0200000000000000 01 61 01 63"              // recent: a, c
                            "0100 0100000000000000"                               // one bucket is left
                            "02000000 0400 0100 0200000000000000 01 62 01 61"))); // twice: b, a
    lists.SetRestrictions(2, 3);
    EXPECT_EQ(HexOf(StoredBytesOf(lists)).substr(36),
              HexOf(BytesOf("0100 0200000000000000"
                            "01000000 0400 0100 0100000000000000 01 63" // ascending counts
                            "02000000 0400 0100 0200000000000000 01 62 01 61")));
    lists.SetRestrictions(0, 0);
    EXPECT_EQ(HexOf(StoredBytesOf(lists)),
              HexOf(BytesOf("0400 0400 0100 0000000000000000 0100 0000000000000000")));
}

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

TEST(MruArray, ReadsEveryRecordVersion)
{
    for (const char* hex : records) {
        SCOPED_TRACE(hex);
        MRUArray lists;
        lists.Add("old");
        LoadFrom(BytesOf(hex), [&](CArchive& archive) {
            lists.Serialize(archive);
            EXPECT_EQ(archive.GetBytesAhead(), 0u);
        });
        TextArray recent, popular;
        lists.GetRecent(recent);
        lists.AddToPopular("d");
        lists.AddToPopular("c"); // a third time
        lists.GetPopular(popular, false);
        EXPECT_EQ(AsList(recent), (List{"a", "b"}));
        EXPECT_EQ(AsList(popular), (List{"c", "d"}));
    }
}

// Damaged records either load or raise one of two exceptions, which leave the lists as they were.
template <class Lists>
void SurvivesDamage(const std::string& bytes, const Lists& before, std::string (*contents)(Lists&))
{
    Lists untouched = before;
    const std::string wanted = contents(untouched);
    const auto load = [&](const std::string& damaged, bool mustFail) {
        Lists lists = before;
        try {
            LoadFrom(damaged, [&](CArchive& archive) { lists.Serialize(archive); });
            EXPECT_FALSE(mustFail);
        } catch (const CArchiveException&) {
            EXPECT_TRUE(contents(lists) == wanted);
        } catch (const std::length_error&) {
            EXPECT_TRUE(contents(lists) == wanted);
        }
    };
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        load(bytes.substr(0, at), true);
        for (int value = 0; value < 256; ++value) {
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(value);
            load(damaged, false);
        }
    }
}

TEST(MruArray, DamagedRecordsLeaveTheListsAlone)
{
    MRUArray before;
    before.Add("kept");
    for (const char* hex : records)
        SurvivesDamage<MRUArray>(BytesOf(hex), before, StoredBytesOf);
}

TEST(MruArray, UnusualRecordsAreMadeGood)
{
    MRUArray lists;
    lists.Add("kept");
    LoadFrom(BytesOf("0500"),
             [&](CArchive& archive) { EXPECT_THROW(lists.Serialize(archive), CArchiveException); });
    EXPECT_EQ(lists.GetRecentAt(0), "kept"); // an unknown version
    LoadFrom(BytesOf("0400 0400 0100 0300000000000000 01 61 01 62 01 61"
                     "0100 0300000000000000"
                     "FFFFFFFF 0400 0100 0000000000000000" // an empty bucket
                     "01000000 0400 0100 0200000000000000 01 61 01 62"
                     "FFFFFF7F 0400 0100 0200000000000000 01 61 01 63"),
             [&](CArchive& archive) { lists.Serialize(archive); });
    TextArray recent, popular;
    lists.GetRecent(recent);
    lists.AddToPopular("a"); // no count is above INT_MAX
    lists.GetPopular(popular, false);
    EXPECT_EQ(AsList(recent), (List{"a", "b"}));
    EXPECT_EQ(AsList(popular), (List{"c", "a", "b"}));
}

// ---- by time --------------------------------------------------------------------------------------------

struct SlowTimes {
    Buckets<uint64> totals;

    void Add(const CString& text, uint64 duration)
    {
        uint64 total = 0;
        TakeFromBuckets(totals, text, total);
        totals[total + duration].push_back(text);
    }
    void RemoveAllBut(List keep)
    {
        for (auto& [total, bucket] : totals)
            std::erase_if(bucket, [&](const CString& text) { return FindIn(keep, text) == keep.end(); });
        std::erase_if(totals, [](const auto& pair) { return pair.second.empty(); });
    }
    void Rename(const CString& from, const CString& to)
    {
        for (auto& [total, bucket] : totals)
            if (const auto at = FindIn(bucket, from); at != bucket.end()) {
                *at = to;
                return;
            }
    }
};

std::string StoredTimesOf(MRUArrayByTime& times)
{
    return StoredBy([&](CArchive& archive) { times.Serialize(archive); });
}

void ExpectSame(const MRUArrayByTime& times, const SlowTimes& slow)
{
    const List flat = Flattened(slow.totals);
    for (const int count : {-1, 0, 1, 3, 1000, std::numeric_limits<int>::min()}) {
        TextArray popular;
        times.GetPopular(popular, count);
        ASSERT_EQ(AsList(popular), count < 0 ? flat : FirstOf(flat, static_cast<uint64>(count)));
    }
    ASSERT_EQ(times.HavePopular(), !flat.empty());
}

TEST(MruArrayByTime, FollowsItsRulesThroughRandomOperations)
{
    const auto seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    MRUArrayByTime times;
    SlowTimes slow;
    for (int step = 0; step < 6000; ++step) {
        const CString text = RandomText(random);
        const uint64 duration = random() % 50 == 0 ? ~uint64{0} - random() % 5 : random() % 5;
        switch (random() % 10) {
        case 0:
            times.ApplyDuration(text, duration); // may hold it twice from now on
            slow.totals[duration].push_back(text);
            break;
        case 1:
        case 2: {
            uint64 total = 0;
            times.Remove(text);
            TakeFromBuckets(slow.totals, text, total);
            break;
        }
        case 3: {
            const CString to = RandomText(random);
            times.Rename(text, to);
            slow.Rename(text, to);
            break;
        }
        case 4: {
            if (random() % 20 != 0)
                break;
            List keep;
            for (std::size_t count = random() % 30; count > 0; --count)
                keep.push_back(RandomText(random));
            times.RemoveAllBut(AsArray(keep));
            slow.RemoveAllBut(keep);
            break;
        }
        case 5: {
            const MRUArrayByTime copy = times;
            LoadFrom(StoredTimesOf(times), [&](CArchive& archive) { times.Serialize(archive); });
            ASSERT_NO_FATAL_FAILURE(ExpectSame(copy, slow));
            break;
        }
        default:
            times.Add(text, duration);
            slow.Add(text, duration);
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(times, slow)) << "step " << step;
    }
}

TEST(MruArrayByTime, StoresFromTheLargestTotalDown)
{
    MRUArrayByTime times;
    times.Add("a", 5);
    times.Add("b", 258);
    EXPECT_EQ(HexOf(StoredTimesOf(times)),
              HexOf(BytesOf("0100 0100 0200000000000000"
                            "0201000000000000 0400 0100 0100000000000000 01 62"
                            "0500000000000000 0400 0100 0100000000000000 01 61")));
}

TEST(MruArrayByTime, ReadsBothLayouts)
{
    const std::string first = "0201000000000000 0400 0100 0100000000000000 01 61";
    const std::string second = "0001000000000000 0400 0100 0200000000000000 01 62 01 63";
    const std::string large = "0201000000008000 0400 0100 0100000000000000 01 61";
    const std::pair<std::string, List> rows[] = {
        {"0100 0100 0000000000000000", {}},
        {"0100 0100 0100000000000000" + first, {"a"}},
        {"0100 0100 0200000000000000" + first + second, {"a", "b", "c"}},
        {"0100 00000000", {}},
        {"0100 01000000" + first, {"a"}},
        {"0100 01000000" + large, {"a"}},
        {"0100 02000000" + second + first, {"a", "b", "c"}},
    };
    for (const auto& [hex, expected] : rows) {
        SCOPED_TRACE(hex);
        MRUArrayByTime times;
        times.Add("old", 1);
        LoadFrom(BytesOf(hex), [&](CArchive& archive) {
            times.Serialize(archive);
            EXPECT_EQ(archive.GetBytesAhead(), 0u);
        });
        TextArray popular;
        times.GetPopular(popular, -1);
        EXPECT_EQ(AsList(popular), expected);
        times.Add("d", large.size());
    }
    MRUArrayByTime times;
    times.Add("kept", 1);
    LoadFrom(BytesOf("0200"),
             [&](CArchive& archive) { EXPECT_THROW(times.Serialize(archive), CArchiveException); });
    EXPECT_TRUE(times.HavePopular()); // an unknown version
}

// Just the number of totals at which a current count could be mistaken for a legacy one.
TEST(MruArrayByTime, ReadsManyTotalsBack)
{
    MRUArrayByTime times;
    for (uint64 i = 0; i < 65536; ++i)
        times.ApplyDuration("", i);
    MRUArrayByTime loaded;
    LoadFrom(StoredTimesOf(times), [&](CArchive& archive) { loaded.Serialize(archive); });
    EXPECT_TRUE(StoredTimesOf(loaded) == StoredTimesOf(times));
}

TEST(MruArrayByTime, DamagedRecordsLeaveTheTextsAlone)
{
    MRUArrayByTime before, other;
    before.Add("kept", 1);
    other.Add("a", 5);
    other.Add("b", 6);
    SurvivesDamage<MRUArrayByTime>(StoredTimesOf(other), before, StoredTimesOf);
}

} // namespace
