// The folders and files of the registry.
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <sys/stat.h>
#include <thread>

#include "support/UserSettings.h"

namespace {

namespace fs = std::filesystem;

constexpr LSTATUS Denied = ERROR_ACCESS_DENIED, Unusable = ERROR_INVALID_PARAMETER;

class RegistryTree : public testing::Test, public UserSettings {
protected:
    const std::string tree = "config/kvt01/HKEY_CURRENT_USER/";
    const fs::path top = Folder().Path(tree);
};

TEST_F(RegistryTree, IsOfFoldersAndTextFilesOfTheUsersOwn)
{
    Use("Log", "1", "Software\\Editor");
    const fs::path file = top / "Software/Editor/Log";
    EXPECT_EQ(Folder().Read(tree + "Software/Editor/Log"), "1");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    for (fs::path folder = file.parent_path(); folder.filename() != "config"; folder = folder.parent_path())
        EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all) << folder;
    const std::string large(10'000'000, 'x');
    for (const auto& [content, text] : std::map<std::string, std::string>{{"echo\n", "echo"},
                                                                          {"two\n\n", "two\n"},
                                                                          {"dos\r\n", "dos"},
                                                                          {"\r\n", ""},
                                                                          {large + '\n', large}}) {
        const std::string name = "f" + content.substr(0, 3);
        Folder().Write(tree + "Software/Editor/" + name, content);
        EXPECT_EQ(Setting(name, "Software\\Editor"), text);
    }
}

TEST_F(RegistryTree, HasNoValueWhereThereIsNoReadableFile)
{
    Use("file", "x", "Odd");
    Use("file", "x", "Odd\\folder");
    ASSERT_EQ(mkfifo((top / "Odd/pipe").c_str(), 0600), 0);
    fs::create_symlink(top / "Odd/loop", top / "Odd/loop");
    EXPECT_EQ(Setting("folder", "Odd"), "ERROR 2");
    EXPECT_EQ(Setting("pipe", "Odd"), "ERROR 5"); // without waiting for its other end
    EXPECT_TRUE(Setting("loop", "Odd").starts_with("ERROR"));
    EXPECT_EQ(Use("folder", "x", "Odd"), Denied);
    EXPECT_EQ(std::distance(fs::directory_iterator(top / "Odd"), {}), 4); // what was begun is gone
    EXPECT_EQ(Setting("", "Odd\\file"), "ERROR 2");
    EXPECT_EQ(Use("", "x", "Odd\\file"), Denied);
}

// Each hostile name works as any other; all the files are below the tree, and each name has its own.
TEST_F(RegistryTree, HoldsHostileNamesInsideTheTree)
{
    const char* const names[] = {"..",     ".",         "../x",  "../../x", "/etc/passwd", "a/b",
                                 "%2E%2E", "%newAAAAA", "a%00b", "...",     ".hidden",     "~",
                                 "x\n",    "\xFF\xC0",  "*",     "-rf",     "$HOME",       " "};
    Folder().Write("config/kvt01/x", "outside");
    for (const std::string name : names) {
        EXPECT_EQ(Setting("", name) + Setting(name, "Names\\" + name), "ERROR 2ERROR 2") << name;
        EXPECT_EQ(Use(name, "of " + name, "Names\\" + name), 0) << name;
        EXPECT_EQ(Use(name + "\\..\\" + name, "long " + name, "Names\\" + name), 0) << name;
    }
    for (const std::string name : names)
        EXPECT_EQ(Setting(name, "Names\\" + name) + Setting(name + "\\..\\" + name, "Names\\" + name),
                  "of " + name + "long " + name);
    std::size_t files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(top / "Names"))
        files += entry.is_regular_file();
    EXPECT_EQ(files, 2 * std::size(names));
    fs::remove_all(top / "Names");
    EXPECT_EQ(std::distance(fs::recursive_directory_iterator(Folder().Path()), {}), 4); // down to the x
}

TEST_F(RegistryTree, RefusesNamesThatAreTooLong)
{
    EXPECT_EQ(Use(std::string(255, 'b'), "x", std::string(255, 'a')), 0);
    for (const std::string& name : {std::string(256, 'a'), std::string(86, '/'), std::string(5000, 'k')}) {
        EXPECT_EQ(Use(name, "x", "a"), Unusable);
        EXPECT_EQ(Use("a", "x", name), Unusable);
        EXPECT_EQ(Setting("a", name), "ERROR 87");
    }
}

TEST_F(RegistryTree, NeedsAPlaceThatTheEnvironmentNames)
{
    Set("XDG_CONFIG_HOME", "relative");
    Set("HOME", Folder().Path("home"));
    Use("v", "x", "Key");
    EXPECT_EQ(Folder().Read("home/.config/kvt01/HKEY_CURRENT_USER/Key/v"), "x");
    Unset("XDG_CONFIG_HOME");
    Unset("HOME");
    EXPECT_NE(Use("v", "x", "Key"), 0);
    EXPECT_NE(RegSetValueExA(HKEY_CURRENT_USER, "v", 0, REG_SZ, nullptr, 0), 0);
}

// A reader in the middle of many writes sees one whole text or another, and no other file appears.
TEST_F(RegistryTree, ReplacesAValueAsAWhole)
{
    const std::string texts[] = {std::string(100'000, 'a'), std::string(70'000, 'b')};
    Use("v", texts[0], "Whole");
    std::atomic<bool> isDone = false;
    std::thread writer([&] {
        for (int i = 0; i < 100; ++i)
            EXPECT_EQ(Use("v", texts[i % 2], "Whole"), 0);
        isDone = true;
    });
    while (!isDone) {
        const std::string read = Folder().Read(tree + "Whole/v");
        EXPECT_TRUE(read == texts[0] || read == texts[1]) << read.size();
    }
    writer.join();
    EXPECT_EQ(std::distance(fs::directory_iterator(top / "Whole"), {}), 1);
}

} // namespace
