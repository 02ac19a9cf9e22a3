#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <set>

#include "MRUArray.h"
#include "MRUArrayByTime.h"
#include "support/ArchiveBytes.h"
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
    Texts First(uint64 most = ~uint64{0}) const
    {
        Texts texts;
        for (const auto& [rank, text] : *this)
            if (texts.size() < most)
                texts.push_back(text);
        return texts;
    }
    // As after storing and loading: up to the limit.
    void Reload(uint64 most) { this->resize(std::min<uint64>(this->size(), most)); }
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
    void AfterReload()
    {
        recent.Reload(maxRecent);
        popular.Reload(maxPopular);
    }
};

struct SlowTimes : Ranked<uint64> {
    void ApplyDuration(const CString& text, uint64 total) { File(total, text); }
    void Add(const CString& text, uint64 duration) { File(Take(text) + duration, text); }
    void AfterReload() {}
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
    LoadFrom(bytes, [&](CArchive& archive) { lists.Serialize(archive); });
}

template <class Lists>
void Reload(Lists& lists)
{
    if constexpr (requires { lists.AfterReload(); })
        lists.AfterReload();
    else
        Load(lists, StoredBytesOf(lists));
}

// ---- comparing with them --------------------------------------------------------------------------------

void ExpectSame(const MRUArray& lists, SlowLists& slow)
{
    TextArray all, limited, popular, popularLimited;
    lists.GetRecent(all, false);
    lists.GetRecent(limited, true);
    lists.GetPopular(popular, false);
    lists.GetPopular(popularLimited, true);
    const Texts recent = slow.recent.First();
    std::set<int> counts;
    for (const auto& [count, text] : slow.popular)
        counts.insert(count);
    ASSERT_EQ(TextsOf(all), recent);
    ASSERT_EQ(TextsOf(limited), slow.recent.First(slow.maxRecent));
    ASSERT_EQ(TextsOf(popular), slow.popular.First());
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
        ASSERT_EQ(TextsOf(popular), count < 0 ? slow.First() : slow.First(static_cast<uint64>(count)));
    }
    ASSERT_EQ(times.HavePopular(), !slow.empty());
}

// Short texts of few letters, so that they meet often; some go on behind a NUL, where Compare does not look.
CString RandomText(RandomTexts& random)
{
    return random.Make(std::string("abc\xE9"), random.Below(4)) +
           std::string("\0x", random.OneIn(10) ? 2 : 0);
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

template <class Lists, class Slow, class Choose>
void Follow(RandomTexts& random, Choose choose)
{
    Lists lists, assigned;
    Slow slow;
    for (int step = 0; step < 6000; ++step) {
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
        const Step add = [=](auto&l) { l.Add(text); }, clear = [](auto&l) { l.Clear(); };
        const Step remove = [=](auto& l) { l.Remove(text); };
        const Step steps[] = {[=](auto& l) { l.AddToRecent(text); },
                              [=](auto& l) { l.AddToPopular(text); },
                              remove,
                              remove,
                              [=](auto& l) { l.ReplaceInAll(text, other); },
                              [=](auto& l) { l.SetRestrictions(recent, popular); },
                              [=](auto& l) { Reload(l); }};
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
        const Step add = [=](auto&t) { t.Add(text, duration); }, trim = [=](auto&t) { t.RemoveAllBut(keep); };
        const Step remove = [=](auto& t) { t.Remove(text); };
        const Step steps[] = {
            [=](auto& t) { t.ApplyDuration(text, duration); }, // may hold it twice from now on
            remove, remove, [=](auto& t) { t.Rename(text, other); }, [=](auto& t) { Reload(t); }};
        return random.OneIn(200) ? trim : random.OneIn(2) ? add : random.Pick(steps);
    });
}

TEST(MruArray, UnusualRecordsComeBackAsTheyAreAndBrokenOnesChangeNothing)
{
    const std::string start = "0400 0400 0100 0300000000000000 01 61 01 62 01 61 0100 ",
                      emptyBucket = "FFFFFFFF 0400 0100 0000000000000000",
                      buckets = "01000000 0400 0100 0200000000000000 01 61 01 62"
                                "FFFFFF7F 0400 0100 0200000000000000 01 61 01 63";
    const std::string record = BytesOf(start + "0300000000000000" + emptyBucket + buckets);
    MRUArray lists;
    Load(lists, record);
    EXPECT_EQ(StoredBytesOf(lists), BytesOf(start + "0200000000000000" + buckets));
    TextArray recent = ListOf("d"), popular; // what stood there is sorted as well
    lists.GetRecent(recent, true, true, true);
    lists.AddToPopular("a"); // no count is above INT_MAX
    lists.GetPopular(popular, false);
    EXPECT_EQ(LineOf(recent) + "," + LineOf(popular), "a;a;b;d,c;a;a;b");
    const std::string before = StoredBytesOf(lists);
    EXPECT_THROW(Load(lists, record.substr(0, record.size() - 1)), CArchiveException);
    EXPECT_EQ(StoredBytesOf(lists), before);
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
