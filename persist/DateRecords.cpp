// The archive records of the date classes.
#include <utility>

#include "CArchive.h"
#include "DateEntry.h"
#include "DateTime.h"

namespace {

// The versions of a DateTime's record.
enum : WORD {
    PartsOf16Bits = 1, // the day number, then hour, minute, second as words
    PartsOf32Bits = 2, // the same with 32 bits each
    Current = 3        // the day number and the second of the day
};

constexpr WORD DateEntryVersion = 1;

template <class Part>
void LoadParts(CArchive& archive, int& hour, int& minute, int& second)
{
    Part parts[3] = {};
    for (Part& part : parts)
        archive >> part;
    hour = parts[0];
    minute = parts[1];
    second = parts[2];
}

template <class Enumeration>
void LoadEnumeration(CArchive& archive, Enumeration& value)
{
    int number = 0;
    archive >> number;
    value = static_cast<Enumeration>(number);
}

} // namespace

void DateTime::Serialize(CArchive& archive)
{
    if (archive.IsStoring()) {
        archive << WORD{Current} << m_nDay << m_nSecond;
        return;
    }
    WORD version = 0;
    archive >> version;
    if (version < PartsOf16Bits || version > Current)
        return;
    DateTime loaded;
    archive >> loaded.m_nDay;
    if (version == Current) {
        archive >> loaded.m_nSecond;
    } else {
        int hour = 0, minute = 0, second = 0;
        if (version == PartsOf16Bits)
            LoadParts<WORD>(archive, hour, minute, second);
        else
            LoadParts<int>(archive, hour, minute, second);
        loaded.SetTime(hour, minute, second);
    }
    *this = loaded;
}

void DateEntry::Serialize(CArchive& archive)
{
    if (archive.IsStoring()) {
        archive << DateEntryVersion << int{m_occurrence} << int{m_yearType} << m_bWeekDay << m_nDay
                << m_nDayOfWeek << m_nBeforeAfter << m_nMonth << m_nYear << m_nID << m_csDesc;
        return;
    }
    WORD version = 0;
    archive >> version;
    if (version != DateEntryVersion)
        return;
    DateEntry loaded;
    LoadEnumeration(archive, loaded.m_occurrence);
    LoadEnumeration(archive, loaded.m_yearType);
    archive >> loaded.m_bWeekDay >> loaded.m_nDay >> loaded.m_nDayOfWeek >> loaded.m_nBeforeAfter >>
        loaded.m_nMonth >> loaded.m_nYear >> loaded.m_nID >> loaded.m_csDesc;
    *this = std::move(loaded);
}
