#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <stdexcept>

#include "MRUArray.h"
#include "MRUArrayByTime.h"
#include "SerializeData.h"
#include "TextArray.h"
#include "framework/FailureMarkers.h"
#include "support/ArchiveBytes.h"

namespace {

using NoCase = StringUtils::NoCase;
using Pictures = std::map<CString, CRect>;

constexpr const char* Marker = "{B57EE119-2C25-4A8C-8506-45F22B9B02D5}";

template <class T>
void Transfer(CArchive& archive, T& value, bool legacy = false)
{
    if constexpr (requires { value.Serialize(archive); })
        value.Serialize(archive);
    else
        SerializeData::Serialize(archive, value, legacy);
}

TextArray Texts(std::initializer_list<const char*> texts)
{
    TextArray list;
    for (const char* text : texts)
        list.Add(text);
    return list;
}

// A value, its bytes, and ways to load the bytes that do not need its type.
struct Sample {
    const char* name;
    std::string bytes;
    std::function<void()> check;
    std::function<void(const std::string&)> load;
};

template <class T>
Sample MakeSample(const char* name, T value, const char* hex)
{
    const std::string bytes = BytesOf(hex);
    return {name, bytes,
            [=] {
                T stored = value;
                EXPECT_EQ(HexOf(StoredBy([&](CArchive& archive) { Transfer(archive, stored); })),
                          HexOf(bytes));
                LoadFrom(bytes, [&](CArchive& archive) {
                    T loaded{};
                    Transfer(archive, loaded);
                    EXPECT_TRUE(loaded == value);
                    EXPECT_EQ(archive.GetBytesAhead(), 0u);
                });
            },
            [](const std::string& damaged) {
                LoadFrom(damaged, [](CArchive& archive) {
                    T loaded{};
                    Transfer(archive, loaded);
                });
            }};
}

std::vector<Sample> Samples()
{
    using std::string;
    return {
        MakeSample("empty vector of int", std::vector<int>{}, "0100 0000000000000000"),
        MakeSample("vector of bool", std::vector<bool>{true, false}, "0100 0200000000000000 0100 0000"),
        MakeSample("vector of int", std::vector<int>{1, -2}, "0100 0200000000000000 01000000 FEFFFFFF"),
        MakeSample("vector of uint64", std::vector<uint64>{0x8000000000000001},
                   "0100 0100000000000000 0100000000000080"),
        MakeSample("vector of double", std::vector<double>{1.5, -0.0},
                   "0100 0200000000000000 000000000000F83F 0000000000000080"),
        MakeSample("vector of CString", std::vector<CString>{"ab", "", CString("\0\xFF", 2)},
                   "0100 0300000000000000 02 6162 00 02 00FF"),
        MakeSample("vector of std::string", std::vector<string>{"ab"}, "0100 0100000000000000 02 6162"),
        MakeSample("set of CString", std::set<CString>{"b", "B", "a"},
                   "0100 0300000000000000 01 42 01 61 01 62"),
        MakeSample("set without case", std::set<CString, NoCase>{"b", "B", "a"},
                   "0100 0200000000000000 01 61 01 62"),
        MakeSample("set of std::string", std::set<string>{"b"}, "0100 0100000000000000 01 62"),
        MakeSample("unordered set", std::unordered_set<string>{"b"}, "0100 0100000000000000 01 62"),
        MakeSample("int to bool", std::map<int, bool>{{-1, true}}, "0100 0100000000000000 FFFFFFFF 0100"),
        MakeSample("int to int", std::map<int, int>{{2, -2}, {-1, 1}},
                   "0100 0200000000000000 FFFFFFFF 01000000 02000000 FEFFFFFF"),
        MakeSample("int to uint64", std::map<int, uint64>{{1, 2}},
                   "0100 0100000000000000 01000000 0200000000000000"),
        MakeSample("int to double", std::map<int, double>{{1, 1.5}},
                   "0100 0100000000000000 01000000 000000000000F83F"),
        MakeSample("int to std::string", std::map<int, string>{{1, "a"}},
                   "0100 0100000000000000 01000000 01 61"),
        MakeSample("int to CString", std::map<int, CString>{{1, "a"}},
                   "0100 0100000000000000 01000000 01 61"),
        MakeSample("int to vector of int", std::map<int, std::vector<int>>{{7, {1}}},
                   "0100 0100000000000000 07000000 0100 0100000000000000 01000000"),
        MakeSample("CString to bool", std::map<CString, bool>{{"k", true}},
                   "0100 0100000000000000 01 6B 0100"),
        MakeSample("CString to int", std::map<CString, int, NoCase>{{"b", 1}, {"A", 2}},
                   "0100 0200000000000000 01 41 02000000 01 62 01000000"),
        MakeSample("CString to unsigned", std::map<CString, UINT>{{"k", 0xFFFFFFFF}},
                   "0100 0100000000000000 01 6B FFFFFFFF"),
        MakeSample("CString to double", std::map<CString, double>{{"k", 1.5}},
                   "0100 0100000000000000 01 6B 000000000000F83F"),
        MakeSample("CString to CString", std::map<CString, CString>{{"k", "v"}},
                   "0100 0100000000000000 01 6B 01 76"),
        MakeSample("std::string to std::string", std::map<string, string>{{"k", "v"}},
                   "0100 0100000000000000 01 6B 01 76"),
        MakeSample("std::string to vector of CString", std::map<string, std::vector<CString>>{{"k", {"v"}}},
                   "0100 0100000000000000 01 6B 0100 0100000000000000 01 76"),
        MakeSample("CString to CRect", Pictures{{"r", {1, 2, 3, -4}}},
                   "0100 0100000000000000 01 72 01000000 02000000 03000000 FCFFFFFF"),
        MakeSample("unsigned to map to CRect", std::map<UINT, Pictures>{{9, {{"r", {1, 2, 3, 4}}}}},
                   "0100 0100000000000000 09000000 0100 0100000000000000 01 72 "
                   "01000000 02000000 03000000 04000000"),
        MakeSample("TextArray", Texts({"a", ""}), "0400 0100 0200000000000000 01 61 00"),
    };
}

TEST(ArchiveContainers, HaveExactlyTheseBytes)
{
    for (const Sample& sample : Samples()) {
        SCOPED_TRACE(sample.name);
        sample.check();
    }
}

TEST(ArchiveContainers, EveryTruncationIsAnArchiveException)
{
    for (const Sample& sample : Samples())
        for (std::size_t length = 0; length < sample.bytes.size(); ++length) {
            SCOPED_TRACE(sample.name + std::string(" cut at ") + std::to_string(length));
            EXPECT_THROW(sample.load(sample.bytes.substr(0, length)), CArchiveException);
        }
}

// Nothing but the two documented exceptions may come out of damaged data.
void LoadDamaged(const std::function<void(const std::string&)>& load, const std::string& bytes)
{
    try {
        load(bytes);
    } catch (const CArchiveException&) {
    } catch (const std::length_error&) {
    }
}

void ChangeEveryByte(const std::function<void(const std::string&)>& load, const std::string& bytes)
{
    for (std::size_t at = 0; at < bytes.size(); ++at)
        for (int value = 0; value < 256; ++value) {
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(value);
            LoadDamaged(load, damaged);
        }
}

TEST(ArchiveContainers, EveryChangedByteLoadsOrIsRefused)
{
    for (const Sample& sample : Samples()) {
        SCOPED_TRACE(sample.name);
        ChangeEveryByte(sample.load, sample.bytes);
    }
}

TEST(ArchiveContainers, LegacyLayoutHasNoVersionAndFourByteCounts)
{
    LoadFrom(BytesOf("03000000 01000000 02000000 03000000 EE"), [](CArchive& archive) {
        std::vector<int> list = {9};
        SerializeData::Serialize(archive, list, true);
        EXPECT_EQ(list, (std::vector<int>{1, 2, 3}));
        EXPECT_EQ(archive.GetBytesAhead(), 1u);
    });
    LoadFrom(BytesOf("01000000 05000000 02000000 07000000 08000000"), [](CArchive& archive) {
        std::map<int, std::vector<int>> map;
        SerializeData::Serialize(archive, map, true); // the inner container is legacy as well
        EXPECT_EQ(map, (std::map<int, std::vector<int>>{{5, {7, 8}}}));
    });
    std::vector<bool> flags = {true};
    EXPECT_EQ(HexOf(StoredBy([&](CArchive& archive) { SerializeData::Serialize(archive, flags, true); })),
              "010001000000000000000100"); // storing knows the current layout only
}

TEST(ArchiveContainers, LoadedVersionWordIsIgnored)
{
    LoadFrom(BytesOf("FF7F 0100000000000000 02000000"), [](CArchive& archive) {
        std::vector<int> list;
        SerializeData::Serialize(archive, list);
        EXPECT_EQ(list, std::vector<int>{2});
    });
}

TEST(ArchiveContainers, LoopCounters)
{
    EXPECT_EQ(HexOf(StoredBy([](CArchive& archive) {
                  EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 258, true), 258u);
              })),
              "0201000000000000");
    LoadFrom(BytesOf("02010000 0301000000000000 04010000 0700 0501000000000000"), [](CArchive& archive) {
        WORD version = 99;
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 1, true), 258u);
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 1, false), 259u);
        EXPECT_EQ(SerializeData::DeserializeLoopCounter(archive, true, version), 260u);
        EXPECT_EQ(version, 0);
        EXPECT_EQ(SerializeData::DeserializeLoopCounter(archive, false, version), 261u);
        EXPECT_EQ(version, 7);
    });
}

TEST(ArchiveContainers, StringsOfTheSameCountAreOverwrittenInPlace)
{
    const std::string bytes = BytesOf("0100 0200000000000000 01 61 01 62");
    std::vector<CString> list = {"x", "y"};
    const CString* const kept = &list[0];
    LoadFrom(bytes, [&](CArchive& archive) { SerializeData::Serialize(archive, list); });
    EXPECT_EQ(list, (std::vector<CString>{"a", "b"}));
    EXPECT_EQ(&list[0], kept);
    LoadFrom(bytes.substr(0, bytes.size() - 1), [&](CArchive& archive) {
        list = {"x", "y"};
        EXPECT_THROW(SerializeData::Serialize(archive, list), CArchiveException);
        EXPECT_EQ(list, (std::vector<CString>{"a", "y"}));
        list = {"x", "y", "z"};
    });
    LoadFrom(bytes.substr(0, bytes.size() - 1), [&](CArchive& archive) {
        EXPECT_THROW(SerializeData::Serialize(archive, list), CArchiveException);
        EXPECT_EQ(list, std::vector<CString>{"a"}); // what was loaded so far
    });
}

// 18 bytes of data behind counts that no data could be behind.
TEST(ArchiveContainers, ClaimedCountsAllocateNothing)
{
    const auto refused = [](auto list, const std::string& bytes) {
        LoadFrom(bytes, [&](CArchive& archive) {
            try {
                Transfer(archive, list);
                ADD_FAILURE() << "loaded";
            } catch (const CArchiveException&) {
            } catch (const std::length_error&) {
            }
            if constexpr (requires { list.capacity(); }) {
                EXPECT_LT(list.capacity(), 65536u);
            }
        });
    };
    for (const char* count :
         {"0000000000010000", "0000000000000080", "FFFFFFFFFFFFFFFF", "FFFFFFFFFFFFFF0F"}) {
        SCOPED_TRACE(count);
        const std::string bytes =
            BytesOf(std::string("0100") + count + "01 00 01 00 01 00 01 00 01 00 01 00");
        refused(std::vector<bool>(), bytes);
        refused(std::vector<int>(), bytes);
        refused(std::vector<uint64>(), bytes);
        refused(std::vector<double>(), bytes);
        refused(std::vector<CString>(), bytes);
        refused(std::vector<std::string>(), bytes);
        refused(std::set<CString>(), bytes);
        refused(std::unordered_set<std::string>(), bytes);
        refused(std::map<int, CString>(), bytes);
        refused(std::map<CString, std::vector<CString>>(), bytes);
        refused(std::map<UINT, Pictures>(), BytesOf("0100 0100000000000000 05000000") + bytes);
        refused(std::map<int, std::vector<int>>(), BytesOf("0100 0100000000000000 05000000") + bytes);
        refused(TextArray(), BytesOf("0400") + bytes);
    }
    LoadFrom(BytesOf("0100 FFFFFFFFFFFFFFFF 00"), [](CArchive& archive) {
        std::vector<CString> list;
        EXPECT_THROW(SerializeData::Serialize(archive, list), std::length_error);
    });
}

TEST(ArchiveContainers, LargeOnesComeBackWhole)
{
    std::vector<double> numbers;
    std::vector<CString> texts;
    for (int i = 0; i < 100000; ++i) {
        numbers.push_back(i / 3.0);
        texts.emplace_back(CString('x', i % 300));
    }
    const std::string bytes = StoredBy([&](CArchive& archive) {
        SerializeData::Serialize(archive, numbers);
        SerializeData::Serialize(archive, texts);
    });
    LoadFrom(bytes, [&](CArchive& archive) {
        std::vector<double> loadedNumbers;
        std::vector<CString> loadedTexts;
        SerializeData::Serialize(archive, loadedNumbers);
        SerializeData::Serialize(archive, loadedTexts);
        EXPECT_TRUE(loadedNumbers == numbers && loadedTexts == texts);
    });
}

TEST(ArchiveContainers, UnsortedAndRepeatedKeysLoad)
{
    LoadFrom(
        BytesOf("0100 0300000000000000 02000000 01 61 01000000 01 62 02000000 01 63"), [](CArchive& archive) {
            std::map<int, CString> map = {{5, "old"}};
            SerializeData::Serialize(archive, map);
            EXPECT_EQ(map, (std::map<int, CString>{{1, "b"}, {2, "c"}})); // the last of equal keys counts
        });
}

TEST(ArchiveContainers, ProtectedKeysMatterInVersionOneOnly)
{
    const std::unordered_set<int> keys = {2};
    std::map<int, CString> map = {{1, "a"}, {2, "b"}};
    const std::string current = "0200 0200000000000000 01000000 01 61 02000000 01 62";
    EXPECT_EQ(HexOf(StoredBy([&](CArchive& archive) { SerializeData::Serialize(archive, map, keys); })),
              HexOf(BytesOf(current)));
    const std::pair<std::string, bool> rows[] = {
        {current, false},
        {"0100 0200000000000000 01000000 01 61 02000000 0000 01 62", false}, // flag 0: plain
        {"0100 0200000000000000 01000000 01 61 02000000 0100 1000 fd4fbd9aabe269f05709321db75a6855", false},
        {"0300 0200000000000000 01000000 01 61 02000000 01 62", false},
        {"02000000 01000000 01 61 02000000 01 62", true},
    };
    for (const auto& [hex, legacy] : rows) {
        SCOPED_TRACE(hex);
        LoadFrom(BytesOf(hex), [&, isLegacy = legacy](CArchive& archive) {
            std::map<int, CString> loaded;
            SerializeData::Serialize(archive, loaded, keys, isLegacy);
            EXPECT_EQ(loaded, map);
        });
    }
}

TEST(ArchiveContainers, EncryptedFormsStoreInClearAndLoadRecords)
{
    std::vector<CString> list = {"a", "b"};
    std::map<CString, int> map = {{"a", 1}};
    EXPECT_EQ(HexOf(StoredBy([&](CArchive& archive) {
                  SerializeData::SerializeEncrypted(archive, list);
                  SerializeData::SerializeEncrypted(archive, map);
              })),
              HexOf(BytesOf("0100 0200000000000000 01 61 01 62 0100 0100000000000000 01 61 01000000")));
    LoadFrom(BytesOf("0100 0200000000000000 0100 1000 5e9afbeb64916af0b250c04079ee9f2d 0200 01 64 01000000 "
                     "0100 1000 5f9d1a8d3eb884582c0708ce0ce7f9b4 05000000"),
             [&](CArchive& archive) {
                 SerializeData::SerializeEncrypted(archive, list); // any flag but 1 is a plain text
                 SerializeData::SerializeEncrypted(archive, map, true);
                 EXPECT_EQ(list, (std::vector<CString>{"c", "d"}));
                 EXPECT_EQ(map, (std::map<CString, int>{{"e", 5}}));
             });
}

struct Reachable : SerializeData {
    using SerializeData::Deserialize;
    using SerializeData::Serializestring;
};

TEST(ArchiveContainers, SingleValues)
{
    bool flag = true;
    std::string text = "ab";
    const std::string bytes = StoredBy([&](CArchive& archive) {
        SerializeData::Serialize(archive, flag);
        SerializeData::Serialize(archive, text);
        Reachable::Serializestring(archive, text);
        EXPECT_THROW(Reachable::Deserialize(archive, text), CArchiveException);
    });
    EXPECT_EQ(HexOf(bytes), HexOf(BytesOf("0100 02 6162 02 6162")));
    LoadFrom(bytes, [](CArchive& archive) {
        bool loadedFlag = false;
        std::string first, second;
        SerializeData::Serialize(archive, loadedFlag);
        SerializeData::Serialize(archive, first);
        EXPECT_THROW(Reachable::Serializestring(archive, first), CArchiveException);
        Reachable::Deserialize(archive, second);
        EXPECT_TRUE(loadedFlag && first == "ab" && second == "ab");
    });
}

std::vector<CString> markers;

TEST(TextArrayRecord, EveryVersionIsRead)
{
    struct Row {
        const char* hex;
        bool decrypt;
    };
    const Row rows[] = {
        {"0100 02000000 01 61 01 62", false},
        {"0100 02000000 01 61 01 62", true},
        {"0200 02000000 01 61 01 62", false},
        {"0200 02000000 0000 01 61 0100 1000 fd4fbd9aabe269f05709321db75a6855", true},
        {"0300 0100 0200000000000000 01 61 01 62", false},
        {"0300 0100 0200000000000000 0100 1000 ec24106160bdd9ce45acc154b8c61894 0000 01 62", true},
        {"0400 0100 0200000000000000 01 61 01 62", false},
        {"0400 0100 0200000000000000 01 61 01 62", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.hex);
        LoadFrom(BytesOf(row.hex), [&](CArchive& archive) {
            TextArray texts = Texts({"old"});
            texts.Serialize(archive, row.decrypt);
            EXPECT_TRUE(texts == Texts({"a", "b"}));
            EXPECT_EQ(archive.GetBytesAhead(), 0u);
        });
        ChangeEveryByte(
            [&](const std::string& bytes) {
                LoadFrom(bytes, [&](CArchive& archive) { TextArray().Serialize(archive, row.decrypt); });
            },
            BytesOf(row.hex));
    }
}

TEST(TextArrayRecord, UnknownVersionsChangeNothingAndAreReported)
{
    markers.clear();
    const auto before = FailureMarkers::SetSink([](const CString& line) { markers.push_back(line); });
    for (const char* hex : {"0000", "0500", "FFFF"})
        LoadFrom(BytesOf(hex), [](CArchive& archive) {
            TextArray texts = Texts({"kept"});
            texts.Serialize(archive);
            EXPECT_TRUE(texts == Texts({"kept"}));
        });
    FailureMarkers::SetSink(before);
    EXPECT_EQ(markers, std::vector<CString>(3, Marker));
}

} // namespace
