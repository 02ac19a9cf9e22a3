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
#include "support/Cases.h"
#include "support/TemporaryFolder.h"

namespace {

constexpr int Min = std::numeric_limits<int>::min();
constexpr int Max = std::numeric_limits<int>::max();

TEST(NextIDMgr, NeverHandsOutWhatIsInUse)
{
    for (const auto& [next, update, wanted] : NumberCases<int, 3>("next IDs")) {
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

TEST(ExternalAppRun, RunsOnlyWithAPathAndAFolderThatExist)
{
    const TemporaryFolder folder;
    folder.Write("plain", "no program");
    const auto inFolder = [&](const std::string& name) {
        return name.starts_with('@') ? folder.Path(name.substr(1)) : name;
    };
    for (const auto& [path, initDir, canRun] : Cases<3>("runnable")) {
        const ExternalAppRun app = App(inFolder(path), inFolder(initDir), "");
        EXPECT_EQ(app.CanRun(), canRun == "1") << path << " in " << initDir;
        EXPECT_FALSE(app.Run()); // none of these is a program
    }
}

// ---- MRUApplications ------------------------------------------------------------------------------------

// Of each entry the name and the path.
MRUApplications Of(const std::vector<std::string>& texts)
{
    MRUApplications applications;
    Load(applications, StoredBy([&](CArchive& archive) {
             archive << WORD{4} << uint64{texts.size() / 2};
             for (const std::string& text : texts)
                 archive << text;
         }));
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
    for (const auto& [text, isFound, paths] : Cases<3>("recent applications")) {
        MRUApplications applications = Of({"a", "/1", "b", "/2", "A", "a"});
        EXPECT_EQ(applications.MoveToTop(text), isFound == "1") << text;
        EXPECT_EQ(PathsOf(applications), paths) << text;
    }
}

TEST(MruApplications, NamesFillUpToTwentyAndAtLeastOne)
{
    const std::string letters = "abcdefghijklmnopqrstuvwxyzABCD";
    for (const auto& [count, before, wanted] : NumberCases<std::size_t, 3>("recent names")) {
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < count; ++i)
            texts.insert(texts.end(), {letters.substr(i, 1), "/"});
        EXPECT_EQ(NamesOf(Of(texts), before), letters.substr(0, wanted)) << count << " behind " << before;
    }
}

} // namespace
