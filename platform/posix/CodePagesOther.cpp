// The pages that ICU knows, each read once into tables of its own.
#include <algorithm>
#include <atomic>
#include <iterator>
#include <memory>
#include <mutex>

#include "platform/posix/CodePages.h"
#include "platform/posix/IcuLoader.h"

namespace CodePages {

namespace {

struct Name {
    UINT page;
    char converter[20];
};
constexpr Name Names[] = {
    {437, "ibm-437_P100-1995"}, {737, "ibm-737_P100-1997"}, {775, "ibm-775_P100-1996"},
    {850, "ibm-850_P100-1995"}, {852, "ibm-852_P100-1995"}, {855, "ibm-855_P100-1995"},
    {857, "ibm-857_P100-1995"}, {858, "ibm-858_P100-1997"}, {860, "ibm-860_P100-1995"},
    {861, "ibm-861_P100-1995"}, {862, "ibm-862_P100-1995"}, {863, "ibm-863_P100-1995"},
    {864, "ibm-864_X110-1999"}, {865, "ibm-865_P100-1995"}, {866, "ibm-866_P100-1995"},
    {869, "ibm-869_P100-1995"}, {874, "windows-874"},       {1250, "windows-1250"},
    {1251, "windows-1251"},     {1253, "windows-1253"},     {1254, "windows-1254"},
    {1255, "windows-1255"},     {1256, "windows-1256"},     {1257, "windows-1257"},
    {1258, "windows-1258"},     {20866, "KOI8-R"},          {21866, "KOI8-U"},
    {28591, "ISO-8859-1"},      {28592, "ISO-8859-2"},      {28593, "ISO-8859-3"},
    {28594, "ISO-8859-4"},      {28595, "ISO-8859-5"},      {28596, "ISO-8859-6"},
    {28597, "ISO-8859-7"},      {28598, "ISO-8859-8"},      {28599, "ISO-8859-9"},
    {28603, "ISO-8859-13"},     {28605, "ISO-8859-15"},
};

// Where the platform's tables and ICU's differ: the sign for micro, which ICU takes for the Greek letter, and
// bytes without a character, which stand for private use.
struct Exception {
    UINT page;
    BYTE byte;
    char16_t unit;
};
constexpr Exception Exceptions[] = {
    {437, 0xE6, 0x00B5},  {860, 0xE6, 0x00B5},  {861, 0xE6, 0x00B5},  {862, 0xE6, 0x00B5},
    {863, 0xE6, 0x00B5},  {865, 0xE6, 0x00B5},  {1253, 0xAA, 0xF8F9}, {1253, 0xD2, 0xF8FA},
    {1253, 0xFF, 0xF8FB}, {1255, 0xCA, 0x05BA}, {1255, 0xD9, 0xF88D}, {1255, 0xDA, 0xF88E},
    {1255, 0xDB, 0xF88F}, {1255, 0xDC, 0xF890}, {1255, 0xDD, 0xF891}, {1255, 0xDE, 0xF892},
    {1255, 0xDF, 0xF893}, {1255, 0xFB, 0xF894}, {1255, 0xFC, 0xF895}, {1255, 0xFF, 0xF896},
    {1257, 0xA1, 0xF8FC}, {1257, 0xA5, 0xF8FD},
};

// The tables of bytes are not shared here: unit u's byte stands at u.
struct LoadedPage {
    char16_t wide[IcuInterface::WideCount];
    BYTE blockOf[256];
    BYTE blocks[IcuInterface::NarrowCount];
    SingleBytePage tables = {wide, blockOf, blocks};
};

void Mend(UINT number, LoadedPage& page)
{
    for (const Exception& exception : Exceptions)
        if (exception.page == number)
            page.wide[exception.byte] = exception.unit; // the other character remains a lookalike
    for (std::size_t byte = 0; byte < 0x80; ++byte)     // ICU exchanges three controls in some pages
        page.wide[byte] = static_cast<char16_t>(byte);
    for (char16_t unit = FirstFullwidth; unit <= LastFullwidth; ++unit) // not in every page of ICU
        page.blocks[unit] = FullwidthByte(unit);
    for (std::size_t byte = 0; byte < std::size(page.wide); ++byte)
        if (page.wide[byte] != Replacement)
            page.blocks[page.wide[byte]] = static_cast<BYTE>(byte);
}

// nullptr where the module or its ICU does not know the page.
const SingleBytePage* Load(const Name& name)
{
    const IcuInterface* const icu = IcuLoader::Get();
    if (icu == nullptr)
        return nullptr;
    auto page = std::make_unique<LoadedPage>();
    if (!icu->describeCodePage(name.converter, page->wide, page->blocks))
        return nullptr;
    for (std::size_t i = 0; i < std::size(page->blockOf); ++i)
        page->blockOf[i] = static_cast<BYTE>(i);
    Mend(name.page, *page);
    return &page.release()->tables; // for as long as code may run
}

constinit std::mutex mutex;
constinit std::atomic<const SingleBytePage*> loaded[std::size(Names)] = {};

} // namespace

const SingleBytePage* Find(UINT page)
{
    const auto name = std::find_if(std::begin(Names), std::end(Names),
                                   [page](const Name& row) { return row.page == page; });
    if (name == std::end(Names))
        return nullptr;
    std::atomic<const SingleBytePage*>& place = loaded[name - Names];
    if (place == nullptr) {
        const std::lock_guard lock(mutex);
        if (place == nullptr)
            place = Load(*name);
    }
    IcuLoader::ReportFailure();
    const SingleBytePage* const tables = place;
    return tables != nullptr ? tables : &Windows1252;
}

} // namespace CodePages
