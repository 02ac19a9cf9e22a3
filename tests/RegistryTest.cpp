#include <gtest/gtest.h>

#include "support/UserSettings.h"

namespace {

class Registry : public testing::Test, public UserSettings {};

TEST_F(Registry, HasKeysBelowKeys)
{
    const char* const path = "Software\\CorvaneSoftware\\Editor";
    EXPECT_EQ(Setting("Log", path), "ERROR 2");
    for (const DWORD expected : {REG_CREATED_NEW_KEY, REG_OPENED_EXISTING_KEY}) {
        HKEY key = nullptr;
        DWORD disposition = 0;
        RegCreateKeyExA(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_WRITE, nullptr, &key, &disposition);
        EXPECT_EQ(disposition, expected);
        RegCloseKey(key);
    }
    Use("Log", "1", path);
    EXPECT_EQ(Setting("none", path), "ERROR 2");
    EXPECT_EQ(Setting("Log", "Software\\\\CorvaneSoftware\\Editor\\"), "1");
    HKEY outer = nullptr, inner = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\CorvaneSoftware", 0, KEY_READ, &outer), 0);
    EXPECT_EQ(RegOpenKeyExA(outer, "Editor", 0, KEY_READ, &inner), 0);
    EXPECT_EQ(RegQueryValueExA(inner, "Log", nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(RegCloseKey(inner) + RegCloseKey(outer), 0);
}

TEST_F(Registry, KeepsEveryText)
{
    for (const std::string text : {"", "\n", "\r", "\r\n", "a\n\n", "a\r\n", "a\r", " a ", "\xE4\x80"}) {
        EXPECT_EQ(Use("v", text, "Texts"), 0);
        EXPECT_EQ(Setting("v", "Texts"), text);
    }
    HKEY key = nullptr;
    RegCreateKeyExA(HKEY_CURRENT_USER, "Texts", 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &key, nullptr);
    const std::string withNul("a\0\n", 3); // and none at its end
    EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_SZ, reinterpret_cast<const BYTE*>(withNul.data()), 3), 0);
    EXPECT_EQ(Setting("v", "Texts"), withNul);
    BYTE buffer[64] = {'#'};
    DWORD size = 2;
    Use("v", "12345", "Texts");
    for (const LSTATUS status : {LSTATUS{ERROR_MORE_DATA}, LSTATUS{0}}) { // the first says the size
        EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, buffer, &size), status);
        EXPECT_EQ(buffer[0], status == 0 ? '1' : '#');
        EXPECT_EQ(size, 6u);
    }
    size = 5;
    EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, buffer, &size), LSTATUS{ERROR_MORE_DATA});
    RegCloseKey(key);
}

} // namespace
