#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "ExternalAppRun.h"
#include "NextIDMgr.h"
#include "VersionNumber.h"
#include "support/ArchiveBytes.h"
#include "support/TemporaryFolder.h"

namespace {

constexpr int Min = std::numeric_limits<int>::min();
constexpr int Max = std::numeric_limits<int>::max();

template <class Value>
std::string StoredHexOf(Value value)
{
    return HexOf(StoredBy([&](CArchive& archive) { value.Serialize(archive); }));
}

template <class Value>
void Load(Value& value, const std::string& hex)
{
    LoadFrom(BytesOf(hex), [&](CArchive& archive) {
        value.Serialize(archive);
        EXPECT_EQ(archive.GetBytesAhead(), 0u) << hex;
    });
}

// Every beginning of the record that is not all of it raises endOfFile and changes nothing.
template <class Value>
void ExpectTruncationsLeaveAlone(const Value& before, const std::string& hex)
{
    const std::string bytes = BytesOf(hex);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        SCOPED_TRACE(hex + " cut to " + std::to_string(length));
        Value value = before;
        EXPECT_THROW(LoadFrom(bytes.substr(0, length), [&](CArchive& archive) { value.Serialize(archive); }),
                     CArchiveException);
        EXPECT_EQ(StoredHexOf(value), StoredHexOf(before));
    }
}

// ---- identifiers ----------------------------------------------------------------------------------------

NextIDMgr WithNext(int next)
{
    NextIDMgr ids;
    if (next == Min) {
        ids.UpdateNextID(Max);
        return ids;
    }
    ids.UpdateNextID(next - 1);
    return ids;
}

TEST(NextIDMgr, NeverHandsOutWhatIsInUse)
{
    const struct {
        int next, update, wanted;
    } cases[] = {
        {0, -5, 0},     {0, 0, 1},   {3, 10, 11},   {12, 10, 12},    {3, 3, 4},
        {3, 2, 3},      {3, Min, 3}, {3, Max, Min}, {Max, Max, Min}, {Max, Max - 1, Max},
        {Min, -1, Min}, {Min, 0, 1}, {Min, 5, 6},   {Min, Max, Min},
    };
    for (const auto& [next, update, wanted] : cases) {
        SCOPED_TRACE(std::to_string(next) + " with " + std::to_string(update));
        NextIDMgr ids = WithNext(next);
        ids.UpdateNextID(update);
        const NextIDMgr copy = ids;
        EXPECT_EQ(ids.GetNextID(), wanted);
        EXPECT_EQ(ids.GetNextID(), wanted == Max ? Min : wanted + 1); // at the end it goes on with the lowest
        EXPECT_TRUE(copy.VerifyNextID(wanted) && copy.VerifyNextID(Min));
        EXPECT_TRUE(wanted == Max || !copy.VerifyNextID(wanted + 1));
        EXPECT_TRUE(!(copy < copy) && !(copy > copy) && (copy < ids) == (wanted < Max - 1));
    }
    EXPECT_TRUE(NextIDMgr::IsValidID(0) && !NextIDMgr::IsValidID(-1) && !NextIDMgr::IsValidID(Min));
}

TEST(NextIDMgr, KeepsItsRecord)
{
    EXPECT_EQ(StoredHexOf(WithNext(0x01020304)), "010004030201");
    EXPECT_EQ(StoredHexOf(WithNext(Min)), "010000000080");
    for (const char* hex : {"010005000000", "000005000000", "FFFF05000000"}) { // whatever the version
        NextIDMgr ids = WithNext(9);
        Load(ids, hex);
        EXPECT_EQ(ids.GetNextID(), 5) << hex;
        ExpectTruncationsLeaveAlone(WithNext(9), hex);
    }
}

// ---- version numbers ------------------------------------------------------------------------------------

TEST(VersionNumber, ReadsTexts)
{
    const struct {
        CString text;
        int major, minor, sub;
        const char* shown;
    } cases[] = {
        {"", 0, 0, 0, "0.0.0"},
        {" \t\r\n", 0, 0, 0, "0.0.0"},
        {"7", 7, 0, 0, "7.0.0"},
        {"2,5", 2, 5, 0, "2.5.0"},
        {" 2 . 5 . 1 . 9 ", 2, 5, 1, "2.5.1"},
        {"1,2.3", 12, 3, 0, "12.3.0"}, // a dot wins, and the digits of a piece stand in a row
        {"1..3", 1, 0, 3, "1.0.3"},
        {".5", 0, 5, 0, "0.5.0"},
        {"5.", 5, 0, 0, "5.0.0"},
        {"...", 0, 0, 0, "0.0.0"},
        {",,4", 0, 0, 4, "0.0.4"},
        {"v1.2 beta 3", 1, 23, 0, "1.23.0"},
        {"1.-2.(3)", 1, -2, -3, "1.-2.-3"},
        {"2147483647.-2147483648.4294967296", Max, Min, 0, "2147483647.-2147483648.0"},
        {CString("1\0.2", 4), 1, 2, 0, "1.2.0"},
        {"\xA0", 0, 0, 0, "0.0.0"},
    };
    for (const auto& [text, major, minor, sub, shown] : cases) {
        SCOPED_TRACE(text.GetString());
        const VersionNumber version(text);
        EXPECT_EQ(version.GetMajor(), major);
        EXPECT_EQ(version.GetMinor(), minor);
        EXPECT_EQ(version.GetSub(), sub);
        EXPECT_EQ(version.GetString(), shown);
        EXPECT_EQ(VersionNumber(version.GetString()).GetString(), shown);
    }
}

TEST(VersionNumber, IsOrderedByItsParts)
{
    const int parts[] = {Min, -1, 0, 1, Max};
    std::vector<VersionNumber> ascending;
    for (const int major : parts)
        for (const int minor : parts)
            for (const int sub : parts)
                ascending.emplace_back(major, minor, sub);
    for (std::size_t i = 0; i < ascending.size(); ++i)
        for (std::size_t j = 0; j < ascending.size(); ++j) {
            ASSERT_EQ(ascending[i] < ascending[j], i < j) << i << ' ' << j;
            ASSERT_EQ(ascending[i] > ascending[j], i > j) << i << ' ' << j;
        }
}

TEST(VersionNumber, KeepsItsRecord)
{
    EXPECT_EQ(StoredHexOf(VersionNumber()), "0100010000000000000000000000");
    EXPECT_EQ(StoredHexOf(VersionNumber(2, -1, 0x0A0B0C0D)), "010002000000FFFFFFFF0D0C0B0A");
    for (const char* hex : {"0100020000000300000004000000", "7700020000000300000004000000"}) {
        VersionNumber version;
        Load(version, hex); // whatever the version of the record
        EXPECT_EQ(version.GetString(), "2.3.4");
        ExpectTruncationsLeaveAlone(VersionNumber(7, 8, 9), hex);
    }
}

// ---- outside programs -----------------------------------------------------------------------------------

ExternalAppRun App(const CString& path, const CString& args, const CString& initDir, const CString& title)
{
    ExternalAppRun app;
    app.SetPath(path);
    app.SetArgs(args);
    app.SetInitDir(initDir);
    app.SetTitle(title);
    return app;
}

TEST(ExternalAppRun, ComparesTitleOrPath)
{
    const struct {
        const char *title, *path, *otherTitle, *otherPath;
        bool isLess, isGreater;
    } cases[] = {
        {"a", "p", "a", "p", false, false},   {"a", "p", "b", "p", true, false},
        {"b", "p", "a", "p", false, true},    {"a", "p", "a", "q", true, false},
        {"a", "q", "a", "p", false, true},    {"a", "q", "b", "p", true, true},
        {"b", "p", "a", "q", true, true},     {"B", "p", "a", "p", true, false},
        {"\xE9", "p", "z", "p", false, true},
    };
    for (const auto& [title, path, otherTitle, otherPath, isLess, isGreater] : cases) {
        SCOPED_TRACE(std::string(title) + path + otherTitle + otherPath);
        const ExternalAppRun app = App(path, "x", "y", title);
        const ExternalAppRun other = App(otherPath, "", "", otherTitle);
        EXPECT_EQ(app < other, isLess);
        EXPECT_EQ(app > other, isGreater);
    }
}

TEST(ExternalAppRun, RunsOnlyWithAPathAndAFolderThatExist)
{
    const TemporaryFolder folder;
    const CString there(folder.Write("plain", "no program"));
    const CString missing(folder.Path("missing"));
    const CString behindNul = there + CString("\0x", 2);
    const struct {
        CString path, initDir;
        bool canRun;
    } cases[] = {
        {there, folder.Path(), true},
        {there, "", false},
        {there, " \t", false},
        {"", folder.Path(), false},
        {missing, folder.Path(), false},
        {there, missing, false},
        {there, there, true},
        {folder.Path(), there, true},
        {behindNul, there, false},
    };
    for (const auto& [path, initDir, canRun] : cases) {
        SCOPED_TRACE(std::string(path.View()) + " in " + std::string(initDir.View()));
        const ExternalAppRun app = App(path, "", initDir, "");
        EXPECT_EQ(app.CanRun(), canRun);
        EXPECT_FALSE(app.Run()); // none of these is a program
    }
    ExternalAppRun cleared = App(there, "a", there, "t");
    cleared.Clear();
    EXPECT_EQ(StoredHexOf(cleared), "030000000000");
}

TEST(ExternalAppRun, ReadsEveryRecordVersion)
{
    const ExternalAppRun app = App("p", "", "d", "t");
    EXPECT_EQ(StoredHexOf(app), "03000170000164"
                                "0174");
    for (const char* hex : {"0300 0170 00 0164 0174", "0200 0000 0170 0000 00 0000 0164 0000 0174",
                            "0100 0000 0170 0000 00 0000 0164 0000 0174"}) {
        SCOPED_TRACE(hex);
        ExternalAppRun loaded;
        Load(loaded, hex);
        EXPECT_EQ(StoredHexOf(loaded), StoredHexOf(app));
        ExpectTruncationsLeaveAlone(App("1", "2", "3", "4"), hex);
    }
    for (const char* hex : {"0000 0170 00 0164 0174", "0400 0170 00 0164 0174", "FFFF"}) {
        ExternalAppRun kept = app;
        EXPECT_THROW(Load(kept, hex), CArchiveException) << hex;
        EXPECT_EQ(StoredHexOf(kept), StoredHexOf(app));
    }
}

} // namespace
