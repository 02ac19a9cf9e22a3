// Short natural uses of the interface, which have to compile and to mean what they say.
#include <gtest/gtest.h>

#include <cstdint>

#include "kvt01.h"
#include "support/ArchiveBytes.h"
#include "support/UserSettings.h"

namespace {

using namespace std::string_view_literals;

TEST(Interface, TextsTakeTheOtherKindsOfText)
{
    const unsigned char bytes[] = "un";
    CString text;
    text = "sv"sv;
    EXPECT_TRUE(text == "sv"sv && text != "s"sv && "a"sv < text && "<"sv + text + ">"sv == "<sv>");
    EXPECT_EQ(text.Replace("s", CString("a\0", 2)) + text.Replace(CString("\0v", 2), "b"), 2);
    text.Format("%s|%s|%3s|%s", bytes, nullptr, nullptr, CString(bytes) + text);
    EXPECT_TRUE(text == "un||   |unab" && text.CollateNoCase("UN||   |UNAB") == 0);
}

TEST(Interface, StandardIntegersServeWhere64BitsAreMeant)
{
    std::vector<std::uint64_t> numbers = {2};
    std::map<int, std::uint64_t> byInt = {{1, 2}};
    std::map<std::uint64_t, TextArray> lists = {{7, {"a"}}};
    std::int64_t single = -2;
    const auto serialize = [&](CArchive& archive) {
        SerializeData::Serialize(archive, numbers);
        SerializeData::Serialize(archive, byInt);
        SerializeData::Serialize(archive, lists);
        archive.IsStoring() ? archive << single : archive >> single;
    };
    const std::string bytes = StoredBy(serialize);
    EXPECT_EQ(HexOf(bytes), HexOf(BytesOf("0100 0100000000000000 0200000000000000"
                                          "0100 0100000000000000 01000000 0200000000000000"
                                          "0100 0100000000000000 0700000000000000"
                                          "0400 0100 0100000000000000 0161 FEFFFFFFFFFFFFFF")));
    numbers = {}, byInt = {}, lists = {}, single = 0;
    LoadFrom(bytes, serialize);
    EXPECT_EQ(StoredBy(serialize), bytes);
    const DateTime date(1970, 1, 2, 0, 0, 1);
    std::int64_t since1970 = 0, delta = 0;
    date.Get(since1970);
    DateTime::ConvertDeltaToSeconds(DateTime(1970, 1, 1, 0, 0, 0), date, delta);
    DateTime::ConvertToSeconds(100000, 0, 0, 1, single);
    Prime::GetPrimesInRange(3, 5, numbers);
    EXPECT_TRUE(since1970 == 86401 && delta == -86401 && single == 8640000001 && numbers.size() == 3);
    EXPECT_EQ(NumberTextConv::NumberToString(~0u) + NumberTextConv::NumberToString(1ul), "42949672951");
}

TEST(Interface, ContainersAreMadeFromListsChangedInPlaceAndStored)
{
    CByteArray bytes{1, 0xFF};
    CStringArray array{"bc"};
    CStringList list{"b", "bc"}, none;
    const CStringArray more = {"a"};
    array.InsertAt(0, &more), bytes.InsertAt(0, 0); // a byte
    list.GetHead() = "x", none.GetTail() = "lost";
    for (POSITION at = list.GetHeadPosition(); at != nullptr;)
        list.GetNext(at).Replace('x', 'a');
    EXPECT_TRUE(none.GetHead().IsEmpty() && none.IsEmpty());
    const auto serialize = [&](CArchive& archive) {
        bytes.Serialize(archive), array.Serialize(archive), list.Serialize(archive);
    };
    const std::string stored = StoredBy(serialize);
    EXPECT_EQ(HexOf(stored), HexOf(BytesOf("0300 0001FF  0200 0161 026263  0200 0161 026263")));
    for (std::size_t length = 0; length < stored.size(); ++length)
        EXPECT_THROW(LoadFrom(stored.substr(0, length), serialize), CArchiveException) << length;
    LoadFrom(stored, serialize);
    EXPECT_EQ(StoredBy(serialize), stored);
    EXPECT_THROW(LoadFrom(BytesOf("FFFF FFFFFFFF FFFFFFFFFFFFFFFF 61"), serialize), CArchiveException);
    EXPECT_TRUE(bytes == CByteArray{'a'}); // what was there
}

TEST(Interface, ShortCallsMeanThePlainCase)
{
    const UserSettings user;
    TextArray texts = {"a", "b"};
    texts.AddValuesRange(1000, 1000);
    EXPECT_EQ(texts.GetLast() + StringUtils::GetCommonText({"ab", "ac"}), "1000a");
    EXPECT_EQ(StringUtils::FindWholeWordMatch("a_b b", "b") + StringUtils::FindAllWords({"b"}, "b", true), 4);
    EXPECT_TRUE(TextArray::SortCompareItems("a", "b") && TextArray::ArePathsEqual("C:\\a", "C:\\a"));
    EXPECT_EQ(FileUtils::ReplaceBadFileChars("a b:", '_') + FileUtils::GetBadFileNameChars(),
              "a b_\\/:*?\"<>|");
    CRect rect(1, 2, 9, 8), shared;
    EXPECT_TRUE(shared.IntersectRect(rect, CRect(5, 5, 20, 20)) && shared == CRect(5, 5, 9, 8));
    EXPECT_TRUE(!rect.IntersectRect(shared, CRect(9, 0, 20, 20)) && rect == CRect());
    EXPECT_TRUE(rect.UnionRect(shared, CRect(3, 3, 3, 9)) && rect == shared);
    const COleDateTime date = DATE{1.5};
    const BOOL isDecimal = LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL) == ".";
    EXPECT_TRUE(date.GetHour() == 12 && isDecimal && VersionNumber("1.2") == VersionNumber(1, 2, 0));
}

TEST(Interface, LinesOfArchivesAndFiles)
{
    const CString rest = CString('b', 300) + "\rc\r"; // more than the archive's buffer
    const auto readLines = [&](CArchive& archive) {
        CString line;
        for (const CString& expected : {CString("a"), CString(), rest})
            EXPECT_TRUE(archive.ReadString(line) && line == expected) << expected;
        EXPECT_FALSE(archive.ReadString(line));
    };
    LoadFrom(StoredBy([&](CArchive& archive) { archive.WriteString("a\r\n\n" + rest); }), readLines, 128);
    const TemporaryFolder folder;
    CStdioFile file((folder.Path() + "lines").c_str(), CFile::modeCreate | CFile::modeReadWrite);
    file.WriteString("ab\ncd");
    CFileStatus status;
    EXPECT_TRUE(file.GetStatus(status) && status.m_size == 6 && !status.m_readOnly); // LF became CR LF
    file.SeekToBegin();
    char line[4] = "";
    for (const std::string_view expected : {"ab"sv, "\n"sv, "cd"sv})
        EXPECT_TRUE(file.ReadString(line, 3) == line && line == expected) << expected;
    EXPECT_TRUE(file.ReadString(line, 3) == nullptr && line[0] == '\0');
}

} // namespace
