#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "framework/TextSearch.h"

namespace {

using TextSearch::ByteFold;
using TextSearch::Candidates;

// Every instruction set the processor has must give the same blocks; the library itself uses the best only.
TEST(SearchCandidates, AreTheSameWithEveryInstructionSet)
{
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 2000; ++round) {
        std::vector<char> text(300 + random() % 1000); // a vector, so that sanitizers see reads behind it
        const bool isDense = random() % 2 == 0;
        for (char& c : text)
            c = static_cast<char>(isDense ? 'a' + random() % 3 : random());
        const std::size_t offset = random() % 16;
        const Candidates::Pair pair{text.data(), text.data() + offset, {'a', 0x20}, {'b', 0}};
        const std::size_t end = text.size() - offset - random() % 9;
        std::size_t from = random() % 64;
        while (from < end) {
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

// Ranges of bytes that count the same, as locales have them, and one that no bit operation can tell.
TEST(SearchCandidates, NeverMissAnOccurrenceUnderAnyFold)
{
    const ByteFold folds[] = {
        ByteFold([](unsigned int byte) { return byte; }),
        ByteFold([](unsigned int byte) { return byte < 128 ? byte : 0; }),
        ByteFold([](unsigned int byte) { return byte == 'I' ? 0xFDu : byte; }),
        ByteFold([](unsigned int byte) { return byte % 7; }),
        ByteFold([](unsigned int) { return 42u; }),
    };
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 4000; ++round) {
        const ByteFold& fold = folds[random() % std::size(folds)];
        std::string text(random() % 700, '\0');
        for (char& c : text)
            c = "aIi\xFD\xDD\x07\x0E\0"[random() % 8];
        std::string wanted(1 + random() % 6, '\0');
        for (char& c : wanted)
            c = "aIi\xFD\xDD\x07\x0E\0"[random() % 8];
        const auto isEqual = [&](char a, char b) { return fold(a) == fold(b); };
        TextSearch::Occurrences occurrences(text, wanted, fold);
        auto slow = text.cbegin();
        for (std::size_t from = 0;; from += wanted.size()) {
            slow = std::search(slow, text.cend(), wanted.begin(), wanted.end(), isEqual);
            from = occurrences.Next(from);
            ASSERT_EQ(from, slow == text.cend() ? TextSearch::None
                                                : static_cast<std::size_t>(slow - text.cbegin()));
            if (from == TextSearch::None)
                break;
            slow += static_cast<std::ptrdiff_t>(wanted.size());
        }
    }
}

// Texts made of fronts of a periodic pattern: comparing goes far at most places, so the automaton takes over.
TEST(SearchOccurrences, AreExactInTextsThatAlmostMatchEverywhere)
{
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 60; ++round) {
        const std::string units[] = {"a", "ab", "aab", "aabaa", "abaab"};
        const std::string& unit = units[random() % std::size(units)];
        std::string wanted;
        for (std::size_t length = 100 + random() % 200; wanted.size() < length;)
            wanted += random() % 50 == 0 ? std::string("b") : unit;
        std::string text;
        while (text.size() < 40000)
            text += random() % 20 == 0 ? wanted : wanted.substr(0, wanted.size() - random() % 60);
        TextSearch::Occurrences occurrences(text, wanted);
        for (std::size_t from = 0;; from += wanted.size()) {
            const std::size_t slow = text.find(wanted, from);
            from = occurrences.Next(from);
            ASSERT_EQ(from, slow);
            if (from == TextSearch::None)
                break;
        }
    }
}

} // namespace
