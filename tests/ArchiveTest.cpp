#include <gtest/gtest.h>

#include <functional>
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
static_assert(Storable<long> == std::is_same_v<long, LONG>); // whose width is the same everywhere
static_assert(Storable<unsigned long> == std::is_same_v<unsigned long, DWORD>);

TEST(Archive, PrefixesChangeAtTheirLimits)
{
    const std::pair<std::size_t, const char*> lengths[] = {{0, "00"},
                                                           {1, "01"},
                                                           {30, "1E"},
                                                           {31, "1F"},
                                                           {254, "FE"},
                                                           {255, "FF FF00"},
                                                           {256, "FF 0001"},
                                                           {0xFFFD, "FF FDFF"},
                                                           {0xFFFE, "FF FFFF FEFF0000"},
                                                           {0x10000, "FF FFFF 00000100"}};
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
            EXPECT_TRUE(loaded.View() == text && standard == text);
            EXPECT_EQ(archive.GetBytesAhead(), 0u);
        });
    }
    CString shortened('x', 100),
        copy = shortened; // a short text that lies where long ones do, in little room
    shortened.Truncate(2);
    copy = shortened;
    copy.SetAt(0, 'y');
    EXPECT_EQ(StoredBy([&](CArchive& archive) { archive << shortened << copy; }), "\2xx\2yx");
    const std::pair<uint64, const char*> counts[] = {{0xFFFE, "FEFF"},
                                                     {0xFFFF, "FFFF FFFF0000"},
                                                     {0xFFFFFFFE, "FFFF FEFFFFFF"},
                                                     {0xFFFFFFFF, "FFFF FFFFFFFF FFFFFFFF00000000"},
                                                     {~uint64{0}, "FFFF FFFFFFFF FFFFFFFFFFFFFFFF"}};
    for (const auto& [count, hex] : counts) {
        const std::string bytes = StoredBy([n = count](CArchive& archive) { archive.WriteCount(n); });
        EXPECT_EQ(HexOf(bytes), HexOf(BytesOf(hex)));
        LoadFrom(bytes, [n = count](CArchive& archive) { EXPECT_EQ(archive.ReadCount(), n); });
    }
}

TEST(Archive, ClaimedTextLengthsAreNotBelieved)
{
    using Exception = CArchiveException;
    const std::pair<const char*, int> rows[] = {
        {"05 61626364", Exception::endOfFile},
        {"FF 0040 61", Exception::endOfFile},
        {"FF FFFF FFFFFF7E 61", Exception::endOfFile},
        {"FF FEFF FF FFFF 00000070 6100", Exception::endOfFile},
        {"FF FEFF FF FEFF 01 4100", Exception::genericException}, // the mark stands once
        {"FF FFFF FEFFFFFF", LengthError},
        {"FF FFFF FFFFFFFF 0000000000000001", LengthError},
        {"FF FFFF FFFFFFFF FFFFFFFFFFFFFFFF", LengthError},
        {"FF FEFF FF FFFF 000000F0", LengthError}};
    for (const auto& [hex, cause] : rows) {
        SCOPED_TRACE(hex);
        CString text = "kept";
        std::string standard = "kept";
        EXPECT_EQ(CauseOf([&, h = hex] { LoadFrom(BytesOf(h), [&](CArchive& a) { a >> text; }); }), cause);
        EXPECT_EQ(CauseOf([&, h = hex] { LoadFrom(BytesOf(h), [&](CArchive& a) { a >> standard; }); }),
                  cause);
        EXPECT_TRUE(text == "kept" && standard == "kept");
    }
}

// The same values through buffers of every kind, so that they straddle the ends of the buffer everywhere.
TEST(Archive, BuffersOfAnySizeGiveTheSameBytes)
{
    struct {
        std::vector<double> numbers;
        std::map<CString, std::vector<CString>> texts;
        void Serialize(CArchive& archive)
        {
            SerializeData::Serialize(archive, numbers);
            SerializeData::Serialize(archive, texts);
        }
    } all, loaded;
    for (int i = 0; i < 20000; ++i) {
        all.numbers.push_back(i / 3.0);
        all.texts[CString('x', i % 7)].emplace_back(static_cast<char>(i), i % 300);
    }
    const auto store = [&](CArchive& archive) { all.Serialize(archive); };
    const std::string bytes = StoredBy(store, 1 << 24);
    for (const int bufferSize : {-1, 0, 1, 128, 129, 131, 4096, 1 << 24}) {
        EXPECT_TRUE(StoredBy(store, bufferSize) == bytes);
        const auto load = [&](CArchive& archive) {
            BYTE more = 0;
            loaded.Serialize(archive);
            EXPECT_EQ(archive.Read(&more, 1), 0u);
            EXPECT_TRUE(archive.IsBufferEmpty());
        };
        LoadFrom(bytes, load, bufferSize);
        EXPECT_TRUE(loaded.numbers == all.numbers && loaded.texts == all.texts);
        loaded = {};
    }
}

TEST(Archive, WrongDirectionsAndClosedArchivesAreRefused)
{
    CMemFile file;
    CArchive storing(&file, CArchive::store), loading(&file, CArchive::load);
    int number = 0;
    CString text;
    std::string standard;
    for (const std::function<void()>& action : {std::function<void()>([&] { storing >> number; }),
                                                {[&] { storing >> text; }},
                                                {[&] { storing >> standard; }},
                                                {[&] { storing.Read(&number, 0); }}})
        EXPECT_EQ(CauseOf(action), CArchiveException::writeOnly);
    for (const std::function<void()>& action : {std::function<void()>([&] { loading << number; }),
                                                {[&] { loading << text; }},
                                                {[&] { loading << standard; }},
                                                {[&] { loading.Write(&number, 0); }}})
        EXPECT_EQ(CauseOf(action), CArchiveException::readOnly);
    storing.Close();
    loading.Abort();
    EXPECT_EQ(CauseOf([&] { storing << number; }), CArchiveException::genericException);
    EXPECT_EQ(CauseOf([&] { storing << text; }), CArchiveException::genericException);
    EXPECT_EQ(CauseOf([&] { loading >> text; }), CArchiveException::genericException);
    storing.Close();
    storing.Flush();
    EXPECT_EQ(file.GetLength(), 0u);
}

TEST(Archive, TheDestructorWritesUnlessToldNotTo)
{
    for (const UINT more : {0u, UINT{CArchive::bNoFlushOnDelete}}) {
        CMemFile file;
        CArchive(&file, CArchive::store | more) << 1;
        EXPECT_EQ(file.GetLength(), more == 0 ? 4u : 0u);
    }
    BYTE full[2];
    CMemFile tooSmall(full, sizeof full);
    CArchive archive(&tooSmall, CArchive::store);
    archive << 1;
    EXPECT_THROW(archive.Flush(), CFileException);
    archive << 2; // the destructor must not throw
}

TEST(Archive, FlushingALoadingArchiveGivesBackWhatWasFetchedTooMuch)
{
    std::string bytes = BytesOf("01000000 02000000 03000000");
    CMemFile file(reinterpret_cast<BYTE*>(bytes.data()), bytes.size());
    int number = 0;
    CArchive(&file, CArchive::load) >> number;
    EXPECT_EQ(file.GetPosition(), 4u);
    CArchive second(&file, CArchive::load);
    for (const unsigned expected : {2u, 3u}) {
        second >> number;
        second.Flush();
        EXPECT_EQ(number, static_cast<int>(expected));
        EXPECT_EQ(file.GetPosition(), expected * 4);
    }
}

// Steps back within the buffer, across its beginning, and into a block that passed it.
TEST(RewindArchive, ReadsAgainWhatWasJustRead)
{
    for (const std::size_t filler : {0u, 100u, 123u, 124u, 125u, 126u, 127u, 128u, 1000u}) {
        SCOPED_TRACE(filler);
        std::string bytes;
        for (std::size_t i = 0; i < filler; ++i)
            bytes += static_cast<char>(i % 251);
        bytes += BytesOf("0403 0201");
        CMemFile file(reinterpret_cast<BYTE*>(bytes.data()), bytes.size());
        CRewindArchive archive(&file, CArchive::load, CArchive::MinBuffer);
        std::string skipped(filler, '\0');
        archive.EnsureRead(skipped.data(), filler);
        WORD word = 0;
        int number = 0;
        archive >> word;
        archive.DoRewindWORD();
        archive >> number;
        EXPECT_EQ(number, 0x01020304);
        archive.DoRewindInt();
        if (filler > 0) {
            archive.DoRewindWORD();
            archive >> word;
            EXPECT_EQ(word, (filler - 2) % 251 | (filler - 1) % 251 << 8); // the end of the filler
        }
        archive >> word;
        EXPECT_EQ(word, 0x0304);
    }
}

TEST(RewindArchive, StopsWhereTheArchiveBegan)
{
    std::string bytes(1000, '\0'), loaded(900, '\0');
    CMemFile file(reinterpret_cast<BYTE*>(bytes.data()), bytes.size());
    file.Seek(100, CFile::begin);
    CRewindArchive archive(&file, CArchive::load, CArchive::MinBuffer);
    EXPECT_EQ(CauseOf([&] { archive.DoRewindWORD(); }), CArchiveException::badIndex);
    archive.EnsureRead(loaded.data(), loaded.size());
    for (int steps = 0; steps < 224; ++steps)
        archive.DoRewindInt();
    archive.DoRewindWORD();
    EXPECT_EQ(CauseOf([&] { archive.DoRewindInt(); }), CArchiveException::badIndex); // and nothing moves
    archive.DoRewindWORD();
    EXPECT_EQ(archive.GetBytesAhead(), 900u);
    CRewindArchive storing(&file, CArchive::store);
    EXPECT_EQ(CauseOf([&] { storing.DoRewindWORD(); }), CArchiveException::writeOnly);
}

} // namespace
