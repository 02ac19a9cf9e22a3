// NextIDMgr: hands out whole numbers as identifiers, 0, 1, 2, ..., and goes on after the highest that stored
// data hold.
//
// Behind INT_MAX the numbers go on with INT_MIN, which IsValidID tells apart; UpdateNextID with a good
// identifier leads back. Only Serialize throws. One thread at a time may use an object.
#pragma once

#include "Kvt01Api.h"

class CArchive;

class KVT01_API NextIDMgr {
public:
    int GetNextID() noexcept; // the next identifier, which is then used up
    // An identifier that is in use already: it and all below it are not handed out again. One below 0, or
    // below the next identifier, changes nothing.
    void UpdateNextID(int id) noexcept;
    bool VerifyNextID(int id) const noexcept { return m_nNextID >= id; } // also when they are equal
    static bool IsValidID(int id) noexcept { return id >= 0; }
    void ResetNextID() noexcept { m_nNextID = 0; }

    // By the next identifier.
    bool operator<(const NextIDMgr& other) const noexcept { return m_nNextID < other.m_nNextID; }
    bool operator>(const NextIDMgr& other) const noexcept { return m_nNextID > other.m_nNextID; }

    // Stored: the 16-bit word 1 and the next identifier in 32 bits. Loading does not look at the word.
    // CArchiveException leaves the object as it was.
    //   5   01 00  05 00 00 00
    void Serialize(CArchive& archive);

private:
    int m_nNextID = 0;
};
