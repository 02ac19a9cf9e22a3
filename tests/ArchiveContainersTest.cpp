// What the golden files do not show: how containers and records treat the value that was there before.
#include <gtest/gtest.h>

#include "DateEntry.h"
#include "SerializeData.h"
#include "TextArray.h"
#include "framework/FailureMarkers.h"
#include "support/ArchiveBytes.h"

namespace {

using Texts = std::vector<CString>;

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
    load(sizeof(WORD) + 7, {"x", "y"}, {"x", "y"}); // the count breaks off
}

struct Reachable : SerializeData {
    using SerializeData::Deserialize;
    using SerializeData::Serializestring;
};

TEST(ArchiveContainers, CountersAndOperationsOfOneDirection)
{
    std::string text = "ab";
    WORD version = 99;
    const std::string bytes = StoredBy([&](CArchive& archive) {
        Reachable::Serializestring(archive, text);
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 258, true), 258u);
        EXPECT_THROW(Reachable::Deserialize(archive, text), CArchiveException);
        for (const bool isLegacy : {false, true})
            EXPECT_THROW(SerializeData::DeserializeLoopCounter(archive, isLegacy, version),
                         CArchiveException);
    });
    EXPECT_EQ(HexOf(bytes), "0261620201000000000000");
    LoadFrom(bytes + BytesOf("03010000 04010000 0700 0501000000000000"), [&](CArchive& archive) {
        EXPECT_THROW(Reachable::Serializestring(archive, text), CArchiveException);
        Reachable::Deserialize(archive, text = "");
        EXPECT_EQ(text, "ab");
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 1), 258u);
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 1, true), 259u);
        EXPECT_EQ(SerializeData::DeserializeLoopCounter(archive, true, version), 260u);
        EXPECT_EQ(version, 0);
        EXPECT_EQ(SerializeData::DeserializeLoopCounter(archive, false, version), 261u);
        EXPECT_EQ(version, 7);
    });
}

template <class Value>
void LoadFromHex(Value& value, const std::string& hex)
{
    LoadFrom(BytesOf(hex), [&](CArchive& archive) { value.Serialize(archive); });
}

Texts markers;

TEST(ArchiveRecords, WhatCannotBeReadChangesNothing)
{
    markers.clear();
    const auto before = FailureMarkers::SetSink([](const CString& line) { markers.push_back(line); });
    TextArray texts;
    texts.Add("kept");
    const DateTime kept(1900, 5, 6, 7, 8, 9);
    DateTime date = kept;
    DateEntry rule;
    rule.SetDay("kept", 3, 4);
    for (const char* unknownVersion : {"0000", "0500", "FFFF"}) {
        LoadFromHex(texts, unknownVersion);
        LoadFromHex(date, unknownVersion);
        LoadFromHex(rule, unknownVersion);
    }
    EXPECT_THROW(LoadFromHex(date, "0100 83460B00 0C00 2200"), CArchiveException); // both break off
    EXPECT_THROW(LoadFromHex(rule, "0100" + HexOf(std::string(35, '\1'))), CArchiveException);
    EXPECT_TRUE(texts.GetCount() == 1 && texts.GetFirst() == "kept");
    EXPECT_EQ(date, kept);
    EXPECT_TRUE(rule.GetDesc() == "kept" && rule.GetDay() == 3 && rule.GetMonth() == 4);
    FailureMarkers::SetSink(before);
    EXPECT_EQ(markers, Texts(3, "{B57EE119-2C25-4A8C-8506-45F22B9B02D5}"));
}

TEST(ArchiveRecords, DatesStayWithinBoundsWhateverTheyHold)
{
    DateTime wild;
    LoadFromHex(wild, "0300 FFFFFF7F 00000080");
    DateTime moved = wild;
    EXPECT_FALSE(wild.IsValidDate() || wild.IsValidTime() || wild.IsYesterday() || wild.IsTomorrow());
    EXPECT_EQ(wild.GetYear() + wild.GetMonth() + wild.GetDay(), 0);
    EXPECT_EQ(wild.GetHour(), -596523);
    EXPECT_EQ(wild.GetDayOfWeek(), 6);
    moved.AddSeconds(1);
    moved.AddDays(1);
    moved.AddMonths(1);
    EXPECT_EQ(moved, wild);
}

} // namespace
