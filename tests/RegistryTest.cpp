#include <gtest/gtest.h>

#include "support/UserSettings.h"

namespace {

TEST(Registry, HasKeysBelowKeys)
{
    const UserSettings user;
    const char* const path = "Software\\CorvaneSoftware\\Editor";
    EXPECT_EQ(UserSettings::Setting("Log", path), "no key");
    for (const DWORD expected : {REG_CREATED_NEW_KEY, REG_OPENED_EXISTING_KEY}) {
        HKEY key = nullptr;
        DWORD disposition = 0;
        EXPECT_EQ(
            RegCreateKeyExA(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_WRITE, nullptr, &key, &disposition),
            0);
        EXPECT_EQ(disposition, expected);
        EXPECT_EQ(UserSettings::WriteText(key, "Log", std::to_string(expected)), 0);
        RegCloseKey(key);
    }
    HKEY outer = nullptr, inner = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\CorvaneSoftware\\", 0, KEY_READ, &outer), 0);
    EXPECT_EQ(RegOpenKeyExA(outer, "Editor", 0, KEY_READ, &inner), 0);
    EXPECT_EQ(UserSettings::ReadText(inner, "Log"), "2");
    EXPECT_EQ(UserSettings::ReadText(inner, "none"), "ERROR 2");
    EXPECT_EQ(RegCloseKey(inner) + RegCloseKey(outer), 0);
}

TEST(Registry, KeepsEveryText)
{
    const UserSettings user;
    HKEY key = nullptr;
    RegCreateKeyExA(HKEY_CURRENT_USER, "Texts", 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &key, nullptr);
    for (const std::string text : {"", "\n", "\r", "\r\n", "a\n\n", "a\r\n", "a\r", " a ", "\xE4\x80"}) {
        EXPECT_EQ(UserSettings::WriteText(key, "v", text), 0);
        EXPECT_EQ(UserSettings::ReadText(key, "v"), text);
    }
    const std::string withNul("a\0\n", 3); // and none at its end
    EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_SZ, reinterpret_cast<const BYTE*>(withNul.data()), 3), 0);
    EXPECT_EQ(UserSettings::ReadText(key, "v"), withNul);
    BYTE buffer[64] = {'#'};
    DWORD size = 2;
    const auto query = [&] { return RegQueryValueExA(key, "v", nullptr, nullptr, buffer, &size); };
    UserSettings::WriteText(key, "v", "12345");
    for (const LSTATUS status : {LSTATUS{ERROR_MORE_DATA}, LSTATUS{0}}) { // the first says the size
        EXPECT_EQ(query(), status);
        EXPECT_EQ(buffer[0], status == 0 ? '1' : '#');
        EXPECT_EQ(size, 6u);
    }
    size = 5;
    EXPECT_EQ(query(), LSTATUS{ERROR_MORE_DATA});
    RegCloseKey(key);
}

} // namespace
