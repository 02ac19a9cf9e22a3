// GetLocaleInfoA: the answers in force, kept until the environment or the user's settings change.
#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include <unistd.h>

#include "platform/posix/CoarseClock.h"
#include "platform/posix/IcuLoader.h"
#include "platform/posix/LocaleAnswers.h"
#include "platform/posix/PosixPlatform.h"
#include "platform/posix/RegistryTree.h"

extern char** environ;

namespace {

using LocaleItems::Category;
using LocaleItems::Row;

// ---- the environment, as far as it decides about the answers --------------------------------------------

class Environment {
public:
    // Whether nothing changed since the last Read. The array of pointers and the values in use are compared,
    // not every string: memory that the host gave to putenv and rewrote into another variable is seen by
    // Read only.
    bool IsUnchanged() const
    {
        if (environ == nullptr || m_entries.empty())
            return false;
        char* const* entry = environ;
        const auto isNext = [&entry](const char* known) { return *entry++ == known; };
        if (!std::all_of(m_entries.begin(), m_entries.end(), isNext)) // the last one is null on both sides
            return false;
        for (const Variable& variable : m_variables)
            if (variable.current != nullptr && std::strcmp(variable.value.c_str(), variable.current) != 0)
                return false;
        return true;
    }

    // Whether a value in use is another one than before.
    bool Read()
    {
        bool changed = false;
        for (Variable& variable : m_variables)
            variable.current = nullptr;
        m_entries.clear();
        for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
            m_entries.push_back(*entry);
            Find(*entry);
        }
        m_entries.push_back(nullptr);
        for (Variable& variable : m_variables) {
            const char* const value = variable.current == nullptr ? "" : variable.current;
            changed |= variable.value != value;
            variable.value = value;
        }
        return changed;
    }

    // The name of the locale for a category; empty variables do not count.
    std::string LocaleOf(Category category) const
    {
        for (const std::size_t index : {All, static_cast<std::size_t>(category), Language})
            if (!m_variables[index].value.empty())
                return m_variables[index].value;
        return "C";
    }

private:
    struct Variable {
        std::string_view name;
        const char* current = nullptr; // in the environment itself
        std::string value = {};
    };
    static constexpr std::size_t All = LocaleItems::CategoryCount;
    static constexpr std::size_t Language = All + 1;

    void Find(const char* entry)
    {
        for (Variable& variable : m_variables) {
            const std::size_t length = variable.name.size();
            const bool isFirst = variable.current == nullptr;
            if (isFirst && std::strncmp(entry, variable.name.data(), length) == 0 && entry[length] == '=')
                variable.current = entry + length + 1;
        }
    }

    std::vector<char*> m_entries;
    // In the order of the categories; the last two say where the registry is.
    Variable m_variables[9] = {{"LC_NUMERIC"},     {"LC_MONETARY"},     {"LC_TIME"},
                               {"LC_MEASUREMENT"}, {"LC_MESSAGES"},     {"LC_ALL"},
                               {"LANG"},           {"XDG_CONFIG_HOME"}, {"HOME"}};
};

// ---- the user's own settings ----------------------------------------------------------------------------

bool IsNumber(std::string_view text)
{
    return !text.empty() && text.size() < 10 &&
           text.find_first_not_of("0123456789") == std::string_view::npos;
}

// Puts the setting for an item in force, if there is one; whether there was.
bool TakeSetting(const std::string& key, const Row& row, LocaleAnswers& answers)
{
    const RegistryTree::Value value = RegistryTree::ReadFile(key + '/' + row.setting, LocaleAnswers::MaxText);
    const bool isUsable = value.status == 0 && value.length <= LocaleAnswers::MaxText &&
                          value.text.find('\0') == std::string::npos &&
                          (!row.isNumber || IsNumber(value.text));
    if (isUsable)
        answers.Set(row.first, value.text);
    return isUsable;
}

void TakeSettings(LocaleAnswers& answers)
{
    std::string key = RegistryTree::Root();
    if (key.empty() || !RegistryTree::AppendKey(key, "Control Panel\\International") ||
        access(key.c_str(), F_OK) != 0)
        return;
    for (const Row& row : LocaleItems::Rows) {
        if (row.setting == nullptr || !TakeSetting(key, row, answers))
            continue;
        if (row.first == LOCALE_SSHORTDATE) // the patterns come before the items that are read off them
            answers.ReadShortDate();
        else if (row.first == LOCALE_STIMEFORMAT)
            answers.ReadTimeFormat();
    }
}

// ---- the answers in force -------------------------------------------------------------------------------

class Answers {
public:
    // Holds until the next call.
    const LocaleAnswer& Get(LCTYPE item, bool isUsers)
    {
        if (m_isStale || CoarseClock::Now() != m_moment || RegistryTree::Generation() != m_generation ||
            !m_environment.IsUnchanged())
            Refresh();
        return (isUsers ? m_users : m_locales)[item];
    }

private:
    // Memory may run out on the way: the marks that all is up to date are set when it is.
    void Refresh()
    {
        const int64 moment = CoarseClock::Now();
        const unsigned int generation = RegistryTree::Generation();
        const bool wasStale = std::exchange(m_isStale, true);
        const bool environmentChanged = m_environment.Read() || wasStale;
        if (environmentChanged)
            ReadLocales();
        if (environmentChanged || generation != m_generation || moment >= m_settingsEnd) {
            m_users = m_locales;
            TakeSettings(m_users);
            m_settingsEnd = moment + CoarseClock::Second;
        }
        m_moment = moment;
        m_generation = generation;
        m_isStale = false;
    }

    void ReadLocales()
    {
        if (m_known.size() >= MaxKnown)
            m_known.clear();
        for (const Row& row : LocaleItems::Rows) {
            const LocaleAnswers& known = Known(m_environment.LocaleOf(row.category));
            for (LCTYPE item = row.first; item < row.first + row.count; ++item)
                m_locales.Set(item, known[item].text);
        }
    }

    const LocaleAnswers& Known(const std::string& name)
    {
        auto known = m_known.find(name);
        if (known == m_known.end())
            known = m_known.emplace(name, AnswersForLocale(name, IcuLoader::Get)).first;
        return known->second;
    }

    static constexpr std::size_t MaxKnown = 64; // locales, of about 10 KB each

    Environment m_environment;
    std::map<std::string, LocaleAnswers> m_known;
    LocaleAnswers m_locales, m_users;
    int64 m_moment = -1;
    int64 m_settingsEnd = 0;
    unsigned int m_generation = 0;
    bool m_isStale = true; // as long as not all has been read since the environment changed
};

constinit std::mutex mutex;

Answers& Current()
{
    static Answers& answers = *new Answers; // for as long as code may run
    return answers;
}

// What a platform call of this family returns for `length` bytes.
int Deliver(const void* bytes, std::size_t length, char* buffer, int size)
{
    if (size != 0 && std::cmp_less(size, length)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    if (size != 0)
        std::memcpy(buffer, bytes, length);
    return static_cast<int>(length);
}

int Fail(DWORD error)
{
    SetLastError(error);
    return 0;
}

} // namespace

int GetLocaleInfoA(LCID locale, LCTYPE type, char* buffer, int size)
{
    if (locale != LOCALE_USER_DEFAULT || size < 0 || (size > 0 && buffer == nullptr))
        return Fail(ERROR_INVALID_PARAMETER);
    const LCTYPE item = type & ~(LOCALE_NOUSEROVERRIDE | LOCALE_RETURN_NUMBER);
    const bool isNumberWanted = (type & LOCALE_RETURN_NUMBER) != 0;
    const Row* const row = LocaleItems::RowOf(item);
    if (row == nullptr || (isNumberWanted && !row->isNumber))
        return Fail(ERROR_INVALID_FLAGS);
    int result = 0;
    {
        const std::lock_guard lock(mutex);
        const LocaleAnswer& answer = Current().Get(item, (type & LOCALE_NOUSEROVERRIDE) == 0);
        result = isNumberWanted ? Deliver(&answer.number, sizeof answer.number, buffer, size)
                                : Deliver(answer.text.c_str(), answer.text.size() + 1, buffer, size);
    }
    IcuLoader::ReportFailure();
    return result;
}
