#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

#include "support/UserSettings.h"

namespace {

namespace fs = std::filesystem;

constexpr LSTATUS Missing = ERROR_FILE_NOT_FOUND, Denied = ERROR_ACCESS_DENIED,
                  Unusable = ERROR_INVALID_PARAMETER;

class Registry : public testing::Test {
protected:
    LSTATUS Open(const std::string& path, HKEY parent = HKEY_CURRENT_USER)
    {
        const HKEY before = m_key;
        const LSTATUS status = RegOpenKeyExA(parent, path.c_str(), 0, KEY_READ, &m_key);
        RegCloseKey(before);
        return status;
    }
    LSTATUS Create(const std::string& path)
    {
        RegCloseKey(m_key);
        return RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &m_key,
                               &m_disposition);
    }
    LSTATUS Set(const std::string& name, const std::string& text)
    {
        return UserSettings::WriteText(m_key, name, text);
    }
    std::string Get(const std::string& name)
    {
        DWORD type = 0, size = 0;
        LSTATUS status = RegQueryValueExA(m_key, name.c_str(), nullptr, &type, nullptr, &size);
        std::string text(size, '#');
        if (status == 0)
            status = RegQueryValueExA(m_key, name.c_str(), nullptr, &type,
                                      reinterpret_cast<BYTE*>(text.data()), &size);
        if (status != 0)
            return "ERROR " + std::to_string(status);
        EXPECT_TRUE(type == REG_SZ && text.back() == '\0');
        text.pop_back();
        return text;
    }
    std::string Everything() // all that lies in the test's folder, with its texts
    {
        std::string list;
        std::error_code loop;
        for (const auto& entry : fs::recursive_directory_iterator(m_user.Folder()))
            list += entry.path().string() + '=' +
                    (entry.is_regular_file(loop) ? UserSettings::ReadFile(entry.path()) : "") + '\n';
        return list;
    }
    ~Registry() override { RegCloseKey(m_key); }

    UserSettings m_user;
    HKEY m_key = nullptr;
    DWORD m_disposition = 0;
};

TEST_F(Registry, IsATreeOfFoldersAndTextFilesOfTheUsersOwn)
{
    const char* const path = "Software\\CorvaneSoftware\\Editor";
    EXPECT_EQ(Open(path), Missing);
    for (const DWORD expected : {REG_CREATED_NEW_KEY, REG_OPENED_EXISTING_KEY}) {
        ASSERT_EQ(Create(path), 0);
        EXPECT_EQ(m_disposition, expected);
    }
    ASSERT_EQ(Open("Software\\\\CorvaneSoftware\\"), 0);
    ASSERT_EQ(Open("Editor", m_key), 0);
    EXPECT_EQ(Set("Log", "1"), 0);
    EXPECT_EQ(Get("Log"), "1");
    const fs::path file = m_user.Tree() / "Software/CorvaneSoftware/Editor/Log";
    EXPECT_EQ(UserSettings::ReadFile(file), "1");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    for (fs::path folder = file.parent_path(); folder != m_user.Folder().parent_path();
         folder = folder.parent_path())
        EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all) << folder;
}

TEST_F(Registry, KeepsEveryTextAndForgivesALineEndInAFile)
{
    Create("Texts");
    for (const std::string text : {"", "\n", "\r", "\r\n", "a\n\n", "a\r\n", "a\r", " a ", "\xE4\x80"}) {
        EXPECT_EQ(Set("v", text), 0);
        EXPECT_EQ(Get("v"), text);
    }
    const std::string withNul("a\0\n", 3); // and none at its end
    EXPECT_EQ(RegSetValueExA(m_key, "v", 0, REG_SZ, reinterpret_cast<const BYTE*>(withNul.data()), 3), 0);
    EXPECT_EQ(Get("v"), withNul);
    const std::string large(10'000'000, 'x');
    for (const auto& [content, text] : std::map<std::string, std::string>{{"echo\n", "echo"},
                                                                          {"two\n\n", "two\n"},
                                                                          {"dos\r\n", "dos"},
                                                                          {"\r\n", ""},
                                                                          {large + '\n', large}}) {
        const std::string name = "f" + content.substr(0, 3);
        UserSettings::WriteFile(m_user.Tree() / "Texts" / name, content);
        EXPECT_EQ(Get(name), text);
    }
    BYTE buffer[64] = {'#'};
    DWORD size = 2;
    const auto query = [&] { return RegQueryValueExA(m_key, "v", nullptr, nullptr, buffer, &size); };
    Set("v", "12345");
    for (const LSTATUS status : {LSTATUS{ERROR_MORE_DATA}, LSTATUS{0}}) { // the first says the size
        EXPECT_EQ(query(), status);
        EXPECT_EQ(buffer[0], status == 0 ? '1' : '#');
        EXPECT_EQ(size, 6u);
    }
    size = 5;
    EXPECT_EQ(query(), LSTATUS{ERROR_MORE_DATA});
}

TEST_F(Registry, HasNoValueWhereThereIsNoReadableFile)
{
    Create("Odd\\folder");
    Open("Odd");
    const fs::path folder = m_user.Tree() / "Odd";
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    fs::create_symlink(folder / "loop", folder / "loop");
    EXPECT_EQ(Get("folder"), "ERROR 2");
    EXPECT_EQ(Get("pipe"), "ERROR 5"); // without waiting for its other end
    EXPECT_TRUE(Get("loop").starts_with("ERROR"));
    const std::string before = Everything();
    EXPECT_EQ(Set("folder", "x"), Denied);
    EXPECT_EQ(Everything(), before); // what was begun is gone
    Set("file", "x");
    EXPECT_EQ(Open("Odd\\file"), Missing);
    EXPECT_EQ(Create("Odd\\file"), Denied);
}

// Each hostile name works as any other; all the files are below the tree, and each name has its own.
TEST_F(Registry, HoldsHostileNamesInsideTheTree)
{
    const char* const names[] = {"..",     ".",         "../x",  "../../x", "/etc/passwd", "a/b",
                                 "%2E%2E", "%newAAAAA", "a%00b", "...",     ".hidden",     "~",
                                 "x\n",    "\xFF\xC0",  "*",     "-rf",     "$HOME",       " "};
    UserSettings::WriteFile(m_user.Tree().parent_path() / "x", "outside");
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
    for (const auto& entry : fs::recursive_directory_iterator(m_user.Tree() / "Names"))
        files += entry.is_regular_file();
    EXPECT_EQ(files, 2 * std::size(names));
    fs::remove_all(m_user.Tree() / "Names");
    EXPECT_EQ(std::distance(fs::recursive_directory_iterator(m_user.Folder()), {}), 4); // down to the x
}

TEST_F(Registry, RefusesNamesThatAreTooLong)
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

TEST_F(Registry, NeedsAPlaceThatTheEnvironmentNames)
{
    m_user.Set("XDG_CONFIG_HOME", "relative");
    m_user.Set("HOME", m_user.Folder() / "home");
    Create("Key");
    EXPECT_TRUE(fs::is_directory(m_user.Folder() / "home/.config/kvt01/HKEY_CURRENT_USER/Key"));
    m_user.Unset("XDG_CONFIG_HOME");
    m_user.Unset("HOME");
    EXPECT_NE(Create("Key"), 0);
    m_key = HKEY_CURRENT_USER;
    EXPECT_NE(Set("v", "x"), 0);
}

// A reader in the middle of many writes sees one whole text or another, and no other file appears.
TEST_F(Registry, ReplacesAValueAsAWhole)
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
        const std::string read = UserSettings::ReadFile(m_user.Tree() / "Whole/v");
        EXPECT_TRUE(read == texts[0] || read == texts[1]) << read.size();
    }
    writer.join();
    EXPECT_EQ(std::distance(fs::directory_iterator(m_user.Tree() / "Whole"), {}), 1);
}

} // namespace
