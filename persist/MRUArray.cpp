#include "MRUArray.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

#include "persist/ContainerRecord.h"
#include "persist/RankedTexts.h"

struct MRUArray::Lists {
    RankedTexts<int> recent; // one bucket
    RankedTexts<int> popular;
    mutable TextArray recentInOrder; // made when a place far down the list is asked for
    mutable bool isInOrderValid = false;

    RankedTexts<int>& ChangeRecent()
    {
        isInOrderValid = false;
        return recent;
    }
};

// Appends texts of a list in order, no more than so many.
static void AppendTexts(TextArray& out, const RankedTexts<int>& texts, uint64 most)
{
    if (most == 0)
        return;
    uint64 appended = 0;
    texts.ForEach([&](RankedTexts<int>::Place place) {
        out.Add(texts.GetText(place));
        return ++appended < most;
    });
}

static constexpr uint64 All = std::numeric_limits<uint64>::max();
static constexpr int RecentRank = 0;

MRUArray::MRUArray() : m_lists(std::make_unique<Lists>()) {}

MRUArray::MRUArray(const MRUArray& other)
    : m_maxRecent(other.m_maxRecent), m_maxPopular(other.m_maxPopular),
      m_lists(std::make_unique<Lists>(*other.m_lists))
{
}

MRUArray& MRUArray::operator=(const MRUArray& other)
{
    m_lists = std::make_unique<Lists>(*other.m_lists);
    SetRestrictions(other.m_maxRecent, other.m_maxPopular);
    return *this;
}

MRUArray::~MRUArray() = default;

void MRUArray::SetRestrictions(uint64 maxRecent, uint64 maxPopular)
{
    m_maxRecent = maxRecent;
    m_maxPopular = maxPopular;
}

// ---- changing -------------------------------------------------------------------------------------------

void MRUArray::Add(const CString& text)
{
    AddToRecent(text);
    AddToPopular(text);
}

void MRUArray::AddToRecent(const CString& text)
{
    if (m_maxRecent == 0)
        return;
    auto& recent = m_lists->ChangeRecent();
    const auto place = recent.Find(text);
    if (place == recent.None)
        recent.Prepend(RecentRank, text);
    else
        recent.MoveToFront(place);
}

void MRUArray::AddToPopular(const CString& text)
{
    if (m_maxPopular == 0)
        return;
    auto& popular = m_lists->popular;
    const auto place = popular.Find(text);
    if (place == popular.None)
        return popular.Append(1, text);
    const int count = popular.GetRank(place);
    popular.MoveToEndOf(count == std::numeric_limits<int>::max() ? count : count + 1, place, text);
}

void MRUArray::Remove(const CString& text)
{
    if (m_maxRecent > 0) {
        auto& recent = m_lists->ChangeRecent();
        if (const auto place = recent.Find(text); place != recent.None)
            recent.Remove(place);
    }
    if (m_maxPopular > 0) {
        auto& popular = m_lists->popular;
        if (const auto place = popular.Find(text); place != popular.None)
            popular.Remove(place);
    }
}

void MRUArray::ReplaceInAll(const CString& from, const CString& to)
{
    if (from.IsEmpty() || to.IsEmpty())
        return;
    for (auto* const texts : {&m_lists->ChangeRecent(), &m_lists->popular}) {
        RankedTexts<int> replaced;
        texts->ForEach([&](RankedTexts<int>::Place place) {
            CString text = texts->GetText(place);
            text.Replace(from, to);
            replaced.Append(texts->GetRank(place), text);
            return true;
        });
        *texts = std::move(replaced);
    }
}

void MRUArray::Clear()
{
    *m_lists = Lists();
}

// ---- the recent list ------------------------------------------------------------------------------------

bool MRUArray::HaveRecent() const
{
    return !m_lists->recent.IsEmpty();
}

bool MRUArray::HaveRecent(const CString& text) const
{
    return m_lists->recent.Find(text) != RankedTexts<int>::None;
}

uint64 MRUArray::GetRecentCount() const
{
    return std::min<uint64>(m_maxRecent, m_lists->recent.GetCount());
}

CString MRUArray::GetRecentAt(uint64 index) const
{
    constexpr uint64 Near = 32; // nearer than that it is quicker to walk there
    if (index < Near) {
        CString text;
        m_lists->recent.ForEach([&](RankedTexts<int>::Place place) {
            if (index-- > 0)
                return true;
            text = m_lists->recent.GetText(place);
            return false;
        });
        return text;
    }
    if (!m_lists->isInOrderValid) {
        m_lists->recentInOrder.RemoveAll();
        AppendTexts(m_lists->recentInOrder, m_lists->recent, All);
        m_lists->isInOrderValid = true;
    }
    return m_lists->recentInOrder.GetCopyAt(static_cast<std::size_t>(index));
}

CString MRUArray::GetRecent(const CString& current) const
{
    const auto& recent = m_lists->recent;
    CString result;
    recent.ForEach([&](RankedTexts<int>::Place place) {
        const CString& text = recent.GetText(place);
        const bool isWanted = current.IsEmpty() || text.Compare(current) != 0;
        if (isWanted)
            result = text;
        return !isWanted;
    });
    return result;
}

void MRUArray::GetRecent(TextArray& out, bool limited, bool sorted, bool ascending, bool caseSensitive,
                         TextArray::Content content) const
{
    AppendTexts(out, m_lists->recent, limited ? m_maxRecent : All);
    if (sorted)
        out.Sort(ascending, caseSensitive, content);
}

// ---- the popular table ----------------------------------------------------------------------------------

bool MRUArray::HavePopular() const
{
    return !m_lists->popular.IsEmpty();
}

void MRUArray::GetPopular(TextArray& out, bool limited) const
{
    const auto& popular = m_lists->popular;
    AppendTexts(out, popular, limited ? std::min<uint64>(m_maxPopular, popular.GetRankCount()) : All);
}

// ---- the record -----------------------------------------------------------------------------------------

namespace {

enum : WORD {
    FirstProtected = 1,   // texts as encrypted-string records, the table in the legacy container layout
    SecondProtected = 2,  // the same
    CurrentProtected = 3, // texts as encrypted-string records, everything else as it is stored now
    CurrentPlain = 4      // what is stored
};

using PopularTable = std::map<int, TextArray>; // as in the archive: by ascending count

// The first texts of the table, up to the limit, bucket by bucket.
PopularTable CutTable(const RankedTexts<int>& popular, uint64 most)
{
    PopularTable table;
    if (most == 0)
        return table;
    uint64 taken = 0;
    popular.ForEach([&](RankedTexts<int>::Place place) {
        table[popular.GetRank(place)].Add(popular.GetText(place));
        return ++taken < most;
    });
    return table;
}

void LoadRecord(CArchive& archive, TextArray& recent, PopularTable& table)
{
    WORD version = 0;
    archive >> version;
    switch (version) {
    case FirstProtected:
    case SecondProtected:
    case CurrentProtected:
        recent.Serialize(archive, true);
        ContainerRecord::LoadBy(archive, table, version < CurrentProtected,
                                ContainerRecord::ProtectedValue());
        break;
    case CurrentPlain:
        recent.Serialize(archive);
        ContainerRecord::Load(archive, table, false);
        break;
    default:
        throw CArchiveException(CArchiveException::badSchema);
    }
}

void AppendAll(RankedTexts<int>& texts, int rank, const TextArray& list)
{
    for (const CString& text : list)
        texts.Append(rank, text);
}

} // namespace

void MRUArray::Serialize(CArchive& archive)
{
    TextArray recent;
    if (archive.IsStoring()) {
        GetRecent(recent);
        archive << WORD{CurrentPlain};
        recent.Serialize(archive);
        ContainerRecord::Store(archive, CutTable(m_lists->popular, m_maxPopular));
        return;
    }
    PopularTable table;
    LoadRecord(archive, recent, table);
    Clear();
    AppendAll(m_lists->recent, RecentRank, recent);
    for (auto bucket = table.rbegin(); bucket != table.rend(); ++bucket)
        AppendAll(m_lists->popular, bucket->first, bucket->second);
}
