#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MRUApplications.h"
#include "TextArray.h"
#include "support/ArchiveBytes.h"
#include "support/TemporaryFolder.h"

namespace {

using List = std::vector<CString>;

MRUApplications Loaded(const std::string& hex)
{
    MRUApplications applications;
    LoadFrom(BytesOf(hex), [&](CArchive& archive) { applications.Serialize(archive); });
    return applications;
}

List PathsOf(const MRUApplications& applications)
{
    List paths;
    while (!applications.GetAppPath(paths.size()).IsEmpty())
        paths.push_back(applications.GetAppPath(paths.size()));
    return paths;
}

List NamesOf(const MRUApplications& applications, std::size_t before = 0)
{
    TextArray names;
    for (std::size_t i = 0; i < before; ++i)
        names.Add("before");
    applications.GetMRUAppNames(names);
    return List(names.begin() + static_cast<std::ptrdiff_t>(before), names.end());
}

TEST(MruApplications, TakesFilesOnceAndTheNewestFirst)
{
    const TemporaryFolder folder;
    const CString editor(folder.Write("Editor 2.5", ""));
    const CString viewer(folder.Write("viewer", ""));
    const CString shouted(folder.Write("VIEWER", "")); // differs by letter case only
    MRUApplications applications;
    for (const CString& path : {editor, viewer, shouted, editor, CString(folder.Path()),
                                CString(folder.Path("none")), viewer + CString('\0'), CString()})
        applications.AddEntry(path);
    const MRUApplications copy = applications;
    applications.Clear();
    EXPECT_TRUE(PathsOf(applications).empty() && NamesOf(applications).empty());
    EXPECT_EQ(PathsOf(copy), (List{viewer, editor}));
    EXPECT_EQ(NamesOf(copy), (List{"viewer", "Editor 2.5"}));
    EXPECT_EQ(copy.GetAppPath(~uint64{0}), "");
}

TEST(MruApplications, FindsByPathBeforeName)
{
    const struct {
        const char* text;
        bool isFound;
        List paths;
    } cases[] = {
        {"/2", true, {"/2", "/1", "a"}}, {"B", true, {"/2", "/1", "a"}},  {"A", true, {"a", "/1", "/2"}},
        {"/1", true, {"/1", "/2", "a"}}, {"c", false, {"/1", "/2", "a"}}, {"", false, {"/1", "/2", "a"}},
    };
    for (const auto& [text, isFound, paths] : cases) {
        // The names a, b, A with the paths /1, /2, a.
        MRUApplications applications = Loaded("0400 0300000000000000 0161 022F31 0162 022F32 0141 0161");
        EXPECT_EQ(applications.MoveToTop(text), isFound) << text;
        EXPECT_EQ(PathsOf(applications), paths) << text;
    }
}

TEST(MruApplications, NamesFillUpToTwentyAndAtLeastOne)
{
    const struct {
        std::size_t count, before, wanted;
    } cases[] = {{3, 0, 3},   {3, 1, 2},   {3, 2, 1},   {3, 3, 1},   {3, 50, 1}, {0, 0, 0},
                 {30, 0, 20}, {30, 7, 13}, {30, 19, 1}, {30, 20, 1}, {20, 0, 20}};
    for (const auto& [count, before, wanted] : cases) {
        std::string hex = "0400" + HexOf(std::string(1, static_cast<char>(count))) + "00000000000000";
        List names;
        for (std::size_t i = 0; i < count; ++i) {
            names.emplace_back(static_cast<char>('A' + i));
            hex += "01" + HexOf(std::string(names.back().View())) + "0170";
        }
        names.resize(wanted);
        EXPECT_EQ(NamesOf(Loaded(hex), before), names) << count << " behind " << before;
    }
}

} // namespace
