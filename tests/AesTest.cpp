#include <gtest/gtest.h>

#include <random>
#include <string>

#include "persist/Aes.h"
#include "support/ArchiveBytes.h"
#include "support/Cases.h"

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
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto bytes = [&](std::size_t size) {
        std::string text(size, '\0');
        for (char& c : text)
            c = static_cast<char>(random());
        return text;
    };
    for (std::size_t count = 0; count < 70; ++count) {
        const auto keys = KeysOf(bytes(16 + 8 * (count % 3)));
        const std::string chain = bytes(Aes::BlockSize), plain = bytes(count * Aes::BlockSize);
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
