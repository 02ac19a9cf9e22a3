// What the golden files do not show: how containers and records treat the value that was there before.
#include <gtest/gtest.h>

#include "DateEntry.h"
#include "ExternalAppRun.h"
#include "MRUApplications.h"
#include "MRUArray.h"
#include "MRUArrayByTime.h"
#include "SerializeData.h"
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

template <class Action>
bool IsGenericError(Action action)
try {
    action();
    return false;
} catch (const CArchiveException& exception) {
    return exception.m_cause == CArchiveException::genericException;
}

TEST(ArchiveContainers, CountersAndOperationsOfOneDirection)
{
    std::string text = "ab";
    WORD version = 99;
    const std::string bytes = StoredBy([&](CArchive& archive) {
        Reachable::Serializestring(archive, text);
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 258, true), 258u);
        EXPECT_TRUE(IsGenericError([&] { Reachable::Deserialize(archive, text); }));
        for (const bool isLegacy : {false, true})
            EXPECT_THROW(SerializeData::DeserializeLoopCounter(archive, isLegacy, version),
                         CArchiveException);
    });
    EXPECT_EQ(HexOf(bytes), "0261620201000000000000");
    LoadFrom(bytes + BytesOf("03010000 04010000 0700 0501000000000000"), [&](CArchive& archive) {
        EXPECT_TRUE(IsGenericError([&] { Reachable::Serializestring(archive, text); }));
        Reachable::Deserialize(archive, text = "");
        EXPECT_EQ(text, "ab");
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 1), 258u);
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 1, true), 259u);
        EXPECT_TRUE(SerializeData::DeserializeLoopCounter(archive, true, version) == 260 && version == 0);
        EXPECT_TRUE(SerializeData::DeserializeLoopCounter(archive, false, version) == 261 && version == 7);
    });
}

// Stored again after loading a record of an unknown version: answers whether that raised an exception.
template <class Value>
bool IsRefused(Value& value, const std::string& version)
{
    const auto transfer = [&](CArchive& archive) { value.Serialize(archive); };
    const std::string before = StoredBy(transfer);
    bool isRefused = false;
    try {
        LoadFrom(BytesOf(version), transfer);
    } catch (const CArchiveException& exception) {
        isRefused = exception.m_cause == CArchiveException::badSchema;
    }
    EXPECT_EQ(HexOf(StoredBy(transfer)), HexOf(before)) << version;
    return isRefused;
}

Texts markers;

TEST(ArchiveRecords, UnknownVersionsChangeNothing)
{
    const auto before = FailureMarkers::SetSink([](const CString& line) { markers.push_back(line); });
    TextArray texts;
    texts.Add("kept");
    DateTime date(1900, 5, 6, 7, 8, 9);
    DateEntry rule;
    rule.SetDay("kept", 3, 4);
    ExternalAppRun app;
    app.SetArgs("kept");
    MRUArray lists;
    lists.Add("kept");
    MRUArrayByTime times;
    times.Add("kept", 1);
    MRUApplications applications;
    applications.AddEntry(KVT01_TEST_DATA "/golden/manifest.tsv");
    for (const char* version : {"0000", "0500", "FFFF"}) {
        EXPECT_FALSE(IsRefused(texts, version) || IsRefused(date, version) || IsRefused(rule, version));
        EXPECT_TRUE(IsRefused(app, version) && IsRefused(lists, version) && IsRefused(times, version) &&
                    IsRefused(applications, version));
    }
    FailureMarkers::SetSink(before);
    EXPECT_EQ(markers, Texts(3, "{B57EE119-2C25-4A8C-8506-45F22B9B02D5}"));
}

TEST(ArchiveRecords, DatesStayWithinBoundsWhateverTheyHold)
{
    DateTime wild;
    LoadFrom(BytesOf("0300 FFFFFF7F 00000080"), [&](CArchive& archive) { wild.Serialize(archive); });
    DateTime moved = wild;
    EXPECT_FALSE(wild.IsValidDate() || wild.IsValidTime() || wild.IsYesterday() || wild.IsTomorrow());
    EXPECT_EQ(wild.GetYear() + wild.GetMonth() + wild.GetDay(), 0);
    EXPECT_TRUE(wild.GetHour() == -596523 && wild.GetDayOfWeek() == 6);
    moved.AddSeconds(1);
    moved.AddDays(1);
    moved.AddMonths(1);
    EXPECT_EQ(moved, wild);
}

} // namespace
