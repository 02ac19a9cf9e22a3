// A user of the test's own: an empty registry in a new folder and no locale in the environment. All is put
// back at the end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>

#include "LocaleUtils.h"

class UserSettings {
public:
    UserSettings()
    {
        std::string name = (std::filesystem::temp_directory_path() / "kvt01XXXXXX").string();
        m_folder = mkdtemp(name.data());
        for (const char* variable :
             {"LC_ALL", "LC_NUMERIC", "LC_MONETARY", "LC_TIME", "LC_MEASUREMENT", "LC_MESSAGES", "LANG"})
            Unset(variable);
        Set("XDG_CONFIG_HOME", m_folder / "config");
        ForgetSeparators();
    }
    UserSettings(const UserSettings&) = delete;
    UserSettings& operator=(const UserSettings&) = delete;
    ~UserSettings()
    {
        for (const auto& [name, value] : m_before)
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
        ForgetSeparators();
        std::filesystem::remove_all(m_folder);
    }

    void Set(const std::string& variable, const std::string& value)
    {
        Remember(variable);
        setenv(variable.c_str(), value.c_str(), 1);
    }
    void Unset(const std::string& variable)
    {
        Remember(variable);
        unsetenv(variable.c_str());
    }

    const std::filesystem::path& Folder() const { return m_folder; }
    std::filesystem::path Tree() const { return m_folder / "config/kvt01/HKEY_CURRENT_USER"; }
    std::filesystem::path International() const { return Tree() / "Control Panel/International"; }

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
    void Remember(const std::string& variable)
    {
        const char* const value = std::getenv(variable.c_str());
        m_before.try_emplace(variable, value == nullptr ? std::nullopt : std::optional<std::string>(value));
    }
    static void ForgetSeparators()
    {
        LocaleUtils::m_csCurrencySymbol.Empty();
        LocaleUtils::m_csDecimalSeparator.Empty();
        LocaleUtils::m_csThousandsSeparator.Empty();
        LocaleUtils::m_csCurrencyDecimalSeparator.Empty();
        LocaleUtils::m_csCurrencyThousandsSeparator.Empty();
    }

    std::filesystem::path m_folder;
    std::map<std::string, std::optional<std::string>> m_before;
};
