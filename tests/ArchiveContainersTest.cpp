// What the golden files do not show: how containers and records treat the value that was there before.
#include <gtest/gtest.h>

#include <stdexcept>

#include "DateEntry.h"
#include "SerializeData.h"
#include "TextArray.h"
#include "framework/FailureMarkers.h"
#include "support/ArchiveBytes.h"

namespace {

using Texts = std::vector<CString>;

template <class Value>
Value Loaded(const std::string& hex, Value value = Value())
{
    LoadFrom(BytesOf(hex), [&](CArchive& archive) {
        if constexpr (requires { value.Serialize(archive); })
            value.Serialize(archive);
        else
            SerializeData::Serialize(archive, value);
        EXPECT_EQ(archive.GetBytesAhead(), 0u);
    });
    return value;
}

TEST(ArchiveContainers, StringsOfTheSameCountAreOverwrittenInPlace)
{
    const std::string bytes = BytesOf("0100 0200000000000000 01 61 01 62");
    const auto load = [&](std::size_t length, Texts list, const Texts& expected) {
        const bool isSameCount = list.size() == 2;
        const CString* const place = list.data();
        const auto serialize = [&](CArchive& archive) { SerializeData::Serialize(archive, list); };
        if (length == bytes.size())
            LoadFrom(bytes, serialize);
        else
            EXPECT_THROW(LoadFrom(bytes.substr(0, length), serialize), CArchiveException);
        EXPECT_EQ(list, expected);
        EXPECT_TRUE(list.data() == place || !isSameCount);
    };
    load(bytes.size(), {"x", "y"}, {"a", "b"});
    load(bytes.size(), {"x", "y", "z"}, {"a", "b"});
    load(bytes.size() - 1, {"x", "y"}, {"a", "y"}); // what was loaded so far
    load(bytes.size() - 1, {"x", "y", "z"}, {"a"});
    load(sizeof(WORD) + 7, {"x", "y"}, {"x", "y"});
    EXPECT_EQ(Loaded<Texts>("0100 0000000000000000", {"x"}), Texts());
    EXPECT_THROW(Loaded<Texts>("0100 FFFFFFFFFFFFFFFF", {"x"}), std::length_error);
}

TEST(ArchiveContainers, LargeOnesComeBackWhole)
{
    std::vector<double> numbers, loadedNumbers;
    Texts texts, loadedTexts;
    std::map<CString, CString> map, loadedMap;
    for (int i = 0; i < 50000; ++i) {
        numbers.push_back(i / 3.0);
        texts.emplace_back(CString(static_cast<char>(i), i % 300));
        map[texts.back()] = texts.back();
    }
    const std::string bytes = StoredBy([&](CArchive& archive) {
        SerializeData::Serialize(archive, numbers);
        SerializeData::Serialize(archive, texts);
        SerializeData::Serialize(archive, map);
    });
    LoadFrom(bytes, [&](CArchive& archive) {
        SerializeData::Serialize(archive, loadedNumbers);
        SerializeData::Serialize(archive, loadedTexts);
        SerializeData::Serialize(archive, loadedMap);
    });
    EXPECT_TRUE(loadedNumbers == numbers && loadedTexts == texts && loadedMap == map);
}

struct Reachable : SerializeData {
    using SerializeData::Deserialize;
    using SerializeData::Serializestring;
};

TEST(ArchiveContainers, SingleValuesAndCounters)
{
    bool flag = true;
    std::string text = "ab";
    WORD version = 99;
    const std::string bytes = StoredBy([&](CArchive& archive) {
        SerializeData::Serialize(archive, flag);
        SerializeData::Serialize(archive, text);
        Reachable::Serializestring(archive, text);
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 258, true), 258u);
        EXPECT_THROW(Reachable::Deserialize(archive, text), CArchiveException);
        for (const bool isLegacy : {false, true})
            EXPECT_THROW(SerializeData::DeserializeLoopCounter(archive, isLegacy, version),
                         CArchiveException);
    });
    EXPECT_EQ(HexOf(bytes), HexOf(BytesOf("0100 02 6162 02 6162 0201000000000000")));
    LoadFrom(bytes + BytesOf("03010000 04010000 0700 0501000000000000"), [&](CArchive& archive) {
        std::string first, second;
        SerializeData::Serialize(archive, flag = false);
        SerializeData::Serialize(archive, first);
        EXPECT_THROW(Reachable::Serializestring(archive, first), CArchiveException);
        Reachable::Deserialize(archive, second);
        EXPECT_TRUE(flag && first == "ab" && second == "ab");
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 1), 258u);
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 1, true), 259u);
        EXPECT_EQ(SerializeData::DeserializeLoopCounter(archive, true, version), 260u);
        EXPECT_EQ(version, 0);
        EXPECT_EQ(SerializeData::DeserializeLoopCounter(archive, false, version), 261u);
        EXPECT_EQ(version, 7);
    });
}

Texts markers;

TEST(ArchiveRecords, UnknownVersionsChangeNothing)
{
    markers.clear();
    const auto before = FailureMarkers::SetSink([](const CString& line) { markers.push_back(line); });
    TextArray texts;
    texts.Add("kept");
    const DateTime date(1900, 5, 6, 7, 8, 9);
    DateEntry rule;
    rule.SetID(5);
    for (const char* version : {"0000", "0500", "FFFF"}) {
        EXPECT_TRUE(Loaded(version, texts) == texts);
        EXPECT_EQ(Loaded(version, date), date);
        EXPECT_EQ(Loaded(version, rule).GetID(), 5);
    }
    FailureMarkers::SetSink(before);
    EXPECT_EQ(markers, Texts(3, "{B57EE119-2C25-4A8C-8506-45F22B9B02D5}"));
}

TEST(ArchiveRecords, DatesThatBreakOffChangeNothing)
{
    DateTime date(1900, 5, 6, 7, 8, 9);
    DateEntry rule;
    rule.SetDay("kept", 3, 4);
    LoadFrom(BytesOf("0100 83460B00 0C00 2200"), [&](CArchive& archive) {
        EXPECT_THROW(date.Serialize(archive), CArchiveException);
        EXPECT_EQ(date, DateTime(1900, 5, 6, 7, 8, 9));
    });
    LoadFrom(BytesOf("0100") + std::string(35, '\1'), [&](CArchive& archive) {
        EXPECT_THROW(rule.Serialize(archive), CArchiveException);
        EXPECT_TRUE(rule.GetDesc() == "kept" && rule.GetDay() == 3 && rule.GetMonth() == 4);
    });
}

TEST(ArchiveRecords, DatesStayWithinBoundsWhateverTheyHold)
{
    const DateTime wild = Loaded<DateTime>("0300 FFFFFF7F 00000080");
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

} // namespace
