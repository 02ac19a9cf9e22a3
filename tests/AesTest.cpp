#include <gtest/gtest.h>

#include <numeric>

#include "persist/Aes.h"
#include "support/ArchiveBytes.h"
#include "support/Cases.h"
#include "support/RandomTexts.h"

namespace {

Aes::KeySchedule KeysOf(const std::string& key)
{
    return Aes::ExpandKey({reinterpret_cast<const BYTE*>(key.data()), key.size()});
}

// From the given chain, `step` blocks at a time.
std::string Chained(Aes::ChainFunction run, const Aes::KeySchedule& keys, const std::string& chain,
                    const std::string& in, std::size_t step = 1000)
{
    Aes::Block working{};
    std::copy(chain.begin(), chain.end(), working.begin());
    std::string out;
    for (std::size_t done = 0; done < in.size(); done = out.size()) {
        const std::string piece = in.substr(done, step * Aes::BlockSize);
        out.resize(done + piece.size());
        run(keys, working, reinterpret_cast<const BYTE*>(piece.data()),
            reinterpret_cast<BYTE*>(out.data() + done), piece.size() / Aes::BlockSize);
    }
    return out;
}

std::string EachAlone(Aes::ChainFunction run, const Aes::KeySchedule& keys, const std::string& in)
{
    std::string out;
    for (std::size_t i = 0; i < in.size(); i += Aes::BlockSize)
        out += Chained(run, keys, "", in.substr(i, Aes::BlockSize));
    return out;
}

// Rows without a chain hold blocks for themselves.
TEST(Aes, GivesThePublishedBytesInEveryWay)
{
    const auto rows = RecordedRows("aes-vectors.tsv");
    ASSERT_EQ(rows.size(), 9u);
    for (const auto& row : rows)
        for (const auto& way : Aes::UsableImplementations()) {
            SCOPED_TRACE(std::string(way.name) + ": " + row[4]);
            const auto keys = KeysOf(BytesOf(row[1]));
            const auto check = [&](Aes::ChainFunction run, const std::string& from, const std::string& to) {
                EXPECT_EQ(HexOf(row[2] == "none" ? EachAlone(run, keys, BytesOf(from))
                                                 : Chained(run, keys, BytesOf(row[2]), BytesOf(from))),
                          HexOf(BytesOf(to)));
            };
            check(way.encrypt, row[3], row[4]);
            check(way.decrypt, row[4], row[3]);
        }
}

// Every number of blocks around the widths that are worked on at once, whole and in pieces.
TEST(Aes, AllWaysAgreeAndDecryptionUndoesEncryption)
{
    RandomTexts random;
    std::string letters(256, '\0');
    std::iota(letters.begin(), letters.end(), '\0');
    for (std::size_t count = 0; count < 70; ++count) {
        const auto keys = KeysOf(random.Make(letters, 16 + 8 * (count % 3)));
        const std::string chain = random.Make(letters, 16), plain = random.Make(letters, 16 * count);
        const std::string encrypted =
            Chained(Aes::UsableImplementations().back().encrypt, keys, chain, plain);
        for (const auto& way : Aes::UsableImplementations())
            for (const std::size_t step : {1u, 5u, 17u, 33u, 70u}) {
                ASSERT_EQ(Chained(way.encrypt, keys, chain, plain, step), encrypted) << way.name << count;
                ASSERT_EQ(Chained(way.decrypt, keys, chain, encrypted, step), plain) << way.name << count;
            }
    }
}

} // namespace
