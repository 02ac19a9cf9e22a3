// A user of the test's own: an empty registry in a new folder and no locale in the environment. All is put
// back at the end.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "LocaleUtils.h"
#include "platform/Platform.h"
#include "support/Environment.h"
#include "support/TemporaryFolder.h"

class UserSettings : public Environment {
public:
    UserSettings()
    {
        for (const char* variable :
             {"LC_ALL", "LC_NUMERIC", "LC_MONETARY", "LC_TIME", "LC_MEASUREMENT", "LC_MESSAGES", "LANG"})
            Unset(variable);
        Set("XDG_CONFIG_HOME", m_folder.Path("config"));
        ForgetSeparators();
    }
    ~UserSettings() { ForgetSeparators(); }

    std::filesystem::path Folder() const { return m_folder.Path(); }
    std::filesystem::path Tree() const { return m_folder.Path("config/kvt01/HKEY_CURRENT_USER"); }
    std::filesystem::path International() const { return Tree() / "Control Panel/International"; }

    // A text in the registry, through the library.
    static LSTATUS WriteText(HKEY key, const std::string& name, const std::string& text)
    {
        return RegSetValueExA(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                              static_cast<DWORD>(text.size() + 1));
    }
    static void Use(const std::string& name, const std::string& text,
                    const char* path = "Control Panel\\International")
    {
        HKEY key = nullptr;
        RegCreateKeyExA(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
        EXPECT_EQ(WriteText(key, name, text), 0);
        RegCloseKey(key);
    }

    // As another process would: the file is written, and the library not told.
    static void WriteFile(const std::filesystem::path& file, const std::string& text)
    {
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }
    static std::string ReadFile(const std::filesystem::path& file)
    {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
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

    TemporaryFolder m_folder;
};
