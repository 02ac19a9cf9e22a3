#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "Crypto.h"
#include "persist/Aes.h"
#include "support/ArchiveBytes.h"
#include "support/Cases.h"
#include "support/MarkerLines.h"
#include "support/RandomTexts.h"

namespace {

// ---- the cipher -----------------------------------------------------------------------------------------

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

TEST(Aes, GivesThePublishedBytesInEveryWay)
{
    const auto rows = RecordedRows("aes-vectors.tsv"); // a block for itself is chained to zeros
    ASSERT_EQ(rows.size(), 18u);
    for (const auto& row : rows)
        for (const auto& way : Aes::UsableImplementations()) {
            SCOPED_TRACE(std::string(way.name) + ": " + row[4]);
            const auto keys = KeysOf(BytesOf(row[1]));
            const std::string chain = BytesOf(row[2]), plain = BytesOf(row[3]), encrypted = BytesOf(row[4]);
            EXPECT_EQ(HexOf(Chained(way.encrypt, keys, chain, plain)), HexOf(encrypted));
            EXPECT_EQ(HexOf(Chained(way.decrypt, keys, chain, encrypted)), HexOf(plain));
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

// ---- texts ----------------------------------------------------------------------------------------------

using std::string;

struct Reach : Crypto {
    using Crypto::DecryptText;
    using Crypto::DeriveKey;
    using Crypto::GetInstance;
    using Crypto::GetNextEvenBlockSize;
};

string RecordOf(CString text)
{
    return StoredBy([&](CArchive& archive) { Crypto::Serialize(archive, text); });
}

CString TextOf(const string& record)
{
    CString text = "before";
    LoadFrom(record, [&](CArchive& archive) { Crypto::Serialize(archive, text); });
    return text;
}

// Each test begins and ends without the object, and sees the marker lines.
class CryptoTest : public testing::Test {
protected:
    CryptoTest() { Crypto::DeleteInstance(); }
    ~CryptoTest() override { Crypto::DeleteInstance(); }

    MarkerLines m_markers;
};

// Which come in steps, and whose count is of the longest form.
TEST_F(CryptoTest, ManyBytesAreRead)
{
    EXPECT_EQ(TextOf(BytesOf("0100 0000")), "");
    EXPECT_EQ(MarkerLines::Take(), std::vector<CString>{"{0B794AD1-CDD7-4E4A-9AC5-E813B180CA79}"});
    const CString large('m', 1'000'001);
    EXPECT_EQ(TextOf(RecordOf(large)), large);
}

TEST_F(CryptoTest, TheObjectIsMadeWhenNeeded)
{
    CByteArray bytes;
    CString text;
    Crypto::Encrypt("x", bytes);
    EXPECT_NE(Crypto::m_pInstance, nullptr);
    Crypto::DeleteInstance();
    EXPECT_EQ(Crypto::m_pInstance, nullptr);
    EXPECT_EQ(Crypto::Decrypt(bytes.GetData(), 16), "x");
    EXPECT_EQ(Crypto::Decrypt(bytes.GetData(), -16) + Crypto::Decrypt(nullptr, 16), "");
    EXPECT_EQ(MarkerLines::Take(), std::vector<CString>{});
    Reach own; // has no key yet, and none after a phrase of a wrong length
    for (int length = -1; length <= 40; ++length) {
        EXPECT_TRUE(length < 0 || own.DeriveKey(CString('k', length)));
        EXPECT_EQ(own.DecryptText(bytes, text), length == 16 || length == 24 || length == 32) << length;
    }
    for (const uint64 size : {0u, 1u, 15u, 16u})
        EXPECT_EQ(own.GetNextEvenBlockSize(~31ull + size), ~31ull + (size == 0 ? 0 : 16));
}

} // namespace
