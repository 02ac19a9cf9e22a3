// VersionNumber: a version of three parts, 1.0.0 at first. The parts may be any numbers, negative ones too.
// Only Serialize throws, and what makes a text for want of memory. One thread at a time may use an object.
#pragma once

#include "CString.h"
#include "Kvt01Api.h"

class CArchive;

class KVT01_API VersionNumber {
public:
    VersionNumber() = default;
    VersionNumber(int majorPart, int minorPart, int subPart) noexcept
        : m_nMajor(majorPart), m_nMinor(minorPart), m_nSub(subPart)
    {
    }
    VersionNumber(const CString& text) { SetVersion(text); }

    void SetMajor(int part) noexcept { m_nMajor = part; }
    void SetMinor(int part) noexcept { m_nMinor = part; }
    void SetSub(int part) noexcept { m_nSub = part; }
    int GetMajor() const noexcept { return m_nMajor; }
    int GetMinor() const noexcept { return m_nMinor; }
    int GetSub() const noexcept { return m_nSub; }

    // The first three pieces between dots or, in a text without a dot, between commas; each is read by
    // NumberTextConv::GetNumberFromString, which takes all its digits in a row. A piece that is missing or
    // empty is 0.
    //   "2.5.1" -> 2, 5, 1   "2,5" -> 2, 5, 0   "7" -> 7, 0, 0   "1..3" -> 1, 0, 3   "1,2.3" -> 12, 3, 0
    //   "" -> 0, 0, 0        "2.5 beta 1" -> 2, 51, 0            "1.-2" -> 1, -2, 0
    void SetVersion(const CString& text);
    CString GetString() const; // "2.5.1", which SetVersion reads back

    // By major, then minor, then sub.
    bool operator<(const VersionNumber& other) const noexcept;
    bool operator>(const VersionNumber& other) const noexcept { return other < *this; }
    bool operator==(const VersionNumber& other) const noexcept = default;

    // Stored: the 16-bit word 1, then the three parts, 32 bits each. Loading does not look at the word.
    // CArchiveException leaves the object as it was.
    //   2.5.1   01 00  02 00 00 00  05 00 00 00  01 00 00 00
    void Serialize(CArchive& archive);

private:
    int m_nMajor = 1;
    int m_nMinor = 0;
    int m_nSub = 0;
};
