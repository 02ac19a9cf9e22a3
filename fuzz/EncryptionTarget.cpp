// Encrypted strings and their records, against the rules step by step, without any shortcut; with the marker
// lines.
#include <algorithm>
#include <utility>
#include <vector>

#include "Crypto.h"
#include "framework/FailureMarkers.h"
#include "fuzz/Difference.h"
#include "fuzz/Targets.h"
#include "persist/Aes.h"
#include "tests/support/ArchiveBytes.h"

namespace {

using std::string;

struct Reach : Crypto {
    using Crypto::DeriveKey;
    using Crypto::GetInstance;
};

// Each marker line, as it is written.
std::vector<string> written;

struct Model {
    bool hasKey;
    Aes::KeySchedule keys;
    std::vector<string> lines{};

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

    // Empty where the text does not come back.
    string DoVerifiedEncryption(const string& text)
    {
        string back;
        for (int attempt = 0; attempt < 10 && !text.empty(); ++attempt) {
            const string out = Encrypt(text);
            if (DecryptText(out, back) && back == text)
                return out;
        }
        if (!text.empty())
            lines.push_back("{E489273C-1E5A-4E46-9091-541813642DD0}" + text);
        return "";
    }

    string DoVerifiedDecryption(const string& in)
    {
        string out;
        for (int attempt = 0; attempt < 10; ++attempt)
            if (DecryptText(in, out) && Encrypt(out) == in)
                return out;
        string numbers;
        for (const char c : in)
            numbers += (numbers.empty() ? "" : ", ") + std::to_string(static_cast<unsigned char>(c));
        lines.push_back("{0B794AD1-CDD7-4E4A-9AC5-E813B180CA79}" + numbers);
        return out;
    }
};

void ExpectLines(Model& model, const string& text)
{
    Expect("the marker lines", std::exchange(written, {}), std::exchange(model.lines, {}), text);
}

void ExpectEncryption(Model& model, const string& text)
{
    CByteArray raw;
    Crypto::Encrypt(text, raw);
    Expect("Encrypt", string(raw.begin(), raw.end()), model.Encrypt(text), text);
    model.lines.push_back("{42911D20-38E8-4BC4-B068-BF803FD3DEA7}" + text);
    const string expected = model.DoVerifiedEncryption(text);
    CString record = text, loaded = "before";
    const string bytes = StoredBy([&](CArchive& archive) { Crypto::Serialize(archive, record); });
    Expect("Serialize, the flag", bytes.substr(0, 2), BytesOf(expected.empty() ? "0000" : "0100"), text);
    Expect("Serialize, the bytes", bytes.ends_with(expected.empty() ? text : expected), true, text, expected);
    LoadFrom(bytes, [&](CArchive& archive) { Crypto::Serialize(archive, loaded); });
    Expect("Serialize, loading", string(loaded.View()), text);
    ExpectLines(model, text);
}

void ExpectDecryption(Model& model, const string& in)
{
    CByteArray bytes;
    for (const char c : in)
        bytes.Add(static_cast<BYTE>(c));
    const string expected = model.DoVerifiedDecryption(in);
    Expect("Decrypt", string(Crypto::Decrypt(bytes).View()), expected, in);
    ExpectLines(model, in);
}

} // namespace

void Targets::Encryption(Choices& choices)
{
    static const char* const keys[] = {"sixteen-letters!", "twenty-four-letters-here",
                                       "thirty-two-letters-in-this-phras", "seventeen-letters"};
    static const string rare("\xA4\0", 2); // bytes that end texts
    const string key = choices.Pick(keys);
    const std::size_t form = choices.Below(3);
    string text = form == 0 ? choices.Rest() : string(choices.Below(choices.OneIn(20) ? 600 : 50), 'n');
    if (form == 1)
        for (char& c : text)
            c = choices.OneIn(100) ? choices.Pick(rare) : static_cast<char>(choices.Below(256));
    FailureMarkers::SetSink([](const CString& line) { written.emplace_back(line.View()); });
    Crypto::DeleteInstance();
    Expect("DeriveKey", (Reach::GetInstance()->*&Reach::DeriveKey)(key.c_str()), true);
    Model model(key);
    ExpectEncryption(model, text);
    ExpectDecryption(model, text);
    text.resize((text.size() + 15) / 16 * 16, '\xA4');
    ExpectDecryption(model, model.Chain(text, &Aes::Implementation::encrypt));
}
