// A user of the test's own, without settings and without a locale; what he has lies in a new folder.
#pragma once

#include <string>
#include <utility>

#include "platform/Platform.h"
#include "support/Environment.h"
#include "support/TemporaryFolder.h"

class TestUser : public Environment {
public:
    TestUser()
    {
        for (const char* variable :
             {"LC_ALL", "LC_NUMERIC", "LC_MONETARY", "LC_TIME", "LC_MEASUREMENT", "LC_MESSAGES", "LANG"})
            Unset(variable);
        Set("XDG_CONFIG_HOME", m_folder.Path("config"));
        Set("XDG_STATE_HOME", m_folder.Path("state"));
    }

    // False where a setting is nothing but a value in the registry.
    static bool SetByCall(const std::string&, const std::string&) { return false; }
    // Where a locale, as de_DE, is to be asked, and what an item needs besides its number.
    std::pair<LCID, LCTYPE> UseLocale(const std::string& locale)
    {
        Set("LC_ALL", locale + ".UTF-8");
        return {LOCALE_USER_DEFAULT, 0};
    }

protected:
    const TemporaryFolder m_folder;
};
