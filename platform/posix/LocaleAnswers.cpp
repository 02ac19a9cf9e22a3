#include "platform/posix/LocaleAnswers.h"

#include <algorithm>
#include <charconv>

#include "platform/posix/LocaleTables.h"
#include "platform/posix/PosixCodePages.h"

namespace {

struct Fact {
    LCTYPE item;
    const char* text;
};

// What the module says about en_US, for when it is not asked.
constexpr Fact AmericanFacts[] = {
    {LOCALE_SISO639LANGNAME, "en"},
    {LOCALE_SISO3166CTRYNAME, "US"},
    {LOCALE_SENGLANGUAGE, "English"},
    {LOCALE_SENGCOUNTRY, "United States"},
    {LOCALE_SDECIMAL, "."},
    {LOCALE_STHOUSAND, ","},
    {LOCALE_SGROUPING, "3;0"},
    {LOCALE_SCURRENCY, "$"},
    {LOCALE_SMONDECIMALSEP, "."},
    {LOCALE_SMONTHOUSANDSEP, ","},
    {LOCALE_SMONGROUPING, "3;0"},
    {LOCALE_ICURRDIGITS, "2"},
    {LOCALE_ICURRENCY, "0"},
    {LOCALE_INEGCURR, "0"},
    {LOCALE_SSHORTDATE, "M/d/yyyy"},
    {LOCALE_SLONGDATE, "dddd, MMMM d, yyyy"},
    {LOCALE_STIMEFORMAT, "h:mm:ss tt"},
    {LOCALE_S1159, "AM"},
    {LOCALE_S2359, "PM"},
    {LOCALE_IFIRSTDAYOFWEEK, "6"},
    {LOCALE_IMEASURE, "1"},
};
constexpr const char* AmericanDays[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                        "Friday", "Saturday", "Sunday"};
constexpr const char* AmericanMonths[] = {"January",   "February", "March",    "April",
                                          "May",       "June",     "July",     "August",
                                          "September", "October",  "November", "December"};
constexpr std::size_t AbbreviatedLength = 3;

template <std::size_t Count>
void SetNames(LocaleAnswers& answers, LCTYPE full, LCTYPE abbreviated, const char* const (&names)[Count])
{
    for (DWORD i = 0; i < Count; ++i) {
        answers.Set(full + i, names[i]);
        answers.Set(abbreviated + i, std::string_view(names[i]).substr(0, AbbreviatedLength));
    }
}

void SetAmerican(LocaleAnswers& answers)
{
    for (const Fact& fact : AmericanFacts)
        answers.Set(fact.item, fact.text);
    SetNames(answers, LOCALE_SDAYNAME1, LOCALE_SABBREVDAYNAME1, AmericanDays);
    SetNames(answers, LOCALE_SMONTHNAME1, LOCALE_SABBREVMONTHNAME1, AmericanMonths);
}

bool IsAmerican(std::string_view name)
{
    const std::string_view locale = name.substr(0, name.find_first_of(".@"));
    return locale == "C" || locale == "POSIX" || locale == "en_US";
}

// ---- patterns: runs of a letter are fields, text in quotes is none --------------------------------------

struct Field {
    char letter;
    std::size_t begin, length;
};

// The next field at or after `start`; a length of 0 when there is none.
Field NextField(std::string_view pattern, std::size_t start)
{
    bool isQuoted = false;
    for (std::size_t i = start; i < pattern.size(); ++i) {
        if (pattern[i] == '\'')
            isQuoted = !isQuoted;
        constexpr std::string_view Letters = "dMyghHmst";
        if (isQuoted || Letters.find(pattern[i]) == std::string_view::npos)
            continue;
        const std::size_t end = std::min(pattern.find_first_not_of(pattern[i], i), pattern.size());
        return {pattern[i], i, end - i};
    }
    return {'\0', pattern.size(), 0};
}

Field FindField(std::string_view pattern, std::string_view letters)
{
    Field field = NextField(pattern, 0);
    while (field.length > 0 && letters.find(field.letter) == std::string_view::npos)
        field = NextField(pattern, field.begin + field.length);
    return field;
}

// What stands between a field and the one behind it.
std::string_view TextBehind(std::string_view pattern, const Field& field)
{
    const std::size_t end = field.begin + field.length;
    return pattern.substr(end, NextField(pattern, end).begin - end);
}

// A longer text than any answer is cut off.
std::string InCodePage(std::u16string_view text)
{
    char narrow[LocaleAnswers::MaxText];
    const auto length = static_cast<int>(std::min(text.size(), sizeof narrow));
    return {narrow, static_cast<std::size_t>(WideCharToMultiByte(CP_ACP, 0, text.data(), length, narrow,
                                                                 sizeof narrow, nullptr, nullptr))};
}

} // namespace

void LocaleAnswers::Set(LCTYPE item, std::string_view text)
{
    LocaleAnswer& answer = m_answers[LocaleItems::SlotOf(item)];
    answer.text = text.substr(0, MaxText);
    answer.number = 0;
    std::from_chars(text.data(), text.data() + text.size(), answer.number);
}

void LocaleAnswers::SetNumber(LCTYPE item, DWORD number)
{
    Set(item, std::to_string(number));
}

void LocaleAnswers::ReadShortDate()
{
    const std::string pattern = (*this)[LOCALE_SSHORTDATE].text;
    const Field first = FindField(pattern, "dMy");
    Set(LOCALE_SDATE, TextBehind(pattern, first));
    SetNumber(LOCALE_IDATE, first.letter == 'M' ? 0 : first.letter == 'd' ? 1 : 2);
    SetNumber(LOCALE_IDAYLZERO, FindField(pattern, "d").length == 2);
    SetNumber(LOCALE_IMONLZERO, FindField(pattern, "M").length == 2);
    SetNumber(LOCALE_ICENTURY, FindField(pattern, "y").length > 2);
}

void LocaleAnswers::ReadTimeFormat()
{
    const std::string pattern = (*this)[LOCALE_STIMEFORMAT].text;
    const Field hour = FindField(pattern, "hH");
    const Field mark = FindField(pattern, "t");
    Set(LOCALE_STIME, TextBehind(pattern, hour));
    SetNumber(LOCALE_ITIME, hour.letter == 'H');
    SetNumber(LOCALE_ITLZERO, hour.length == 2);
    SetNumber(LOCALE_ITIMEMARKPOSN, mark.begin < hour.begin);
}

LocaleAnswers AnswersForLocale(const std::string& name, const IcuInterface* (*icu)())
{
    LocaleAnswers answers;
    const auto take = [](void* context, DWORD item, const char16_t* text) {
        static_cast<LocaleAnswers*>(context)->Set(item, InCodePage(text));
    };
    SetAmerican(answers); // for all that is not told otherwise
    if (const IcuInterface* const source = IsAmerican(name) ? nullptr : icu())
        source->describeLocale(name.c_str(), take, &answers);
    answers.ReadShortDate();
    answers.ReadTimeFormat();
    answers.SetNumber(LOCALE_ILZERO, 1);
    answers.SetNumber(LOCALE_IDIGITS, 2); // the platform's figure everywhere; the data know no such number
    answers.SetNumber(LOCALE_ICOUNTRY, LocaleTables::TelephoneCode(answers[LOCALE_SISO3166CTRYNAME].text));
    answers.SetNumber(LOCALE_INEGNUMBER,
                      LocaleTables::NegativeNumberOrder(answers[LOCALE_SISO639LANGNAME].text));
    return answers;
}
