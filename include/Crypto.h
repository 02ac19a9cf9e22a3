// Crypto: narrow strings as encrypted bytes and back, and encrypted-string records in archives.
//
// What this protects against: a glance at the file. What it does not: anyone who has this library can decrypt
// everything that it has encrypted, since the key is built into it and the same everywhere. Nothing is
// authenticated: whoever can write the file can change a text unnoticed. Equal texts give equal bytes, and
// texts that begin alike give bytes that begin alike. It is no place for passwords.
//
// The cipher is AES in CBC mode with a chain that starts from zeros. The key is the pass phrase's bytes,
// which are fixed for ever: stored data depend on them. A text is filled up with the byte 0xA4 to a multiple
// of 16 bytes; one that is such a multiple gets no more, so 16 characters make 16 bytes and 17 make 32. A
// decrypted text ends at its first NUL or 0xA4. Therefore a text that holds one of these does not come back;
// the checked operations find that out and refuse it, and Serialize stores it in clear.
//
// Warning: storing with Serialize writes the plain text into the application log, while there is one.
//
// Failures are answers (an empty result, false) and marker lines in the application log. Nothing throws but
// Serialize: what the archive throws, and std::bad_alloc. The cipher runs at the speed of the processor's AES
// instructions where it has them, and the check of a decryption costs a look at the text, not the cipher once
// more. All operations share one object, so one thread at a time may use any of them.
#pragma once

#include <memory>

#include "BasicTypes.h"
#include "CByteArray.h"
#include "CString.h"
#include "Kvt01Api.h"

class CArchive;

class KVT01_API Crypto {
public:
    Crypto(const Crypto&) = delete;
    Crypto& operator=(const Crypto&) = delete;
    ~Crypto();

    // The one object, made when an operation first needs it; nullptr before that and after DeleteInstance,
    // which a host calls before it unloads the library.
    static Crypto* m_pInstance;
    static void DeleteInstance();

    // Encrypts without a check; an empty text gives an empty array. The output is replaced.
    static void Encrypt(const CString& text, CByteArray& out);

    // The text, if encrypting it would give exactly these bytes. Otherwise, with a marker line that shows the
    // bytes, still the text that they decrypt to; bytes whose number is no multiple of 16 decrypt to nothing.
    // A null pointer or a count below 1 gives an empty text and no line.
    static CString Decrypt(const CByteArray& in);
    static CString Decrypt(const unsigned char* bytes, int count);

    // Stores or loads one encrypted-string record: a 16-bit flag, then encrypted bytes (flag 1) or, for a
    // text that is empty or would not come back, the text in clear. On load any flag but 1 announces a plain
    // text.
    static void Serialize(CArchive& archive, CString& text);

protected:
    Crypto(); // without a key

    static Crypto* GetInstance(); // nullptr when there is no memory for it

    // Takes the phrase's bytes as the key; a length other than 16, 24 or 32 leaves the object without a key,
    // which is no error. Without a key Encrypt gives zero bytes and nothing decrypts. False only for an
    // object that could not be given memory for its cipher.
    bool DeriveKey(const CString& passPhrase);

    // False, with a marker line, when there is no key or the length is no multiple of 16; false without one
    // when there is nothing to decrypt. The output is then empty.
    bool DecryptText(const CByteArray& in, CString& out);

    // The next multiple of 16, n itself if it is one; modulo 2^64, so that the last 15 values give 0.
    uint64 GetNextEvenBlockSize(uint64 n) const;

    // The checked forms, with up to ten attempts. Neither touches its output when there is no object, and the
    // first leaves it alone for an empty text. A text that does not come back exactly, with all that stands
    // behind a NUL in it, gives an empty array and a marker line with the text. The second form answers with
    // what the bytes decrypt to, confirmed or not, as Decrypt does.
    static void DoVerifiedEncryption(const CString& text, CByteArray& out);
    static void DoVerifiedDecryption(const CByteArray& in, CString& out);

private:
    struct Cipher;
    enum class Outcome { Failed, Unconfirmed, Confirmed };

    Outcome DecryptAndCheck(const CByteArray& in, CString& out);
    static void StoreRecord(CArchive& archive, const CString& text);
    static void LoadRecord(CArchive& archive, CString& text);

    std::unique_ptr<Cipher> m_cipher;
};
