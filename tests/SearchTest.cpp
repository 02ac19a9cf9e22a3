#include <gtest/gtest.h>

#include <algorithm>

#include "StringUtils.h"
#include "framework/TextSearch.h"
#include "support/RandomTexts.h"
#include "support/TextModels.h"

namespace {

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
