#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "StringUtils.h"
#include "framework/TextSearch.h"
#include "support/RandomTexts.h"
#include "support/TextModels.h"

namespace {

// ---- the rules, one character after the other -----------------------------------------------------------

// Where the attempts that match begin. Each goes as far as it can; the next one begins at the character that
// stopped it, or so many characters behind that one.
std::vector<int> SlowAttempts(const std::string& text, const std::string& wanted, bool caseSensitive,
                              std::size_t skipped, int start = 0)
{
    std::vector<int> found;
    for (auto i = static_cast<std::size_t>(std::max(start, 0)); i < text.size() && !wanted.empty();) {
        std::size_t k = 0;
        while (k < wanted.size() && i + k < text.size() &&
               (caseSensitive ? text[i + k] == wanted[k] : LowerOf(text[i + k]) == LowerOf(wanted[k])))
            ++k;
        if (k == wanted.size())
            found.push_back(static_cast<int>(i));
        i += std::max<std::size_t>(k + skipped, 1);
    }
    return found;
}

// The n-th of them, from 1.
int At(const std::vector<int>& found, int n)
{
    return n > 0 && n <= static_cast<int>(found.size()) ? found[static_cast<std::size_t>(n) - 1] : -1;
}

int SlowFindLast(std::string text, std::string wanted)
{
    std::reverse(text.begin(), text.end());
    std::reverse(wanted.begin(), wanted.end());
    const int at = At(SlowAttempts(text, wanted, true, 1), 1);
    return at < 0 ? -1 : static_cast<int>(text.size() - wanted.size()) - at;
}

// Each exact occurrence that begins behind the one before.
std::vector<int> SlowOccurrences(const std::string& text, const std::string& wanted, int start = 0)
{
    std::vector<int> found;
    for (auto at = text.find(wanted, static_cast<std::size_t>(start));
         at != std::string::npos && !wanted.empty(); at = text.find(wanted, at + wanted.size()))
        found.push_back(static_cast<int>(at));
    return found;
}

bool IsWhole(const std::string& text, int begin, std::size_t length, bool underscore, bool dollar)
{
    const auto delimits = [&](char c) {
        return c == '_' ? underscore : c == '$' ? dollar : Has(Space + Punctuation, c);
    };
    const auto at = static_cast<std::size_t>(begin);
    return (at == 0 || delimits(text[at - 1])) && (at + length == text.size() || delimits(text[at + length]));
}

bool IsBlank(const std::string& text)
{
    return text.find_first_not_of(Space) == std::string::npos;
}

// ---- comparing with them --------------------------------------------------------------------------------

// Every search, text by text.
void CompareAll(const std::string& text, const std::string& wanted, int start, int n, bool flag, bool other)
{
    SCOPED_TRACE(testing::Message() << testing::PrintToString(wanted) << " in "
                                    << testing::PrintToString(text) << " from " << start << ", n " << n
                                    << ", flags " << flag << other);
    const CString s(text), sub(wanted);
    int pos = 7, last = 7;
    const bool isFoundNoCase = StringUtils::Find(s, sub, false, pos, start);
    ASSERT_EQ(isFoundNoCase, pos >= 0);
    ASSERT_EQ(pos, At(SlowAttempts(text, wanted, false, 1, start), 1));
    ASSERT_EQ(StringUtils::Contains(s, sub, true, start), StringUtils::Find(s, sub, true, pos, start));
    ASSERT_EQ(pos, static_cast<int>(text.find(wanted, static_cast<std::size_t>(std::max(start, 0)))));
    ASSERT_EQ(StringUtils::FindLast(s, sub), SlowFindLast(text, wanted));
    const auto attempts = SlowAttempts(text, wanted, flag, 1);
    StringUtils::FindFirstAndLast(s, sub, flag, pos, last);
    ASSERT_EQ(std::pair(pos, last),
              attempts.size() < 2 ? std::pair(-1, -1) : std::pair(attempts.front(), attempts.back()));
    ASSERT_EQ(StringUtils::FindOccurrenceIndex(s, sub, n, flag),
              IsBlank(text) ? -1 : At(SlowAttempts(text, wanted, flag, 0), n));
    const auto all = flag ? SlowOccurrences(text, wanted) : SlowOccurrences(Lowered(text), Lowered(wanted));
    ASSERT_EQ(StringUtils::FindOccurrences(s, sub, flag), IsBlank(text) ? 0 : static_cast<int>(all.size()));
    auto whole = SlowOccurrences(text, wanted, std::max(start, 0));
    std::erase_if(whole, [&](int at) { return !IsWhole(text, at, wanted.size(), flag, other); });
    ASSERT_EQ(StringUtils::FindWholeWordMatch(s, sub, n, start, flag, other),
              start < 0 || IsBlank(text) ? -1 : At(whole, n));
}

// Of few different characters, so that parts of the pattern stand everywhere; long texts go over several
// vector blocks, with matches at their borders.
TEST(Search, FindsWhatTheRulesFind)
{
    const std::vector<std::string> alphabets = {
        "ab",      "aAbB",    "abc ", std::string("a\0\xE9\xFF", 4), std::string("aA\0\xC4 b", 6),
        "on _$,x", "\xE9\x80"};
    RandomTexts random;
    for (const int extreme : {INT_MIN, -1, INT_MAX})
        CompareAll("abc", "a", extreme, extreme, true, true);
    for (int round = 0; round < 40000 && !HasFatalFailure(); ++round) {
        const bool isLong = random.OneIn(10);
        const std::string& alphabet = random.Pick(alphabets);
        const std::string wanted = random.Make(alphabet, isLong ? 1 + random.Below(12) : random.Below(5));
        std::string text = random.Make(isLong && random.OneIn(2) ? "zyxw. " : alphabet,
                                       isLong ? 200 + random.Below(1500) : random.Below(24));
        for (std::size_t i = isLong ? random.Below(6) : 0; i > 0; --i)
            text.replace(random.Below(text.size()), wanted.size(), wanted);
        const int start =
            static_cast<int>(random.Below(std::min<std::size_t>(text.size() + 3, isLong ? 2000 : 8))) - 1;
        CompareAll(text, wanted, start, static_cast<int>(random.Below(5)), random.OneIn(2), random.OneIn(2));
    }
}

TEST(Search, TakesLinearTimeOnTextsThatAlmostMatchEverywhere)
{
    const std::string text(3000000, 'a');
    const std::string wanted = std::string(100000, 'a') + 'b';
    int pos = 0;
    EXPECT_FALSE(StringUtils::Find(text, wanted, true, pos) || StringUtils::Find(text, wanted, false, pos));
    EXPECT_EQ(StringUtils::FindOccurrences(text, CString(wanted).MakeReverse(), true), 0);
    EXPECT_EQ(StringUtils::FindOccurrences(text + wanted, wanted, true), 1);
    EXPECT_EQ(StringUtils::FindWholeWordMatch(text, wanted, 1, 0, false, false), -1);
    EXPECT_FALSE(StringUtils::IsInTextBlock(text, wanted, "c", false));
}

// ---- what they are made of ------------------------------------------------------------------------------

using TextSearch::ByteFold;
using TextSearch::Candidates;

// Every instruction set the processor has must give the same blocks; the library itself uses the best only.
TEST(SearchCandidates, AreTheSameWithEveryInstructionSet)
{
    RandomTexts random;
    for (int round = 0; round < 2000; ++round) {
        const std::string made = random.OneIn(2)
                                     ? random.Make(std::string("abc"), 300 + random.Below(1000))
                                     : random.Make(Words("a A b B \x80 \xFF"), 300 + random.Below(1000));
        const std::vector<char> text(made.begin(), made.end()); // so that sanitizers see reads behind it
        const std::size_t offset = random.Below(16);
        const Candidates::Pair pair{text.data(), text.data() + offset, {'a', 0x20}, {'b', 0}};
        const std::size_t end = text.size() - offset - random.Below(9);
        for (std::size_t from = random.Below(64); from < end;) {
            Candidates::Bits expected{};
            const std::size_t base = Candidates::UsableScans().back()(pair, from, end, expected);
            for (const auto scan : Candidates::UsableScans()) {
                Candidates::Bits bits{};
                ASSERT_EQ(scan(pair, from, end, bits), base);
                ASSERT_EQ(bits, expected);
            }
            for (std::size_t i = 0; base + Candidates::BlockSize <= end && i < Candidates::BlockSize; ++i)
                ASSERT_EQ((expected[i / 64] >> i % 64 & 1) != 0,
                          (text[base + i] == 'a' || text[base + i] == 'A') && text[base + i + offset] == 'b');
            from = base + Candidates::BlockSize;
        }
    }
}

void ExpectOccurrences(const std::string& text, const std::string& wanted, const ByteFold& fold)
{
    const auto isEqual = [&](char a, char b) { return fold(a) == fold(b); };
    TextSearch::Occurrences occurrences(text, wanted, fold);
    auto slow = text.begin();
    for (std::size_t from = 0; from != TextSearch::None; from += wanted.size()) {
        slow = std::search(slow, text.end(), wanted.begin(), wanted.end(), isEqual);
        ASSERT_EQ(occurrences.Next(from),
                  slow == text.end() ? TextSearch::None : std::size_t(slow - text.begin()));
        if (slow == text.end())
            return;
        from = std::size_t(slow - text.begin());
        slow += static_cast<std::ptrdiff_t>(wanted.size());
    }
}

// Ranges of bytes that count the same, as locales have them, and one that no bit operation can tell.
TEST(SearchOccurrences, AreFoundUnderAnyFold)
{
    const ByteFold folds[] = {
        ByteFold([](unsigned int byte) { return byte; }),
        ByteFold([](unsigned int byte) { return byte < 128 ? byte : 0; }),
        ByteFold([](unsigned int byte) { return byte == 'I' ? 0xFDu : byte; }),
        ByteFold([](unsigned int byte) { return byte % 7; }),
        ByteFold([](unsigned int) { return 42u; }),
    };
    const std::string alphabet("aIi\xFD\xDD\x07\x0E\0", 8);
    RandomTexts random;
    for (int round = 0; round < 4000 && !HasFatalFailure(); ++round)
        ExpectOccurrences(random.Make(alphabet, random.Below(700)),
                          random.Make(alphabet, 1 + random.Below(6)), random.Pick(folds));
}

// Texts made of fronts of a periodic pattern: comparing goes far at most places, so the automaton takes over.
TEST(SearchOccurrences, AreExactInTextsThatAlmostMatchEverywhere)
{
    RandomTexts random;
    for (int round = 0; round < 60 && !HasFatalFailure(); ++round) {
        const std::string unit = random.Pick(Words("a ab aab aabaa abaab"));
        std::string wanted, text;
        for (std::size_t length = 100 + random.Below(200); wanted.size() < length;)
            wanted += random.OneIn(50) ? "b" : unit;
        while (text.size() < 40000)
            text += random.OneIn(20) ? wanted : wanted.substr(0, wanted.size() - random.Below(60));
        ExpectOccurrences(text, wanted, TextSearch::Exact);
    }
}

} // namespace
