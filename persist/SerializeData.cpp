#include "SerializeData.h"

#include <climits>

#include "persist/ContainerRecord.h"

// ---- vectors and sets -----------------------------------------------------------------------------------

void SerializeData::Serialize(CArchive& archive, std::vector<bool>& list, bool bLegacy)
{
    ContainerRecord::Serialize(archive, list, bLegacy);
}

void SerializeData::Serialize(CArchive& archive, std::vector<int>& list, bool bLegacy)
{
    ContainerRecord::Serialize(archive, list, bLegacy);
}

template <Uint64Value Number>
void SerializeData::Serialize(CArchive& archive, std::vector<Number>& list, bool bLegacy)
{
    ContainerRecord::Serialize(archive, list, bLegacy);
}

void SerializeData::Serialize(CArchive& archive, std::vector<double>& list, bool bLegacy)
{
    ContainerRecord::Serialize(archive, list, bLegacy);
}

void SerializeData::Serialize(CArchive& archive, std::vector<CString>& list, bool bLegacy)
{
    ContainerRecord::Serialize(archive, list, bLegacy);
}

void SerializeData::Serialize(CArchive& archive, std::vector<std::string>& list, bool bLegacy)
{
    ContainerRecord::Serialize(archive, list, bLegacy);
}

template <TextKey Text, TextOrder<Text> Order>
void SerializeData::Serialize(CArchive& archive, std::set<Text, Order>& set, bool bLegacy)
{
    ContainerRecord::Serialize(archive, set, bLegacy);
}

void SerializeData::Serialize(CArchive& archive, std::unordered_set<std::string>& set, bool bLegacy)
{
    ContainerRecord::Serialize(archive, set, bLegacy);
}

// ---- maps -----------------------------------------------------------------------------------------------

template <IntMapValue Value>
void SerializeData::Serialize(CArchive& archive, std::map<int, Value>& map, bool bLegacy)
{
    ContainerRecord::Serialize(archive, map, bLegacy);
}

template <Uint64Value Key>
void SerializeData::Serialize(CArchive& archive, std::map<Key, TextArray>& map, bool bLegacy)
{
    ContainerRecord::Serialize(archive, map, bLegacy);
}

template <TextKey Key, TextMapValue Value, TextOrder<Key> Order>
void SerializeData::Serialize(CArchive& archive, std::map<Key, Value, Order>& map, bool bLegacy)
{
    ContainerRecord::Serialize(archive, map, bLegacy);
}

template <TextOrder<CString> Order>
void SerializeData::Serialize(CArchive& archive, std::map<CString, CRect, Order>& map, bool bLegacy)
{
    ContainerRecord::Serialize(archive, map, bLegacy);
}

template <TextOrder<CString> Order>
void SerializeData::Serialize(CArchive& archive, std::map<UINT, std::map<CString, CRect, Order>>& map,
                              bool bLegacy)
{
    ContainerRecord::Serialize(archive, map, bLegacy);
}

void SerializeData::Serialize(CArchive& archive, std::map<int, CString>& map,
                              const std::unordered_set<int>& protectedKeys, bool bLegacy)
{
    constexpr WORD PlainVersion = 2;
    constexpr WORD ProtectedVersion = 1;
    if (archive.IsStoring()) {
        ContainerRecord::StoreHeader(archive, map.size(), PlainVersion);
        ContainerRecord::StoreElements(archive, map);
        return;
    }
    WORD version = 0;
    const uint64 count = DeserializeLoopCounter(archive, bLegacy, version);
    ContainerRecord::CheckedCount(count, map.max_size());
    map.clear();
    for (uint64 i = 0; i < count; ++i) {
        int key = 0;
        CString text;
        archive >> key;
        if (version == ProtectedVersion && protectedKeys.contains(key))
            Crypto::Serialize(archive, text);
        else
            archive >> text;
        map.insert_or_assign(map.end(), key, std::move(text));
    }
}

// ---- texts that may be encrypted ------------------------------------------------------------------------

template <class Container>
static void StorePlainLoadProtected(CArchive& archive, Container& container, bool legacy)
{
    if (archive.IsStoring())
        ContainerRecord::Store(archive, container);
    else
        ContainerRecord::LoadBy(archive, container, legacy, ContainerRecord::ProtectedValue());
}

void SerializeData::SerializeEncrypted(CArchive& archive, std::vector<CString>& list, bool bLegacy)
{
    StorePlainLoadProtected(archive, list, bLegacy);
}

template <TextOrder<CString> Order>
void SerializeData::SerializeEncrypted(CArchive& archive, std::map<CString, int, Order>& map, bool bLegacy)
{
    StorePlainLoadProtected(archive, map, bLegacy);
}

// ---- single values and counters -------------------------------------------------------------------------

void SerializeData::Serialize(CArchive& archive, bool& value)
{
    if (archive.IsStoring())
        archive << value;
    else
        archive >> value;
}

void SerializeData::Serialize(CArchive& archive, std::string& text)
{
    if (archive.IsStoring())
        Serializestring(archive, text);
    else
        Deserialize(archive, text);
}

static void Require(bool isDirectionRight)
{
    if (!isDirectionRight)
        throw CArchiveException(CArchiveException::genericException);
}

void SerializeData::Serializestring(CArchive& archive, const std::string& text)
{
    Require(archive.IsStoring());
    archive << text;
}

void SerializeData::Deserialize(CArchive& archive, std::string& text)
{
    Require(archive.IsLoading());
    archive >> text;
}

static uint64 LoadCount(CArchive& archive, bool legacy)
{
    if (legacy) {
        DWORD count = 0;
        archive >> count;
        return count;
    }
    uint64 count = 0;
    archive >> count;
    return count;
}

uint64 SerializeData::SerializeLoopCounter(CArchive& archive, uint64 count, bool bLegacy)
{
    if (!archive.IsStoring())
        return LoadCount(archive, bLegacy);
    archive << count;
    return count;
}

uint64 SerializeData::DeserializeLoopCounter(CArchive& archive, bool bLegacy, WORD& version)
{
    version = 0;
    if (!bLegacy)
        archive >> version;
    return LoadCount(archive, bLegacy);
}

// ---- the containers that the library offers -------------------------------------------------------------

#define KVT01_CONTAINER(...) template KVT01_API void SerializeData::Serialize(CArchive&, __VA_ARGS__&, bool)
#define KVT01_INT_MAP(Value) KVT01_CONTAINER(std::map<int, Value>)
#define KVT01_UINT64(Number)                                                                                 \
    KVT01_CONTAINER(std::vector<Number>);                                                                    \
    KVT01_INT_MAP(Number);                                                                                   \
    KVT01_CONTAINER(std::map<Number, TextArray>)
#define KVT01_TEXT_MAPS(Value)                                                                               \
    KVT01_CONTAINER(std::map<CString, Value>);                                                               \
    KVT01_CONTAINER(std::map<CString, Value, StringUtils::NoCase>);                                          \
    KVT01_CONTAINER(std::map<std::string, Value>);                                                           \
    KVT01_CONTAINER(std::map<std::string, Value, StringUtils::NoCase>)

KVT01_CONTAINER(std::set<CString>);
KVT01_CONTAINER(std::set<CString, StringUtils::NoCase>);
KVT01_CONTAINER(std::set<std::string>);
KVT01_CONTAINER(std::set<std::string, StringUtils::NoCase>);

KVT01_INT_MAP(bool);
KVT01_INT_MAP(int);
KVT01_INT_MAP(double);
KVT01_INT_MAP(DateTime);
KVT01_INT_MAP(std::string);
KVT01_INT_MAP(CString);
KVT01_INT_MAP(TextArray);
KVT01_INT_MAP(std::vector<int>);

KVT01_UINT64(uint64);
#if ULONG_MAX > 0xFFFFFFFF // LongUint64
KVT01_UINT64(unsigned long);
#endif

KVT01_TEXT_MAPS(bool);
KVT01_TEXT_MAPS(int);
KVT01_TEXT_MAPS(UINT);
KVT01_TEXT_MAPS(double);
KVT01_TEXT_MAPS(DateTime);
KVT01_TEXT_MAPS(CString);
KVT01_TEXT_MAPS(std::string);
KVT01_TEXT_MAPS(std::vector<CString>);

KVT01_CONTAINER(std::map<CString, CRect>);
KVT01_CONTAINER(std::map<CString, CRect, StringUtils::NoCase>);
KVT01_CONTAINER(std::map<UINT, std::map<CString, CRect>>);
KVT01_CONTAINER(std::map<UINT, std::map<CString, CRect, StringUtils::NoCase>>);

template KVT01_API void SerializeData::SerializeEncrypted(CArchive&, std::map<CString, int>&, bool);
template KVT01_API void SerializeData::SerializeEncrypted(CArchive&,
                                                          std::map<CString, int, StringUtils::NoCase>&, bool);
