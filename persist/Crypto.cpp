#include "Crypto.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "CArchive.h"
#include "NumberTextConv.h"
#include "framework/FailureMarkers.h"
#include "persist/Aes.h"

namespace {

constexpr char PaddingCharacter = '\xA4';

// The cipher is deterministic, so more attempts change nothing but the number of marker lines, which readers
// of old logs know. The bound stays.
constexpr int MostAttempts = 10;

std::size_t SizeOf(const CByteArray& bytes)
{
    return static_cast<std::size_t>(bytes.GetSize());
}

// One by one, around a middle that is stored turned by its place: no search for texts finds it in the
// library.
CString AssemblePassPhrase()
{
    constexpr BYTE Middle[] = {0x2F, 0x11, 0x68, 0x24, 0x37, 0x13};
    constexpr BYTE Turn = 0x5B;
    CString phrase;
    for (const char c : {'q', '7', 'V', 'd', ')'})
        phrase += c;
    BYTE place = 0;
    for (const BYTE scrambled : Middle)
        phrase += static_cast<char>(scrambled ^ Turn ^ place++);
    for (const char c : {'w', '8', 't', 'L', 'x'})
        phrase += c;
    return phrase;
}

// A marker line is never worth an exception: one that cannot be made is left out.
template <class Explain>
void ReportWith(const char* tag, Explain explain) noexcept
{
    if (!FailureMarkers::IsRecording())
        return;
    try {
        FailureMarkers::Report(tag, explain());
    } catch (...) {
    }
}

void ReportText(const char* tag, const CString& text) noexcept
{
    ReportWith(tag, [&] { return text; });
}

void ReportBytes(const char* tag, const CByteArray& bytes) noexcept
{
    ReportWith(tag, [&] {
        CString numbers;
        NumberTextConv::ConvertByteArrayToString(bytes, numbers);
        return numbers;
    });
}

void ReportTag(const char* tag) noexcept
{
    ReportWith(tag, [] { return CString(); });
}

} // namespace

// ---- the cipher with its key ------------------------------------------------------------------------------

struct Crypto::Cipher {
    bool isKeySet = false;
    std::size_t keyLength = 0; // bytes
    std::size_t blockSize = 0; // bytes
    Aes::KeySchedule keys;
    Aes::Block initialChain{};
    Aes::Implementation implementation = Aes::UsableImplementations().front();

    void MakeKey(std::span<const BYTE> key);
    bool CanProcess(std::size_t size) const { return isKeySet && blockSize != 0 && size % blockSize == 0; }
};

void Crypto::Cipher::MakeKey(std::span<const BYTE> key)
{
    isKeySet = false;
    if (Aes::RoundsFor(key.size()) == 0)
        return;
    keyLength = key.size();
    blockSize = Aes::BlockSize;
    initialChain = {};
    keys = Aes::ExpandKey(key);
    isKeySet = true;
}

// ---- the object -------------------------------------------------------------------------------------------

constinit Crypto* Crypto::m_pInstance = nullptr;

Crypto::Crypto() : m_cipher(new (std::nothrow) Cipher) {}

Crypto::~Crypto() = default;

Crypto* Crypto::GetInstance()
{
    if (m_pInstance != nullptr) [[likely]]
        return m_pInstance;
    m_pInstance = new (std::nothrow) Crypto;
    if (m_pInstance == nullptr || !m_pInstance->DeriveKey(AssemblePassPhrase())) {
        DeleteInstance();
        ReportTag("{A54C0FA7-A651-4057-92CB-5146310EB566}");
    }
    return m_pInstance;
}

void Crypto::DeleteInstance()
{
    delete m_pInstance;
    m_pInstance = nullptr;
}

bool Crypto::DeriveKey(const CString& passPhrase)
{
    if (m_cipher == nullptr)
        return false;
    const std::string_view phrase = passPhrase.View();
    m_cipher->MakeKey({reinterpret_cast<const BYTE*>(phrase.data()), phrase.size()});
    return true;
}

uint64 Crypto::GetNextEvenBlockSize(uint64 n) const
{
    return (n + (Aes::BlockSize - 1)) & ~uint64{Aes::BlockSize - 1};
}

// ---- without a check --------------------------------------------------------------------------------------

void Crypto::Encrypt(const CString& text, CByteArray& out)
{
    out.RemoveAll();
    const Crypto* const crypto = GetInstance();
    if (crypto == nullptr || crypto->m_cipher == nullptr || text.IsEmpty())
        return;
    try {
        out.SetSize(static_cast<CByteArray::Index>(crypto->GetNextEvenBlockSize(text.View().size())));
    } catch (...) {
        return ReportTag("{ECF33FEB-5312-4BC0-86F4-50148681CC64}");
    }
    crypto->EncryptBlocks(text.View(), out.GetData());
}

// The whole blocks are read where they stand; the last one, if there is more, from a filled-up copy.
void Crypto::EncryptBlocks(std::string_view text, BYTE* out) const
{
    const Cipher& cipher = *m_cipher;
    if (!cipher.isKeySet)
        return;
    const auto* const in = reinterpret_cast<const BYTE*>(text.data());
    const std::size_t wholeBlocks = text.size() / Aes::BlockSize;
    const std::size_t whole = wholeBlocks * Aes::BlockSize;
    Aes::Block chain = cipher.initialChain;
    cipher.implementation.encrypt(cipher.keys, chain, in, out, wholeBlocks);
    if (whole == text.size())
        return;
    Aes::Block last;
    last.fill(static_cast<BYTE>(PaddingCharacter));
    std::copy(in + whole, in + text.size(), last.begin());
    cipher.implementation.encrypt(cipher.keys, chain, last.data(), out + whole, 1);
}

bool Crypto::DecryptText(const CByteArray& in, CString& out)
{
    return DecryptAndCheck(in, out) != Outcome::Failed;
}

// What encryption makes of a text is decrypted to the text and, up to the next whole block, padding. As the
// cipher maps different plain bytes to different encrypted ones, it is enough to look whether that is so:
// encrypting the text again could only confirm it.
Crypto::Outcome Crypto::DecryptAndCheck(const CByteArray& in, CString& out)
{
    out.Empty();
    if (m_cipher == nullptr || in.IsEmpty())
        return Outcome::Failed;
    const std::size_t size = SizeOf(in);
    if (!m_cipher->CanProcess(size)) {
        ReportTag("{C62DD933-D273-457B-90A4-3F2261AEA3A8}");
        return Outcome::Failed;
    }
    try {
        if (size > static_cast<std::size_t>(CString::MaxLength))
            throw std::bad_alloc();
        char* const plain = out.GetBuffer(static_cast<int>(size));
        Aes::Block chain = m_cipher->initialChain;
        m_cipher->implementation.decrypt(m_cipher->keys, chain, in.GetData(), reinterpret_cast<BYTE*>(plain),
                                         size / Aes::BlockSize);
        plain[size] = '\0';
        const char* const padding = std::strchr(plain, PaddingCharacter);
        const std::size_t length =
            padding != nullptr ? static_cast<std::size_t>(padding - plain) : std::strlen(plain);
        const bool isWhole =
            length > 0 && size - length < Aes::BlockSize &&
            std::all_of(plain + length, plain + size, [](char c) { return c == PaddingCharacter; });
        out.ReleaseBuffer(static_cast<int>(length));
        return isWhole ? Outcome::Confirmed : Outcome::Unconfirmed;
    } catch (...) {
        ReportTag("{335911F7-4C61-4613-8853-13764DDE7704}");
        return Outcome::Failed;
    }
}

// ---- with a check -----------------------------------------------------------------------------------------

void Crypto::DoVerifiedEncryption(const CString& text, CByteArray& out)
{
    Crypto* const crypto = GetInstance();
    if (text.IsEmpty() || crypto == nullptr)
        return;
    for (int attempt = 0; attempt < MostAttempts; ++attempt) {
        Encrypt(text, out);
        CString back;
        const bool isDecrypted = !out.IsEmpty() && crypto->DecryptText(out, back);
        if (isDecrypted && back == text)
            return;
        out.RemoveAll();
        if (isDecrypted)
            break; // the other attempts would come to the same, without a line
    }
    ReportText("{E489273C-1E5A-4E46-9091-541813642DD0}", text);
}

void Crypto::DoVerifiedDecryption(const CByteArray& in, CString& out)
{
    Crypto* const crypto = GetInstance();
    if (crypto == nullptr)
        return;
    for (int attempt = 0; attempt < MostAttempts; ++attempt) {
        const Outcome outcome = crypto->DecryptAndCheck(in, out);
        if (outcome == Outcome::Confirmed)
            return;
        if (outcome == Outcome::Unconfirmed)
            break; // as above
    }
    ReportBytes("{0B794AD1-CDD7-4E4A-9AC5-E813B180CA79}", in);
}

CString Crypto::Decrypt(const CByteArray& in)
{
    CString text;
    DoVerifiedDecryption(in, text);
    return text;
}

CString Crypto::Decrypt(const unsigned char* bytes, int count)
{
    if (bytes == nullptr || count < 1)
        return CString();
    try {
        CByteArray in;
        in.SetSize(count);
        std::copy_n(bytes, count, in.GetData());
        return Decrypt(in);
    } catch (...) {
        return CString();
    }
}

// ---- the record -------------------------------------------------------------------------------------------

namespace {

enum : WORD { Plain = 0, Encrypted = 1 };

// The count is a claim: memory grows in steps, with the bytes that are really there.
void LoadBytes(CArchive& archive, CByteArray& bytes)
{
    constexpr uint64 FirstStep = 64 * 1024;
    const uint64 count = archive.ReadCount();
    for (uint64 done = 0; done < count;) {
        const uint64 step = std::min(count - done, std::max(done, FirstStep));
        bytes.SetSize(static_cast<CByteArray::Index>(done + step));
        archive.EnsureRead(bytes.GetData() + done, static_cast<std::size_t>(step));
        done += step;
    }
}

} // namespace

void Crypto::Serialize(CArchive& archive, CString& text)
{
    CByteArray bytes;
    if (archive.IsStoring()) {
        // The plain text in the log: whoever reads logs for it depends on the line.
        ReportText("{42911D20-38E8-4BC4-B068-BF803FD3DEA7}", text);
        DoVerifiedEncryption(text, bytes);
        if (bytes.IsEmpty()) {
            archive << WORD{Plain} << text;
            return;
        }
        archive << WORD{Encrypted};
        archive.WriteCount(static_cast<uint64>(bytes.GetSize()));
        archive.Write(bytes.GetData(), SizeOf(bytes));
        return;
    }
    WORD flag = Plain;
    archive >> flag;
    if (flag != Encrypted) {
        archive >> text;
        return;
    }
    LoadBytes(archive, bytes);
    DoVerifiedDecryption(bytes, text);
}
