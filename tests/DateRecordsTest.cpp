// The stored form of the date classes, byte by byte: records of every version stay readable.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "CArchive.h"
#include "CMemFile.h"
#include "DateEntry.h"
#include "DateTime.h"
#include "SerializeData.h"

namespace {

using namespace std::string_view_literals;

template <class Use>
std::string Stored(Use use)
{
    CMemFile file;
    {
        CArchive archive(&file, CArchive::store);
        use(archive);
        archive.Close();
    }
    std::string bytes(static_cast<std::size_t>(file.GetLength()), '\0');
    file.SeekToBegin();
    file.Read(bytes.data(), bytes.size());
    return bytes;
}

template <class Use>
void Load(std::string_view bytes, Use use)
{
    std::string copy(bytes);
    CMemFile file(reinterpret_cast<BYTE*>(copy.data()), copy.size());
    CArchive archive(&file, CArchive::load);
    use(archive);
}

template <class Value>
Value Loaded(std::string_view bytes, Value value = Value())
{
    Load(bytes, [&](CArchive& archive) { value.Serialize(archive); });
    return value;
}

TEST(DateTimeRecord, IsReadInEveryVersion)
{
    const DateTime before(1900, 5, 6, 7, 8, 9);
    const DateTime moment(2024, 2, 29, 12, 34, 56); // day 738947 = 0B4683h, second 45296 = B0F0h
    DateTime dateOnly = moment;
    dateOnly.SetInvalidTime();
    const struct {
        const char* what;
        std::string_view bytes;
        DateTime value;
    } rows[] = {
        {"version 3", "\x03\0\x83\x46\x0B\0\xF0\xB0\0\0"sv, moment},
        {"version 3, nothing set", "\x03\0\0\0\0\0\xFF\xFF\xFF\xFF"sv, DateTime()},
        {"version 2", "\x02\0\x83\x46\x0B\0\x0C\0\0\0\x22\0\0\0\x38\0\0\0"sv, moment},
        {"version 2, no time", "\x02\0\x83\x46\x0B\0\xFF\xFF\xFF\xFF\0\0\0\0\0\0\0\0"sv, dateOnly},
        {"version 1", "\x01\0\x83\x46\x0B\0\x0C\0\x22\0\x38\0"sv, moment},
        {"version 1, no time", "\x01\0\x83\x46\x0B\0\xFF\xFF\xFF\xFF\xFF\xFF"sv, dateOnly},
        {"version 0", "\0\0\x83\x46\x0B\0\xF0\xB0\0\0"sv, before},
        {"version 4", "\x04\0\x83\x46\x0B\0\xF0\xB0\0\0"sv, before},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(Loaded(row.bytes, before), row.value);
        const bool known = row.value != before;
        for (std::size_t length = 0; length < row.bytes.size() && known; ++length) {
            DateTime cut = before;
            EXPECT_THROW(
                Load(row.bytes.substr(0, length), [&](CArchive& archive) { cut.Serialize(archive); }),
                CArchiveException);
            EXPECT_EQ(cut, before);
        }
    }
    for (const std::size_t current : {0u, 1u}) {
        DateTime value = rows[current].value;
        EXPECT_EQ(Stored([&](CArchive& archive) { value.Serialize(archive); }), rows[current].bytes);
    }
}

TEST(DateTimeRecord, StaysWithinBoundsWhateverItHolds)
{
    const DateTime wild = Loaded<DateTime>("\x03\0\xFF\xFF\xFF\x7F\0\0\0\x80"sv);
    DateTime moved = wild;
    EXPECT_FALSE(wild.IsValidDate() || wild.IsValidTime());
    EXPECT_EQ(wild.GetYear() + wild.GetMonth() + wild.GetDay(), 0);
    EXPECT_EQ(wild.GetHour(), -596523);
    moved.AddSeconds(1);
    moved.AddDays(1);
    moved.AddMonths(1);
    EXPECT_EQ(moved, wild);
    EXPECT_EQ(wild.GetDayOfWeek(), 6);
    EXPECT_FALSE(wild.IsYesterday() || wild.IsTomorrow());
}

TEST(DateEntryRecord, HasItsGoldenSample)
{
    DateEntry queen;
    queen.SetBeforeAfterDay("Queen", 24, 5, -2);
    queen.SetID(7);
    const std::string_view golden = "\x01\0"
                                    "\0\0\0\0\0\0\0\0"
                                    "\0\0"
                                    "\x18\0\0\0\0\0\0\0\xFE\xFF\xFF\xFF\x05\0\0\0\0\0\0\0\x07\0\0\0"
                                    "\x05Queen"sv;
    EXPECT_EQ(Stored([&](CArchive& archive) { queen.Serialize(archive); }), golden);

    DateEntry every;
    every.SetBeforeAfterDayOfWeek("every field", DateEntry::OccurrenceLast, 2, 5, 3);
    every.SetYearType(DateEntry::YearAndEarlier);
    every.SetYear(2024);
    every.SetDay(1234567);
    every.SetWeekDay(true);
    every.SetID(-5);
    const std::string bytes = Stored([&](CArchive& archive) { every.Serialize(archive); });
    DateEntry loaded = Loaded<DateEntry>(bytes);
    EXPECT_EQ(Stored([&](CArchive& archive) { loaded.Serialize(archive); }), bytes);
    EXPECT_EQ(loaded.GetOccurrence(), DateEntry::OccurrenceLast);
    EXPECT_EQ(loaded.GetYearType(), DateEntry::YearAndEarlier);
    EXPECT_EQ(loaded.GetDayOfWeek(), 2);
    EXPECT_TRUE(loaded.GetWeekDay());

    for (std::size_t length = 0; length < golden.size(); ++length) {
        DateEntry cut = every;
        EXPECT_THROW(Load(golden.substr(0, length), [&](CArchive& archive) { cut.Serialize(archive); }),
                     CArchiveException);
        EXPECT_EQ(cut.GetDesc(), every.GetDesc());
        EXPECT_EQ(cut.GetDay(), every.GetDay());
    }
    std::string unknown(golden);
    for (const char version : {'\0', '\2'}) {
        unknown[0] = version;
        EXPECT_EQ(Loaded(unknown, every).GetID(), -5) << int{version};
    }
}

TEST(DateMaps, KeepTheirBytes)
{
    std::map<int, DateTime> byNumber = {{-1, DateTime(1, 1, 2, 0, 0, 10)}};
    const std::string_view number = "\x01\0\x01\0\0\0\0\0\0\0\xFF\xFF\xFF\xFF\x03\0\x02\0\0\0\x0A\0\0\0"sv;
    EXPECT_EQ(Stored([&](CArchive& archive) { SerializeData::Serialize(archive, byNumber); }), number);
    std::map<CString, DateTime> byText = {{"ab", DateTime()}};
    std::map<std::string, DateTime> byStdText = {{"ab", DateTime()}};
    const std::string_view text = "\x01\0\x01\0\0\0\0\0\0\0\x02"
                                  "ab\x03\0\0\0\0\0\xFF\xFF\xFF\xFF"sv;
    EXPECT_EQ(Stored([&](CArchive& archive) { SerializeData::Serialize(archive, byText); }), text);
    EXPECT_EQ(Stored([&](CArchive& archive) { SerializeData::Serialize(archive, byStdText); }), text);
    std::map<std::string, DateTime> loaded;
    const std::string_view legacy = "\x01\0\0\0\x02"
                                    "ab\x01\0\x83\x46\x0B\0\x0C\0\x22\0\x38\0"sv;
    Load(legacy, [&](CArchive& archive) { SerializeData::Serialize(archive, loaded, true); });
    EXPECT_EQ(loaded["ab"], DateTime(2024, 2, 29, 12, 34, 56));
}

} // namespace
