// The answers to all locale items for one locale.
#pragma once

#include <array>
#include <string>

#include "platform/posix/IcuInterface.h"
#include "platform/posix/LocaleItems.h"

struct LocaleAnswer {
    std::string text; // of a number, its decimal digits
    DWORD number = 0;
};

class LocaleAnswers {
public:
    static constexpr std::size_t MaxText = 79; // characters of an answer; the rest of a longer one is dropped

    const LocaleAnswer& operator[](LCTYPE item) const { return m_answers[LocaleItems::SlotOf(item)]; }
    void Set(LCTYPE item, std::string_view text); // a number's text is its digits
    void SetNumber(LCTYPE item, DWORD number);

    // Reads off the date or time pattern what is answered under items of its own: the separator, the order,
    // the zeros in front, the place of the AM/PM text.
    void ReadShortDate();
    void ReadTimeFormat();

private:
    std::array<LocaleAnswer, LocaleItems::SlotCount> m_answers;
};

// For the locale of that POSIX name; "C", "POSIX", en_US and a language that ICU does not know are en_US, and
// so is everything when `icu` gives nullptr. It is asked only where it is needed.
LocaleAnswers AnswersForLocale(const std::string& name, const IcuInterface* (*icu)());
