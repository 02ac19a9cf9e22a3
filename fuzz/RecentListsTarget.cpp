// Recent and popular lists, and total times, through any operations, against their rules as they read.
#include <algorithm>
#include <limits>
#include <set>

#include "MRUArray.h"
#include "MRUArrayByTime.h"
#include "fuzz/Difference.h"
#include "fuzz/Targets.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/TextModels.h"

namespace {

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
void Reload(Lists& lists)
{
    if constexpr (requires { lists.AfterReload(); }) {
        lists.AfterReload();
    } else {
        const auto transfer = [&](CArchive& archive) { lists.Serialize(archive); };
        LoadFrom(StoredBy(transfer), transfer);
    }
}

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
    Expect("GetRecent", TextsOf(all), recent);
    Expect("GetRecent, limited", TextsOf(limited), slow.recent.First(slow.maxRecent));
    Expect("GetPopular", TextsOf(popular), slow.popular.First());
    Expect("GetPopular, limited", TextsOf(popularLimited),
           slow.popular.First(std::min<uint64>(slow.maxPopular, counts.size())));
    Expect("GetRecentCount", lists.GetRecentCount(), limited.GetCount());
    Expect("HaveRecent", lists.HaveRecent(), !all.IsEmpty());
    Expect("HavePopular", lists.HavePopular(), !popular.IsEmpty());
    for (const std::size_t i : {0u, 1u, 31u, 32u, 33u, 60u, 1000u})
        Expect("GetRecentAt", lists.GetRecentAt(i), all.GetCopyAt(i), i);
    for (const CString& current : {CString(), all.GetFirst(), CString("b")}) {
        const auto isOther = [&](const CString& text) {
            return current.IsEmpty() || text.Compare(current) != 0;
        };
        const auto other = std::find_if(recent.begin(), recent.end(), isOther);
        Expect("GetRecent, other than", lists.GetRecent(current), other == recent.end() ? CString() : *other,
               current);
        Expect("HaveRecent", lists.HaveRecent(current), all.Have(current), current);
    }
}

void ExpectSame(const MRUArrayByTime& times, SlowTimes& slow)
{
    for (const int count : {-1, 0, 1, 3, 1000, std::numeric_limits<int>::min()}) {
        TextArray popular;
        times.GetPopular(popular, count);
        Expect("GetPopular", TextsOf(popular),
               count < 0 ? slow.First() : slow.First(static_cast<uint64>(count)));
    }
    Expect("HavePopular", times.HavePopular(), !slow.empty());
}

// Short texts of few letters, so that they meet often; some go on behind a NUL, where Compare does not look.
CString MakeText(Choices& choices)
{
    return choices.Make(std::string("abc\xE9"), choices.Below(4)) +
           std::string("\0x", choices.OneIn(10) ? 2 : 0);
}

// What is done, to the lists and to their model.
struct Step {
    std::size_t operation;
    CString text, other;
    uint64 number, second;
    TextArray kept;
};

template <class Lists>
void DoRecent(Lists& lists, const Step& step)
{
    switch (step.operation) {
    case 0:
        return lists.AddToRecent(step.text);
    case 1:
        return lists.AddToPopular(step.text);
    case 2:
        return lists.ReplaceInAll(step.text, step.other);
    case 3:
        return lists.SetRestrictions(step.number, step.second);
    case 4:
        return Reload(lists);
    case 5:
        return lists.Clear();
    case 6:
    case 7:
        return lists.Remove(step.text);
    default:
        return lists.Add(step.text);
    }
}

template <class Lists>
void DoTimes(Lists& times, const Step& step)
{
    switch (step.operation) {
    case 0:
        return times.ApplyDuration(step.text, step.number); // may hold it twice from now on
    case 1:
        return times.Rename(step.text, step.other);
    case 2:
        return Reload(times);
    case 3:
        return times.RemoveAllBut(step.kept);
    case 4:
    case 5:
        return times.Remove(step.text);
    default:
        return times.Add(step.text, step.number);
    }
}

// Copies stay as they were.
template <class Lists, class Slow, class Make, class Do>
void Follow(Choices& choices, Make make, Do apply)
{
    Lists lists, assigned;
    Slow slow;
    while (choices.AreLeft()) {
        assigned = lists;
        const Lists copy = assigned;
        Slow before = slow;
        const Step step = make();
        apply(lists, step);
        apply(slow, step);
        ExpectSame(lists, slow);
        ExpectSame(copy, before);
    }
}

} // namespace

void Targets::RecentLists(Choices& choices)
{
    const auto makeLimit = [&] { return choices.OneIn(8) ? choices.Below(15) : 1000; }; // mostly long lists
    const auto make = [&] {
        const std::size_t operation = choices.Below(24);
        if (operation == 3)
            return Step{operation, "", "", makeLimit(), makeLimit(), {}};
        return Step{operation, MakeText(choices), operation == 2 ? MakeText(choices) : "", 0, 0, {}};
    };
    Follow<MRUArray, SlowLists>(choices, make, [](auto& lists, const Step& step) { DoRecent(lists, step); });
}

void Targets::Times(Choices& choices)
{
    const auto make = [&] {
        Step step{choices.Below(16), MakeText(choices), "", 0, 0, {}};
        step.number = choices.OneIn(50) ? ~uint64{0} - choices.Below(5) : choices.Below(5);
        if (step.operation == 1)
            step.other = MakeText(choices);
        for (std::size_t count = step.operation == 3 ? choices.Below(30) : 0; count > 0; --count)
            step.kept.Add(MakeText(choices));
        return step;
    };
    Follow<MRUArrayByTime, SlowTimes>(choices, make,
                                      [](auto& times, const Step& step) { DoTimes(times, step); });
}
