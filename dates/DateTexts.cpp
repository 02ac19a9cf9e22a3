// DateTime as text, in the form of a picture: letters stand for parts of the date or time, the more of one
// letter the longer the part is written; text between '' and all other characters stand for themselves.
#include "DateTime.h"

#include <algorithm>
#include <string_view>

#include "CString.h"
#include "LocaleUtils.h"
#include "NumberTextConv.h"
#include "platform/Platform.h"

namespace {

constexpr const char* NeutralDate = "yyyy-MM-dd";
constexpr const char* NeutralTime = "HH:mm:ss";

CString UsersPicture(LCTYPE item, const char* neutral)
{
    const CString picture = LocaleUtils::GetLocaleInfoFor(item);
    return picture.IsEmpty() ? CString(neutral) : picture;
}

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

CString Digits(int number, std::size_t least)
{
    return NumberTextConv::NumberToString(number, false, static_cast<int>(least), "0");
}

// The picture with part(letter, how many of it) in place of each run of one letter.
template <class Part>
CString FilledIn(std::string_view picture, Part part)
{
    CString text;
    bool isQuoted = false;
    while (!picture.empty()) {
        const char c = picture.front();
        const bool isPart = !isQuoted && IsLetter(c);
        const std::size_t length = isPart ? std::min(picture.find_first_not_of(c), picture.size()) : 1;
        if (isPart)
            text += part(c, length);
        else if (c == '\'')
            isQuoted = !isQuoted;
        else
            text += c;
        picture.remove_prefix(length);
    }
    return text;
}

CString DatePart(const DateTime& date, char letter, std::size_t length)
{
    constexpr std::size_t abbreviated = 3;
    switch (letter) {
    case 'd':
        return length < abbreviated ? Digits(date.GetDay(), length)
                                    : LocaleUtils::GetDayName(date.GetDayOfWeek(), length == abbreviated);
    case 'M':
        return length < abbreviated ? Digits(date.GetMonth(), length)
                                    : LocaleUtils::GetMonthName(date.GetMonth(), length == abbreviated);
    case 'y':
        return length <= 2 ? Digits(date.GetYear() % 100, length) : Digits(date.GetYear(), 4);
    default: // the era
        return CString();
    }
}

CString TimePart(const DateTime& time, char letter, std::size_t length)
{
    switch (letter) {
    case 'H':
        return Digits(time.GetHour(), length);
    case 'h':
        return Digits((time.GetHour() + 11) % 12 + 1, length);
    case 'm':
        return Digits(time.GetMinute(), length);
    case 's':
        return Digits(time.GetSecond(), length);
    case 't': {
        const CString marker = time.GetHour() < 12 ? LocaleUtils::GetTimeAM() : LocaleUtils::GetTimePM();
        return length == 1 ? marker.Left(1) : marker;
    }
    default:
        return CString();
    }
}

} // namespace

CString DateTime::ConvertDateToText(bool local) const
{
    if (!IsValidDate())
        return CString();
    const CString picture = local ? UsersPicture(LOCALE_SSHORTDATE, NeutralDate) : CString(NeutralDate);
    return FilledIn(picture.View(),
                    [this](char letter, std::size_t length) { return DatePart(*this, letter, length); });
}

CString DateTime::ConvertTimeToText(bool local) const
{
    if (!IsValidTime())
        return CString();
    const CString picture = local ? UsersPicture(LOCALE_STIMEFORMAT, NeutralTime) : CString(NeutralTime);
    return FilledIn(picture.View(),
                    [this](char letter, std::size_t length) { return TimePart(*this, letter, length); });
}
