// The folders and files of the registry.
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <sys/stat.h>
#include <thread>

#include "support/UserSettings.h"

namespace {

namespace fs = std::filesystem;

constexpr LSTATUS Missing = ERROR_FILE_NOT_FOUND, Denied = ERROR_ACCESS_DENIED,
                  Unusable = ERROR_INVALID_PARAMETER;

class RegistryTree : public testing::Test {
protected:
    LSTATUS Open(const std::string& path)
    {
        RegCloseKey(m_key);
        return RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &m_key);
    }
    LSTATUS Create(const std::string& path)
    {
        RegCloseKey(m_key);
        return RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &m_key,
                               nullptr);
    }
    LSTATUS Set(const std::string& name, const std::string& text)
    {
        return UserSettings::WriteText(m_key, name, text);
    }
    std::string Read(const fs::path& file) const
    {
        return m_user.Folder().Read(file.lexically_relative(m_folder).string());
    }
    std::string Get(const std::string& name) { return UserSettings::ReadText(m_key, name); }
    ~RegistryTree() override { RegCloseKey(m_key); }

    UserSettings m_user;
    const fs::path m_folder = m_user.Folder().Path();
    const fs::path m_tree = m_folder / "config/kvt01/HKEY_CURRENT_USER";
    HKEY m_key = nullptr;
};

TEST_F(RegistryTree, IsOfFoldersAndTextFilesOfTheUsersOwn)
{
    Create("Software\\Editor");
    Set("Log", "1");
    const fs::path file = m_tree / "Software/Editor/Log";
    EXPECT_EQ(Read(file), "1");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    for (fs::path folder = file.parent_path(); folder != m_folder.parent_path();
         folder = folder.parent_path())
        EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all) << folder;
    const std::string large(10'000'000, 'x');
    for (const auto& [content, text] : std::map<std::string, std::string>{{"echo\n", "echo"},
                                                                          {"two\n\n", "two\n"},
                                                                          {"dos\r\n", "dos"},
                                                                          {"\r\n", ""},
                                                                          {large + '\n', large}}) {
        const std::string name = "f" + content.substr(0, 3);
        m_user.Folder().Write("config/kvt01/HKEY_CURRENT_USER/Software/Editor/" + name, content);
        EXPECT_EQ(Get(name), text);
    }
}

TEST_F(RegistryTree, HasNoValueWhereThereIsNoReadableFile)
{
    Create("Odd\\folder");
    Open("Odd");
    const fs::path folder = m_tree / "Odd";
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    fs::create_symlink(folder / "loop", folder / "loop");
    EXPECT_EQ(Get("folder"), "ERROR 2");
    EXPECT_EQ(Get("pipe"), "ERROR 5"); // without waiting for its other end
    EXPECT_TRUE(Get("loop").starts_with("ERROR"));
    EXPECT_EQ(Set("folder", "x"), Denied);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 3); // what was begun is gone
    Set("file", "x");
    EXPECT_EQ(Open("Odd\\file"), Missing);
    EXPECT_EQ(Create("Odd\\file"), Denied);
}

// Each hostile name works as any other; all the files are below the tree, and each name has its own.
TEST_F(RegistryTree, HoldsHostileNamesInsideTheTree)
{
    const char* const names[] = {"..",     ".",         "../x",  "../../x", "/etc/passwd", "a/b",
                                 "%2E%2E", "%newAAAAA", "a%00b", "...",     ".hidden",     "~",
                                 "x\n",    "\xFF\xC0",  "*",     "-rf",     "$HOME",       " "};
    m_user.Folder().Write("config/kvt01/x", "outside");
    for (const std::string name : names) {
        EXPECT_EQ(Open(name), Missing) << name;
        Create("Names\\" + name);
        EXPECT_EQ(Get(name), "ERROR 2") << name;
        EXPECT_EQ(Set(name, "of " + name), 0) << name;
        EXPECT_EQ(Set(name + "\\..\\" + name, "long " + name), 0) << name;
    }
    for (const std::string name : names) {
        EXPECT_EQ(Open("Names\\" + name), 0) << name;
        EXPECT_EQ(Get(name) + Get(name + "\\..\\" + name), "of " + name + "long " + name);
    }
    std::size_t files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(m_tree / "Names"))
        files += entry.is_regular_file();
    EXPECT_EQ(files, 2 * std::size(names));
    fs::remove_all(m_tree / "Names");
    EXPECT_EQ(std::distance(fs::recursive_directory_iterator(m_folder), {}), 4); // down to the x
}

TEST_F(RegistryTree, RefusesNamesThatAreTooLong)
{
    EXPECT_EQ(Create(std::string(255, 'a')), 0);
    EXPECT_EQ(Set(std::string(255, 'b'), "x"), 0);
    for (const std::string& name : {std::string(256, 'a'), std::string(86, '/'), std::string(5000, 'k')}) {
        EXPECT_EQ(Set(name, "x"), Unusable);
        EXPECT_EQ(Open(name), Unusable);
        EXPECT_EQ(Create(name), Unusable);
        Create("a");
    }
}

TEST_F(RegistryTree, NeedsAPlaceThatTheEnvironmentNames)
{
    m_user.Set("XDG_CONFIG_HOME", "relative");
    m_user.Set("HOME", m_folder / "home");
    Create("Key");
    EXPECT_TRUE(fs::is_directory(m_folder / "home/.config/kvt01/HKEY_CURRENT_USER/Key"));
    m_user.Unset("XDG_CONFIG_HOME");
    m_user.Unset("HOME");
    EXPECT_NE(Create("Key"), 0);
    m_key = HKEY_CURRENT_USER;
    EXPECT_NE(Set("v", "x"), 0);
}

// A reader in the middle of many writes sees one whole text or another, and no other file appears.
TEST_F(RegistryTree, ReplacesAValueAsAWhole)
{
    Create("Whole");
    const std::string texts[] = {std::string(100'000, 'a'), std::string(70'000, 'b')};
    Set("v", texts[0]);
    std::atomic<bool> isDone = false;
    std::thread writer([&] {
        for (int i = 0; i < 100; ++i)
            EXPECT_EQ(Set("v", texts[i % 2]), 0);
        isDone = true;
    });
    while (!isDone) {
        const std::string read = Read(m_tree / "Whole/v");
        EXPECT_TRUE(read == texts[0] || read == texts[1]) << read.size();
    }
    writer.join();
    EXPECT_EQ(std::distance(fs::directory_iterator(m_tree / "Whole"), {}), 1);
}

} // namespace
