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

CByteArray ArrayOf(const string& bytes)
{
    CByteArray array;
    array.SetSize(static_cast<CByteArray::Index>(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), array.begin());
    return array;
}

// The rules step by step, without any shortcut.
struct Model {
    bool hasKey = false;
    Aes::KeySchedule keys{};
    std::vector<CString> lines{};

    explicit Model(const string& key)
        : hasKey(key.size() == 16 || key.size() == 24 || key.size() == 32), keys(KeysOf(key))
    {
    }

    string Chain(const string& in, Aes::ChainFunction Aes::Implementation::*direction) const
    {
        return Chained(Aes::UsableImplementations().back().*direction, keys, "", in);
    }

    string Encrypt(string text) const
    {
        while (text.size() % 16 != 0)
            text += '\xA4';
        return hasKey ? Chain(text, &Aes::Implementation::encrypt) : string(text.size(), '\0');
    }

    bool DecryptText(const string& in, string& out)
    {
        out.clear();
        if (in.empty())
            return false;
        if (!hasKey || in.size() % 16 != 0) {
            lines.push_back("{C62DD933-D273-457B-90A4-3F2261AEA3A8}");
            return false;
        }
        out = Chain(in, &Aes::Implementation::decrypt).c_str();
        out = out.substr(0, out.find('\xA4'));
        return true;
    }

    void DoVerifiedEncryption(const string& text, string& out)
    {
        string back;
        for (int attempt = 0; attempt < 10 && !text.empty(); ++attempt) {
            out = Encrypt(text);
            if (DecryptText(out, back) && back == text)
                return;
            out.clear();
        }
        if (!text.empty())
            lines.push_back("{E489273C-1E5A-4E46-9091-541813642DD0}" + text);
    }

    void DoVerifiedDecryption(const string& in, string& out)
    {
        for (int attempt = 0; attempt < 10; ++attempt)
            if (DecryptText(in, out) && Encrypt(out) == in)
                return;
        string numbers;
        for (const char c : in)
            numbers += (numbers.empty() ? "" : ", ") + std::to_string(static_cast<unsigned char>(c));
        lines.push_back("{0B794AD1-CDD7-4E4A-9AC5-E813B180CA79}" + numbers);
    }
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

    void SetKey(const string& key)
    {
        m_model = Model(key);
        EXPECT_TRUE((Reach::GetInstance()->*&Reach::DeriveKey)(key));
    }

    void CheckEncryption(const string& text)
    {
        CByteArray raw = ArrayOf("before");
        string expected = "before";
        Crypto::Encrypt(text, raw);
        EXPECT_EQ(raw, ArrayOf(m_model.Encrypt(text)));
        m_model.lines.push_back("{42911D20-38E8-4BC4-B068-BF803FD3DEA7}" + text);
        m_model.DoVerifiedEncryption(text, expected);
        const string record = RecordOf(text);
        EXPECT_EQ(record.substr(0, 2), text.empty() || expected.empty() ? BytesOf("0000") : BytesOf("0100"));
        EXPECT_TRUE(text.empty() || record.ends_with(expected.empty() ? text : expected));
        EXPECT_EQ(TextOf(record), text);
        EXPECT_EQ(MarkerLines::Take(), std::exchange(m_model.lines, {}));
    }

    void CheckDecryption(const string& in)
    {
        string expected;
        m_model.DoVerifiedDecryption(in, expected);
        EXPECT_EQ(Crypto::Decrypt(ArrayOf(in)), expected);
        EXPECT_EQ(MarkerLines::Take(), std::exchange(m_model.lines, {}));
    }

    MarkerLines m_markers;
    Model m_model{""};
};

TEST_F(CryptoTest, DoesWhatTheSlowModelDoes)
{
    RandomTexts random;
    std::vector<string> texts;
    for (const auto& [text] : Cases<1>("plain texts"))
        texts.push_back(text);
    for (std::size_t length = 0; length < 600; length += length < 50 ? 1 : random.Below(200)) {
        texts.emplace_back(length, 'n');
        for (const unsigned rare : {3u, 100u}) // one in so many is a byte that ends texts
            for (char& c : texts.emplace_back(length, '\0'))
                c = random.OneIn(rare) ? random.Pick("\xA4" /* or its NUL */)
                                       : static_cast<char>(random.Below(256));
    }
    for (const char* key : {"sixteen-letters!", "twenty-four-letters-here",
                            "thirty-two-letters-in-this-phras", "seventeen-letters"}) {
        SetKey(key);
        for (string plain : texts) {
            SCOPED_TRACE(HexOf(plain));
            CheckEncryption(plain);
            CheckDecryption(plain);
            plain.resize((plain.size() + 15) / 16 * 16, '\xA4');
            CheckDecryption(m_model.Chain(plain, &Aes::Implementation::encrypt));
        }
    }
}

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
