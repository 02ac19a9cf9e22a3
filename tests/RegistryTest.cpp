#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/RegistryTree.h"
#include "support/UserSettings.h"

namespace {

namespace fs = std::filesystem;

constexpr LSTATUS Missing = ERROR_FILE_NOT_FOUND, Denied = ERROR_ACCESS_DENIED,
                  Unusable = ERROR_INVALID_PARAMETER;

class Registry : public testing::Test {
protected:
    LSTATUS Open(const std::string& path, HKEY parent = HKEY_CURRENT_USER)
    {
        RegCloseKey(m_key);
        return RegOpenKeyExA(parent, path.c_str(), 0, KEY_READ, &m_key);
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
    HKEY above = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\\\CorvaneSoftware\\", 0, KEY_READ, &above), 0);
    ASSERT_EQ(Open("Editor", above), 0);
    RegCloseKey(above);
    EXPECT_EQ(Set("Log", "1"), 0);
    EXPECT_EQ(Get("Log"), "1");
    const fs::path file = m_user.Tree() / "Software/CorvaneSoftware/Editor/Log";
    EXPECT_EQ(UserSettings::ReadFile(file), "1");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    for (fs::path folder = file.parent_path(); folder != m_user.Folder().parent_path();
         folder = folder.parent_path())
        EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all) << folder;
    EXPECT_EQ(RegDeleteValueA(m_key, "Log"), 0);
    EXPECT_EQ(Get("Log"), "ERROR 2");
    EXPECT_EQ(RegDeleteValueA(m_key, "Log"), Missing);
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
    const char* const files[][2] = {
        {"echo\n", "echo"}, {"two\n\n", "two\n"}, {"dos\r\n", "dos"}, {"\n", ""}, {"\r\n", ""}};
    for (const auto& [content, text] : files) {
        const std::string name = std::string("f") + content;
        UserSettings::WriteFile(m_user.Tree() / "Texts" / name, content);
        EXPECT_EQ(Get(name), text);
    }
}

TEST_F(Registry, TellsTheRoomThatATextNeeds)
{
    Create("Room");
    Set("v", "12345");
    BYTE buffer[64] = {'#'};
    DWORD size = 5;
    const auto query = [&](HKEY key, const char* name, DWORD* room) {
        return RegQueryValueExA(key, name, nullptr, nullptr, buffer, room);
    };
    EXPECT_EQ(query(m_key, "v", &size), LSTATUS{ERROR_MORE_DATA});
    EXPECT_EQ(size, 6u);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(query(m_key, "v", &size), 0);
    EXPECT_EQ(query(m_key, "v", nullptr), Unusable);
    EXPECT_EQ(query(nullptr, "v", &size), LSTATUS{ERROR_INVALID_HANDLE});
    EXPECT_EQ(RegSetValueExA(m_key, "v", 0, REG_SZ + 3, buffer, 4), Unusable);
    const std::string large(10'000'000, 'x');
    UserSettings::WriteFile(m_user.Tree() / "Room/large", large + '\n');
    size = sizeof buffer;
    EXPECT_EQ(query(m_key, "large", &size), LSTATUS{ERROR_MORE_DATA});
    EXPECT_EQ(size, large.size() + 1);
    EXPECT_EQ(Get("large"), large);
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
    EXPECT_EQ(RegDeleteValueA(m_key, "folder"), Missing);
    const std::string before = Everything();
    EXPECT_EQ(Set("folder", "x"), Denied);
    EXPECT_EQ(Everything(), before); // what was begun is gone
    Set("file", "x");
    if (geteuid() != 0) { // whom no mode keeps out
        Set("secret", "x");
        chmod((folder / "secret").c_str(), 0);
        EXPECT_EQ(Get("secret"), "ERROR 5");
    }
    EXPECT_EQ(Open("Odd\\file"), Missing);
    EXPECT_EQ(Create("Odd\\file"), Denied);
    EXPECT_EQ(m_key, nullptr);
}

// Each hostile name works as any other; all the files are below the tree, and each name has its own.
TEST_F(Registry, HoldsHostileNamesInsideTheTree)
{
    const char* const names[] = {"..",     ".",         "../x",  "../../x", "/etc/passwd", "a/b",
                                 "%2E%2E", "%newAAAAA", "a%00b", "...",     ".hidden",     "~",
                                 "x\n",    "\xFF\xC0",  "*",     "-rf",     "$HOME",       " "};
    const std::string outside = Everything();
    for (const std::string name : names) {
        Create("Names\\" + name);
        EXPECT_EQ(Set(name, "of " + name), 0) << name;
        EXPECT_EQ(Set(name + "\\..\\" + name, "long " + name), 0) << name;
    }
    for (const std::string name : names) {
        EXPECT_EQ(Open("Names\\" + name), 0) << name;
        EXPECT_EQ(Get(name), "of " + name);
        EXPECT_EQ(Get(name + "\\..\\" + name), "long " + name);
    }
    std::size_t files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(m_user.Tree() / "Names"))
        files += entry.is_regular_file();
    EXPECT_EQ(files, 2 * std::size(names));
    fs::remove_all(m_user.Folder() / "config");
    EXPECT_EQ(Everything(), outside);
    using RegistryTree::EscapedName;
    using RegistryTree::NameOf;
    EXPECT_EQ(EscapedName(std::string_view("a\0/%\\.", 6), NameOf::Value), "a%00%2F%25%5C.");
    EXPECT_EQ(EscapedName("", NameOf::Value), "%");
}

TEST_F(Registry, ClimbsOutOfNoKey)
{
    UserSettings::WriteFile(m_user.Tree().parent_path() / "secret", "outside");
    UserSettings::WriteFile(m_user.Tree() / "Key/v", "inside");
    for (const char* path :
         {"..", "Key\\..\\..", "..\\HKEY_CURRENT_USER", "../HKEY_CURRENT_USER", "Key\\.", "/"})
        EXPECT_EQ(Open(path), Missing) << path;
    ASSERT_EQ(Open("Key"), 0);
    for (const char* name : {"../../secret", "..\\..\\secret", "../Key/v", "./v"})
        EXPECT_EQ(Get(name), "ERROR 2") << name;
}

TEST_F(Registry, RefusesNamesThatAreTooLong)
{
    const std::string before = Everything();
    for (const std::string& name : {std::string(256, 'a'), std::string(10'000, 'a'), std::string(86, '/')}) {
        EXPECT_EQ(Create(name), Unusable);
        m_key = HKEY_CURRENT_USER;
        EXPECT_EQ(Set(name, "x"), Unusable);
        EXPECT_EQ(Get(name), "ERROR 87");
    }
    EXPECT_EQ(Everything(), before);
    EXPECT_EQ(Create(std::string(255, 'a')), 0);
    EXPECT_EQ(Set(std::string(255, 'b'), "x"), 0);
    EXPECT_EQ(Get(std::string(255, 'b')), "x");
    std::string deep;
    for (int i = 0; i < 5000; ++i)
        deep += "k\\";
    EXPECT_NE(Create(deep), 0);
}

TEST_F(Registry, NeedsAPlaceThatTheEnvironmentNames)
{
    m_user.Set("XDG_CONFIG_HOME", "relative");
    m_user.Set("HOME", m_user.Folder() / "home");
    Create("Key");
    EXPECT_TRUE(fs::is_directory(m_user.Folder() / "home/.config/kvt01/HKEY_CURRENT_USER/Key"));
    m_user.Unset("XDG_CONFIG_HOME");
    m_user.Unset("HOME");
    EXPECT_NE(Open("Key"), 0);
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

TEST_F(Registry, SeesAnotherProcessWithinASecond)
{
    Create("Other");
    EXPECT_EQ(Get("v"), "ERROR 2");
    UserSettings::WriteFile(m_user.Tree() / "Other/v", "written");
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    EXPECT_EQ(Get("v"), "written");
    Set("v", "here");
    EXPECT_EQ(Get("v"), "here");
}

} // namespace
