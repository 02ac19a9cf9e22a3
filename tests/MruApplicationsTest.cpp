#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MRUApplications.h"
#include "TextArray.h"
#include "support/ArchiveBytes.h"
#include "support/TemporaryFolder.h"

namespace {

using List = std::vector<CString>;

std::string StoredHexOf(MRUApplications applications)
{
    return HexOf(StoredBy([&](CArchive& archive) { applications.Serialize(archive); }));
}

MRUApplications Loaded(const std::string& hex)
{
    MRUApplications applications;
    LoadFrom(BytesOf(hex), [&](CArchive& archive) {
        applications.Serialize(archive);
        EXPECT_EQ(archive.GetBytesAhead(), 0u);
    });
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
    const CString shouted(folder.Write("VIEWER", ""));
    MRUApplications applications;
    for (const CString& path : {editor, viewer, shouted, editor, CString(folder.Path()),
                                CString(folder.Path("none")), viewer + CString('\0'), CString()})
        applications.AddEntry(path);
    EXPECT_EQ(PathsOf(applications), (List{viewer, editor})); // SHOUTED differs by letter case only
    EXPECT_EQ(NamesOf(applications), (List{"viewer", "Editor 2.5"}));
    const MRUApplications copy = applications;
    applications.Clear();
    EXPECT_TRUE(PathsOf(applications).empty() && NamesOf(applications).empty());
    EXPECT_EQ(PathsOf(copy), (List{viewer, editor}));
    EXPECT_EQ(copy.GetAppPath(~uint64{0}), "");
}

// Names a, b, A and paths /1, /2, a.
const char* const record = "0400 0300000000000000 0161 022F31 0162 022F32 0141 0161";

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
        SCOPED_TRACE(text);
        MRUApplications applications = Loaded(record);
        EXPECT_EQ(applications.MoveToTop(text), isFound);
        EXPECT_EQ(PathsOf(applications), paths);
    }
}

TEST(MruApplications, NamesFillUpToTwentyAndAtLeastOne)
{
    std::string many = "0400 1E00000000000000";
    List names;
    for (int i = 0; i < 30; ++i) {
        const char letter = static_cast<char>('A' + i);
        many += "01" + HexOf(std::string(1, letter)) + "0170";
        names.emplace_back(letter);
    }
    const struct {
        const std::string hex;
        std::size_t before, wanted;
    } cases[] = {
        {record, 0, 3}, {record, 1, 2}, {record, 2, 1}, {record, 3, 1}, {record, 50, 1},
        {many, 0, 20},  {many, 7, 13},  {many, 19, 1},  {many, 20, 1},  {"0400 0000000000000000", 0, 0},
    };
    for (const auto& [hex, before, wanted] : cases) {
        SCOPED_TRACE(hex + " behind " + std::to_string(before));
        const List got = NamesOf(Loaded(hex), before);
        ASSERT_EQ(got.size(), wanted);
        if (hex == many) {
            EXPECT_EQ(got, List(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(wanted)));
        }
    }
}

TEST(MruApplications, ReadsEveryRecordVersionAndSurvivesDamage)
{
    const std::string stored = StoredHexOf(Loaded(record));
    EXPECT_EQ(stored, HexOf(BytesOf(record)));
    const char* const protectedEntries = "0000 0161 0000 022F31 0000 0162 0000 022F32 0000 0141 0000 0161";
    const std::string records[] = {record, std::string("0300 0300000000000000") + protectedEntries,
                                   std::string("0200 0300000000000000") + protectedEntries,
                                   std::string("0100 03000000") + protectedEntries};
    for (const std::string& hex : records) {
        SCOPED_TRACE(hex);
        EXPECT_EQ(StoredHexOf(Loaded(hex)), stored);
        const std::string bytes = BytesOf(hex);
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            MRUApplications kept = Loaded(record);
            EXPECT_THROW(
                LoadFrom(bytes.substr(0, length), [&](CArchive& archive) { kept.Serialize(archive); }),
                CArchiveException);
            EXPECT_EQ(StoredHexOf(kept), stored) << length;
        }
    }
    for (const char* hex : {"0000", "0500 0000000000000000", "0400 FFFFFFFFFFFFFFFF 0161 0162"}) {
        MRUApplications kept = Loaded(record);
        EXPECT_THROW(LoadFrom(BytesOf(hex), [&](CArchive& archive) { kept.Serialize(archive); }),
                     CArchiveException)
            << hex;
        EXPECT_EQ(StoredHexOf(kept), stored);
    }
}

} // namespace
