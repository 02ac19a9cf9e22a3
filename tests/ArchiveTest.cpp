// The archive. What is stored, the golden files show.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <type_traits>

#include "CRewindArchive.h"
#include "DateEntry.h"
#include "ExternalAppRun.h"
#include "MRUApplications.h"
#include "MRUArray.h"
#include "MRUArrayByTime.h"
#include "SerializeData.h"
#include "support/ArchiveBytes.h"
#include "support/Cases.h"
#include "support/MarkerLines.h"
#include "support/RandomSource.h"
#include "support/TextModels.h"

namespace {

// The cause of the archive exception that comes out, or none.
int CauseOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const CArchiveException& exception) {
        EXPECT_STRNE(exception.what(), "");
        return exception.m_cause;
    }
    return CArchiveException::none;
}

TEST(Archive, NumbersAreLittleEndianAndUnpadded)
{
    const auto all = std::make_tuple(BYTE{1}, WORD{0x0203}, short{-2}, 'A', -2, DWORD{0x04050607}, int64{-2},
                                     uint64{0x08090A0B0C0D0E0F}, 1.5f, -2.25, true, false);
    const std::string bytes = StoredBy(
        [&](CArchive& archive) { std::apply([&](auto... value) { (archive << ... << value); }, all); });
    EXPECT_EQ(HexOf(bytes),
              HexOf(BytesOf("01 0302 FEFF 41 FEFFFFFF 07060504 FEFFFFFFFFFFFFFF 0F0E0D0C0B0A0908 "
                            "0000C03F 00000000000002C0 0100 0000")));
    LoadFrom(bytes, [&](CArchive& archive) {
        std::remove_const_t<decltype(all)> loaded;
        std::apply([&](auto&... value) { (archive >> ... >> value); }, loaded);
        EXPECT_TRUE(loaded == all);
        EXPECT_EQ(CauseOf([&] { archive >> std::get<0>(loaded); }), CArchiveException::endOfFile);
    });
}

template <class Value>
concept Storable = requires(CArchive& archive, Value value)
{
    archive << value;
};
static_assert(Storable<int> && Storable<int64> && Storable<bool> && Storable<CString>);
static_assert(!Storable<wchar_t> && !Storable<long double>);
static_assert(Storable<std::int64_t> && Storable<std::uint64_t> && Storable<LONG> && Storable<DWORD>);

TEST(Archive, PrefixesChangeAtTheirLimits)
{
    for (const auto& [length, prefix] : Cases<2>("text prefixes")) {
        SCOPED_TRACE(length);
        std::string text(std::stoul(length), 'x');
        for (std::size_t i = 0; i < text.size(); i += 7)
            text[i] = static_cast<char>(i); // NULs and bytes from 128 on as well
        const std::string expected = BytesOf(prefix) + text;
        EXPECT_TRUE(StoredBy([&](CArchive& archive) { archive << CString(text) << text; }) ==
                    expected + expected);
        LoadFrom(expected + expected, [&](CArchive& archive) {
            CString loaded = "old";
            std::string standard = "old";
            archive >> loaded >> standard;
            EXPECT_TRUE(loaded.View() == text && standard == text && archive.GetBytesAhead() == 0);
        });
    }
    CString shortened('x', 100); // a short text that lies where long ones do, in little room
    shortened.Truncate(2);
    EXPECT_EQ(StoredBy([&](CArchive& archive) { archive << shortened; }), "\2xx");
    for (const auto& [number, hex] : Cases<2>("stored counts")) {
        const uint64 count = std::stoull(number);
        EXPECT_EQ(HexOf(StoredBy([&](CArchive& archive) { archive.WriteCount(count); })), hex);
        LoadFrom(BytesOf(hex), [&](CArchive& archive) { EXPECT_EQ(archive.ReadCount(), count); });
    }
}

TEST(Archive, ClaimedTextLengthsAreNotBelieved)
{
    for (const auto& [hex, cause] : Cases<2>("broken texts")) {
        CString text = "kept";
        const auto load = [&, &bytes = hex] { LoadFrom(BytesOf(bytes), [&](CArchive& a) { a >> text; }); };
        EXPECT_EQ(CauseOf(load),
                  cause == "end" ? CArchiveException::endOfFile : CArchiveException::genericException)
            << hex;
        EXPECT_EQ(text, "kept");
    }
}

// The same values through buffers of every kind, so that they straddle the ends of the buffer everywhere.
TEST(Archive, BuffersOfAnySizeGiveTheSameBytes)
{
    std::map<CString, std::vector<CString>> texts, loaded;
    for (int i = 0; i < 20000; ++i)
        texts[CString('x', i % 7)].emplace_back(static_cast<char>(i), i % 300);
    const auto store = [&](CArchive& archive) { SerializeData::Serialize(archive, texts); };
    const std::string bytes = StoredBy(store, 1 << 24);
    for (const int bufferSize : {-1, 0, 1, 128, 129, 131, 4096, 1 << 24}) {
        EXPECT_TRUE(StoredBy(store, bufferSize) == bytes);
        const auto load = [&](CArchive& archive) {
            SerializeData::Serialize(archive, loaded);
            EXPECT_TRUE(archive.GetBytesAhead() == 0 && archive.IsBufferEmpty());
        };
        LoadFrom(bytes, load, bufferSize);
        EXPECT_TRUE(loaded == texts);
    }
}

TEST(Archive, WrongDirectionsAndClosedArchivesAreRefused)
{
    CMemFile file;
    CRewindArchive storing(&file, CArchive::store), loading(&file, CArchive::load);
    int number = 0;
    CString text;
    std::string standard;
    const auto expectLoading = [&](CRewindArchive& archive, int cause) {
        EXPECT_EQ(CauseOf([&] { archive >> number; }), cause);
        EXPECT_EQ(CauseOf([&] { archive >> text; }), cause);
        EXPECT_EQ(CauseOf([&] { archive >> standard; }), cause);
        EXPECT_EQ(CauseOf([&] { archive.Read(&number, 0); }), cause);
        EXPECT_EQ(CauseOf([&] { archive.DoRewindWORD(); }), cause);
    };
    const auto expectStoring = [&](CRewindArchive& archive, int cause) {
        EXPECT_EQ(CauseOf([&] { archive << number; }), cause);
        EXPECT_EQ(CauseOf([&] { archive << text; }), cause);
        EXPECT_EQ(CauseOf([&] { archive << standard; }), cause);
        EXPECT_EQ(CauseOf([&] { archive.Write(&number, 0); }), cause);
    };
    expectLoading(storing, CArchiveException::writeOnly);
    expectStoring(loading, CArchiveException::readOnly);
    storing.Close();
    loading.Abort();
    expectStoring(storing, CArchiveException::genericException);
    expectLoading(loading, CArchiveException::genericException);
    storing.Close();
    storing.Flush();
    EXPECT_EQ(file.GetLength(), 0u);
}

TEST(Archive, TheDestructorWritesUnlessToldNotTo)
{
    int number = 0;
    for (const UINT more : {0u, UINT{CArchive::bNoFlushOnDelete}}) {
        CMemFile file;
        CArchive(&file, CArchive::store | more) << 1 << 2;
        EXPECT_EQ(file.GetLength(), more == 0 ? 8u : 0u);
        file.SeekToBegin();
        if (more == 0)
            CArchive(&file, CArchive::load) >> number; // gives back the rest
        EXPECT_EQ(file.GetPosition(), more == 0 ? 4u : 0u);
    }
    BYTE full[2];
    CMemFile tooSmall(full, sizeof full);
    CArchive archive(&tooSmall, CArchive::store);
    archive << 1;
    EXPECT_THROW(archive.Flush(), CFileException);
    archive << 2; // the destructor must not throw
}

// Random reads, steps back and flushes: within the buffer, across its beginning, into blocks that passed it,
// and to where the archive began.
TEST(RewindArchive, StandsWhereASlowModelStands)
{
    constexpr std::size_t Begin = 100, End = 3000;
    RandomSource random;
    std::string bytes(End, '\0'), loaded(End, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    for (int run = 0; run < 200; ++run) {
        CMemFile file(reinterpret_cast<BYTE*>(bytes.data()), bytes.size());
        file.Seek(Begin, CFile::begin);
        CRewindArchive archive(&file, CArchive::load, run % 2 == 0 ? CArchive::MinBuffer : 1000);
        std::size_t position = Begin;
        for (int step = 0; step < 200; ++step) {
            const bool isWord = random() % 2 == 0;
            const std::size_t size = isWord ? sizeof(WORD) : sizeof(int);
            if (random() % 2 == 0) {
                const std::size_t wanted = random() % 3 == 0 ? random() % 300 : size;
                const std::size_t got = archive.Read(loaded.data(), wanted);
                ASSERT_EQ(got, std::min(wanted, End - position));
                ASSERT_EQ(loaded.substr(0, got), bytes.substr(position, got));
                position += got;
            } else {
                const int cause = CauseOf([&] { isWord ? archive.DoRewindWORD() : archive.DoRewindInt(); });
                ASSERT_EQ(cause, position - Begin < size ? CArchiveException::badIndex : 0);
                position -= cause == 0 ? size : 0;
            }
            ASSERT_EQ(archive.GetBytesAhead(), End - position);
            if (random() % 16 != 0)
                continue;
            archive.Flush();
            ASSERT_EQ(file.GetPosition(), position);
        }
    }
}

// ---- how containers and records treat the value that was there before -----------------------------------

TEST(ArchiveContainers, StringsOfTheSameCountAreOverwrittenInPlace)
{
    const std::string bytes = BytesOf("0100 0200000000000000 01 61 01 62");
    const auto load = [&](std::size_t length, Texts list, const Texts& expected) {
        const bool isSameCount = list.size() == 2;
        const CString* const place = list.data();
        const auto serialize = [&](CArchive& archive) { SerializeData::Serialize(archive, list); };
        if (length == bytes.size())
            LoadFrom(bytes, serialize);
        else
            EXPECT_THROW(LoadFrom(bytes.substr(0, length), serialize), CArchiveException);
        EXPECT_EQ(list, expected);
        EXPECT_TRUE(list.data() == place || !isSameCount);
    };
    load(bytes.size(), {"x", "y"}, {"a", "b"});
    load(bytes.size(), {"x", "y", "z"}, {"a", "b"});
    load(bytes.size() - 1, {"x", "y"}, {"a", "y"}); // what was loaded so far
    load(bytes.size() - 1, {"x", "y", "z"}, {"a"});
    load(sizeof(WORD) + 7, {"x", "y"}, {"x", "y"}); // the count breaks off
}

struct Reachable : SerializeData {
    using SerializeData::Deserialize;
    using SerializeData::Serializestring;
};

TEST(ArchiveContainers, CountersAndOperationsOfOneDirection)
{
    std::string text = "ab";
    WORD version = 99;
    const std::string bytes = StoredBy([&](CArchive& archive) {
        Reachable::Serializestring(archive, text);
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 258, true), 258u);
        EXPECT_EQ(CauseOf([&] { Reachable::Deserialize(archive, text); }),
                  CArchiveException::genericException);
        for (const bool isLegacy : {false, true})
            EXPECT_THROW(SerializeData::DeserializeLoopCounter(archive, isLegacy, version),
                         CArchiveException);
    });
    EXPECT_EQ(HexOf(bytes), "0261620201000000000000");
    LoadFrom(bytes + BytesOf("03010000 04010000 0700 0501000000000000"), [&](CArchive& archive) {
        EXPECT_EQ(CauseOf([&] { Reachable::Serializestring(archive, text); }),
                  CArchiveException::genericException);
        Reachable::Deserialize(archive, text = "");
        EXPECT_EQ(text, "ab");
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 1), 258u);
        EXPECT_EQ(SerializeData::SerializeLoopCounter(archive, 1, true), 259u);
        EXPECT_TRUE(SerializeData::DeserializeLoopCounter(archive, true, version) == 260 && version == 0);
        EXPECT_TRUE(SerializeData::DeserializeLoopCounter(archive, false, version) == 261 && version == 7);
    });
}

// Stored again after loading a record of an unknown version: answers whether that raised an exception.
template <class Value>
bool IsRefused(Value& value, const std::string& version)
{
    const std::string before = StoredBytesOf(value);
    bool isRefused = false;
    try {
        Load(value, BytesOf(version));
    } catch (const CArchiveException& exception) {
        isRefused = exception.m_cause == CArchiveException::badSchema;
    }
    EXPECT_EQ(HexOf(StoredBytesOf(value)), HexOf(before)) << version;
    return isRefused;
}

TEST(ArchiveRecords, UnknownVersionsChangeNothing)
{
    const MarkerLines markers;
    TextArray texts = ListOf("kept");
    DateTime date(1900, 5, 6, 7, 8, 9);
    DateEntry rule;
    rule.SetDay("kept", 3, 4);
    ExternalAppRun app;
    app.SetArgs("kept");
    MRUArray lists;
    lists.Add("kept");
    MRUArrayByTime times;
    times.Add("kept", 1);
    MRUApplications applications;
    applications.AddEntry(KVT01_TEST_DATA "/golden/manifest.tsv");
    for (const char* version : {"0000", "0500", "FFFF"}) {
        EXPECT_FALSE(IsRefused(texts, version) || IsRefused(date, version) || IsRefused(rule, version));
        EXPECT_TRUE(IsRefused(app, version) && IsRefused(lists, version) && IsRefused(times, version) &&
                    IsRefused(applications, version));
    }
    EXPECT_EQ(MarkerLines::Take(), Texts(3, "{B57EE119-2C25-4A8C-8506-45F22B9B02D5}"));
}

TEST(ArchiveRecords, DatesStayWithinBoundsWhateverTheyHold)
{
    DateTime wild;
    Load(wild, BytesOf("0300 FFFFFF7F 00000080"));
    DateTime moved = wild;
    EXPECT_FALSE(wild.IsValidDate() || wild.IsValidTime() || wild.IsYesterday() || wild.IsTomorrow());
    EXPECT_EQ(wild.GetYear() + wild.GetMonth() + wild.GetDay(), 0);
    EXPECT_TRUE(wild.GetHour() == -596523 && wild.GetDayOfWeek() == 6);
    moved.AddSeconds(1);
    moved.AddDays(1);
    moved.AddMonths(1);
    EXPECT_EQ(moved, wild);
}

} // namespace
