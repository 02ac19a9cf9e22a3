// A user of the test's own, without settings; his registry is a key of the real one. The settings of the
// locale are everybody's, so tests with such a user take turns.
#pragma once

#include <map>
#include <utility>

#include "support/Cases.h"
#include "support/Environment.h"
#include "support/TemporaryFolder.h"

class TestUser : public Environment {
public:
    TestUser()
    {
        WaitForSingleObject(m_turn, INFINITE);
        for (const auto& [name, number] : Cases<2>("settings by call")) {
            const LCTYPE item = m_items[name] = static_cast<LCTYPE>(std::stoul(number, nullptr, 16));
            m_before[item] = Answer(item);
            SetLocaleInfoA(LOCALE_USER_DEFAULT, item, Answer(item | LOCALE_NOUSEROVERRIDE).c_str());
        }
        Set("KVT01_TEST_USER", "Software\\kvt01-test-" + std::to_string(GetCurrentProcessId()));
        JoinTestUser();
        const std::string state = m_folder.MakeFolder("state");
        RegSetKeyValueA(HKEY_CURRENT_USER,
                        "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders",
                        "Local AppData", REG_SZ, state.c_str(), static_cast<DWORD>(state.size() + 1));
    }
    ~TestUser()
    {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegDeleteTreeA(HKEY_CURRENT_USER, std::getenv("KVT01_TEST_USER"));
        for (const auto& [item, text] : m_before)
            SetLocaleInfoA(LOCALE_USER_DEFAULT, item, text.c_str());
        ReleaseMutex(m_turn);
        CloseHandle(m_turn);
    }

    // False where a setting is nothing but a value in the registry.
    bool SetByCall(const std::string& name, const std::string& text)
    {
        return m_items.contains(name) && SetLocaleInfoA(LOCALE_USER_DEFAULT, m_items[name], text.c_str());
    }
    // Where a locale, as de_DE, is to be asked, and what an item needs besides its number.
    static std::pair<LCID, LCTYPE> UseLocale(std::string locale)
    {
        locale[2] = '-';
        return {LocaleNameToLCID(std::wstring(locale.begin(), locale.end()).c_str(), 0),
                LOCALE_NOUSEROVERRIDE | LOCALE_USE_CP_ACP};
    }

protected:
    const TemporaryFolder m_folder;

private:
    static std::string Answer(LCTYPE item)
    {
        char text[100] = "";
        GetLocaleInfoA(LOCALE_USER_DEFAULT, item, text, sizeof text);
        return text;
    }

    std::map<std::string, LCTYPE> m_items;
    std::map<LCTYPE, std::string> m_before;
    const HANDLE m_turn = CreateMutexA(nullptr, FALSE, "kvt01-tests-settings");
};
