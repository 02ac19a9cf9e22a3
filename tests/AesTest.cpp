#include <gtest/gtest.h>

#include <random>
#include <string>

#include "persist/Aes.h"
#include "support/ArchiveBytes.h"

namespace {

std::span<const BYTE> Bytes(const std::string& text)
{
    return {reinterpret_cast<const BYTE*>(text.data()), text.size()};
}

Aes::Block BlockOf(const std::string& text)
{
    Aes::Block block{};
    std::copy_n(Bytes(text).begin(), block.size(), block.begin());
    return block;
}

// From the given chain; `step` blocks at a time, 0 for all at once.
std::string Chained(Aes::ChainFunction run, const Aes::KeySchedule& keys, Aes::Block chain,
                    const std::string& in, std::size_t step = 0)
{
    std::string out(in.size(), '?');
    const std::size_t count = in.size() / Aes::BlockSize;
    for (std::size_t done = 0, blocks = step; done < count; done += blocks) {
        blocks = step == 0 ? count : std::min(step, count - done);
        run(keys, chain, Bytes(in).data() + done * Aes::BlockSize,
            reinterpret_cast<BYTE*>(out.data()) + done * Aes::BlockSize, blocks);
    }
    return out;
}

std::string EachAlone(Aes::ChainFunction run, const Aes::KeySchedule& keys, const std::string& in)
{
    std::string out;
    for (std::size_t i = 0; i < in.size(); i += Aes::BlockSize)
        out += Chained(run, keys, Aes::Block{}, in.substr(i, Aes::BlockSize));
    return out;
}

// FIPS 197, appendix C; SP 800-38A, F.1 (single blocks) and F.2 (the chain).
TEST(Aes, GivesThePublishedBytesInEveryWay)
{
    const char* const blocks = "6bc1bee22e409f96e93d7e117393172a ae2d8a571e03ac9c9eb76fac45af8e51"
                               "30c81c46a35ce411e5fbc1191a0a52ef f69f2445df4f9b17ad2b417be66c3710";
    const char* const start = "000102030405060708090a0b0c0d0e0f";
    const char* const keys[] = {"2b7e151628aed2a6abf7158809cf4f3c",
                                "8e73b0f7da0e6452c810f32b809079e562f8ead2522c6b7b",
                                "603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4"};
    const struct {
        const char *key, *chain, *plain, *encrypted; // without a chain: each block alone
    } rows[] = {
        {start, nullptr, "00112233445566778899aabbccddeeff", "69c4e0d86a7b0430d8cdb78070b4c55a"},
        {"000102030405060708090a0b0c0d0e0f1011121314151617", nullptr, "00112233445566778899aabbccddeeff",
         "dda97ca4864cdfe06eaf70a0ec0d7191"},
        {"000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f", nullptr,
         "00112233445566778899aabbccddeeff", "8ea2b7ca516745bfeafc49904b496089"},
        {keys[0], nullptr, blocks,
         "3ad77bb40d7a3660a89ecaf32466ef97 f5d3d58503b9699de785895a96fdbaaf"
         "43b1cd7f598ece23881b00e3ed030688 7b0c785e27e8ad3f8223207104725dd4"},
        {keys[1], nullptr, blocks,
         "bd334f1d6e45f25ff712a214571fa5cc 974104846d0ad3ad7734ecb3ecee4eef"
         "ef7afd2270e2e60adce0ba2face6444e 9a4b41ba738d6c72fb16691603c18e0e"},
        {keys[2], nullptr, blocks,
         "f3eed1bdb5d2a03c064b5a7e3db181f8 591ccb10d410ed26dc5ba74a31362870"
         "b6ed21b99ca6f4f9f153e7b1beafed1d 23304b7a39f9f3ff067d8d8f9e24ecc7"},
        {keys[0], start, blocks,
         "7649abac8119b246cee98e9b12e9197d 5086cb9b507219ee95db113a917678b2"
         "73bed6b8e3c1743b7116e69e22229516 3ff1caa1681fac09120eca307586e1a7"},
        {keys[1], start, blocks,
         "4f021db243bc633d7178183a9fa071e8 b4d9ada9ad7dedf4e5e738763f69145a"
         "571b242012fb7ae07fa9baac3df102e0 08b0e27988598881d920a9e64f5615cd"},
        {keys[2], start, blocks,
         "f58c4c04d6e5f1ba779eabfb5f7bfbd6 9cfc4e967edb808d679f777bc6702c7d"
         "39f23369a9d9bacfa530e26304231461 b2eb05e2c39be9fcda6c19078c6a9d1b"},
    };
    for (const auto& row : rows)
        for (const auto& way : Aes::UsableImplementations()) {
            SCOPED_TRACE(std::string(way.name) + ": " + row.encrypted);
            const auto schedule = Aes::ExpandKey(Bytes(BytesOf(row.key)));
            const auto check = [&](Aes::ChainFunction run, const std::string& from, const std::string& to) {
                EXPECT_EQ(HexOf(row.chain == nullptr
                                    ? EachAlone(run, schedule, from)
                                    : Chained(run, schedule, BlockOf(BytesOf(row.chain)), from)),
                          HexOf(to));
            };
            check(way.encrypt, BytesOf(row.plain), BytesOf(row.encrypted));
            check(way.decrypt, BytesOf(row.encrypted), BytesOf(row.plain));
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
    const Aes::Implementation& tables = Aes::UsableImplementations().back();
    for (std::size_t count = 0; count < 70; ++count) {
        const auto keys = Aes::ExpandKey(Bytes(bytes(16 + 8 * (count % 3))));
        const Aes::Block chain = BlockOf(bytes(Aes::BlockSize));
        const std::string plain = bytes(count * Aes::BlockSize);
        const std::string encrypted = Chained(tables.encrypt, keys, chain, plain);
        for (const auto& way : Aes::UsableImplementations())
            for (const std::size_t step : {0u, 1u, 5u, 17u, 33u}) {
                SCOPED_TRACE(way.name);
                ASSERT_EQ(Chained(way.encrypt, keys, chain, plain, step), encrypted)
                    << count << " by " << step;
                ASSERT_EQ(Chained(way.decrypt, keys, chain, encrypted, step), plain)
                    << count << " by " << step;
            }
    }
}

TEST(Aes, OtherKeyLengthsHaveNoRounds)
{
    for (std::size_t length = 0; length <= 40; ++length)
        EXPECT_EQ(Aes::ExpandKey(Bytes(std::string(length, 'k'))).rounds, length == 16   ? 10
                                                                          : length == 24 ? 12
                                                                          : length == 32 ? 14
                                                                                         : 0);
}

} // namespace
