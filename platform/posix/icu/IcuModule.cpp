// The module of platform/posix/IcuInterface.h: the one place that calls ICU.
#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include <unicode/ucal.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ucurr.h>
#include <unicode/udat.h>
#include <unicode/udatpg.h>
#include <unicode/uloc.h>
#include <unicode/ulocdata.h>
#include <unicode/unum.h>
#include <unicode/ures.h>
#include <unicode/utf16.h>

#include "platform/posix/IcuInterface.h"
#include "platform/posix/PosixLocale.h"

namespace {

// ---- ICU's objects and texts ----------------------------------------------------------------------------

template <auto Close>
struct Closer {
    template <class T>
    void operator()(T* object) const
    {
        Close(object);
    }
};
using NumberFormat = std::unique_ptr<UNumberFormat, Closer<unum_close>>;
using DateFormat = std::unique_ptr<UDateFormat, Closer<udat_close>>;
using Generator = std::unique_ptr<UDateTimePatternGenerator, Closer<udatpg_close>>;
using Calendar = std::unique_ptr<UCalendar, Closer<ucal_close>>;
using Bundle = std::unique_ptr<UResourceBundle, Closer<ures_close>>;
using Converter = std::unique_ptr<UConverter, Closer<ucnv_close>>;

constexpr int32_t MaxText = 256; // characters; ICU's longest answer here has about sixty

// The text that an operation of ICU writes: Write(buffer, capacity, status) returns its length. Empty on
// failure.
template <class Char = UChar, class Write>
std::basic_string<Char> TextOf(Write write)
{
    Char buffer[MaxText];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = write(buffer, MaxText, &status);
    return U_FAILURE(status) || length > MaxText
               ? std::basic_string<Char>()
               : std::basic_string<Char>(buffer, static_cast<std::size_t>(length));
}

void ReplaceAll(std::u16string& text, char16_t from, char16_t to)
{
    std::replace(text.begin(), text.end(), from, to);
}

// ---- the locale -----------------------------------------------------------------------------------------

struct Locale {
    std::string id;       // as ICU writes it: de_AT, sr_Latn_RS
    std::string plain;    // the same with decimal digits 0 to 9 and the Gregorian calendar
    std::string language; // "de"
    std::string region;   // "AT"
    bool namesScript;     // the language is told with its script
};

struct Script {
    std::string_view modifier, code;
};
constexpr Script Scripts[] = {
    {"latin", "Latn"}, {"cyrillic", "Cyrl"}, {"devanagari", "Deva"}, {"arabic", "Arab"}};

std::string ScriptOf(std::string_view modifier)
{
    for (const Script& script : Scripts)
        if (script.modifier == modifier)
            return '_' + std::string(script.code);
    return {};
}

bool IsRegion(const std::string& code)
{
    const char* const* const end = [] {
        const char* const* last = uloc_getISOCountries();
        while (*last != nullptr)
            ++last;
        return last;
    }();
    return std::any_of(uloc_getISOCountries(), end, [&code](const char* known) { return code == known; });
}

bool IsLanguage(const std::string& id)
{
    UErrorCode status = U_ZERO_ERROR;
    const Bundle bundle(ures_open(nullptr, id.c_str(), &status));
    return U_SUCCESS(status) && status != U_USING_DEFAULT_WARNING;
}

// The language's most likely subtags: de -> de_Latn_DE.
std::string Likely(const std::string& id)
{
    return TextOf<char>([&id](char* buffer, int32_t size, UErrorCode* status) {
        return uloc_addLikelySubtags(id.c_str(), buffer, size, status);
    });
}

std::string RegionOf(const std::string& id)
{
    return TextOf<char>([&id](char* buffer, int32_t size, UErrorCode* status) {
        return uloc_getCountry(id.c_str(), buffer, size, status);
    });
}

// Reads language[_REGION][.codeset][@modifier]. A region that is none is left out and the language's own
// taken.
bool ReadLocale(std::string_view name, Locale& locale)
{
    const std::string_view base = name.substr(0, name.find_first_of(".@"));
    const std::size_t modifier = std::min(name.find('@'), name.size());
    const std::size_t separator = std::min(base.find('_'), base.size());
    locale.language = base.substr(0, separator);
    locale.region = base.substr(std::min(separator + 1, base.size()));
    const bool isPlausible = locale.language.size() >= 2 && locale.language.size() <= 3 &&
                             std::all_of(locale.language.begin(), locale.language.end(),
                                         [](char c) { return c >= 'a' && c <= 'z'; });
    std::string script = ScriptOf(name.substr(std::min(modifier + 1, name.size())));
    if (!isPlausible || locale.language == "und" || !IsLanguage(locale.language))
        return false;
    if (!IsLanguage(locale.language + script)) // a script that there are no data for
        script.clear();
    if (!IsRegion(locale.region))
        locale.region = RegionOf(Likely(locale.language + script));
    if (!IsRegion(locale.region)) // a language of no country
        locale.region = "US";
    locale.id = locale.language + script + '_' + locale.region;
    locale.plain = locale.id + "@calendar=gregorian;numbers=latn";
    locale.namesScript = !script.empty() || locale.language == "zh";
    return true;
}

// ---- telling --------------------------------------------------------------------------------------------

class Teller {
public:
    Teller(IcuInterface::TakeFact take, void* context) : m_take(take), m_context(context) {}
    void Tell(LCTYPE item, const std::u16string& text) const { m_take(m_context, item, text.c_str()); }
    void Tell(LCTYPE item, const std::string& ascii) const
    {
        Tell(item, std::u16string(ascii.begin(), ascii.end()));
    }
    void Tell(LCTYPE item, int number) const { Tell(item, std::to_string(number)); }

private:
    IcuInterface::TakeFact m_take;
    void* m_context;
};

// ---- names ----------------------------------------------------------------------------------------------

void TellNames(const Locale& locale, const Teller& teller)
{
    teller.Tell(LOCALE_SISO639LANGNAME, locale.language);
    teller.Tell(LOCALE_SISO3166CTRYNAME, locale.region);
    teller.Tell(LOCALE_SENGCOUNTRY, TextOf([&](UChar* buffer, int32_t size, UErrorCode* status) {
                    return uloc_getDisplayCountry(locale.id.c_str(), "en", buffer, size, status);
                }));
    std::string language = locale.language;
    if (locale.namesScript) {
        const std::string likely = Likely(locale.id);
        language = likely.substr(0, likely.rfind('_'));
    }
    teller.Tell(LOCALE_SENGLANGUAGE, TextOf([&](UChar* buffer, int32_t size, UErrorCode* status) {
                    return uloc_getDisplayName(language.c_str(), "en", buffer, size, status);
                }));
}

// ---- numbers and money ----------------------------------------------------------------------------------

std::u16string Symbol(const NumberFormat& format, UNumberFormatSymbol symbol)
{
    return TextOf([&](UChar* buffer, int32_t size, UErrorCode* status) {
        return unum_getSymbol(format.get(), symbol, buffer, size, status);
    });
}

// A narrow no-break space has no place in the code page; the wider one is what readers expect in its stead.
std::u16string Separator(const NumberFormat& format, UNumberFormatSymbol symbol)
{
    std::u16string text = Symbol(format, symbol);
    ReplaceAll(text, u'\u202F', u'\u00A0');
    return text;
}

std::string Grouping(const NumberFormat& format)
{
    const int32_t first = unum_getAttribute(format.get(), UNUM_GROUPING_SIZE);
    const int32_t second = unum_getAttribute(format.get(), UNUM_SECONDARY_GROUPING_SIZE);
    if (first <= 0 || unum_getAttribute(format.get(), UNUM_GROUPING_USED) == 0)
        return "0";
    if (second <= 0 || second == first)
        return std::to_string(first) + ";0";
    return std::to_string(first) + ';' + std::to_string(second) + ";0";
}

// A pattern for money reduced to its shape: $ the sign, 1 the number, and blanks and signs between them.
std::u16string ShapeOf(std::u16string_view pattern)
{
    std::u16string shape;
    for (const char16_t c : pattern) {
        if (c == u'\u00A4')
            shape += u'$';
        else if (c == u' ' || c == u'\u00A0' || c == u'\u202F')
            shape += u' ';
        else if (c == u'-' || c == u'(' || c == u')')
            shape += c;
        else if (std::u16string_view(u"#,0.").find(c) != std::u16string_view::npos && !shape.ends_with(u'1'))
            shape += u'1'; // all others are marks of the writing direction
    }
    return shape;
}

// In the order of the platform's numbers for them.
constexpr std::u16string_view PositiveShapes[] = {u"$1", u"1$", u"$ 1", u"1 $"};
constexpr std::u16string_view NegativeShapes[] = {u"($1)", u"-$1",  u"$-1",   u"$1-",  u"(1$)", u"-1$",
                                                  u"1-$",  u"1$-",  u"-1 $",  u"-$ 1", u"1 $-", u"$ 1-",
                                                  u"$ -1", u"1- $", u"($ 1)", u"(1 $)"};

int IndexOf(std::span<const std::u16string_view> shapes, const std::u16string& shape)
{
    const auto found = std::find(shapes.begin(), shapes.end(), shape);
    return found == shapes.end() ? 0 : static_cast<int>(found - shapes.begin());
}

void TellNumbers(const Locale& locale, const Teller& teller)
{
    UErrorCode status = U_ZERO_ERROR;
    const NumberFormat format(unum_open(UNUM_DECIMAL, nullptr, 0, locale.plain.c_str(), nullptr, &status));
    if (format == nullptr)
        return;
    teller.Tell(LOCALE_SDECIMAL, Separator(format, UNUM_DECIMAL_SEPARATOR_SYMBOL));
    teller.Tell(LOCALE_STHOUSAND, Separator(format, UNUM_GROUPING_SEPARATOR_SYMBOL));
    teller.Tell(LOCALE_SGROUPING, Grouping(format));
}

// The currency's usual sign in its country; where that is only its code, the short sign.
std::u16string CurrencySign(const Locale& locale, const std::u16string& currency)
{
    for (const UCurrNameStyle style : {UCURR_SYMBOL_NAME, UCURR_NARROW_SYMBOL_NAME}) {
        UErrorCode status = U_ZERO_ERROR;
        int32_t length = 0;
        const UChar* const sign =
            ucurr_getName(currency.c_str(), locale.id.c_str(), style, nullptr, &length, &status);
        if (U_SUCCESS(status) && sign != nullptr && currency != sign)
            return {sign, static_cast<std::size_t>(length)};
    }
    return currency;
}

// The platform's figures are those of the accounting form.
void TellMoney(const Locale& locale, const Teller& teller)
{
    UErrorCode status = U_ZERO_ERROR;
    const NumberFormat format(
        unum_open(UNUM_CURRENCY_ACCOUNTING, nullptr, 0, locale.plain.c_str(), nullptr, &status));
    if (format == nullptr)
        return;
    const std::u16string currency = Symbol(format, UNUM_INTL_CURRENCY_SYMBOL);
    teller.Tell(LOCALE_SCURRENCY, CurrencySign(locale, currency));
    teller.Tell(LOCALE_SMONDECIMALSEP, Separator(format, UNUM_MONETARY_SEPARATOR_SYMBOL));
    teller.Tell(LOCALE_SMONTHOUSANDSEP, Separator(format, UNUM_MONETARY_GROUPING_SEPARATOR_SYMBOL));
    teller.Tell(LOCALE_SMONGROUPING, Grouping(format));
    teller.Tell(LOCALE_ICURRDIGITS, ucurr_getDefaultFractionDigits(currency.c_str(), &status));

    const std::u16string pattern = TextOf([&](UChar* buffer, int32_t size, UErrorCode* failure) {
        return unum_toPattern(format.get(), false, buffer, size, failure);
    });
    const std::size_t end = std::min(pattern.find(u';'), pattern.size());
    const std::u16string positive = ShapeOf(pattern.substr(0, end));
    const std::u16string negative = end < pattern.size() ? ShapeOf(pattern.substr(end)) : u'-' + positive;
    teller.Tell(LOCALE_ICURRENCY, IndexOf(PositiveShapes, positive));
    teller.Tell(LOCALE_INEGCURR, IndexOf(NegativeShapes, negative));
}

// ---- dates and times ------------------------------------------------------------------------------------

// A field of ICU's patterns in the platform's letters; the year always has four digits, but for an explicit
// yy.
std::u16string PlatformField(char16_t letter, std::size_t length)
{
    switch (letter) {
    case u'y':
        return std::u16string(length == 2 ? 2 : 4, u'y');
    case u'E':
    case u'c':
        return std::u16string(length == 4 ? 4 : 3, u'd');
    case u'L':
        return std::u16string(length, u'M');
    case u'a':
    case u'b':
    case u'B':
        return u"tt";
    case u'G':
        return u"gg";
    case u'k':
        return std::u16string(length, u'H');
    case u'K':
        return std::u16string(length, u'h');
    default:
        return std::u16string(length, letter);
    }
}

std::u16string PlatformPattern(const std::u16string& pattern)
{
    std::u16string result;
    bool isQuoted = false;
    for (std::size_t i = 0; i < pattern.size();) {
        const std::size_t end = std::min(pattern.find_first_not_of(pattern[i], i), pattern.size());
        const bool isLetter = (pattern[i] | 32) >= u'a' && (pattern[i] | 32) <= u'z';
        if (pattern[i] == u'\'' && (end - i) % 2 == 1)
            isQuoted = !isQuoted;
        result += isLetter && !isQuoted ? PlatformField(pattern[i], end - i) : pattern.substr(i, end - i);
        i = end;
    }
    return result;
}

DateFormat OpenDateFormat(const Locale& locale, UDateFormatStyle time, UDateFormatStyle date)
{
    UErrorCode status = U_ZERO_ERROR;
    return DateFormat(udat_open(time, date, locale.plain.c_str(), nullptr, 0, nullptr, 0, &status));
}

std::u16string PatternOf(const DateFormat& format)
{
    return PlatformPattern(TextOf([&](UChar* buffer, int32_t size, UErrorCode* status) {
        return udat_toPattern(format.get(), false, buffer, size, status);
    }));
}

std::u16string ShortDatePattern(const Locale& locale)
{
    UErrorCode status = U_ZERO_ERROR;
    const Generator generator(udatpg_open(locale.plain.c_str(), &status));
    return PlatformPattern(TextOf([&](UChar* buffer, int32_t size, UErrorCode* failure) {
        return udatpg_getBestPattern(generator.get(), u"yMd", 3, buffer, size, failure);
    }));
}

std::u16string TimePattern(const Locale& locale)
{
    std::u16string pattern = PatternOf(OpenDateFormat(locale, UDAT_MEDIUM, UDAT_NONE));
    ReplaceAll(pattern, u'\u202F', u' '); // before AM and PM, where it does not fit the code page
    return pattern;
}

// ---- the short AM and PM texts, which ICU's date formats do not tell ------------------------------------

// The locale whose data stand in for what is not in this one's; empty above the root.
std::string ParentOf(const Bundle& bundle)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::string id = ures_getLocaleByType(bundle.get(), ULOC_ACTUAL_LOCALE, &status);
    if (id == "root")
        return {};
    const Bundle parent(ures_getByKey(bundle.get(), "%%Parent", nullptr, &status));
    int32_t length = 0;
    const UChar* const text = ures_getString(parent.get(), &length, &status);
    if (U_SUCCESS(status) && status != U_USING_FALLBACK_WARNING)
        return {text, text + length};
    const std::size_t end = id.rfind('_');
    return end == std::string::npos ? "root" : id.substr(0, end);
}

std::u16string ShortMark(const Bundle& bundle, int32_t index)
{
    UErrorCode status = U_ZERO_ERROR;
    Bundle at(ures_getByKey(bundle.get(), "calendar", nullptr, &status));
    for (const char* const key : {"gregorian", "AmPmMarkersAbbr"})
        at.reset(ures_getByKey(at.get(), key, nullptr, &status));
    int32_t length = 0;
    const UChar* const text = ures_getStringByIndex(at.get(), index, &length, &status);
    return U_FAILURE(status) ? std::u16string() : std::u16string(text, static_cast<std::size_t>(length));
}

std::u16string ShortMark(const Locale& locale, int32_t index)
{
    std::u16string mark;
    for (std::string id = locale.id; !id.empty() && mark.empty();) {
        UErrorCode status = U_ZERO_ERROR;
        const Bundle bundle(ures_open(nullptr, id.c_str(), &status));
        if (bundle == nullptr || U_FAILURE(status))
            break;
        mark = ShortMark(bundle, index);
        id = ParentOf(bundle);
    }
    return mark;
}

struct Names {
    LCTYPE item;
    UDateFormatSymbolType symbols;
    int32_t first, count; // in ICU's list
};
constexpr Names NameLists[] = {
    {LOCALE_SMONTHNAME1, UDAT_STANDALONE_MONTHS, 0, 12},
    {LOCALE_SABBREVMONTHNAME1, UDAT_STANDALONE_SHORT_MONTHS, 0, 12},
    {LOCALE_SDAYNAME1, UDAT_WEEKDAYS, 2, 6}, // Monday is ICU's day 2, Sunday day 1
    {LOCALE_SDAYNAME7, UDAT_WEEKDAYS, 1, 1},
    {LOCALE_SABBREVDAYNAME1, UDAT_SHORT_WEEKDAYS, 2, 6},
    {LOCALE_SABBREVDAYNAME7, UDAT_SHORT_WEEKDAYS, 1, 1},
};

std::u16string Name(const DateFormat& format, UDateFormatSymbolType symbols, int32_t index)
{
    return TextOf([&](UChar* buffer, int32_t size, UErrorCode* status) {
        return udat_getSymbols(format.get(), symbols, index, buffer, size, status);
    });
}

void TellDates(const Locale& locale, const Teller& teller)
{
    UErrorCode status = U_ZERO_ERROR;
    const DateFormat format = OpenDateFormat(locale, UDAT_NONE, UDAT_FULL);
    const Calendar calendar(ucal_open(nullptr, 0, locale.id.c_str(), UCAL_GREGORIAN, &status));
    if (format == nullptr || calendar == nullptr)
        return;
    teller.Tell(LOCALE_SSHORTDATE, ShortDatePattern(locale));
    teller.Tell(LOCALE_SLONGDATE, PatternOf(format));
    teller.Tell(LOCALE_STIMEFORMAT, TimePattern(locale));
    teller.Tell(LOCALE_S1159, ShortMark(locale, 0));
    teller.Tell(LOCALE_S2359, ShortMark(locale, 1));
    for (const Names& names : NameLists)
        for (int32_t i = 0; i < names.count; ++i)
            teller.Tell(names.item + static_cast<LCTYPE>(i), Name(format, names.symbols, names.first + i));
    const int32_t firstDay = ucal_getAttribute(calendar.get(), UCAL_FIRST_DAY_OF_WEEK);
    teller.Tell(LOCALE_IFIRSTDAYOFWEEK, (firstDay + 5) % 7); // from 1 = Sunday to 0 = Monday
    const bool isAmerican = ulocdata_getMeasurementSystem(locale.id.c_str(), &status) == UMS_US;
    teller.Tell(LOCALE_IMEASURE, isAmerican ? 1 : 0);
}

bool DescribeLocale(const char* name, IcuInterface::TakeFact take, void* context)
{
    Locale locale;
    if (!ReadLocale(name, locale))
        return false;
    const Teller teller(take, context);
    TellNames(locale, teller);
    TellNumbers(locale, teller);
    TellMoney(locale, teller);
    TellDates(locale, teller);
    return true;
}

// ---- code pages -----------------------------------------------------------------------------------------

void FillWide(UConverter* converter, char16_t* wide)
{
    for (std::size_t i = 0; i < IcuInterface::WideCount; ++i) {
        const auto byte = static_cast<char>(i);
        char16_t units[2] = {};
        UErrorCode status = U_ZERO_ERROR;
        const int32_t count = ucnv_toUChars(converter, units, 2, &byte, 1, &status);
        wide[i] = U_SUCCESS(status) && count == 1 ? units[0] : u'\uFFFD';
    }
}

// A zero for each unit that has no byte; ICU's own callbacks leave out what is invisible.
void WriteZeros(const void*, UConverterFromUnicodeArgs* arguments, const UChar*, int32_t length, UChar32,
                UConverterCallbackReason reason, UErrorCode* status)
{
    if (reason > UCNV_IRREGULAR)
        return;
    *status = U_ZERO_ERROR;
    for (int32_t i = 0; i < length; ++i)
        ucnv_cbFromUWriteBytes(arguments, "\0", 1, 0, status);
}

// All units in one text; the halves of surrogate pairs are left out, as they would go together.
bool FillNarrow(UConverter* converter, BYTE* narrow)
{
    std::u16string units(IcuInterface::NarrowCount, u'\uFFFF');
    for (std::size_t i = 0; i < units.size(); ++i)
        if (!U16_IS_SURROGATE(i))
            units[i] = static_cast<char16_t>(i);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter, WriteZeros, nullptr, nullptr, nullptr, &status);
    ucnv_setFallback(converter, true);
    const auto count = static_cast<int32_t>(units.size());
    const int32_t written =
        ucnv_fromUChars(converter, reinterpret_cast<char*>(narrow), count, units.data(), count, &status);
    return U_SUCCESS(status) && written == count;
}

bool DescribeCodePage(const char* name, char16_t* wide, BYTE* narrow)
{
    UErrorCode status = U_ZERO_ERROR;
    const Converter converter(ucnv_open(name, &status));
    if (U_FAILURE(status) || ucnv_getMaxCharSize(converter.get()) != 1)
        return false;
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    FillWide(converter.get(), wide);
    return U_SUCCESS(status) && FillNarrow(converter.get(), narrow);
}

constexpr IcuInterface Interface = {IcuInterface::CurrentVersion, DescribeLocale, DescribeCodePage};

} // namespace

extern "C" __attribute__((visibility("default"))) const IcuInterface* kvt01_icu();

const IcuInterface* kvt01_icu()
{
    return &Interface;
}
