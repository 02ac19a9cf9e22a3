// The tables of hard cases that need nothing but the operation itself: in each row stands what goes in and,
// behind it, what comes out.
#include <gtest/gtest.h>

#include <sstream>

#include "CByteArray.h"
#include "COleDateTime.h"
#include "DirUtils.h"
#include "ExternalAppRun.h"
#include "FileUtils.h"
#include "KVTDouble.h"
#include "NumberTextConv.h"
#include "Prime.h"
#include "StringUtils.h"
#include "VersionNumber.h"
#include "support/Cases.h"
#include "support/TextModels.h"

namespace {

using Cells = std::vector<std::string>;
using Row = const Cells&;

template <class... Values>
Cells Are(const Values&... values)
{
    return {(std::ostringstream() << values).str()...};
}

bool Is(const std::string& cell)
{
    return cell == "1";
}
int Int(const std::string& cell)
{
    return std::stoi(cell);
}
double Double(const std::string& cell)
{
    return std::strtod(cell.c_str(), nullptr);
}

// What is answered for each row of a section is what stands at its end.
template <class Answer>
void Check(const std::string& section, Answer answer)
{
    for (const Cells& row : Rows(section)) {
        SCOPED_TRACE(section + ": " + testing::PrintToString(row));
        const Cells out = answer(row);
        EXPECT_EQ(out, Cells(row.end() - static_cast<std::ptrdiff_t>(out.size()), row.end()));
    }
}

TEST(HardCases, OfTexts)
{
    Check("yes", [](Row in) { return Are(StringUtils::IsYes(in[0])); });
    Check("trimmed", [](Row in) {
        CString text = in[0];
        StringUtils::Trim(text);
        EXPECT_EQ(StringUtils::IsEffectivelyEmpty(in[0]), text.IsEmpty());
        return Are(text);
    });
    // without case NUL and all bytes of 128 or more are one character
    Check("characters", [](Row in) {
        const CString text("xA\xC9\0z", 5);
        int pos = 7;
        const bool isFound = StringUtils::Find(text, in[0][0], Is(in[1]), pos, Int(in[2]));
        EXPECT_EQ(isFound, StringUtils::Contains(text, in[0][0], Is(in[1]), Int(in[2])));
        EXPECT_EQ(isFound, pos >= 0);
        return Are(pos);
    });
    Check("all words", [](Row in) {
        const TextArray words = ListOf(in[0]);
        return Are(StringUtils::FindAllWords(words, in[1], false, false, false),
                   StringUtils::FindAllWords(words, in[1], true, false, false));
    });
    Check("guids", [](Row in) { return Are(StringUtils::ContainsGUID(in[0])); });
    Check("blocks", [](Row in) {
        return Are(StringUtils::IsInTextBlock(in[0], in[1], in[2], true),
                   StringUtils::IsInTextBlock(in[0], in[1], in[2], false));
    });
    Check("pairs", [](Row in) {
        int first = 7, second = 7;
        const bool isFound = StringUtils::FindOccurrencePair(in[0], in[1], in[2], Int(in[3]), first, second);
        EXPECT_EQ(isFound, first >= 0);
        return Are(first, second);
    });
    Check("common texts", [](Row in) {
        const TextArray list = ListOf(in[0]);
        return Are(StringUtils::GetCommonText(list, true), StringUtils::GetCommonText(list, false));
    });
    Check("texts within", [](Row in) {
        bool isFound = true;
        const std::size_t index = ArrayOf({"ab", "Ab", CString("ab\0x", 4), "abc", ""})
                                      .FindWithin(in[0], isFound, std::stoul(in[1]), false);
        EXPECT_EQ(isFound, index < 5);
        return Are(index);
    });
    Check("sorted insertion", [](Row in) {
        TextArray list = ListOf(in[0]);
        const std::size_t index = list.AddSorted(in[1], Is(in[2]));
        return Are(index, LineOf(list));
    });
}

TEST(HardCases, OfPaths)
{
    Check("equal paths", [](Row in) {
        return Are(TextArray::AreDirsEqual(in[0], in[1]), TextArray::AreDirsEqual(in[0], in[1], false),
                   TextArray::AreFilesEqual(in[0], in[1]), TextArray::AreFilesEqual(in[0], in[1], false),
                   TextArray::ArePathsEqual(in[0], in[1], true, TextArray::ContentPaths),
                   TextArray::ArePathsEqual(in[0], in[0], true, TextArray::ContentText));
    });
    Check("folder order", [](Row in) {
        return Are(Sign(TextArray::CompareDirs(in[0], in[1])),
                   Sign(TextArray::CompareDirs(in[0], in[1], false)));
    });
    Check("path parts", [](Row in) {
        const CString path = in[0];
        return Are(FileUtils::ParseFileNameFromPath(path, true),
                   FileUtils::ParseFileNameFromPath(path, false), FileUtils::GetFileExt(path),
                   DirUtils::ParsePathFromFile(path), DirUtils::ParseParentDir(path),
                   DirUtils::ParseLastDir(path));
    });
    Check("common parents", [](Row in) { return Are(DirUtils::FindCommonParentDir(in[0], in[1])); });
    Check("trailing separators", [](Row in) {
        CString backslash(in[0]), slash(in[0]), removed(in[0]);
        DirUtils::EnsureTrailingBackslash(backslash);
        DirUtils::EnsureTrailingForwardSlash(slash);
        DirUtils::RemoveTrailingSlash(removed);
        return Are(backslash, slash, removed);
    });
    Check("folder lists", [](Row in) {
        bool same = true, entryInside = true, dirInside = true;
        const auto index = DirUtils::IsInDirList(in[0], ListOf(in[1]), same, entryInside, dirInside);
        return Are(index, same * 100 + entryInside * 10 + dirInside);
    });
    Check("bad characters",
          [](Row in) { return Are(FileUtils::ReplaceBadFileChars(in[0], in[1][0], Is(in[2]))); });
    Check("application order", [](Row in) {
        ExternalAppRun a, b;
        a.SetTitle(in[0]);
        a.SetPath(in[1]);
        b.SetTitle(in[2]);
        b.SetPath(in[3]);
        b.SetInitDir("x");
        return Are(CString(a < b ? "<" : "") + (a > b ? ">" : ""));
    });
}

TEST(HardCases, OfNumbers)
{
    Check("pads",
          [](Row in) { return Are(NumberTextConv::NumberToString(Int(in[0]), false, Int(in[1]), in[2])); });
    Check("hexadecimal", [](Row in) { return Are(NumberTextConv::ConvertFromHex(in[0])); });
    Check("byte arrays", [](Row in) {
        CByteArray bytes;
        CString text;
        NumberTextConv::ConvertStringToByteArray("7", bytes); // dropped
        NumberTextConv::ConvertStringToByteArray(in[0], bytes);
        NumberTextConv::ConvertByteArrayToString(bytes, text);
        return Are(text);
    });
    Check("versions", [](Row in) {
        const CString shown = VersionNumber(CString(in[0])).GetString();
        EXPECT_EQ(VersionNumber(shown).GetString(), shown);
        return Are(shown);
    });
    Check("tolerances",
          [](Row in) { return Are(KVTDouble::IsEqual(Double(in[0]), Double(in[1]), Double(in[2]))); });
    Check("nearest primes", [](Row in) { return Are(Prime::GetNearestPrimeNumber(std::stoull(in[0]))); });
    Check("table sizes", [](Row in) { return Are(Prime::CalculateHashTableSize(std::stoull(in[0]))); });
    Check("ole dates", [](Row in) {
        const COleDateTime date(Int(in[0]), Int(in[1]), Int(in[2]), Int(in[3]), Int(in[4]), Int(in[5]));
        const bool exists = date.GetStatus() == COleDateTime::valid;
        EXPECT_EQ(date.GetYear(), exists ? Int(in[0]) : -1);
        EXPECT_EQ(date.GetSecond(), exists ? Int(in[5]) : -1);
        return Are(exists);
    });
}

} // namespace
