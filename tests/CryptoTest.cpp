#include <gtest/gtest.h>

#include <algorithm>

#include "Crypto.h"
#include "persist/Aes.h"
#include "support/ArchiveBytes.h"
#include "support/Cases.h"
#include "support/MarkerLines.h"
#include "support/RandomTexts.h"

namespace {

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
        : hasKey(key.size() == 16 || key.size() == 24 || key.size() == 32),
          keys(Aes::ExpandKey({reinterpret_cast<const BYTE*>(key.data()), key.size()}))
    {
    }

    string Chain(const string& in, Aes::ChainFunction Aes::Implementation::*direction) const
    {
        string out(in.size(), '\0');
        Aes::Block chain{};
        (Aes::UsableImplementations().back().*direction)(keys, chain,
                                                         reinterpret_cast<const BYTE*>(in.data()),
                                                         reinterpret_cast<BYTE*>(out.data()), in.size() / 16);
        return out;
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
        if (text.empty())
            return;
        for (int attempt = 0; attempt < 10; ++attempt) {
            out = Encrypt(text);
            string back;
            if (!out.empty() && DecryptText(out, back) && back == text)
                return;
            out.clear();
        }
        lines.push_back("{E489273C-1E5A-4E46-9091-541813642DD0}" + text);
    }

    void DoVerifiedDecryption(const string& in, string& out)
    {
        for (int attempt = 0; attempt < 10; ++attempt) {
            string again;
            if (DecryptText(in, out) && Encrypt(out) == in && DecryptText(in, again) && again == out &&
                Encrypt(again) == in)
                return;
        }
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
