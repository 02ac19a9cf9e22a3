#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/Platform.h"
#include "platform/posix/RegistryTree.h"
#include "support/UserSettings.h"

namespace {

class Registry : public testing::Test {
protected:
    static constexpr DWORD Room = 64;

    HKEY Create(const std::string& path)
    {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                                  nullptr),
                  0)
            << path;
        return key;
    }
    LSTATUS Set(HKEY key, const std::string& name, const std::string& text)
    {
        return RegSetValueExA(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                              static_cast<DWORD>(text.size() + 1));
    }
    std::string Get(HKEY key, const std::string& name)
    {
        DWORD type = 0, size = 0;
        LSTATUS status = RegQueryValueExA(key, name.c_str(), nullptr, &type, nullptr, &size);
        std::string text(size, '#');
        if (status == 0)
            status = RegQueryValueExA(key, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(text.data()),
                                      &size);
        if (status != 0)
            return "ERROR " + std::to_string(status);
        EXPECT_EQ(type, REG_SZ);
        EXPECT_EQ(text.back(), '\0');
        text.pop_back();
        return text;
    }
    std::string Everything() // all that lies in the test's folder, with its texts
    {
        std::string list;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_user.Folder()))
            list += entry.path().lexically_relative(m_user.Folder()).string() + '=' +
                    (entry.is_regular_file() ? UserSettings::ReadFile(entry.path()) : "") + '\n';
        return list;
    }

    UserSettings m_user;
};

TEST_F(Registry, IsATreeOfFoldersAndTextFiles)
{
    DWORD disposition = 0;
    HKEY key = nullptr;
    const char* const path = "Software\\CorvaneSoftware\\Editor";
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_READ, &key), LSTATUS{ERROR_FILE_NOT_FOUND});
    for (const DWORD expected : {REG_CREATED_NEW_KEY, REG_OPENED_EXISTING_KEY}) {
        ASSERT_EQ(
            RegCreateKeyExA(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_WRITE, nullptr, &key, &disposition),
            0);
        EXPECT_EQ(disposition, expected);
        RegCloseKey(key);
    }
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\\\CorvaneSoftware\\", 0, KEY_READ, &key), 0);
    HKEY below = nullptr;
    ASSERT_EQ(RegOpenKeyExA(key, "Editor", 0, KEY_READ, &below), 0);
    EXPECT_EQ(Set(below, "Log", "1"), 0);
    const auto file = m_user.Tree() / "Software/CorvaneSoftware/Editor/Log";
    EXPECT_EQ(UserSettings::ReadFile(file), "1");
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600));
    EXPECT_EQ(Get(below, "Log"), "1");
    EXPECT_EQ(RegDeleteValueA(below, "Log"), 0);
    EXPECT_EQ(Get(below, "Log"), "ERROR 2");
    EXPECT_EQ(RegDeleteValueA(below, "Log"), LSTATUS{ERROR_FILE_NOT_FOUND});
    RegCloseKey(below);
    RegCloseKey(key);
}

TEST_F(Registry, KeepsEveryTextAndForgivesALineEndInAFile)
{
    HKEY key = Create("Texts");
    for (const std::string text :
         {"", "a", "\n", "\r", "\r\n", "a\n", "a\n\n", "a\r\n", "a\r", " a ", "\xE4\x80"}) {
        EXPECT_EQ(Set(key, "v", text), 0);
        EXPECT_EQ(Get(key, "v"), text);
    }
    const std::string withNul("a\0\n", 3);
    EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_SZ, reinterpret_cast<const BYTE*>(withNul.data()), 3), 0);
    EXPECT_EQ(Get(key, "v"), withNul);
    struct {
        const char *file, *text;
    } const files[] = {
        {"echo\n", "echo"}, {"two\n\n", "two\n"}, {"dos\r\n", "dos"}, {"\n", ""}, {"\r\n", ""}};
    int number = 0;
    for (const auto& row : files) {
        const std::string name = "f" + std::to_string(++number);
        UserSettings::WriteFile(m_user.Tree() / "Texts" / name, row.file);
        EXPECT_EQ(Get(key, name), row.text);
    }
    RegCloseKey(key);
}

TEST_F(Registry, TellsTheRoomThatATextNeeds)
{
    HKEY key = Create("Room");
    Set(key, "v", "12345");
    BYTE buffer[Room] = {'#'};
    DWORD size = 5;
    EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, buffer, &size), LSTATUS{ERROR_MORE_DATA});
    EXPECT_EQ(size, 6u);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, buffer, &size), 0);
    EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, buffer, nullptr),
              LSTATUS{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_SZ + 3, buffer, 4), LSTATUS{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(RegQueryValueExA(nullptr, "v", nullptr, nullptr, buffer, &size), LSTATUS{ERROR_INVALID_HANDLE});

    const std::string large(10'000'000, 'x');
    UserSettings::WriteFile(m_user.Tree() / "Room/large", large + '\n');
    size = Room;
    EXPECT_EQ(RegQueryValueExA(key, "large", nullptr, nullptr, buffer, &size), LSTATUS{ERROR_MORE_DATA});
    EXPECT_EQ(size, large.size() + 1);
    EXPECT_EQ(Get(key, "large"), large);
    RegCloseKey(key);
}

TEST_F(Registry, HasNoValueWhereThereIsNoReadableFile)
{
    HKEY key = Create("Odd\\folder");
    RegCloseKey(key);
    key = Create("Odd");
    const auto folder = m_user.Tree() / "Odd";
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink(folder / "loop", folder / "loop");
    EXPECT_EQ(Get(key, "folder"), "ERROR 2");
    EXPECT_EQ(Get(key, "pipe"), "ERROR 5");
    EXPECT_NE(Get(key, "loop").find("ERROR"), std::string::npos);
    EXPECT_EQ(Set(key, "folder", "x"), LSTATUS{ERROR_ACCESS_DENIED});
    EXPECT_NE(RegDeleteValueA(key, "folder"), 0);
    Set(key, "file", "x");
    HKEY below = nullptr;
    EXPECT_EQ(RegOpenKeyExA(key, "file", 0, KEY_READ, &below), LSTATUS{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(RegCreateKeyExA(key, "file", 0, nullptr, 0, KEY_WRITE, nullptr, &below, nullptr),
              LSTATUS{ERROR_ACCESS_DENIED});
    EXPECT_EQ(below, nullptr);
    if (geteuid() != 0) { // whom no mode keeps out
        Set(key, "secret", "x");
        chmod((folder / "secret").c_str(), 0);
        EXPECT_EQ(Get(key, "secret"), "ERROR 5");
    }
    RegCloseKey(key);
}

const char* const HostileNames[] = {"..",     ".",         "../x",  "../../x", "/etc/passwd", "a/b",
                                    "%2E%2E", "%newAAAAA", "a%00b", "...",     ".hidden",     "~",
                                    "x\n",    "\xFF\xC0",  "*",     "-rf",     "$HOME",       " "};

// Each hostile name works as any other; all the files are below the tree, and each name has its own.
TEST_F(Registry, HoldsHostileNamesInsideTheTree)
{
    const auto outside = Everything();
    for (const std::string name : HostileNames) {
        HKEY key = Create("Names\\" + name);
        EXPECT_EQ(Set(key, name, "of " + name), 0) << name;
        EXPECT_EQ(Set(key, name + "\\..\\" + name, "long " + name), 0) << name;
        RegCloseKey(key);
    }
    for (const std::string name : HostileNames) {
        HKEY key = Create("Names\\" + name);
        EXPECT_EQ(Get(key, name), "of " + name);
        EXPECT_EQ(Get(key, name + "\\..\\" + name), "long " + name);
        RegCloseKey(key);
    }
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_user.Tree() / "Names"))
        files += entry.is_regular_file();
    EXPECT_EQ(files, 2 * std::size(HostileNames));
    std::filesystem::remove_all(m_user.Folder() / "config");
    EXPECT_EQ(Everything(), outside);
}

TEST_F(Registry, ClimbsOutOfNoKey)
{
    UserSettings::WriteFile(m_user.Tree().parent_path() / "secret", "outside");
    UserSettings::WriteFile(m_user.Tree() / "Key/v", "inside");
    const std::string before = Everything();
    HKEY key = nullptr;
    for (const char* path :
         {"..", "Key\\..\\..", "..\\HKEY_CURRENT_USER", "../HKEY_CURRENT_USER", "Key\\.", "/"})
        EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_READ, &key), LSTATUS{ERROR_FILE_NOT_FOUND})
            << path;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Key", 0, KEY_READ, &key), 0);
    for (const char* name : {"../../secret", "..\\..\\secret", "../Key/v", "./v"})
        EXPECT_EQ(Get(key, name), "ERROR 2") << name;
    RegCloseKey(key);
    EXPECT_EQ(Everything(), before);
}

TEST_F(Registry, RefusesNamesThatAreTooLong)
{
    const auto before = Everything();
    HKEY key = nullptr;
    for (const std::string& name : {std::string(256, 'a'), std::string(10'000, 'a'), std::string(86, '/')}) {
        EXPECT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, name.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                                  nullptr),
                  LSTATUS{ERROR_INVALID_PARAMETER});
        EXPECT_EQ(Set(HKEY_CURRENT_USER, name, "x"), LSTATUS{ERROR_INVALID_PARAMETER});
        EXPECT_EQ(Get(HKEY_CURRENT_USER, name), "ERROR 87");
    }
    EXPECT_EQ(Everything(), before);
    key = Create(std::string(255, 'a'));
    EXPECT_EQ(Set(key, std::string(255, 'b'), "x"), 0);
    EXPECT_EQ(Get(key, std::string(255, 'b')), "x");
    RegCloseKey(key);
    std::string deep;
    for (int i = 0; i < 5000; ++i)
        deep += "k\\";
    EXPECT_NE(
        RegCreateKeyExA(HKEY_CURRENT_USER, deep.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr),
        0);
}

TEST_F(Registry, WritesNamesWithNulAsOthers)
{
    using RegistryTree::NameOf;
    EXPECT_EQ(RegistryTree::EscapedName(std::string_view("a\0/%\\.", 6), NameOf::Value), "a%00%2F%25%5C.");
    EXPECT_EQ(RegistryTree::EscapedName("..", NameOf::Key), "%2E.");
    EXPECT_EQ(RegistryTree::EscapedName("", NameOf::Value), "%");
}

TEST_F(Registry, NeedsAPlaceThatTheEnvironmentNames)
{
    m_user.Set("XDG_CONFIG_HOME", "relative");
    m_user.Set("HOME", m_user.Folder() / "home");
    RegCloseKey(Create("Key"));
    EXPECT_TRUE(std::filesystem::is_directory(m_user.Folder() / "home/.config/kvt01/HKEY_CURRENT_USER/Key"));
    m_user.Unset("XDG_CONFIG_HOME");
    m_user.Unset("HOME");
    HKEY key = nullptr;
    EXPECT_NE(RegOpenKeyExA(HKEY_CURRENT_USER, "Key", 0, KEY_READ, &key), 0);
    EXPECT_NE(RegCreateKeyExA(HKEY_CURRENT_USER, "Key", 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr), 0);
    EXPECT_NE(Set(HKEY_CURRENT_USER, "v", "x"), 0);
}

// A reader in the middle of many writes sees one whole text or another, and no other file appears.
TEST_F(Registry, ReplacesAValueAsAWhole)
{
    HKEY key = Create("Whole");
    const std::string texts[] = {std::string(100'000, 'a'), std::string(70'000, 'b')};
    Set(key, "v", texts[0]);
    std::atomic<bool> isDone = false;
    std::thread writer([&] {
        for (int i = 0; i < 100; ++i)
            EXPECT_EQ(Set(key, "v", texts[i % 2]), 0);
        isDone = true;
    });
    while (!isDone) {
        const std::string read = UserSettings::ReadFile(m_user.Tree() / "Whole/v");
        ASSERT_TRUE(read == texts[0] || read == texts[1]) << read.size();
    }
    writer.join();
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_user.Tree() / "Whole"), {}), 1);
    RegCloseKey(key);
}

TEST_F(Registry, SeesAnotherProcessWithinASecond)
{
    HKEY key = Create("Other");
    EXPECT_EQ(Get(key, "v"), "ERROR 2");
    UserSettings::WriteFile(m_user.Tree() / "Other/v", "written");
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    EXPECT_EQ(Get(key, "v"), "written");
    Set(key, "v", "here");
    EXPECT_EQ(Get(key, "v"), "here");
    RegCloseKey(key);
}

} // namespace
