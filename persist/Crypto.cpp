#include "Crypto.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string_view>

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

const BYTE* BytesOf(std::string_view text)
{
    return reinterpret_cast<const BYTE*>(text.data());
}

// Sixteen characters, one by one around a middle that is stored scrambled: the library holds no literal of
// them. Every record that was ever stored depends on these characters.
CString AssemblePassPhrase()
{
    constexpr BYTE Middle[] = {0x2F, 0x11, 0x68, 0x24, 0x37, 0x13};
    constexpr BYTE Scramble = 0x5B;
    CString phrase;
    for (const int c : {0x71, 0x37, 0x56, 0x64, 0x29})
        phrase += static_cast<char>(c);
    BYTE place = 0;
    for (const BYTE scrambled : Middle)
        phrase += static_cast<char>(scrambled ^ Scramble ^ place++);
    for (const int c : {0x77, 0x38, 0x74, 0x4C, 0x78})
        phrase += static_cast<char>(c);
    return phrase;
}

// Cuts decrypted characters to the text that they begin with. True if they are what encryption makes of that
// text: the text and, up to the next whole block, padding. The cipher maps different characters to different
// bytes, so encrypting the text again and comparing could only confirm this answer. (Of no text it makes
// nothing, and there is a block at least.)
bool CutToText(CString& characters)
{
    const char* const begin = characters.GetString();
    const char* const end = characters.end();
    const char* const padding = std::strchr(begin, PaddingCharacter); // none behind a NUL
    const char* const textEnd = padding != nullptr ? padding : begin + std::strlen(begin);
    const bool isConfirmed = end - textEnd < static_cast<std::ptrdiff_t>(Aes::BlockSize) &&
                             std::all_of(textEnd, end, [](char c) { return c == PaddingCharacter; });
    characters.Truncate(static_cast<int>(textEnd - begin));
    return isConfirmed;
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

// Each use begins with a working chain block of its own, a copy of the initial one: equal texts give equal
// bytes.
struct Crypto::Cipher {
    bool isKeySet = false;
    std::size_t keyLength = 0; // bytes
    std::size_t blockSize = 0; // bytes
    Aes::KeySchedule keys;
    Aes::Block initialChain{};
    Aes::Implementation implementation = Aes::UsableImplementations().front();

    void MakeKey(std::string_view passPhrase);
    bool CanProcess(std::size_t size) const { return isKeySet && blockSize != 0 && size % blockSize == 0; }
    void Encrypt(std::string_view text, BYTE* out) const;
    void Decrypt(const CByteArray& in, CString& out) const;
};

void Crypto::Cipher::MakeKey(std::string_view passPhrase)
{
    isKeySet = false;
    if (Aes::RoundsFor(passPhrase.size()) == 0)
        return;
    keyLength = passPhrase.size();
    blockSize = Aes::BlockSize;
    initialChain = {};
    keys = Aes::ExpandKey({BytesOf(passPhrase), keyLength});
    isKeySet = true;
}

// The whole blocks are read where they stand; the rest, if there is one, from a copy that is filled up.
// Without a key the output stays as it is, which is zeros.
void Crypto::Cipher::Encrypt(std::string_view text, BYTE* out) const
{
    if (!isKeySet)
        return;
    const std::size_t wholeBlocks = text.size() / Aes::BlockSize;
    const std::size_t whole = wholeBlocks * Aes::BlockSize;
    Aes::Block chain = initialChain;
    implementation.encrypt(keys, chain, BytesOf(text), out, wholeBlocks);
    if (whole == text.size())
        return;
    Aes::Block last;
    last.fill(static_cast<BYTE>(PaddingCharacter));
    text.copy(reinterpret_cast<char*>(last.data()), Aes::BlockSize, whole);
    implementation.encrypt(keys, chain, last.data(), out + whole, 1);
}

// A whole number of blocks into as many characters.
void Crypto::Cipher::Decrypt(const CByteArray& in, CString& out) const
{
    const std::size_t size = SizeOf(in);
    if (size > static_cast<std::size_t>(CString::MaxLength))
        throw std::length_error("decrypted text is too long");
    char* const characters = out.GetBuffer(static_cast<int>(size));
    Aes::Block chain = initialChain;
    implementation.decrypt(keys, chain, in.GetData(), reinterpret_cast<BYTE*>(characters),
                           size / Aes::BlockSize);
    out.ReleaseBuffer(static_cast<int>(size));
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
    m_cipher->MakeKey(passPhrase.View());
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
    } catch (...) { // no memory
        return ReportTag("{ECF33FEB-5312-4BC0-86F4-50148681CC64}");
    }
    crypto->m_cipher->Encrypt(text.View(), out.GetData());
}

bool Crypto::DecryptText(const CByteArray& in, CString& out)
{
    return DecryptAndCheck(in, out) != Outcome::Failed;
}

Crypto::Outcome Crypto::DecryptAndCheck(const CByteArray& in, CString& out)
{
    out.Empty();
    if (m_cipher == nullptr || in.IsEmpty())
        return Outcome::Failed;
    if (!m_cipher->CanProcess(SizeOf(in))) {
        ReportTag("{C62DD933-D273-457B-90A4-3F2261AEA3A8}");
        return Outcome::Failed;
    }
    try {
        m_cipher->Decrypt(in, out);
    } catch (...) { // no memory, or more than a string can hold
        ReportTag("{335911F7-4C61-4613-8853-13764DDE7704}");
        return Outcome::Failed;
    }
    return CutToText(out) ? Outcome::Confirmed : Outcome::Unconfirmed;
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

} // namespace

void Crypto::Serialize(CArchive& archive, CString& text)
{
    if (archive.IsStoring())
        StoreRecord(archive, text);
    else
        LoadRecord(archive, text);
}

void Crypto::StoreRecord(CArchive& archive, const CString& text)
{
    // The plain text in the log: whoever reads logs for it depends on the line.
    ReportText("{42911D20-38E8-4BC4-B068-BF803FD3DEA7}", text);
    CByteArray bytes;
    DoVerifiedEncryption(text, bytes);
    if (bytes.IsEmpty()) {
        archive << WORD{Plain} << text;
        return;
    }
    archive << WORD{Encrypted};
    bytes.Serialize(archive);
}

void Crypto::LoadRecord(CArchive& archive, CString& text)
{
    WORD flag = Plain;
    archive >> flag;
    if (flag != Encrypted) {
        archive >> text;
        return;
    }
    CByteArray bytes;
    bytes.Serialize(archive);
    DoVerifiedDecryption(bytes, text);
}
