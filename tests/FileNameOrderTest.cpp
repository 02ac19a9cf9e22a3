// The order of file names: its table of hard cases, and the sort keys against the rule written down once
// more.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <strings.h>

#include "LocaleUtils.h"
#include "TextArray.h"
#include "text/FileNameOrder.h"

namespace {

int Sign(int value)
{
    return value < 0 ? -1 : value > 0 ? 1 : 0;
}

// Sets the separators of the process and puts the former ones back.
class Separators {
public:
    Separators(const char* fileNames, const char* decimal, const char* thousands)
        : m_fileNames(TextArray::m_csDecimal), m_decimal(LocaleUtils::m_csDecimalSeparator),
          m_thousands(LocaleUtils::m_csThousandsSeparator)
    {
        TextArray::m_csDecimal = fileNames;
        LocaleUtils::m_csDecimalSeparator = decimal;
        LocaleUtils::m_csThousandsSeparator = thousands;
    }
    ~Separators()
    {
        TextArray::m_csDecimal = m_fileNames;
        LocaleUtils::m_csDecimalSeparator = m_decimal;
        LocaleUtils::m_csThousandsSeparator = m_thousands;
    }
    Separators(const Separators&) = delete;
    Separators& operator=(const Separators&) = delete;

private:
    CString m_fileNames, m_decimal, m_thousands;
};

// ---- the rule, once more and without regard to speed ----------------------------------------------------

struct ModelName {
    std::string base, extension;

    explicit ModelName(std::string path)
    {
        for (std::size_t i = 0; i < path.size();)
            if (path[i++] == '\\' || path[i - 1] == '/') {
                path = path.substr(i);
                i = 0;
            }
        const auto dot = path.rfind('.');
        base = path.substr(0, dot);
        extension = dot == std::string::npos ? "" : path.substr(dot + 1);
    }
};

bool ModelIsDigit(char c)
{
    return std::strchr("0123456789", c) != nullptr && c != '\0';
}

std::string ModelNumber(const std::string& base, std::size_t at)
{
    const CString& decimal = TextArray::m_csDecimal;
    std::string number;
    for (; at < base.size(); ++at) {
        if (!ModelIsDigit(base[at]) && (decimal.IsEmpty() || base[at] != decimal.GetString()[0]))
            break;
        number += base[at];
    }
    return number;
}

double ModelValue(const std::string& number)
{
    const char decimal = LocaleUtils::m_csDecimalSeparator.GetString()[0];
    const char thousands = LocaleUtils::m_csThousandsSeparator.GetString()[0];
    double value = 0;
    double scale = 10;
    for (const char c : number) { // begins with a digit
        if (c == thousands)
            continue;
        if (c == decimal) {
            scale = 0.1;
            continue;
        }
        if (!ModelIsDigit(c))
            break;
        if (scale > 1) {
            value = value * 10 + (c - '0');
        } else {
            value += scale * (c - '0');
            scale *= 0.1;
        }
    }
    return value;
}

int ModelPlace(char c, bool caseSensitive)
{
    const int value = static_cast<signed char>(c);
    return caseSensitive ? value : value < 0 ? 0 : value >= 'A' && value <= 'Z' ? value + 32 : value;
}

int ModelCompare(const std::string& pathA, const std::string& pathB, bool caseSensitive)
{
    const ModelName a(pathA), b(pathB);
    std::size_t i = 0;
    while (i < a.base.size() && i < b.base.size()) {
        if (ModelIsDigit(a.base[i]) && ModelIsDigit(b.base[i])) {
            const std::string left = ModelNumber(a.base, i), right = ModelNumber(b.base, i);
            const double u = ModelValue(left), v = ModelValue(right);
            if (u - v >= 0.001 || v - u >= 0.001)
                return u < v ? -1 : 1;
            i += std::min(left.size(), right.size());
            continue;
        }
        const int u = ModelPlace(a.base[i], caseSensitive), v = ModelPlace(b.base[i], caseSensitive);
        if (u != v)
            return u < v ? -1 : 1;
        ++i;
    }
    if (a.base.size() != b.base.size())
        return a.base.size() < b.base.size() ? -1 : 1;
    return Sign(caseSensitive ? std::strcmp(a.extension.c_str(), b.extension.c_str())
                              : strcasecmp(a.extension.c_str(), b.extension.c_str()));
}

std::string RandomName(std::mt19937& random)
{
    static const std::vector<std::string> pieces = {"0",
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
                                                    "a",
                                                    "A",
                                                    "b",
                                                    "_",
                                                    "-",
                                                    " ",
                                                    ":",
                                                    std::string(1, '\0'),
                                                    "\xE9",
                                                    "\xFC",
                                                    "/",
                                                    "\\",
                                                    ".25",
                                                    ".250",
                                                    ".125",
                                                    "1.0015",
                                                    "1.002",
                                                    ",",
                                                    "99.99.99",
                                                    "12.34.56",
                                                    "4294967296",
                                                    "@",
                                                    "[",
                                                    "99999999999999",
                                                    "100000000000000",
                                                    "281474976710656",
                                                    "9007199254740993"};
    std::string name;
    for (auto count = random() % 6; count > 0; --count)
        name += pieces[random() % pieces.size()];
    if (random() % 200 == 0)
        name += std::string(random() % 400, '9') + pieces[random() % pieces.size()];
    return name + (random() % 2 ? ".txt" : "");
}

struct KeyBytes {
    std::string text;
    bool isWhole;
};

KeyBytes KeyOf(const CString& name, bool caseSensitive)
{
    const FileNameOrder::Pieces pieces = FileNameOrder::Split(name);
    std::vector<unsigned char> room(FileNameKeys::MaxSize(pieces));
    const FileNameKeys::Key key = FileNameKeys(caseSensitive).Write(pieces, room.data());
    return {std::string(room.data(), key.end), key.isWhole};
}

// The rule's answer is the model's; keys say the same where they differ before their end, or are whole (then
// the shorter one is first).
void CheckPair(const std::string& a, const std::string& b, bool caseSensitive)
{
    SCOPED_TRACE("\"" + a + "\" against \"" + b + "\"" + (caseSensitive ? "" : " ignoring case"));
    const CString left(a), right(b);
    const int expected = ModelCompare(a, b, caseSensitive);
    ASSERT_EQ(Sign(TextArray::CompareFiles(left, right, caseSensitive)), expected);
    const KeyBytes leftKey = KeyOf(left, caseSensitive), rightKey = KeyOf(right, caseSensitive);
    const std::size_t common = std::min(leftKey.text.size(), rightKey.text.size());
    const int bytes = Sign(std::memcmp(leftKey.text.data(), rightKey.text.data(), common));
    if (bytes != 0) {
        ASSERT_EQ(bytes, expected);
    } else if (leftKey.isWhole && rightKey.isWhole) {
        ASSERT_EQ(leftKey.text.size() < rightKey.text.size() ? -1
                                                             : leftKey.text.size() > rightKey.text.size(),
                  expected);
    }
}

TEST(FileNameOrder, KeysAndRuleAgreeWithTheModel)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const char* const settings[][3] = {
        {".", ".", ","}, {".", ".", ","}, {",", ",", "."},      {",", ".", ","}, {".", ",", "."},
        {"", ".", ","},  {"a", ".", ","}, {"\xE9", "\xE9", ""}, {".", ".", "."}, {"1", "1", "2"}};
    for (const auto& setting : settings) {
        const Separators separators(setting[0], setting[1], setting[2]);
        for (int i = 0; i < 10000; ++i) {
            const std::string name = RandomName(random);
            // every other time a name with the same beginning, where the hard cases are
            const std::string other = random() % 2
                                          ? RandomName(random)
                                          : name.substr(0, random() % (name.size() + 1)) + RandomName(random);
            CheckPair(name, other, random() % 2 == 0);
            if (HasFatalFailure())
                FAIL() << "separators " << setting[0] << " " << setting[1] << " " << setting[2];
        }
    }
}

struct Row {
    std::string a, b;
    int withCase, noCase;
};

TEST(FileNameOrder, HardCases)
{
    const Separators separators(".", ".", ",");
    const std::string digits(400, '9'); // more than a double holds
    const Row rows[] = {
        {"file2.txt", "file10.txt", -1, -1},
        {"v1.5.txt", "v1.50.txt", -1, -1},    // equal numbers, the shorter name
        {"img1.5.png", "img1.6.png", -1, -1}, // the numbers decide
        {"a.txt", "a.zip", -1, -1},           // the extension
        {"A.txt", "a.TXT", -1, 0},
        {"b.txt", "A.txt", 1, 1},
        {"01", "1", 1, 1},
        {"01a", "1a", -1, -1}, // the 1 of "01" against the a
        {"01-", "1-", 1, 1},   // the 1 of "01" against the -
        {"1.004.t", "1.0045.t", -1, -1},
        {"1.003x.t", "1.002x.t", 0, 0},     // as doubles they differ by less than the tolerance
        {"12.34.56.t", "12.56.34.t", 0, 0}, // the decimals add up
        {"", "a", -1, -1},
        {".a", ".b", -1, -1},
        {"a.", "a", 0, 0},
        {"x/y/b", "z\\a", 1, 1},
        {"d.x/b", "d.y/b", 0, 0},
        {"\xE9", "a", -1, -1}, // signed
        {"\xE9", "\xFC", -1, 0},
        {"\xE9", std::string(1, '\0'), -1, 0},
        {std::string("a\0c", 3), std::string("a\0b", 3), 1, 1},     // base names are counted
        {std::string("a.b\0c", 5), std::string("a.b\0d", 5), 0, 0}, // extensions are not
        {digits, digits, 0, 0},
        {digits, "9" + digits, -1, -1}, // both infinite, the shorter one first
        {"1" + digits, "2", 1, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.a + " against " + row.b);
        EXPECT_EQ(Sign(TextArray::CompareFiles(CString(row.a), CString(row.b), true)), row.withCase);
        EXPECT_EQ(Sign(TextArray::CompareFiles(CString(row.b), CString(row.a), true)), -row.withCase);
        EXPECT_EQ(Sign(TextArray::CompareFiles(CString(row.a), CString(row.b), false)), row.noCase);
        EXPECT_EQ(Sign(TextArray::CompareFiles(CString(row.b), CString(row.a), false)), -row.noCase);
    }
}

TEST(FileNameOrder, KeysAreWholeForOrdinaryNames)
{
    const Separators separators(".", ".", ",");
    for (const char* name : {"IMG_0042.JPG", "Screenshot 2021-03-04 at 12.34.56.png", "v1.50.zip", "007", "",
                             "\xE9t\xE9 12345678901234567890.txt", "1.250.txt"}) {
        EXPECT_TRUE(KeyOf(name, true).isWhole) << name;
        EXPECT_TRUE(KeyOf(name, false).isWhole) << name;
    }
    EXPECT_FALSE(KeyOf("1.0015x.t", true).isWhole);
}

} // namespace
