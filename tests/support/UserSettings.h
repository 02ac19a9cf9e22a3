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

    // Texts of the registry, through the platform: gives what the call gives.
    LSTATUS Use(const std::string& name, const std::string& text,
                const std::string& path = "Control Panel\\International")
    {
        if (path.ends_with("International") && SetByCall(name, text))
            return ERROR_SUCCESS;
        HKEY key = nullptr;
        LSTATUS status = RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr,
                                         &key, nullptr);
        if (status == ERROR_SUCCESS)
            status = RegSetValueExA(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                                    static_cast<DWORD>(text.size() + 1));
        RegCloseKey(key);
        return status;
    }
    // The text, or "ERROR n".
    static std::string Setting(const std::string& name, const std::string& path)
    {
        HKEY key = nullptr;
        DWORD type = 0, size = 0;
        LSTATUS status = RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key);
        if (status == ERROR_SUCCESS)
            status = RegQueryValueExA(key, name.c_str(), nullptr, &type, nullptr, &size);
        std::string text(size, '#');
        if (status == ERROR_SUCCESS)
            status = RegQueryValueExA(key, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(text.data()),
                                      &size);
        RegCloseKey(key);
        if (status != ERROR_SUCCESS)
            return "ERROR " + std::to_string(status);
        EXPECT_TRUE(type == REG_SZ && text.back() == '\0');
        text.pop_back();
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
