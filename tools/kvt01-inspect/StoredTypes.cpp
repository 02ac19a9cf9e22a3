#include "StoredTypes.h"

#include <algorithm>
#include <charconv>
#include <concepts>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

#include "Damage.h"
#include "Output.h"

namespace {

// ---- single values --------------------------------------------------------------------------------------

template <class Number>
requires std::is_arithmetic_v<Number> std::string Shown(Number value)
{
    char text[32];
    return std::string(text, std::to_chars(text, std::end(text), value).ptr); // a double in its shortest form
}
std::string Shown(bool value)
{
    return value ? "true" : "false";
}
std::string Shown(const CString& text)
{
    return Output::Text(text.View());
}
std::string Shown(const DateTime& date)
{
    return Output::Date(date);
}
std::string Shown(const CRect& rect)
{
    CString text;
    text.Format("left %d, top %d, right %d, bottom %d", rect.left, rect.top, rect.right, rect.bottom);
    return std::string(text.View());
}

// ---- containers: an element a line, those of an inner container further in ------------------------------

template <class Value>
concept Container = requires(const Value& value)
{
    value.begin();
    value.end();
}
&&!std::convertible_to<Value, CString>;

template <class Value>
void PrintField(const std::string& margin, const std::string& name, const Value& value);

template <class Element>
void PrintElement(const std::string& margin, const Element& element)
{
    Output::Line(margin + Shown(element));
}
template <class Key, class Value>
void PrintElement(const std::string& margin, const std::pair<const Key, Value>& pair)
{
    PrintField(margin, Shown(pair.first), pair.second);
}

template <class Value>
void PrintField(const std::string& margin, const std::string& name, const Value& value)
{
    if constexpr (Container<Value>) {
        Output::Line(margin + name + ':');
        for (const auto& element : value)
            PrintElement(margin + "  ", element);
    } else {
        Output::Line(margin + name + ": " + Shown(value));
    }
}

// What was loaded before an exception is printed as well.
template <class Type, auto Serialize>
void PrintContainerBy(CArchive& archive, bool legacy)
{
    Type container;
    const auto print = [&] {
        for (const auto& element : std::as_const(container))
            PrintElement("", element);
    };
    try {
        Serialize(archive, container, legacy);
    } catch (...) {
        print();
        throw;
    }
    print();
}
template <class Type>
void PrintContainer(CRewindArchive& archive, Layout layout)
{
    constexpr auto serialize = [](CArchive& from, Type& to, bool legacy) {
        SerializeData::Serialize(from, to, legacy);
    };
    PrintContainerBy<Type, serialize>(archive, layout.isLegacy);
}
template <class Type>
void PrintMaybeEncrypted(CRewindArchive& archive, Layout layout)
{
    constexpr auto serialize = [](CArchive& from, Type& to, bool legacy) {
        SerializeData::SerializeEncrypted(from, to, legacy);
    };
    if (layout.isEncrypted)
        PrintContainerBy<Type, serialize>(archive, layout.isLegacy);
    else
        PrintContainer<Type>(archive, layout);
}

// ---- records --------------------------------------------------------------------------------------------

void Print(const DateTime& date)
{
    Output::Line(Shown(date));
}
void Print(const DateEntry& entry)
{
    PrintField("", "description", entry.GetDesc());
    PrintField("", "ID", entry.GetID());
    PrintField("", "month", entry.GetMonth());
    PrintField("", "day", entry.GetDay());
    PrintField("", "occurrence", int{entry.GetOccurrence()});
    PrintField("", "day of week", entry.GetDayOfWeek());
    PrintField("", "before or after day of week", entry.GetBeforeAfterDayOfWeek());
    PrintField("", "weekdays only", entry.GetWeekDay());
    PrintField("", "year type", int{entry.GetYearType()});
    PrintField("", "year", entry.GetYear());
}
void Print(const NextIDMgr& ids)
{
    PrintField("", "next ID", NextIDMgr(ids).GetNextID());
}
void Print(const VersionNumber& version)
{
    Output::Line(Shown(version.GetString()));
}
void Print(const ExternalAppRun& app)
{
    PrintField("", "path", app.GetPath());
    PrintField("", "arguments", app.GetArgs());
    PrintField("", "initial folder", app.GetInitDir());
    PrintField("", "title", app.GetTitle());
}

template <class Type>
void PrintRecord(CRewindArchive& archive, Layout)
{
    Type value;
    value.Serialize(archive);
    Print(value);
}

void PrintTextArray(CRewindArchive& archive, Layout layout)
{
    TextArray texts;
    texts.Serialize(archive, layout.isEncrypted);
    for (const CString& text : texts)
        PrintElement("", text);
}

// ---- the recent lists, read as they are stored: their classes do not tell all of it ---------------------

WORD LoadVersion(CArchive& archive, WORD last)
{
    WORD version = 0;
    archive >> version;
    if (version < 1 || version > last)
        throw CArchiveException(CArchiveException::badSchema);
    return version;
}

// The library would take one of an unknown version for an empty one, and what follows for anything.
TextArray LoadTextArray(CRewindArchive& archive, bool encrypted)
{
    constexpr WORD LastVersion = 4;
    TextArray texts;
    LoadVersion(archive, LastVersion);
    archive.DoRewindWORD();
    texts.Serialize(archive, encrypted);
    return texts;
}

// A map from a rank to texts.
template <class Rank>
void PrintRanked(CRewindArchive& archive, bool legacy, bool encrypted)
{
    WORD ignored = 0;
    for (uint64 left = SerializeData::DeserializeLoopCounter(archive, legacy, ignored); left > 0; --left) {
        Rank rank{};
        archive >> rank;
        PrintField("  ", Shown(rank), LoadTextArray(archive, encrypted));
    }
}

void PrintMRUArray(CRewindArchive& archive, Layout)
{
    constexpr WORD FirstCurrent = 3;
    constexpr WORD Plain = 4;
    const WORD version = LoadVersion(archive, Plain);
    PrintField("", "recent", LoadTextArray(archive, version < Plain));
    Output::Line("popular, by uses:");
    PrintRanked<int>(archive, version < FirstCurrent, version < Plain);
}

void PrintMRUArrayByTime(CRewindArchive& archive, Layout layout)
{
    LoadVersion(archive, 1);
    Output::Line("popular, by time:");
    PrintRanked<uint64>(archive, layout.isLegacy, false);
}

void PrintMRUApplications(CRewindArchive& archive, Layout)
{
    constexpr WORD Legacy = 1;
    constexpr WORD Plain = 4;
    const WORD version = LoadVersion(archive, Plain);
    for (uint64 left = SerializeData::SerializeLoopCounter(archive, 0, version == Legacy); left > 0; --left) {
        CString name;
        CString path;
        for (CString* text : {&name, &path}) {
            if (version == Plain)
                archive >> *text;
            else
                Crypto::Serialize(archive, *text);
        }
        PrintField("", Shown(name), path);
    }
}

// ---- the table ------------------------------------------------------------------------------------------

template <class Type>
consteval StoredType ContainerType(std::string_view name)
{
    return {.name = name, .print = PrintContainer<Type>, .hasLegacy = true};
}
template <class Type>
consteval StoredType MaybeEncryptedType(std::string_view name)
{
    return {.name = name, .print = PrintMaybeEncrypted<Type>, .hasLegacy = true, .hasEncrypted = true};
}

constexpr StoredType Types[] = {
    {.name = "TextArray", .print = PrintTextArray, .hasEncrypted = true, .lastVersion = 4},
    {.name = "DateTime", .print = PrintRecord<DateTime>, .lastVersion = 3},
    {.name = "DateEntry", .print = PrintRecord<DateEntry>, .lastVersion = 1},
    {.name = "MRUArray", .print = PrintMRUArray},
    {.name = "MRUArrayByTime", .print = PrintMRUArrayByTime, .hasLegacy = true},
    {.name = "MRUApplications", .print = PrintMRUApplications},
    {.name = "NextIDMgr", .print = PrintRecord<NextIDMgr>},
    {.name = "VersionNumber", .print = PrintRecord<VersionNumber>},
    {.name = "ExternalAppRun", .print = PrintRecord<ExternalAppRun>},
    ContainerType<std::vector<bool>>("vector<bool>"),
    ContainerType<std::vector<int>>("vector<int>"),
    ContainerType<std::vector<uint64>>("vector<uint64>"),
    ContainerType<std::vector<double>>("vector<double>"),
    MaybeEncryptedType<std::vector<CString>>("vector<CString>"),
    ContainerType<std::set<CString>>("set<CString>"),
    ContainerType<std::unordered_set<std::string>>("unordered_set<CString>"),
    ContainerType<std::map<int, bool>>("map<int,bool>"),
    ContainerType<std::map<int, int>>("map<int,int>"),
    ContainerType<std::map<int, uint64>>("map<int,uint64>"),
    ContainerType<std::map<int, double>>("map<int,double>"),
    ContainerType<std::map<int, DateTime>>("map<int,DateTime>"),
    ContainerType<std::map<int, CString>>("map<int,CString>"),
    ContainerType<std::map<int, std::vector<int>>>("map<int,vector<int>>"),
    ContainerType<std::map<CString, bool>>("map<CString,bool>"),
    MaybeEncryptedType<std::map<CString, int>>("map<CString,int>"),
    ContainerType<std::map<CString, UINT>>("map<CString,UINT>"),
    ContainerType<std::map<CString, double>>("map<CString,double>"),
    ContainerType<std::map<CString, DateTime>>("map<CString,DateTime>"),
    ContainerType<std::map<CString, CString>>("map<CString,CString>"),
    ContainerType<std::map<CString, std::vector<CString>>>("map<CString,vector<CString>>"),
    ContainerType<std::map<CString, CRect>>("map<CString,CRect>"),
    ContainerType<std::map<UINT, std::map<CString, CRect>>>("map<UINT,map<CString,CRect>>"),
};

std::string Normalized(std::string_view name)
{
    CString text(name);
    text.Remove(' ');
    text.Replace("std::", "");
    text.Replace("CString", "string");
    return std::string(text.View());
}

} // namespace

std::span<const StoredType> StoredTypes()
{
    return Types;
}

const StoredType* FindStoredType(std::string_view name)
{
    const std::string wanted = Normalized(name);
    const auto* const found =
        std::ranges::find_if(Types, [&](const StoredType& type) { return Normalized(type.name) == wanted; });
    return found == std::end(Types) ? nullptr : found;
}

void PrintStored(Source& source, const StoredType& type, Layout layout)
{
    const auto at = [&] { return "byte " + std::to_string(source.Position()) + ": "; };
    try {
        if (type.lastVersion > 0)
            if (const WORD version = source.PeekWord(); version == 0 || version > type.lastVersion)
                throw Damage(at() + "no known version of the record: " + std::to_string(version));
        type.print(source.Archive(), layout);
    } catch (const CArchiveException& error) {
        throw Damage(at() + error.what());
    } catch (const std::length_error& error) {
        throw Damage(at() + error.what());
    }
    if (source.BytesLeft() > 0)
        throw Damage(at() + "bytes left over: " + std::to_string(source.BytesLeft()));
}
