// NextIDMgr, VersionNumber, ExternalAppRun, and the records of these and of MRUApplications.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "ExternalAppRun.h"
#include "MRUApplications.h"
#include "NextIDMgr.h"
#include "VersionNumber.h"
#include "support/ArchiveBytes.h"
#include "support/TemporaryFolder.h"

namespace {

constexpr int Min = std::numeric_limits<int>::min();
constexpr int Max = std::numeric_limits<int>::max();

TEST(NextIDMgr, NeverHandsOutWhatIsInUse)
{
    const struct {
        int next, update, wanted;
    } cases[] = {
        {0, -5, 0},     {0, 0, 1},   {3, 10, 11},     {12, 10, 12},    {3, 3, 4},
        {3, 2, 3},      {3, Min, 3}, {3, Max, Min},   {Max, Max, Min}, {Max, Max - 1, Max},
        {Min, -1, Min}, {Min, 5, 6}, {Min, Max, Min},
    };
    for (const auto& [next, update, wanted] : cases) {
        SCOPED_TRACE(std::to_string(next) + " with " + std::to_string(update));
        NextIDMgr ids;
        ids.UpdateNextID(next == Min ? Max : next - 1);
        ids.UpdateNextID(update);
        const NextIDMgr copy = ids;
        EXPECT_EQ(ids.GetNextID(), wanted);
        EXPECT_EQ(ids.GetNextID(), wanted == Max ? Min : wanted + 1); // the lowest follows the highest
        EXPECT_TRUE(copy.VerifyNextID(wanted) && (wanted == Max || !copy.VerifyNextID(wanted + 1)));
        EXPECT_TRUE(!(copy < copy) && !(copy > copy) && (copy < ids) == (wanted < Max - 1));
    }
    EXPECT_TRUE(NextIDMgr::IsValidID(0) && !NextIDMgr::IsValidID(-1) && !NextIDMgr::IsValidID(Min));
}

TEST(VersionNumber, ReadsTexts)
{
    // A dot wins over a comma, and the digits of a piece stand in a row.
    const struct {
        CString text;
        const char* shown;
    } cases[] = {
        // clang-format off
        {"", "0.0.0"}, {" \t\r\n", "0.0.0"}, {"7", "7.0.0"}, {"2,5", "2.5.0"}, {"1..3", "1.0.3"}, {".5", "0.5.0"},
        {" 2 . 5 . 1 . 9 ", "2.5.1"}, {"5.", "5.0.0"}, {"...", "0.0.0"}, {",,4", "0.0.4"}, {"\xA0", "0.0.0"},
        {CString("1\0.2", 4), "1.2.0"}, {"1,2.3", "12.3.0"}, {"v1.2 beta 3", "1.23.0"}, {"1.-2.(3)", "1.-2.-3"},
        {"2147483647.-2147483648.4294967296", "2147483647.-2147483648.0"},
        // clang-format on
    };
    for (const auto& [text, shown] : cases) {
        const VersionNumber version(text);
        EXPECT_EQ(version.GetString(), shown) << text;
        const VersionNumber same(version.GetMajor(), version.GetMinor(), version.GetSub());
        EXPECT_EQ(VersionNumber(same.GetString()).GetString(), shown);
    }
}

TEST(VersionNumber, IsOrderedByItsParts)
{
    const int parts[] = {Min, -1, 0, Max};
    std::vector<VersionNumber> ascending;
    for (const int major : parts)
        for (const int minor : parts)
            for (const int sub : parts)
                ascending.emplace_back(major, minor, sub);
    for (std::size_t i = 0; i < ascending.size(); ++i)
        for (std::size_t j = 0; j < ascending.size(); ++j)
            ASSERT_TRUE((ascending[i] < ascending[j]) == (i < j) && (ascending[i] > ascending[j]) == (i > j))
                << i << ' ' << j;
}

ExternalAppRun App(const CString& path, const CString& initDir, const CString& title)
{
    ExternalAppRun app;
    app.SetPath(path);
    app.SetInitDir(initDir);
    app.SetTitle(title);
    return app;
}

TEST(ExternalAppRun, ComparesTitleOrPath)
{
    const struct {
        const char *title, *path, *otherTitle, *otherPath;
        bool isLess, isGreater;
    } cases[] = {{"a", "p", "a", "p", false, false},  {"a", "p", "b", "p", true, false},
                 {"b", "p", "a", "p", false, true},   {"a", "p", "a", "q", true, false},
                 {"a", "q", "a", "p", false, true},   {"a", "q", "b", "p", true, true},
                 {"b", "p", "a", "q", true, true},    {"B", "p", "a", "p", true, false},
                 {"\xE9", "p", "z", "p", false, true}};
    for (const auto& [title, path, otherTitle, otherPath, isLess, isGreater] : cases) {
        const ExternalAppRun app = App(path, "", title);
        const ExternalAppRun other = App(otherPath, "x", otherTitle);
        EXPECT_TRUE((app < other) == isLess && (app > other) == isGreater)
            << title << path << otherTitle << otherPath;
    }
}

TEST(ExternalAppRun, RunsOnlyWithAPathAndAFolderThatExist)
{
    const TemporaryFolder folder;
    const CString there(folder.Write("plain", "no program"));
    const CString missing(folder.Path("missing"));
    const struct {
        CString path, initDir;
        bool canRun;
    } cases[] = {
        {there, folder.Path(), true}, {folder.Path(), there, true},
        {there, "", false},           {there, " \t", false},
        {"", there, false},           {missing, there, false},
        {there, missing, false},      {there + CString('\0'), there, false},
    };
    for (const auto& [path, initDir, canRun] : cases) {
        const ExternalAppRun app = App(path, initDir, "");
        EXPECT_EQ(app.CanRun(), canRun) << path << " in " << initDir;
        EXPECT_FALSE(app.Run()); // none of these is a program
    }
}

// ---- records --------------------------------------------------------------------------------------------

template <class Value>
std::string HexAfterLoading(const std::string& before, const std::string& bytes, bool mustFail)
{
    Value value;
    const auto load = [&](CArchive& archive) {
        value.Serialize(archive);
        EXPECT_EQ(archive.GetBytesAhead(), 0u);
    };
    LoadFrom(BytesOf(before), load);
    if (mustFail)
        EXPECT_THROW(LoadFrom(bytes, load), CArchiveException);
    else
        LoadFrom(bytes, load);
    return HexOf(StoredBy([&](CArchive& archive) { value.Serialize(archive); }));
}

// The first record is what is stored; the others, all but the bad ones, load as the same. What is cut short
// or bad changes nothing.
template <class Value>
void ExpectRecords(const std::vector<std::string>& records, const std::vector<std::string>& bad,
                   const std::string& other)
{
    const std::string stored = HexOf(BytesOf(records[0]));
    const std::string before = HexOf(BytesOf(other));
    for (const std::string& record : records) {
        SCOPED_TRACE(record);
        const std::string bytes = BytesOf(record);
        EXPECT_EQ(HexAfterLoading<Value>(other, bytes, false), stored);
        for (std::size_t length = 0; length < bytes.size(); ++length)
            EXPECT_EQ(HexAfterLoading<Value>(other, bytes.substr(0, length), true), before) << length;
    }
    for (const std::string& record : bad)
        EXPECT_EQ(HexAfterLoading<Value>(other, BytesOf(record), true), before) << record;
}

TEST(Records, OfEveryVersionAreReadAndTheLastIsStored)
{
    ExpectRecords<NextIDMgr>({"0100 04030201", "0000 04030201", "FFFF 04030201"}, {}, "0100 09000000");
    ExpectRecords<VersionNumber>({"0100 02000000 FFFFFFFF 0D0C0B0A", "7700 02000000 FFFFFFFF 0D0C0B0A"}, {},
                                 "0100 07000000 08000000 09000000");
    const std::string protectedTexts =
        "0100 1000 F5DE3C53D79ADE6197361D6CE25DE335 0000 00 0000 0164 0000 0174";
    ExpectRecords<ExternalAppRun>(
        {"0300 026162 00 0164 0174", "0200" + protectedTexts, "0100" + protectedTexts},
        {"0000 0170 00 0164 0174", "0400 0170 00 0164 0174", "FFFF"}, "0300 0131 0132 0133 0134");
    const std::string entries = "0000 0161 0000 022F31 0000 0141 0000 0161";
    ExpectRecords<MRUApplications>({"0400 0200000000000000 0161 022F31 0141 0161",
                                    "0300 0200000000000000" + entries, "0200 0200000000000000" + entries,
                                    "0100 02000000" + entries},
                                   {"0000", "0500 0000000000000000", "0400 0000000100000000 0161 0162"},
                                   "0400 0100000000000000 0178 0179");
}

} // namespace
