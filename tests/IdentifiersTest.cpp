// NextIDMgr, VersionNumber, ExternalAppRun, MRUApplications. Their records are among the golden files.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "ExternalAppRun.h"
#include "MRUApplications.h"
#include "NextIDMgr.h"
#include "TextArray.h"
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
    } cases[] = {{0, -5, 0},     {0, 0, 1},   {3, 10, 11},    {12, 10, 12},    {3, 3, 4},
                 {3, 2, 3},      {3, Min, 3}, {3, Max, Min},  {Max, Max, Min}, {Max, Max - 1, Max},
                 {Min, -1, Min}, {Min, 5, 6}, {Min, Max, Min}};
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
        EXPECT_EQ(VersionNumber(text).GetString(), shown) << text;
        EXPECT_EQ(VersionNumber(CString(shown)).GetString(), shown);
    }
}

TEST(VersionNumber, IsOrderedByItsParts)
{
    constexpr int parts[] = {Min, -1, 0, Max};
    const auto number = [&](int i) { return VersionNumber(parts[i / 16], parts[i / 4 % 4], parts[i % 4]); };
    for (int i = 0; i < 64; ++i)
        for (int j = 0; j < 64; ++j)
            ASSERT_TRUE((number(i) < number(j)) == (i < j) && (number(i) > number(j)) == (i > j))
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
    // A title and a path of one character each.
    const char* const cases[][3] = {
        // clang-format off
        {"ap", "ap", ""}, {"ap", "bp", "<"}, {"bp", "ap", ">"}, {"ap", "aq", "<"}, {"aq", "ap", ">"}, {"aq", "bp", "<>"},
        {"bp", "aq", "<>"}, {"Bp", "ap", "<"}, {"\xE9p", "zp", ">"},
        // clang-format on
    };
    for (const auto& [one, other, signs] : cases) {
        const ExternalAppRun a = App(one + 1, "", CString(one, 1)),
                             b = App(other + 1, "x", CString(other, 1));
        EXPECT_EQ(std::string(a < b ? "<" : "") + (a > b ? ">" : ""), signs) << one << ' ' << other;
    }
}

TEST(ExternalAppRun, RunsOnlyWithAPathAndAFolderThatExist)
{
    const TemporaryFolder folder;
    const CString there(folder.Write("plain", "no program")), missing(folder.Path("missing"));
    const struct {
        CString path, initDir;
        bool canRun;
    } cases[] = {{there, folder.Path(), true}, {folder.Path(), there, true},
                 {there, "", false},           {there, " \t", false},
                 {"", there, false},           {missing, there, false},
                 {there, missing, false},      {there + CString('\0'), there, false}};
    for (const auto& [path, initDir, canRun] : cases) {
        const ExternalAppRun app = App(path, initDir, "");
        EXPECT_EQ(app.CanRun(), canRun) << path << " in " << initDir;
        EXPECT_FALSE(app.Run()); // none of these is a program
    }
}

// ---- MRUApplications ------------------------------------------------------------------------------------

// Of each entry the name and the path.
MRUApplications Of(const std::vector<std::string>& texts)
{
    MRUApplications applications;
    LoadFrom(StoredBy([&](CArchive& archive) {
                 archive << WORD{4} << uint64{texts.size() / 2};
                 for (const std::string& text : texts)
                     archive << text;
             }),
             [&](CArchive& archive) { applications.Serialize(archive); });
    return applications;
}

std::string PathsOf(const MRUApplications& applications)
{
    CString paths;
    for (uint64 i = 0; !applications.GetAppPath(i).IsEmpty(); ++i)
        paths += applications.GetAppPath(i) + '|';
    return std::string(paths.View());
}

std::string NamesOf(const MRUApplications& applications, std::size_t before = 0)
{
    TextArray names;
    for (std::size_t i = 0; i < before; ++i)
        names.Add("before");
    applications.GetMRUAppNames(names);
    std::string shown;
    for (std::size_t i = before; i < names.GetCount(); ++i)
        shown += names.GetCopyAt(i).GetString();
    return shown;
}

TEST(MruApplications, TakesFilesOnceAndTheNewestFirst)
{
    const TemporaryFolder folder;
    const std::string editor = folder.Write("Editor 2.5", ""), viewer = folder.Write("viewer", "");
    const std::string shouted = folder.Write("VIEWER", ""); // differs by letter case only
    MRUApplications applications;
    for (const std::string& path :
         {editor, viewer, shouted, editor, folder.Path(), folder.Path("none"), viewer + '\0', std::string()})
        applications.AddEntry(path);
    EXPECT_EQ(PathsOf(applications), viewer + '|' + editor + '|');
    EXPECT_EQ(NamesOf(applications), "viewerEditor 2.5");
    EXPECT_EQ(applications.GetAppPath(~uint64{0}), "");
    applications.Clear();
    EXPECT_EQ(PathsOf(applications) + NamesOf(applications), "");
}

TEST(MruApplications, FindsByPathBeforeName)
{
    const std::pair<const char*, const char*> cases[] = {{"/2", "/2|/1|a|"}, {"B", "/2|/1|a|"},
                                                         {"A", "a|/1|/2|"},  {"/1", "/1|/2|a|"},
                                                         {"c", nullptr},     {"", nullptr}};
    for (const auto& [text, paths] : cases) {
        MRUApplications applications = Of({"a", "/1", "b", "/2", "A", "a"});
        EXPECT_EQ(applications.MoveToTop(text), paths != nullptr) << text;
        EXPECT_EQ(PathsOf(applications), paths != nullptr ? paths : "/1|/2|a|") << text;
    }
}

TEST(MruApplications, NamesFillUpToTwentyAndAtLeastOne)
{
    const std::string letters = "abcdefghijklmnopqrstuvwxyzABCD";
    const std::size_t cases[][3] = {{3, 0, 3},   {3, 1, 2},   {3, 2, 1},   {3, 3, 1},   {3, 50, 1}, {0, 0, 0},
                                    {30, 0, 20}, {30, 7, 13}, {30, 19, 1}, {30, 20, 1}, {20, 0, 20}};
    for (const auto& [count, before, wanted] : cases) {
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < count; ++i)
            texts.insert(texts.end(), {letters.substr(i, 1), "/"});
        EXPECT_EQ(NamesOf(Of(texts), before), letters.substr(0, wanted)) << count << " behind " << before;
    }
}

} // namespace
