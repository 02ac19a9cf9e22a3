#include "MRUArrayByTime.h"

#include <functional>
#include <map>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "TextArray.h"
#include "persist/ContainerRecord.h"
#include "persist/RankedTexts.h"

struct MRUArrayByTime::Texts : RankedTexts<uint64> {};

MRUArrayByTime::MRUArrayByTime() : m_texts(std::make_unique<Texts>()) {}

MRUArrayByTime::MRUArrayByTime(const MRUArrayByTime& other) : m_texts(std::make_unique<Texts>(*other.m_texts))
{
}

MRUArrayByTime& MRUArrayByTime::operator=(const MRUArrayByTime& other)
{
    m_texts = std::make_unique<Texts>(*other.m_texts);
    return *this;
}

MRUArrayByTime::~MRUArrayByTime() = default;

void MRUArrayByTime::Add(const CString& text, uint64 duration)
{
    const auto place = m_texts->Find(text);
    if (place == Texts::None)
        ApplyDuration(text, duration);
    else
        m_texts->MoveToEndOf(m_texts->GetRank(place) + duration, place, text);
}

void MRUArrayByTime::ApplyDuration(const CString& text, uint64 total)
{
    m_texts->Append(total, text);
}

void MRUArrayByTime::Remove(const CString& text)
{
    if (const auto place = m_texts->Find(text); place != Texts::None)
        m_texts->Remove(place);
}

void MRUArrayByTime::RemoveAllBut(const TextArray& keep)
{
    std::unordered_set<std::string_view> wanted; // as far as Compare looks
    for (const CString& text : keep)
        wanted.insert(text.GetString());
    Texts kept;
    m_texts->ForEach([&](Texts::Place place) {
        if (wanted.contains(m_texts->GetText(place).GetString()))
            kept.Append(m_texts->GetRank(place), m_texts->GetText(place));
        return true;
    });
    *m_texts = std::move(kept);
}

void MRUArrayByTime::Rename(const CString& from, const CString& to)
{
    if (const auto place = m_texts->Find(from); place != Texts::None)
        m_texts->SetText(place, to);
}

bool MRUArrayByTime::HavePopular() const
{
    return !m_texts->IsEmpty();
}

void MRUArrayByTime::GetPopular(TextArray& out, int count) const
{
    if (count == 0)
        return;
    int appended = 0;
    m_texts->ForEach([&](Texts::Place place) {
        out.Add(m_texts->GetText(place));
        return count < 0 || ++appended < count;
    });
}

// ---- the record -----------------------------------------------------------------------------------------

namespace {

constexpr WORD RecordVersion = 1;

using TimeTable = std::map<uint64, TextArray, std::greater<uint64>>;

// Reads the table in either layout. The first word is the container version or, in the legacy layout, the
// lower half of the count; the next eight bytes are the current count, or else the upper half of the legacy
// count and six bytes of the first total.
void LoadTable(CArchive& archive, TimeTable& table)
{
    constexpr uint64 LeastPair = 8 + 2 + 2 + 8; // bytes: total, and the record of an empty array
    WORD word = 0;
    archive >> word;
    if (word != ContainerRecord::CurrentVersion) {
        WORD upper = 0;
        archive >> upper;
        const std::size_t count = word | std::size_t{upper} << 16;
        return ContainerRecord::LoadElements(archive, table, count, ContainerRecord::PlainValue{true});
    }
    uint64 count = 0;
    archive >> count;
    const bool isLegacyOne =
        count != 0 && (count & 0xFFFF) == 0 && count > archive.GetBytesAhead() / LeastPair;
    if (!isLegacyOne) {
        ContainerRecord::CheckedCount(count, table.max_size());
        return ContainerRecord::LoadElements(archive, table, count, ContainerRecord::PlainValue{false});
    }
    WORD topOfTotal = 0;
    archive >> topOfTotal;
    table[count >> 16 | uint64{topOfTotal} << 48].Serialize(archive);
}

} // namespace

void MRUArrayByTime::Serialize(CArchive& archive)
{
    TimeTable table;
    if (archive.IsStoring()) {
        m_texts->ForEach([&](Texts::Place place) {
            table[m_texts->GetRank(place)].Add(m_texts->GetText(place));
            return true;
        });
        archive << RecordVersion;
        return ContainerRecord::Store(archive, table);
    }
    WORD version = 0;
    archive >> version;
    if (version != RecordVersion)
        throw CArchiveException(CArchiveException::badSchema);
    LoadTable(archive, table);
    *m_texts = Texts();
    for (const auto& [total, texts] : table)
        for (const CString& text : texts)
            m_texts->Append(total, text);
}
