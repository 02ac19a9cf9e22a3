// The order of file names against the rule written down once more.
#include <gtest/gtest.h>

#include <cstring>
#include <strings.h>

#include "LocaleUtils.h"
#include "NumberTextConv.h"
#include "support/RandomTexts.h"
#include "support/TextModels.h"
#include "support/UserSettings.h"

namespace {

class FileOrder : public testing::Test {
protected:
    ~FileOrder() override { Use("", "", ""); }

    // The separators of the process, which the settings put back.
    static void Use(const char* fileNames, const char* decimal, const char* thousands)
    {
        TextArray::m_csDecimal = fileNames;
        LocaleUtils::m_csDecimalSeparator = decimal;
        LocaleUtils::m_csThousandsSeparator = thousands;
    }

    UserSettings m_user;
};

// ---- the rule, once more and without regard to speed ----------------------------------------------------

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Its value is what the reader of decimals, which has a model of its own, makes of it.
std::string NumberAt(const std::string& base, std::size_t at)
{
    const std::string decimal = TextArray::m_csDecimal.Left(1).GetString();
    return base.substr(at, base.find_first_not_of("0123456789" + decimal, at) - at);
}

int ModelCompareBases(const std::string& a, const std::string& b, bool caseSensitive)
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

int ModelCompare(std::string a, std::string b, bool caseSensitive)
{
    const auto cutExtension = [](std::string& path) {
        path = path.substr(path.find_last_of("\\/") + 1);
        const auto dot = path.rfind('.');
        const std::string extension = dot == std::string::npos ? "" : path.substr(dot + 1);
        path = path.substr(0, dot);
        return extension;
    };
    const std::string left = cutExtension(a), right = cutExtension(b);
    const int bases = ModelCompareBases(a, b, caseSensitive);
    const auto compare = caseSensitive ? &std::strcmp : &strcasecmp;
    return Sign(bases != 0 ? bases : compare(left.c_str(), right.c_str()));
}

// ---- comparing with it ----------------------------------------------------------------------------------

std::string RandomName(RandomTexts& random)
{
    static const auto pieces = Words(
        "0 00 1 2 10 01 9 12 . .5 .50 .05 .25 .250 .125 1.0015 1.002 99.99.99 12.34.56 , a A b _ - : @ [ / "
        "\\ \xE9 \xFC 4294967296 99999999999999 100000000000000 281474976710656 9007199254740993");
    std::string name = random.Make(pieces, random.Below(6));
    if (random.OneIn(200))
        name += std::string(random.Below(400), '9') + random.Pick(pieces);
    if (random.OneIn(10))
        name += random.Pick(" ") + random.Pick(pieces); // a blank or a NUL
    return name + (random.OneIn(2) ? ".txt" : "");
}

TEST_F(FileOrder, AgreesWithTheModel)
{
    const char* const settings[][3] = {{".", ".", ","}, {".", ".", ","},      {",", ",", "."},
                                       {",", ".", ","}, {".", ",", "."},      {"", ".", ","},
                                       {"a", ".", ","}, {"\xE9", "\xE9", ""}, {".", ".", "."},
                                       {"1", "1", "2"}, {".", "5", ","}};
    RandomTexts random;
    for (const auto& [fileNames, decimal, thousands] : settings) {
        SCOPED_TRACE(std::string("separators ") + fileNames + ' ' + decimal + ' ' + thousands);
        Use(fileNames, decimal, thousands);
        for (int i = 0; i < 10000 && !HasFatalFailure(); ++i) {
            const std::string name = RandomName(random);
            // every other time with the same beginning, where the hard cases are
            const std::string front = name.substr(0, random.OneIn(2) ? random.Below(name.size() + 1) : 0);
            const std::string other = front + RandomName(random);
            const bool flag = random.OneIn(2);
            ASSERT_EQ(Sign(TextArray::CompareFiles(name, other, flag)), ModelCompare(name, other, flag))
                << name << " against " << other << (flag ? "" : " ignoring case");
        }
    }
}

// From the user's settings at the first of these operations, and never again.
TEST_F(FileOrder, SeparatorIsFilledAtTheFirstUse)
{
    UserSettings::Use("sDecimal", ",");
    const std::function<void()> uses[] = {[] { TextArray::DoCompareFiles("a", "b"); },
                                          [] { ListOf("a;b").Sort(); }, [] { ListOf("a").AddSorted("b"); }};
    for (const auto& use : uses)
        for (const std::string known : {"", ";"}) {
            Use("", known.c_str(), "");
            TextArray::CompareFiles("1,5", "1,6");
            EXPECT_EQ(TextArray::m_csDecimal, "");
            use();
            LocaleUtils::m_csDecimalSeparator = "!";
            use();
            EXPECT_EQ(TextArray::m_csDecimal, known.empty() ? "," : ";");
        }
}

} // namespace
