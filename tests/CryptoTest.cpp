#include <gtest/gtest.h>

#include <random>
#include <string>
#include <unordered_set>
#include <vector>

#include "Crypto.h"
#include "MRUArray.h"
#include "SerializeData.h"
#include "TextArray.h"
#include "framework/FailureMarkers.h"
#include "persist/Aes.h"
#include "support/ArchiveBytes.h"

namespace {

using std::string;

struct Reach : Crypto {
    using Crypto::DecryptText;
    using Crypto::DeriveKey;
    using Crypto::DoVerifiedDecryption;
    using Crypto::DoVerifiedEncryption;
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

std::vector<CString> ListOf(const TextArray& texts)
{
    return {texts.begin(), texts.end()};
}

string TextOf(const CByteArray& array)
{
    return string(array.begin(), array.end());
}

// Each test begins with a new object and ends without one, and sees the marker lines.
class CryptoTest : public testing::Test {
protected:
    CryptoTest()
    {
        Crypto::DeleteInstance();
        s_lines.clear();
        m_before = FailureMarkers::SetSink([](const CString& line) { s_lines.emplace_back(line.View()); });
    }
    ~CryptoTest() override
    {
        FailureMarkers::SetSink(m_before);
        Crypto::DeleteInstance();
    }

    static std::vector<string> TakeLines() { return std::exchange(s_lines, {}); }
    static void SetKey(const string& phrase)
    {
        EXPECT_TRUE((Reach::GetInstance()->*&Reach::DeriveKey)(phrase));
    }
    static bool DecryptText(const string& in, CString& out)
    {
        return (Reach::GetInstance()->*&Reach::DecryptText)(ArrayOf(in), out);
    }

private:
    FailureMarkers::Sink m_before;
    static inline std::vector<string> s_lines;
};

// ---- the rules, step by step, without any shortcut --------------------------------------------------------

struct Model {
    bool hasKey = false;
    Aes::KeySchedule keys;
    std::vector<string> lines;

    string Chain(const string& in, bool encrypt) const
    {
        const Aes::Implementation& tables = Aes::UsableImplementations().back();
        string out(in.size(), '\0');
        Aes::Block chain{};
        (encrypt ? tables.encrypt : tables.decrypt)(keys, chain, reinterpret_cast<const BYTE*>(in.data()),
                                                    reinterpret_cast<BYTE*>(out.data()), in.size() / 16);
        return out;
    }
    void SetKey(const string& key)
    {
        hasKey = key.size() == 16 || key.size() == 24 || key.size() == 32;
        keys = Aes::ExpandKey({reinterpret_cast<const BYTE*>(key.data()), key.size()});
    }
    string Encrypt(string text) const
    {
        while (text.size() % 16 != 0)
            text += '\xA4';
        return hasKey ? Chain(text, true) : string(text.size(), '\0');
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
        out = Chain(in, false).c_str();
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
            if (!DecryptText(in, out))
                continue;
            const string second = Encrypt(out);
            string again;
            DecryptText(in, again);
            if (again == out && second == in && Encrypt(again) == in)
                return;
        }
        string numbers;
        for (const char c : in)
            numbers += (numbers.empty() ? "" : ", ") + std::to_string(static_cast<unsigned char>(c));
        lines.push_back("{0B794AD1-CDD7-4E4A-9AC5-E813B180CA79}" + numbers);
    }
};

class CryptoAgainstModel : public CryptoTest {
protected:
    void UseKey(const string& key)
    {
        m_model.SetKey(key);
        SetKey(key);
    }

    void CheckEncryption(const string& text)
    {
        SCOPED_TRACE("text " + HexOf(text));
        CByteArray out = ArrayOf("before");
        string expected = "before";
        Crypto::Encrypt(CString(text), out);
        EXPECT_EQ(TextOf(out), m_model.Encrypt(text));
        out = ArrayOf("before");
        Reach::DoVerifiedEncryption(CString(text), out);
        m_model.DoVerifiedEncryption(text, expected);
        EXPECT_EQ(TextOf(out), expected);
        CheckLines();
        CheckStoring(text, text.empty() ? string() : expected);
    }

    void CheckStoring(const string& text, const string& encrypted)
    {
        m_model.lines.push_back("{42911D20-38E8-4BC4-B068-BF803FD3DEA7}" + text);
        string unused;
        m_model.DoVerifiedEncryption(text, unused);
        const string expected = encrypted.empty() ? StoredBy([&](CArchive& ar) { ar << WORD{0} << text; })
                                                  : StoredBy([&](CArchive& ar) {
                                                        ar << WORD{1};
                                                        ar.WriteCount(encrypted.size());
                                                        ar.Write(encrypted.data(), encrypted.size());
                                                    });
        CString stored(text);
        const string record = StoredBy([&](CArchive& ar) { Crypto::Serialize(ar, stored); });
        EXPECT_EQ(HexOf(record), HexOf(expected));
        LoadFrom(record, [&](CArchive& ar) {
            CString loaded = "before";
            Crypto::Serialize(ar, loaded);
            EXPECT_EQ(loaded, text);
            EXPECT_EQ(ar.GetBytesAhead(), 0u);
        });
        CheckLines();
    }

    void CheckDecryption(const string& in)
    {
        SCOPED_TRACE("bytes " + HexOf(in));
        CString out = "before";
        string expected;
        EXPECT_EQ(DecryptText(in, out), m_model.DecryptText(in, expected));
        EXPECT_EQ(out, expected);
        CheckLines();
        out = "before";
        Reach::DoVerifiedDecryption(ArrayOf(in), out);
        m_model.DoVerifiedDecryption(in, expected);
        EXPECT_EQ(out, expected);
        CheckLines();
        EXPECT_EQ(
            Crypto::Decrypt(reinterpret_cast<const unsigned char*>(in.data()), static_cast<int>(in.size())),
            expected);
        if (!in.empty())
            m_model.DoVerifiedDecryption(in, expected);
        CheckLines();
    }

    void CheckLines() { EXPECT_EQ(TakeLines(), std::exchange(m_model.lines, {})); }

    Model m_model;
};

const char* const Keys[] = {"sixteen-letters!", "twenty-four-letters-here",
                            "thirty-two-letters-in-this-phras", "short"};

// Plain bytes under the cipher: where a text ends, and whether what follows is what encryption adds.
TEST_F(CryptoAgainstModel, HardCases)
{
    const string nul(1, '\0'), pad = "\xA4", letters = "0123456789abcdef";
    const string plains[] = {
        letters,
        letters + letters,
        letters.substr(1) + pad,
        letters.substr(1) + nul,
        letters.substr(2) + pad + nul,
        letters.substr(2) + nul + pad,
        letters.substr(2) + pad + "x",
        string(16, '\xA4'),
        string(16, '\0'),
        string(32, '\xA4'),
        letters + string(16, '\xA4'), // a whole block of padding is never added
        letters + string(16, '\0'),
        letters + "x" + string(15, '\xA4'),
        letters + "x" + string(14, '\xA4') + nul,
        pad + letters.substr(1),
        nul + letters.substr(1),
        letters + pad + letters.substr(1),
        letters + nul + letters.substr(1),
        "ab" + string(14, '\xA4') + letters,
        "\x80\xFF\x01" + letters.substr(3),
    };
    for (const char* key : Keys) {
        UseKey(key);
        for (const string& plain : plains) {
            CheckDecryption(m_model.Chain(plain, true));
            CheckEncryption(plain);
            CheckEncryption(plain + "a");
        }
        for (std::size_t length = 0; length <= 64; ++length) {
            CheckEncryption(string(length, 'n'));
            CheckDecryption(string(length, 'n'));
        }
    }
}

TEST_F(CryptoAgainstModel, RandomTextsAndBytes)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto bytes = [&](std::size_t size, unsigned rare) { // one in `rare` is a byte that ends texts
        string text;
        for (std::size_t i = 0; i < size; ++i)
            text += random() % rare != 0 ? static_cast<char>(random()) : random() % 2 == 0 ? '\0' : '\xA4';
        return text;
    };
    for (int i = 0; i < 500 && !HasFailure(); ++i) {
        UseKey(Keys[random() % 4]);
        const std::size_t size = random() % (i % 20 == 0 ? 1500 : 70);
        string plain = bytes(size, random() % 2 == 0 ? 4 : 100);
        CheckEncryption(plain);
        plain.resize((size + 15) / 16 * 16, '\xA4');
        CheckDecryption(m_model.Chain(plain, true));
        CheckDecryption(bytes(size, 100));
    }
}

// ---- what stored data and hosts depend on -----------------------------------------------------------------

// Made by another program from the pass phrase: as long as these hold, older data can be read.
constexpr const char* HelloRecord = "0100 1000 7db79f3387dd5daecee36d71a85c4035";
constexpr const char* AbRecord = "0100 1000 f5de3c53d79ade6197361d6ce25de335";
constexpr const char* LongRecord =
    "0100 2000 07c669f27aea26bcbf3f1b7aff9dd5cd868b84d20bce8ca1e12b50a611d5f8ee";

TEST_F(CryptoTest, RecordsOfTheBuiltInPhraseNeverChange)
{
    const struct {
        const char *text, *record;
    } rows[] = {{"Hello", HelloRecord},
                {"ab", AbRecord},
                {"0123456789abcdef", "0100 1000 07c669f27aea26bcbf3f1b7aff9dd5cd"},
                {"0123456789abcdefg", LongRecord},
                {"", "0000 00"},
                {"a\xA4"
                 "b",
                 "0000 03 61a462"}};
    for (const auto& row : rows)
        for (int object = 0; object < 2; ++object, Crypto::DeleteInstance()) {
            SCOPED_TRACE(row.record);
            CString text = row.text, loaded = "before";
            EXPECT_EQ(HexOf(StoredBy([&](CArchive& ar) { Crypto::Serialize(ar, text); })),
                      HexOf(BytesOf(row.record)));
            LoadFrom(BytesOf(row.record), [&](CArchive& ar) { Crypto::Serialize(ar, loaded); });
            EXPECT_EQ(loaded, row.text);
        }
}

TEST_F(CryptoTest, OldContainersOfEncryptedRecordsAreRead)
{
    const string hello = HelloRecord, ab = AbRecord, two = "0200000000000000";
    const auto expectArray = [&](const string& hex) {
        SCOPED_TRACE(hex);
        LoadFrom(BytesOf(hex), [](CArchive& ar) {
            TextArray texts;
            texts.Serialize(ar, true);
            EXPECT_EQ(ListOf(texts), (std::vector<CString>{"Hello", "ab"}));
        });
    };
    expectArray("0200 02000000" + hello + ab);
    expectArray("0300 0100" + two + hello + ab);

    for (const string& start :
         {"0100 0200 01000000" + hello + "01000000 02000000", // the table as it was once
          "0300 0300 0100 0100000000000000" + hello + "0100 0100000000000000 02000000"})
        LoadFrom(BytesOf(start + "0300 0100 0100000000000000" + ab), [](CArchive& ar) {
            MRUArray lists;
            lists.Serialize(ar);
            TextArray recent, popular;
            lists.GetRecent(recent);
            lists.GetPopular(popular);
            EXPECT_EQ(ListOf(recent), std::vector<CString>{"Hello"});
            EXPECT_EQ(ListOf(popular), std::vector<CString>{"ab"});
        });

    LoadFrom(BytesOf("0100" + two + hello + ab + "0100 0100000000000000" + hello + "07000000" + // list, map
                     "0100" + two + "01000000" + ab + "02000000 01 63"), // map of int, one key of two
             [](CArchive& ar) {
                 std::vector<CString> list;
                 std::map<CString, int> map;
                 std::map<int, CString> byNumber;
                 SerializeData::SerializeEncrypted(ar, list);
                 SerializeData::SerializeEncrypted(ar, map);
                 SerializeData::Serialize(ar, byNumber, std::unordered_set<int>{1});
                 EXPECT_EQ(list, (std::vector<CString>{"Hello", "ab"}));
                 EXPECT_EQ(map, (std::map<CString, int>{{"Hello", 7}}));
                 EXPECT_EQ(byNumber, (std::map<int, CString>{{1, "ab"}, {2, "c"}}));
             });
}

// A claimed count costs no more memory than the bytes that are there.
TEST_F(CryptoTest, DamagedRecordsEndInTheArchivesException)
{
    for (const char* hex : {"0100", "0100 10", "0100 1000 00", "0100 FFFF FEFFFFFF 00",
                            "0100 FFFF FFFFFFFF FFFFFFFFFFFFFF7F 00", "0200 05 61"})
        LoadFrom(BytesOf(hex), [&](CArchive& ar) {
            CString text = "before";
            EXPECT_THROW(Crypto::Serialize(ar, text), CArchiveException) << hex;
            EXPECT_EQ(text, "before");
        });
    LoadFrom(BytesOf("0700 01 61 0100 0000"), [](CArchive& ar) {
        CString text = "before";
        Crypto::Serialize(ar, text); // any flag but 1
        EXPECT_EQ(text, "a");
        Crypto::Serialize(ar, text); // no bytes at all
        EXPECT_EQ(text, "");
    });
    EXPECT_EQ(TakeLines(), std::vector<string>{"{0B794AD1-CDD7-4E4A-9AC5-E813B180CA79}"});
}

TEST_F(CryptoTest, TheObjectIsMadeWhenNeeded)
{
    EXPECT_EQ(Crypto::m_pInstance, nullptr);
    CByteArray out;
    Crypto::Encrypt("x", out);
    EXPECT_NE(Crypto::m_pInstance, nullptr);
    EXPECT_EQ(Reach::GetInstance(), Crypto::m_pInstance);
    Crypto::DeleteInstance();
    EXPECT_EQ(Crypto::m_pInstance, nullptr);
    EXPECT_EQ(Crypto::Decrypt(out), "x");
    EXPECT_EQ(Crypto::Decrypt(nullptr, 5), "");
    EXPECT_EQ(Crypto::Decrypt(out.GetData(), 0), "");
    EXPECT_EQ(Crypto::Decrypt(out.GetData(), -16), "");
    EXPECT_EQ(TakeLines(), std::vector<string>{});

    Reach own; // has no key yet, and none after a phrase of a wrong length
    CString text;
    EXPECT_FALSE(own.DecryptText(out, text));
    EXPECT_TRUE(own.DeriveKey("sixteen-letters!"));
    EXPECT_TRUE(own.DecryptText(out, text));
    EXPECT_TRUE(own.DeriveKey("short"));
    EXPECT_FALSE(own.DecryptText(out, text));
}

TEST_F(CryptoTest, SizesAreRoundedUp)
{
    const struct {
        uint64 size, rounded;
    } rows[] = {{0, 0}, {1, 16}, {15, 16}, {16, 16}, {17, 32}, {0xFFFFFFFFFFFFFFF0, 0xFFFFFFFFFFFFFFF0}};
    for (const auto& row : rows)
        EXPECT_EQ(Reach().GetNextEvenBlockSize(row.size), row.rounded) << row.size;
}

TEST_F(CryptoTest, AMegabyteGoesThereAndBack)
{
    const CString text('m', 1'000'001);
    CByteArray out;
    Crypto::Encrypt(text, out);
    EXPECT_EQ(out.GetSize(), 1'000'016);
    EXPECT_EQ(Crypto::Decrypt(out), text);
    out.SetAt(500'000, static_cast<BYTE>(out.GetAt(500'000) ^ 1));
    EXPECT_NE(Crypto::Decrypt(out), text);
}

} // namespace
