#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <random>
#include <stdexcept>

#include "CRewindArchive.h"
#include "support/ArchiveBytes.h"

namespace {

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
    const std::string bytes = StoredBy([](CArchive& archive) {
        archive << BYTE{1} << WORD{0x0203} << short{-2} << 'A' << -2 << DWORD{0x04050607} << int64{-2};
        archive << uint64{0x08090A0B0C0D0E0F} << 1.5f << -2.25 << true << false;
    });
    EXPECT_EQ(HexOf(bytes),
              HexOf(BytesOf("01 0302 FEFF 41 FEFFFFFF 07060504 FEFFFFFFFFFFFFFF 0F0E0D0C0B0A0908 "
                            "0000C03F 00000000000002C0 0100 0000")));
    LoadFrom(bytes, [](CArchive& archive) {
        BYTE byte = 0;
        WORD word = 0;
        short small = 0;
        char character = 0;
        int number = 0;
        DWORD dword = 0;
        int64 large = 0;
        uint64 unsignedLarge = 0;
        float single = 0;
        double real = 0;
        bool yes = false, no = true;
        archive >> byte >> word >> small >> character >> number >> dword >> large >> unsignedLarge >>
            single >> real >> yes >> no;
        EXPECT_TRUE(byte == 1 && word == 0x0203 && small == -2 && character == 'A' && number == -2);
        EXPECT_TRUE(dword == 0x04050607 && large == -2 && unsignedLarge == 0x08090A0B0C0D0E0F);
        EXPECT_TRUE(single == 1.5f && real == -2.25 && yes && !no);
        EXPECT_EQ(CauseOf([&] { archive >> byte; }), CArchiveException::endOfFile);
    });
}

TEST(Archive, BoolsAreTrueForTheWordOneOnly)
{
    for (const auto& [hex, expected] :
         {std::pair{"0000", false}, {"0100", true}, {"0200", false}, {"0101", false}})
        LoadFrom(BytesOf(hex), [&, wanted = expected](CArchive& archive) {
            bool value = !wanted;
            archive >> value;
            EXPECT_EQ(value, wanted);
        });
}

TEST(Archive, TypesOfPlatformWidthAreRefusedByTheCompiler)
{
    constexpr auto canStore = []<class T>(T value) {
        return requires(CArchive & archive)
        {
            archive << value;
        };
    };
    EXPECT_TRUE(canStore(1) && canStore(int64{1}) && canStore(true) && canStore(CString()));
    EXPECT_FALSE(canStore(0L) || canStore(0UL) || canStore(L'a') || canStore(1.0L));
}

TEST(Archive, TextPrefixesChangeAtTheirLimits)
{
    const std::pair<std::size_t, const char*> rows[] = {{0, "00"},
                                                        {1, "01"},
                                                        {254, "FE"},
                                                        {255, "FF FF00"},
                                                        {256, "FF 0001"},
                                                        {0xFFFD, "FF FDFF"},
                                                        {0xFFFE, "FF FFFF FEFF0000"},
                                                        {0xFFFF, "FF FFFF FFFF0000"},
                                                        {0x10000, "FF FFFF 00000100"},
                                                        {1000000, "FF FFFF 40420F00"}};
    for (const auto& [length, prefix] : rows) {
        SCOPED_TRACE(length);
        std::string text(length, 'x');
        for (std::size_t i = 0; i < length; i += 7)
            text[i] = static_cast<char>(i); // NULs and bytes from 128 on as well
        const std::string expected = BytesOf(prefix) + text;
        EXPECT_TRUE(StoredBy([&](CArchive& archive) { archive << CString(text); }) == expected);
        EXPECT_TRUE(StoredBy([&](CArchive& archive) { archive << text; }) == expected);
        LoadFrom(expected + expected, [&](CArchive& archive) {
            CString loaded = "old";
            std::string standard = "old";
            archive >> loaded >> standard;
            EXPECT_TRUE(loaded.View() == text && standard == text);
            EXPECT_EQ(archive.GetBytesAhead(), 0u);
        });
    }
}

TEST(Archive, TextsStoredAsUtf16LoadAsWindows1252)
{
    std::string many = "FF FEFF FF 5802"; // 600 units
    for (int i = 0; i < 300; ++i)
        many += "5A00 1222";
    std::string manyExpected;
    for (int i = 0; i < 300; ++i)
        manyExpected += "Z-";
    const std::pair<std::string, std::string> rows[] = {
        {"FF FEFF 00", ""},
        {many, manyExpected},
        {"FF FEFF 03 4100 E900 AC20", "A\xE9\x80"},
        {"FF FEFF FF 0300 5220 1222 0001",
         "?-A"},                        // a long prefix for a short text; no such character, lookalikes
        {"FF FEFF 02 3DD8 00DE", "??"}, // a surrogate pair is two units
        {"FF FEFF 05 8100 8000 7801 FF00 FFFF",
         "\x81?\x9F\xFF?"}, // undefined byte kept, control without place
        {"FF FEFF FF FFFF 02000000 4100 4200", "AB"},
    };
    for (const auto& [hex, expected] : rows) {
        SCOPED_TRACE(hex);
        LoadFrom(BytesOf(hex), [wanted = expected](CArchive& archive) {
            CString text = "old";
            archive >> text;
            EXPECT_EQ(HexOf(text.GetString()), HexOf(wanted));
        });
    }
    EXPECT_EQ(CauseOf([] {
                  LoadFrom(BytesOf("FF FEFF FF FEFF 01 4100"), [](CArchive& archive) {
                      CString text;
                      archive >> text;
                  });
              }),
              CArchiveException::genericException);
}

TEST(Archive, ClaimedTextLengthsAreNotBelieved)
{
    for (const char* hex :
         {"05 61626364", "FF 0040 61", "FF FFFF FFFFFF7E 61", "FF FEFF FF FFFF 00000070 6100"}) {
        SCOPED_TRACE(hex);
        EXPECT_EQ(CauseOf([&] {
                      LoadFrom(BytesOf(hex), [](CArchive& archive) {
                          CString text = "kept";
                          try {
                              archive >> text;
                          } catch (...) {
                              EXPECT_EQ(text, "kept");
                              throw;
                          }
                      });
                  }),
                  CArchiveException::endOfFile);
    }
    for (const char* hex : {"FF FFFF FEFFFFFF", "FF FFFF FFFFFFFF 0000000000000001",
                            "FF FFFF FFFFFFFF FFFFFFFFFFFFFFFF", "FF FEFF FF FFFF 000000F0"}) {
        SCOPED_TRACE(hex);
        LoadFrom(BytesOf(hex), [](CArchive& archive) {
            CString text;
            std::string standard;
            EXPECT_THROW(archive >> text, std::length_error);
        });
    }
}

TEST(Archive, ByteArrayCountsChangeAtTheirLimits)
{
    const std::pair<uint64, const char*> rows[] = {{0, "0000"},
                                                   {0xFFFE, "FEFF"},
                                                   {0xFFFF, "FFFF FFFF0000"},
                                                   {0xFFFFFFFE, "FFFF FEFFFFFF"},
                                                   {0xFFFFFFFF, "FFFF FFFFFFFF FFFFFFFF00000000"},
                                                   {~uint64{0}, "FFFF FFFFFFFF FFFFFFFFFFFFFFFF"}};
    for (const auto& [count, hex] : rows) {
        const std::string bytes = StoredBy([n = count](CArchive& archive) { archive.WriteCount(n); });
        EXPECT_EQ(HexOf(bytes), HexOf(BytesOf(hex)));
        LoadFrom(bytes, [n = count](CArchive& archive) { EXPECT_EQ(archive.ReadCount(), n); });
    }
}

// The same random values through buffers of every kind, so that they straddle the ends of the buffer
// everywhere.
TEST(Archive, BuffersOfAnySizeGiveTheSameBytes)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    for (const int bufferSize : {-1, 0, 1, 128, 129, 131, 4096}) {
        std::mt19937 random(seed);
        std::vector<std::string> pieces;
        std::string expected;
        for (int i = 0; i < 300; ++i) {
            pieces.emplace_back(random() % (i % 50 == 0 ? 9000 : 200), static_cast<char>(random()));
            expected += pieces.back();
        }
        const auto storeAll = [&](CArchive& archive) {
            for (const std::string& piece : pieces) {
                archive << static_cast<int>(piece.size());
                archive.Write(piece.data(), piece.size());
                archive << piece;
            }
        };
        const std::string bytes = StoredBy(storeAll, bufferSize);
        EXPECT_TRUE(bytes == StoredBy(storeAll, 1 << 20));
        LoadFrom(
            bytes,
            [&](CArchive& archive) {
                for (const std::string& piece : pieces) {
                    int size = 0;
                    archive >> size;
                    std::string raw(piece.size(), '\0'), text;
                    ASSERT_EQ(static_cast<std::size_t>(size), piece.size());
                    archive.EnsureRead(raw.data(), raw.size());
                    archive >> text;
                    ASSERT_TRUE(raw == piece && text == piece);
                }
                BYTE more = 0;
                EXPECT_EQ(archive.Read(&more, 1), 0u);
                EXPECT_TRUE(archive.IsBufferEmpty());
            },
            bufferSize);
    }
}

TEST(Archive, WrongDirectionsAndClosedArchivesAreRefused)
{
    CMemFile file;
    CArchive storing(&file, CArchive::store), loading(&file, CArchive::load);
    int number = 0;
    bool flag = false;
    CString text;
    std::string standard;
    EXPECT_EQ(CauseOf([&] { storing >> number; }), CArchiveException::writeOnly);
    EXPECT_EQ(CauseOf([&] { storing >> flag; }), CArchiveException::writeOnly);
    EXPECT_EQ(CauseOf([&] { storing >> text; }), CArchiveException::writeOnly);
    EXPECT_EQ(CauseOf([&] { storing >> standard; }), CArchiveException::writeOnly);
    EXPECT_EQ(CauseOf([&] { storing.Read(&number, 0); }), CArchiveException::writeOnly);
    EXPECT_EQ(CauseOf([&] { storing.ReadCount(); }), CArchiveException::writeOnly);
    EXPECT_EQ(CauseOf([&] { loading << number; }), CArchiveException::readOnly);
    EXPECT_EQ(CauseOf([&] { loading << text; }), CArchiveException::readOnly);
    EXPECT_EQ(CauseOf([&] { loading.Write(&number, 0); }), CArchiveException::readOnly);
    storing.Close();
    loading.Abort();
    EXPECT_EQ(CauseOf([&] { storing << number; }), CArchiveException::genericException);
    EXPECT_EQ(CauseOf([&] { loading >> text; }), CArchiveException::genericException);
    storing.Close();
    storing.Flush();
    EXPECT_EQ(file.GetLength(), 0u);
}

TEST(Archive, TheDestructorWritesUnlessToldNotTo)
{
    for (const auto& [mode, expected] :
         {std::pair{CArchive::store + 0u, 4u}, {CArchive::store | CArchive::bNoFlushOnDelete, 0u}}) {
        CMemFile file;
        {
            CArchive archive(&file, mode);
            archive << 1;
        }
        EXPECT_EQ(file.GetLength(), expected);
    }
    BYTE full[2];
    CMemFile tooSmall(full, sizeof full);
    {
        CArchive archive(&tooSmall, CArchive::store);
        archive << 1;
        EXPECT_THROW(archive.Flush(), CFileException);
        archive << 2;
    } // must not throw
}

TEST(Archive, FlushingALoadingArchiveGivesBackWhatWasFetchedTooMuch)
{
    std::string bytes = BytesOf("01000000 02000000 03000000");
    CMemFile file(reinterpret_cast<BYTE*>(bytes.data()), bytes.size());
    int number = 0;
    {
        CArchive first(&file, CArchive::load);
        first >> number;
    }
    EXPECT_EQ(file.GetPosition(), 4u);
    CArchive second(&file, CArchive::load);
    second >> number;
    EXPECT_EQ(number, 2);
    second.Flush();
    EXPECT_EQ(file.GetPosition(), 8u);
    second >> number;
    EXPECT_EQ(number, 3);
}

TEST(RewindArchive, ReadsAgainWhatWasJustRead)
{
    for (const std::size_t filler : {0u, 100u, 123u, 124u, 125u, 126u, 127u, 128u, 1000u}) {
        SCOPED_TRACE(filler);
        std::string bytes = std::string(filler, 'x') + BytesOf("0403 0201 FFFF 1122");
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
            EXPECT_EQ(word, 0x7878); // the end of the filler
        }
        archive >> word;
        EXPECT_EQ(word, 0x0304);
    }
}

TEST(RewindArchive, StepsBackIntoABlockThatPassedTheBuffer)
{
    std::string bytes;
    for (int i = 0; i < 600; ++i)
        bytes += static_cast<char>(i % 251);
    CMemFile file;
    file.Write(bytes.data(), bytes.size());
    file.SeekToBegin();
    CRewindArchive archive(&file, CArchive::load, 128);
    WORD word = 0;
    archive >> word;
    std::string block(500, '\0');
    archive.EnsureRead(block.data(), block.size());
    EXPECT_EQ(block, bytes.substr(2, 500));
    archive.DoRewindInt();
    archive >> word;
    EXPECT_EQ(word, static_cast<BYTE>(bytes[498]) | static_cast<BYTE>(bytes[499]) << 8);
}

TEST(RewindArchive, StopsWhereTheArchiveBegan)
{
    std::string bytes = "before" + BytesOf("0102 0304");
    CMemFile file(reinterpret_cast<BYTE*>(bytes.data()), bytes.size());
    file.Seek(6, CFile::begin);
    CRewindArchive archive(&file, CArchive::load);
    EXPECT_EQ(CauseOf([&] { archive.DoRewindWORD(); }), CArchiveException::badIndex);
    WORD word = 0;
    archive >> word;
    EXPECT_EQ(CauseOf([&] { archive.DoRewindInt(); }), CArchiveException::badIndex);
    archive >> word;
    EXPECT_EQ(word, 0x0403);
    std::string all(1000, '\0'), loaded(900, '\0');
    CMemFile behind(reinterpret_cast<BYTE*>(all.data()), all.size());
    behind.Seek(100, CFile::begin);
    CRewindArchive whole(&behind, CArchive::load, CArchive::MinBuffer);
    whole.EnsureRead(loaded.data(), loaded.size());
    for (int steps = 0; steps < 225; ++steps)
        whole.DoRewindInt();
    EXPECT_EQ(CauseOf([&] { whole.DoRewindInt(); }), CArchiveException::badIndex);
    CRewindArchive storing(&file, CArchive::store);
    EXPECT_EQ(CauseOf([&] { storing.DoRewindWORD(); }), CArchiveException::writeOnly);
}

} // namespace
