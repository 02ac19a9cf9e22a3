#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <stdexcept>
#include <type_traits>

#include "CRewindArchive.h"
#include "SerializeData.h"
#include "support/ArchiveBytes.h"

namespace {

constexpr int LengthError = -1;

// The cause of the archive exception that comes out, LengthError, or none.
int CauseOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const CArchiveException& exception) {
        EXPECT_STRNE(exception.what(), "");
        return exception.m_cause;
    } catch (const std::length_error&) {
        return LengthError;
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
    // clang-format off
    const std::pair<std::size_t, const char*> lengths[] = {
        {0, "00"}, {1, "01"}, {30, "1E"}, {31, "1F"}, {254, "FE"}, {255, "FF FF00"}, {256, "FF 0001"}, {0xFFFD, "FF FDFF"},
        {0xFFFE, "FF FFFF FEFF0000"}, {0x10000, "FF FFFF 00000100"}};
    const std::pair<uint64, const char*> counts[] = {
        {0xFFFE, "FEFF"}, {0xFFFF, "FFFF FFFF0000"}, {0xFFFFFFFE, "FFFF FEFFFFFF"},
        {0xFFFFFFFF, "FFFF FFFFFFFF FFFFFFFF00000000"}, {~uint64{0}, "FFFF FFFFFFFF FFFFFFFFFFFFFFFF"}};
    // clang-format on
    for (const auto& [length, prefix] : lengths) {
        SCOPED_TRACE(length);
        std::string text(length, 'x');
        for (std::size_t i = 0; i < length; i += 7)
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
    for (const auto& [count, hex] : counts) {
        const std::string bytes = StoredBy([n = count](CArchive& archive) { archive.WriteCount(n); });
        EXPECT_EQ(HexOf(bytes), HexOf(BytesOf(hex)));
        LoadFrom(bytes, [n = count](CArchive& archive) { EXPECT_EQ(archive.ReadCount(), n); });
    }
}

TEST(Archive, ClaimedTextLengthsAreNotBelieved)
{
    constexpr int End = CArchiveException::endOfFile, Bad = CArchiveException::genericException;
    // clang-format off
    const std::pair<const char*, int> rows[] = {
        {"05 61626364", End}, {"FF 0040 61", End}, {"FF FFFF FFFFFF7E 61", End}, {"FF FEFF FF FFFF 00000070 6100", End},
        {"FF FEFF FF FEFF 01 4100", Bad}, // the mark stands once
        {"FF FFFF FEFFFFFF", Bad}, {"FF FFFF FFFFFFFF 0000000000000001", Bad},
        {"FF FFFF FFFFFFFF FFFFFFFFFFFFFFFF", Bad}, {"FF FEFF FF FFFF 000000F0", Bad}};
    // clang-format on
    for (const auto& [hex, cause] : rows) {
        CString text = "kept";
        EXPECT_EQ(CauseOf([&, h = hex] { LoadFrom(BytesOf(h), [&](CArchive& a) { a >> text; }); }), cause)
            << hex;
        EXPECT_EQ(text, "kept");
    }
}

// The same values through buffers of every kind, so that they straddle the ends of the buffer everywhere.
TEST(Archive, BuffersOfAnySizeGiveTheSameBytes)
{
    std::vector<double> numbers, loadedNumbers;
    std::map<CString, std::vector<CString>> texts, loadedTexts;
    for (int i = 0; i < 20000; ++i) {
        numbers.push_back(i / 3.0);
        texts[CString('x', i % 7)].emplace_back(static_cast<char>(i), i % 300);
    }
    const auto store = [&](CArchive& archive) {
        SerializeData::Serialize(archive, numbers);
        SerializeData::Serialize(archive, texts);
    };
    const std::string bytes = StoredBy(store, 1 << 24);
    for (const int bufferSize : {-1, 0, 1, 128, 129, 131, 4096, 1 << 24}) {
        EXPECT_TRUE(StoredBy(store, bufferSize) == bytes);
        const auto load = [&](CArchive& archive) {
            SerializeData::Serialize(archive, loadedNumbers);
            SerializeData::Serialize(archive, loadedTexts);
            EXPECT_TRUE(archive.GetBytesAhead() == 0 && archive.IsBufferEmpty());
        };
        LoadFrom(bytes, load, bufferSize);
        EXPECT_TRUE(loadedNumbers == numbers && loadedTexts == texts);
    }
}

TEST(Archive, WrongDirectionsAndClosedArchivesAreRefused)
{
    using Causes = std::vector<int>;
    CMemFile file;
    CRewindArchive storing(&file, CArchive::store), loading(&file, CArchive::load);
    int number = 0;
    CString text;
    std::string standard;
    const auto loads = [&](CRewindArchive& archive) {
        return Causes{CauseOf([&] { archive >> number; }), CauseOf([&] { archive >> text; }),
                      CauseOf([&] { archive >> standard; }), CauseOf([&] { archive.Read(&number, 0); }),
                      CauseOf([&] { archive.DoRewindWORD(); })};
    };
    const auto stores = [&](CRewindArchive& archive) {
        return Causes{CauseOf([&] { archive << number; }), CauseOf([&] { archive << text; }),
                      CauseOf([&] { archive << standard; }), CauseOf([&] { archive.Write(&number, 0); })};
    };
    EXPECT_EQ(loads(storing), Causes(5, CArchiveException::writeOnly));
    EXPECT_EQ(stores(loading), Causes(4, CArchiveException::readOnly));
    storing.Close();
    loading.Abort();
    EXPECT_EQ(stores(storing), Causes(4, CArchiveException::genericException));
    EXPECT_EQ(loads(loading), Causes(5, CArchiveException::genericException));
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
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
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

} // namespace
