#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <string>

#include "StringUtils.h"
#include "TextArray.h"

namespace {

// ---- the rules, one character after the other -----------------------------------------------------------

int Lower(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 128)
        return 0;
    return byte >= 'A' && byte <= 'Z' ? byte + 32 : byte;
}

bool AreEqual(char a, char b, bool caseSensitive)
{
    return caseSensitive ? a == b : Lower(a) == Lower(b);
}

bool IsBlank(const std::string& text)
{
    return text.find_first_not_of("\t\n\v\f\r ") == std::string::npos;
}

int SlowFindNoCase(const std::string& text, const std::string& wanted, int start)
{
    if (wanted.empty())
        return -1;
    std::size_t k = 0;
    for (std::size_t i = start < 0 ? 0 : static_cast<std::size_t>(start); i < text.size(); ++i) {
        k = AreEqual(text[i], wanted[k], false) ? k + 1 : 0;
        if (k == wanted.size())
            return static_cast<int>(i - k + 1);
    }
    return -1;
}

int SlowFindLast(const std::string& text, const std::string& wanted)
{
    if (text.empty() || wanted.empty() || wanted.size() > text.size())
        return -1;
    std::size_t k = wanted.size() - 1;
    for (std::size_t i = text.size(); i-- > 0;) {
        if (text[i] != wanted[k]) {
            k = wanted.size() - 1;
            continue;
        }
        if (k == 0)
            return static_cast<int>(i);
        --k;
    }
    return -1;
}

int SlowFindOccurrenceIndex(const std::string& text, const std::string& wanted, int n, bool caseSensitive)
{
    if (IsBlank(text) || n == 0 || wanted.empty())
        return -1;
    int count = 0;
    for (std::size_t i = 0; i < text.size();) {
        std::size_t k = 0;
        while (k < wanted.size() && i + k < text.size() && AreEqual(text[i + k], wanted[k], caseSensitive))
            ++k;
        if (k == wanted.size() && ++count == n)
            return static_cast<int>(i);
        i += k == 0 ? 1 : k;
    }
    return -1;
}

std::pair<int, int> SlowFindFirstAndLast(const std::string& text, const std::string& wanted,
                                         bool caseSensitive)
{
    int first = -1;
    int last = -1;
    if (text.empty() || wanted.empty())
        return {first, last};
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t begin = i;
        std::size_t k = 0;
        while (k < wanted.size() && i < text.size() && AreEqual(text[i], wanted[k], caseSensitive)) {
            ++i;
            ++k;
        }
        if (k == wanted.size())
            (first == -1 ? first : last) = static_cast<int>(begin);
        ++i;
    }
    return last > first ? std::pair(first, last) : std::pair(-1, -1);
}

// std::tolower in the "C" locale, which the tests run in.
std::string LoweredCopy(std::string text)
{
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c + 32);
    return text;
}

int SlowFindOccurrences(std::string text, std::string wanted, bool caseSensitive)
{
    if (IsBlank(text) || wanted.empty())
        return 0;
    if (!caseSensitive) {
        text = LoweredCopy(text);
        wanted = LoweredCopy(wanted);
    }
    int count = 0;
    for (std::size_t at = text.find(wanted); at != std::string::npos;
         at = text.find(wanted, at + wanted.size()))
        ++count;
    return count;
}

bool IsDelimiter(char c, bool underscore, bool dollar)
{
    if (c == '_')
        return underscore;
    if (c == '$')
        return dollar;
    return std::string("\t\n\v\f\r !\"#%&'()*+,-./:;<=>?@[\\]^`{|}~").find(c) != std::string::npos;
}

int SlowFindWholeWord(const std::string& text, const std::string& word, int n, int start, bool underscore,
                      bool dollar)
{
    if (IsBlank(text) || word.empty() || text.size() < word.size() || start < 0)
        return -1;
    int count = 0;
    std::size_t from = static_cast<std::size_t>(start);
    for (std::size_t at = 0; (at = text.find(word, from)) != std::string::npos; from = at + word.size()) {
        const std::size_t end = at + word.size();
        if ((at == 0 || IsDelimiter(text[at - 1], underscore, dollar)) &&
            (end == text.size() || IsDelimiter(text[end], underscore, dollar)) && ++count == n)
            return static_cast<int>(at);
    }
    return -1;
}

// ---- comparing with them --------------------------------------------------------------------------------

class Texts {
public:
    explicit Texts(unsigned int seed) : m_random(seed) {}
    std::size_t Below(std::size_t n) { return m_random() % n; }
    // Made of few different characters, so that parts of the pattern stand everywhere.
    std::string Make(const std::string& alphabet, std::size_t length)
    {
        std::string text;
        while (text.size() < length)
            text += alphabet[Below(alphabet.size())];
        return text;
    }

private:
    std::mt19937 m_random;
};

const std::string Alphabets[] = {
    "ab", "aAbB", "abc ", std::string("a\0\xE9\xFF", 4), std::string("aA\0\xC4 b", 6), "on _$,x", "\xE9\xE8",
};

// Every search, text by text.
void CompareAll(const std::string& text, const std::string& wanted, int start, int n, bool flag, bool other)
{
    const CString s(text);
    const CString sub(wanted);
    SCOPED_TRACE(testing::Message() << testing::PrintToString(wanted) << " in "
                                    << testing::PrintToString(text) << " from " << start << ", n " << n
                                    << ", flags " << flag << other);
    int pos = 7;
    ASSERT_EQ(StringUtils::Find(s, sub, false, pos, start), SlowFindNoCase(text, wanted, start) >= 0);
    ASSERT_EQ(pos, SlowFindNoCase(text, wanted, start));
    const auto exact = text.find(wanted, start < 0 ? 0 : static_cast<std::size_t>(start));
    ASSERT_EQ(StringUtils::Find(s, sub, true, pos, start), exact != std::string::npos);
    ASSERT_EQ(pos, exact == std::string::npos ? -1 : static_cast<int>(exact));
    ASSERT_EQ(StringUtils::FindLast(s, sub), SlowFindLast(text, wanted));
    ASSERT_EQ(StringUtils::FindOccurrenceIndex(s, sub, n, flag),
              SlowFindOccurrenceIndex(text, wanted, n, flag));
    ASSERT_EQ(StringUtils::FindOccurrences(s, sub, flag), SlowFindOccurrences(text, wanted, flag));
    int first = 7;
    int last = 7;
    StringUtils::FindFirstAndLast(s, sub, flag, first, last);
    ASSERT_EQ(std::pair(first, last), SlowFindFirstAndLast(text, wanted, flag));
    ASSERT_EQ(StringUtils::FindWholeWordMatch(s, sub, n, start, flag, other),
              SlowFindWholeWord(text, wanted, n, start, flag, other));
}

TEST(Search, FindsWhatTheRulesFindInShortTexts)
{
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Texts texts(seed);
    for (int round = 0; round < 60000 && !testing::Test::HasFatalFailure(); ++round) {
        const std::string& alphabet = Alphabets[texts.Below(std::size(Alphabets))];
        const std::string text = texts.Make(alphabet, texts.Below(24));
        const std::string wanted = texts.Make(alphabet, texts.Below(5));
        CompareAll(text, wanted, static_cast<int>(texts.Below(8)) - 1, static_cast<int>(texts.Below(4)),
                   texts.Below(2) == 0, texts.Below(2) == 0);
    }
}

// Longer than several vector blocks, with hits at their borders.
TEST(Search, FindsWhatTheRulesFindInLongTexts)
{
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Texts texts(seed);
    for (int round = 0; round < 6000 && !testing::Test::HasFatalFailure(); ++round) {
        const std::string& alphabet = Alphabets[texts.Below(std::size(Alphabets))];
        const std::string wanted = texts.Make(alphabet, 1 + texts.Below(12));
        const bool isSparse = texts.Below(2) == 0;
        std::string text = texts.Make(isSparse ? "zyxw. " : alphabet, 200 + texts.Below(1500));
        for (std::size_t i = texts.Below(6); i > 0; --i)
            text.replace(texts.Below(text.size()), wanted.size(), wanted);
        CompareAll(text, wanted, static_cast<int>(texts.Below(text.size() + 2)) - 1,
                   static_cast<int>(texts.Below(6)), texts.Below(2) == 0, texts.Below(2) == 0);
    }
}

TEST(Search, TakesLinearTimeOnTextsThatAlmostMatchEverywhere)
{
    const std::string text(3000000, 'a');
    const std::string wanted = std::string(100000, 'a') + 'b';
    int pos = 0;
    EXPECT_FALSE(StringUtils::Find(text, wanted, true, pos));
    EXPECT_FALSE(StringUtils::Find(text, wanted, false, pos));
    EXPECT_EQ(StringUtils::FindOccurrences(text, CString(wanted).MakeReverse(), true), 0);
    EXPECT_EQ(StringUtils::FindOccurrences(text, "A" + wanted, false), 0);
    EXPECT_EQ(StringUtils::FindOccurrences(text + wanted, wanted, true), 1);
    EXPECT_EQ(StringUtils::FindWholeWordMatch(text, wanted, 1, 0, false, false), -1);
    EXPECT_FALSE(StringUtils::IsInTextBlock(text, wanted, "c", false));
}

TEST(Search, OfACharacterWithoutCaseTakesHighBytesAndNulForOne)
{
    const CString text("xA\xC9\0z", 5);
    int pos = 7;
    EXPECT_TRUE(StringUtils::Find(text, '\xE8', false, pos));
    EXPECT_EQ(pos, 2);
    EXPECT_TRUE(StringUtils::Find(text, '\0', false, pos, 3));
    EXPECT_EQ(pos, 3);
    EXPECT_FALSE(StringUtils::Find(text, '\xE8', true, pos));
    EXPECT_EQ(pos, -1);
    EXPECT_TRUE(StringUtils::Contains(text, 'a', false));
    EXPECT_FALSE(StringUtils::Contains(text, 'a'));
    EXPECT_FALSE(StringUtils::Contains(text, 'a', false, 2));
    EXPECT_FALSE(StringUtils::Find(text, 'z', false, pos, 5));
}

TEST(Search, AnswersOutOfRangeArgumentsNeutrally)
{
    int pos = 7;
    EXPECT_TRUE(StringUtils::Find("abc", "a", false, pos, INT_MIN));
    EXPECT_FALSE(StringUtils::Find("abc", "a", false, pos, INT_MAX));
    EXPECT_FALSE(StringUtils::Find("abc", "", false, pos));
    EXPECT_TRUE(StringUtils::Find("abc", "", true, pos, 3));
    EXPECT_FALSE(StringUtils::Find("abc", "", true, pos, 4));
    EXPECT_EQ(StringUtils::FindOccurrenceIndex("abc", "a", INT_MIN), -1);
    EXPECT_EQ(StringUtils::FindWholeWordMatch("abc", "abc", -1, 0, true, true), -1);
    EXPECT_EQ(StringUtils::FindWholeWordMatch("abc", "abc", 1, INT_MAX, true, true), -1);
    EXPECT_EQ(StringUtils::FindWholeWordMatch("abc", "abc", 1, INT_MIN, true, true), -1);
}

TextArray Words(std::initializer_list<const char*> list)
{
    TextArray words;
    for (const char* word : list)
        words.Add(word);
    return words;
}

TEST(Search, OfAllWordsNeedsEachOfThem)
{
    const auto find = [](const TextArray& words, const char* text, bool wholeWord) {
        return StringUtils::FindAllWords(words, text, wholeWord, false, false);
    };
    EXPECT_EQ(find(Words({"three", "one"}), "onerous two one three", false), 0);
    EXPECT_EQ(find(Words({"three", "one"}), "onerous two one three", true), 12);
    EXPECT_EQ(find(Words({"three", "four"}), "one two three", false), -1);
    EXPECT_EQ(find(Words({"b", ""}), "a b", false), 0);
    EXPECT_EQ(find(Words({"b", ""}), "a b", true), -1);
    EXPECT_EQ(find(Words({}), "a b", false), -1);
    EXPECT_EQ(find(Words({""}), "", false), -1);
}

TEST(SearchForGuids, TakesHyphenatedOnesThatStandAlone)
{
    const std::string guid = "7A7B98BB-b07d-450C-BEB1-5ECF84735ACC";
    for (const std::string& text : {guid, "{" + guid + "}", "id=" + guid + ";", "-" + guid + "-",
                                    "\xE9" + guid + "\xE9", "a-b " + guid, guid.substr(9) + " " + guid}) {
        SCOPED_TRACE(text);
        EXPECT_TRUE(StringUtils::ContainsGUID(text));
    }
    std::string wrongDigit = guid;
    wrongDigit[20] = 'G';
    std::string shifted = guid;
    std::swap(shifted[13], shifted[14]);
    for (const std::string& text : {std::string(), guid.substr(1), guid.substr(0, 35), "x" + guid, guid + "0",
                                    wrongDigit, shifted, std::string(36, '-'), std::string(32, 'a')}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(StringUtils::ContainsGUID(text));
    }
}

TEST(SearchForBlocks, ComparesTheLastMarkers)
{
    const struct {
        const char *text, *open, *close;
        bool ifNeither, ifNot;
    } rows[] = {
        {"a <B>c", "<b>", "</B>", true, true},
        {"a <b>c</b> d", "<b>", "</b>", false, false},
        {"<b></b><b>", "<b>", "</b>", true, true},
        {"c</b>", "<b>", "</b>", false, false},
        {"plain", "<b>", "</b>", true, false},
        {"", "<b>", "</b>", true, false},
        {"say \"hel", "\"", "\"", false, false},
        {"x(", "(", "", true, true},
        {"x)", "", ")", false, false},
        {"x", "", "", true, false},
        {"((()", "((", "))", true, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " by " + row.open + row.close);
        EXPECT_EQ(StringUtils::IsInTextBlock(row.text, row.open, row.close, true), row.ifNeither);
        EXPECT_EQ(StringUtils::IsInTextBlock(row.text, row.open, row.close, false), row.ifNot);
    }
}

TEST(SearchForPairs, TakesTheLastOpenerBeforeTheCloser)
{
    const struct {
        const char *text, *open, *close;
        int n, first, second;
    } rows[] = {
        {"[a [b] c] [d]", "[", "]", 1, 3, 5},
        {"[a [b] c] [d]", "[", "]", 2, 10, 12},
        {"[a [b] c] [d]", "[", "]", 3, -1, -1},
        {"[a]", "[", "]", 0, -1, -1},
        {"[a]", "[", "]", INT_MIN, -1, -1},
        {"]a[", "[", "]", 1, -1, -1},
        {"'a' 'b'", "'", "'", 2, 4, 6},
        {"(((x))", "((", "))", 1, 1, 4},
        {"/*/ */", "/*", "*/", 1, 0, 4},
        {"[a]", "", "]", 1, -1, -1},
        {"[a]", "[", "", 1, -1, -1},
        {"", "[", "]", 1, -1, -1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.text << " by " << row.open << row.close << ", n " << row.n);
        int first = 7;
        int second = 7;
        EXPECT_EQ(StringUtils::FindOccurrencePair(row.text, row.open, row.close, row.n, first, second),
                  row.first >= 0);
        EXPECT_EQ(first, row.first);
        EXPECT_EQ(second, row.second);
    }
}

} // namespace
