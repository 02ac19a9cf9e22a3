// Every record that the library can read, as a file that stays for ever (tests/data/golden). The manifest has
// a line per file: the kind of record, how it is loaded (plain, legacy, decrypt), and the file whose bytes
// storing the loaded value gives. A new record is one file, one line, and a line in `kinds`. What the values
// are, the tests of their classes and of kvt01-inspect tell.
#include <gtest/gtest.h>

#include <map>
#include <stdexcept>

#include "Crypto.h"
#include "DateEntry.h"
#include "ExternalAppRun.h"
#include "MRUApplications.h"
#include "MRUArray.h"
#include "MRUArrayByTime.h"
#include "NextIDMgr.h"
#include "SerializeData.h"
#include "VersionNumber.h"
#include "support/AllocationCounter.h"
#include "support/ArchiveBytes.h"
#include "support/Cases.h"
#include "support/LogFiles.h"

namespace {

using NoCase = StringUtils::NoCase;
using std::string;

// Records that are no value of their own.
struct EncryptedText {
    CString text;
    void Serialize(CArchive& archive) { Crypto::Serialize(archive, text); }
};
template <class Container>
struct Protected : Container {
    void Transfer(CArchive& archive, bool legacy)
    {
        SerializeData::SerializeEncrypted(archive, static_cast<Container&>(*this), legacy);
    }
};
struct KeyedMap : std::map<int, CString> {
    void Transfer(CArchive& archive, bool legacy) { SerializeData::Serialize(archive, *this, {2}, legacy); }
};
struct LogFile {
    ~LogFile() { LogHome::Forget(); }
    void Serialize(CArchive& archive)
    {
        AppLogger::m_csAppName = "App"; // which is stored
        AppLogger::Serialize(archive);
    }
};

template <class Value>
void Transfer(CArchive& archive, Value& value, const string& how)
{
    if constexpr (requires { value.Transfer(archive, true); })
        value.Transfer(archive, how == "legacy");
    else if constexpr (requires { value.Serialize(archive, true); })
        value.Serialize(archive, how == "decrypt");
    else if constexpr (requires { value.Serialize(archive); })
        value.Serialize(archive);
    else if constexpr (requires { SerializeData::Serialize(archive, value, true); })
        SerializeData::Serialize(archive, value, how == "legacy");
    else
        SerializeData::Serialize(archive, value);
}

constexpr std::size_t Megabyte = 1 << 20;

// Stores the loaded value, too, where there is a place for that.
using Loader = void (*)(const string& bytes, const string& how, string* stored);

// Containers, and the log, keep what they have got when the data break off; all other values change only
// when all is read.
template <class Value>
constexpr bool KeepsAPart = OneOf<Value, LogFile, TextArray> ||
                            (requires(Value value) { value.clear(); } && !std::is_same_v<Value, string>);

template <class Value>
void Load(const string& bytes, const string& how, string* stored)
{
    Value value{};
    const auto transfer = [&](CArchive& archive) {
        Transfer(archive, value, how);
        EXPECT_TRUE(stored == nullptr || archive.IsStoring() || archive.GetBytesAhead() == 0);
    };
    const string before = KeepsAPart<Value> ? "" : StoredBy(transfer);
    try {
        LoadFrom(bytes, transfer, CArchive::MinBuffer);
    } catch (...) {
        EXPECT_TRUE(KeepsAPart<Value> || StoredBy(transfer) == before) << HexOf(bytes);
        throw;
    }
    if (stored == nullptr)
        return;
    LoadFrom(bytes, transfer); // over what is there already
    *stored = StoredBy(transfer);
}

template <class... Values>
std::vector<Loader> As()
{
    return {&Load<Values>...};
}
template <class... Values>
std::vector<Loader> AsTextMap()
{
    return As<std::map<CString, Values>..., std::map<CString, Values, NoCase>..., std::map<string, Values>...,
              std::map<string, Values, NoCase>...>();
}

const std::vector<Loader>& LoadersOf(const string& kind)
{
    using Rects = std::map<CString, CRect>;
    using RectsNoCase = std::map<CString, CRect, NoCase>;
    using TextToInt = std::map<CString, int>;
    using TextToIntNoCase = std::map<CString, int, NoCase>;
    // clang-format off
    static const std::map<string, std::vector<Loader>> kinds = {
        {"vector of bool", As<std::vector<bool>>()}, {"vector of int", As<std::vector<int>>()},
        {"vector of uint64", As<std::vector<uint64>>()}, {"vector of double", As<std::vector<double>>()},
        {"vector of text", As<std::vector<CString>, std::vector<string>>()},
        {"vector of text, protected", As<Protected<std::vector<CString>>>()},
        {"set of text", As<std::set<CString>, std::set<CString, NoCase>, std::set<string>, std::set<string, NoCase>>()},
        {"unordered set of text", As<std::unordered_set<string>>()},
        {"map of int to bool", As<std::map<int, bool>>()}, {"map of int to int", As<std::map<int, int>>()},
        {"map of int to uint64", As<std::map<int, uint64>>()}, {"map of int to double", As<std::map<int, double>>()},
        {"map of int to DateTime", As<std::map<int, DateTime>>()},
        {"map of int to text", As<std::map<int, CString>, std::map<int, string>>()},
        {"map of int to text, key 2 protected", As<KeyedMap>()},
        {"map of int to vector of int", As<std::map<int, std::vector<int>>>()},
        {"map of text to bool", AsTextMap<bool>()}, {"map of text to int", AsTextMap<int>()},
        {"map of text to int, protected", As<Protected<TextToInt>, Protected<TextToIntNoCase>>()},
        {"map of text to unsigned", AsTextMap<UINT>()}, {"map of text to double", AsTextMap<double>()},
        {"map of text to DateTime", AsTextMap<DateTime>()}, {"map of text to text", AsTextMap<CString, string>()},
        {"map of text to vector of text", AsTextMap<std::vector<CString>>()},
        {"map of text to CRect", As<Rects, RectsNoCase>()},
        {"map of unsigned to map of text to CRect", As<std::map<UINT, Rects>, std::map<UINT, RectsNoCase>>()},
        {"text", As<string>()}, {"bool", As<bool>()}, {"encrypted text", As<EncryptedText>()},
        {"TextArray", As<TextArray>()}, {"DateTime", As<DateTime>()}, {"DateEntry", As<DateEntry>()},
        {"MRUArray", As<MRUArray>()}, {"MRUArrayByTime", As<MRUArrayByTime>()},
        {"MRUApplications", As<MRUApplications>()}, {"NextIDMgr", As<NextIDMgr>()},
        {"VersionNumber", As<VersionNumber>()}, {"ExternalAppRun", As<ExternalAppRun>()}, {"log file", As<LogFile>()},
    };
    // clang-format on
    return kinds.at(kind);
}

string Golden(const string& file)
{
    std::ifstream stream(KVT01_TEST_DATA "/golden/" + file + ".bin", std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Calls check(load, bytes, line of the manifest) for every golden file and type that takes it.
template <class Check>
void ForEachGolden(Check check)
{
    for (const auto& line : RecordedRows("golden/manifest.tsv"))
        for (const Loader loader : LoadersOf(line[1])) {
            SCOPED_TRACE(line[0] + ", " + line[2]);
            const auto load = [&](const string& bytes, string* stored = nullptr) {
                loader(bytes, line[2], stored);
            };
            check(load, Golden(line[0]), line);
        }
}

TEST(ArchiveGolden, EveryRecordLoadsAndStoresItsCurrentFormAndNeedsAllItsBytes)
{
    ForEachGolden([](const auto& load, const string& bytes, const auto& line) {
        string stored;
        load(bytes, &stored);
        EXPECT_EQ(HexOf(stored), HexOf(Golden(line[3])));
        for (std::size_t length = 0; length < bytes.size(); ++length)
            EXPECT_THROW(load(bytes.substr(0, length)), CArchiveException) << length;
    });
}

// Loads damaged bytes, within a megabyte: a value, or one of three exceptions, which answers true.
template <class LoadBytes>
bool IsRefused(const LoadBytes& load, const string& bytes)
{
    const std::size_t before = GetAllocatedInAll();
    bool isRefused = true;
    try {
        load(bytes);
        isRefused = false;
    } catch (const CArchiveException&) {
    } catch (const CFileException&) {
    } catch (const std::length_error&) {
    }
    EXPECT_LT(GetAllocatedInAll() - before, Megabyte) << HexOf(bytes);
    return isRefused;
}

TEST(ArchiveGolden, EveryChangedByteLoadsOrIsRefused)
{
    ForEachGolden([](const auto& load, const string& bytes, const auto&) {
        string damaged = bytes;
        for (std::size_t at = 0; at < bytes.size(); damaged[at] = bytes[at], ++at)
            for (int change = 1; change < 256; ++change) {
                damaged[at] = static_cast<char>(bytes[at] ^ change);
                IsRefused(load, damaged);
            }
    });
}

// Thirty bytes that anywhere claim more than could ever be there: as a count, or as one of a byte array or a
// text.
TEST(ArchiveGolden, ClaimedCountsTakeNoMemory)
{
    for (const char* count : {"0000000000010000", "0000000000000080", "FFFFFFFFFFFFFFFF"})
        for (const std::size_t marks : {0u, 6u, 7u}) {
            const string claim = string(marks, '\xFF') + BytesOf(count);
            ForEachGolden([&](const auto& load, string bytes, const auto& line) {
                const bool isContainer = line[2] == "plain" && line[1].find(" of ") != string::npos;
                bytes.resize(30);
                for (std::size_t at = 0; at <= bytes.size() - claim.size(); ++at) {
                    const bool isRefused = IsRefused(load, string(bytes).replace(at, claim.size(), claim));
                    EXPECT_TRUE(isRefused || !isContainer || at != sizeof(WORD)); // the container's own count
                }
            });
        }
}

} // namespace
