// AES, the block cipher of FIPS 197, with blocks of 16 bytes and keys of 16, 24 or 32, and the chaining mode
// CBC of SP 800-38A over whole blocks. No padding here, and no rule of what a text is: that is Crypto's.
//
// The work is done in one of several ways that give the same bytes: by the processor's AES instructions,
// where it has them, or by tables. The tables are read at places that depend on the data, so whoever can time
// the caches of this machine learns about the key; the instructions have no such trace.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "BasicTypes.h"

namespace Aes {

inline constexpr std::size_t BlockSize = 16;
inline constexpr int MostRounds = 14;

using Block = std::array<BYTE, BlockSize>;

struct KeySchedule {
    int rounds = 0;
    std::array<Block, MostRounds + 1> encryption{}; // rounds + 1 keys, in the order of their use
    std::array<Block, MostRounds + 1>
        decryption{}; // those of the equivalent inverse cipher (FIPS 197, 5.3.5)
};

// 10, 12 or 14 for a key of 16, 24 or 32 bytes; 0 for any other length, which no key has.
constexpr int RoundsFor(std::size_t keyLength)
{
    return keyLength == 16 || keyLength == 24 || keyLength == 32 ? static_cast<int>(keyLength / 4) + 6 : 0;
}

// The round keys; none and no rounds when the key has another length.
KeySchedule ExpandKey(std::span<const BYTE> key);

// Goes through `blocks` blocks from `in` to `out`, which may not overlap. `chain` is what the first block is
// joined with; afterwards it is the last encrypted block, so that a text may be worked on in pieces.
using ChainFunction = void (*)(const KeySchedule& keys, Block& chain, const BYTE* in, BYTE* out,
                               std::size_t blocks);

struct Implementation {
    const char* name;
    ChainFunction encrypt;
    ChainFunction decrypt;
};

// What this processor can run, the quickest first; the last one is the tables.
std::span<const Implementation> UsableImplementations() noexcept;

} // namespace Aes
