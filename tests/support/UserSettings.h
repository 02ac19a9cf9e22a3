// A user of the test's own, with an empty registry, and no separator that was kept for the user before.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "LocaleUtils.h"
#include "TestUser.h"

class UserSettings : public TestUser {
public:
    UserSettings() { ForgetSeparators(); }
    ~UserSettings() { ForgetSeparators(); }

    const TemporaryFolder& Folder() const { return m_folder; }

    // A text in the registry, through the platform.
    static LSTATUS WriteText(HKEY key, const std::string& name, const std::string& text)
    {
        return RegSetValueExA(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                              static_cast<DWORD>(text.size() + 1));
    }
    // What RegQueryValueExA says when it is asked for the size first, or "ERROR n".
    static std::string ReadText(HKEY key, const std::string& name)
    {
        DWORD type = 0, size = 0;
        LSTATUS status = RegQueryValueExA(key, name.c_str(), nullptr, &type, nullptr, &size);
        std::string text(size, '#');
        if (status == 0)
            status = RegQueryValueExA(key, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(text.data()),
                                      &size);
        if (status != 0)
            return "ERROR " + std::to_string(status);
        EXPECT_TRUE(type == REG_SZ && text.back() == '\0');
        text.pop_back();
        return text;
    }
    void Use(const std::string& name, const std::string& text,
             const std::string& path = "Control Panel\\International")
    {
        if (path.ends_with("International") && SetByCall(name, text))
            return;
        HKEY key = nullptr;
        RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
        EXPECT_EQ(WriteText(key, name, text), 0);
        RegCloseKey(key);
    }
    static std::string Setting(const std::string& name, const std::string& path)
    {
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != 0)
            return "no key";
        const std::string text = ReadText(key, name);
        RegCloseKey(key);
        return text;
    }

private:
    static void ForgetSeparators()
    {
        for (CString* separator :
             {&LocaleUtils::m_csCurrencySymbol, &LocaleUtils::m_csDecimalSeparator,
              &LocaleUtils::m_csThousandsSeparator, &LocaleUtils::m_csCurrencyDecimalSeparator,
              &LocaleUtils::m_csCurrencyThousandsSeparator})
            separator->Empty();
    }
};
