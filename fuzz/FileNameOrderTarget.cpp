#include <cstring>

#include "LocaleUtils.h"
#include "NumberTextConv.h"
#include "fuzz/Difference.h"
#include "fuzz/Targets.h"
#include "tests/support/TextModels.h"

namespace {

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Its value is what the reader of decimals, which is a target of its own, makes of it.
std::string NumberAt(const std::string& base, std::size_t at)
{
    const std::string decimal = TextArray::m_csDecimal.Left(1).GetString();
    return base.substr(at, base.find_first_not_of("0123456789" + decimal, at) - at);
}

int SlowCompareBases(const std::string& a, const std::string& b, bool caseSensitive)
{
    const auto placeOf = [=](char c) { return caseSensitive ? static_cast<signed char>(c) : LowerOf(c); };
    for (std::size_t i = 0; i < a.size() && i < b.size();) {
        if (!IsDigit(a[i]) || !IsDigit(b[i])) {
            if (placeOf(a[i]) != placeOf(b[i]))
                return placeOf(a[i]) - placeOf(b[i]);
            ++i;
            continue;
        }
        const std::string left = NumberAt(a, i), right = NumberAt(b, i);
        const double u = NumberTextConv::GetDoubleFromString(left, false);
        const double v = NumberTextConv::GetDoubleFromString(right, false);
        if (u - v >= 0.001 || v - u >= 0.001)
            return u < v ? -1 : 1;
        i += std::min(left.size(), right.size());
    }
    return static_cast<int>(a.size()) - static_cast<int>(b.size());
}

std::string CutExtension(std::string& path)
{
    path = path.substr(path.find_last_of("\\/") + 1);
    const auto dot = path.rfind('.');
    const std::string extension = dot == std::string::npos ? "" : path.substr(dot + 1);
    path = path.substr(0, dot);
    return extension;
}

int SlowCompare(std::string a, std::string b, bool caseSensitive)
{
    const CString left = CutExtension(a), right = CutExtension(b);
    const int bases = SlowCompareBases(a, b, caseSensitive);
    return Sign(bases != 0 ? bases : caseSensitive ? left.Compare(right) : left.CompareNoCase(right));
}

std::string MakeName(Choices& choices)
{
    static const char* const pieces[] = {"0",
                                         "00",
                                         "1",
                                         "2",
                                         "10",
                                         "01",
                                         "9",
                                         "12",
                                         ".",
                                         ".5",
                                         ".50",
                                         ".05",
                                         ".25",
                                         ".250",
                                         ".125",
                                         "1.0015",
                                         "1.002",
                                         "1.00305",
                                         "1.0041",
                                         "99.99.99",
                                         "12.34.56",
                                         ",",
                                         "a",
                                         "A",
                                         "b",
                                         "_",
                                         "-",
                                         ":",
                                         "@",
                                         "[",
                                         "/",
                                         "\\",
                                         "\xE9",
                                         "\xFC",
                                         " ",
                                         "4294967296",
                                         "99999999999999",
                                         "100000000000000",
                                         "281474976710656",
                                         "9007199254740993"};
    std::string name = choices.Make(pieces, choices.Below(6));
    if (choices.OneIn(200))
        name += std::string(choices.Below(400), '9') + choices.Pick(pieces);
    if (choices.OneIn(16))
        name += std::string(1, '\0') + choices.Pick(pieces);
    return name + (choices.Flag() ? ".txt" : "");
}

} // namespace

void Targets::FileNameOrder(Choices& choices)
{
    // of file names, of decimals, of thousands
    static const char* const separators[][3] = {
        {".", ".", ","}, {",", ",", "."},      {",", ".", ","}, {".", ",", "."}, {"", ".", ","},
        {"a", ".", ","}, {"\xE9", "\xE9", ""}, {".", ".", "."}, {"1", "1", "2"}, {".", "5", ","}};
    const auto& [fileNames, decimal, thousands] = choices.Pick(separators);
    TextArray::m_csDecimal = fileNames;
    LocaleUtils::m_csDecimalSeparator = decimal;
    LocaleUtils::m_csThousandsSeparator = thousands;
    const bool flag = choices.Flag();
    const std::string name = MakeName(choices);
    // every other time with the same beginning, where the hard cases are
    const std::string front = name.substr(0, choices.Flag() ? choices.Below(name.size() + 1) : 0);
    const std::string other = front + MakeName(choices);
    Expect("CompareFiles", Sign(TextArray::CompareFiles(name, other, flag)), SlowCompare(name, other, flag),
           name, other, flag, fileNames, decimal, thousands);
}
