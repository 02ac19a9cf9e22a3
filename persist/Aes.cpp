#include "persist/Aes.h"

#include <algorithm>
#include <bit>

#include "framework/CpuFeatures.h"
#include "persist/AesInstructions.h"

namespace Aes {

namespace {

// ---- the field GF(2^8) and the tables made from it (FIPS 197, 4.2 and 5.1.1) ------------------------------

constexpr BYTE Double(BYTE x)
{
    return static_cast<BYTE>(x << 1 ^ (x & 0x80 ? 0x1B : 0));
}

constexpr BYTE Product(BYTE x, BYTE y)
{
    BYTE sum = 0;
    for (; y != 0; y >>= 1, x = Double(x))
        if (y & 1)
            sum ^= x;
    return sum;
}

using ByteTable = std::array<BYTE, 256>;
using WordTable = std::array<std::uint32_t, 256>;

// Powers of the generator 3 and of its inverse, 0xF6, run through the field in step.
constexpr ByteTable MakeSubstitution()
{
    ByteTable table{};
    table[0] = 0x63;
    BYTE value = 1, inverse = 1;
    do {
        value = Product(value, 3);
        inverse = Product(inverse, 0xF6);
        BYTE sum = 0x63;
        for (int turn = 0; turn <= 4; ++turn)
            sum ^= std::rotl(inverse, turn);
        table[value] = sum;
    } while (value != 1);
    return table;
}

constexpr ByteTable Inverted(const ByteTable& table)
{
    ByteTable inverse{};
    for (std::size_t i = 0; i < table.size(); ++i)
        inverse[table[i]] = static_cast<BYTE>(i);
    return inverse;
}

// What the first byte of a column, substituted, adds to the mixed column. A word has the first byte of a
// column lowest; the share of the byte in row r is the same word turned by r bytes.
constexpr WordTable MakeColumns(const ByteTable& substitution, std::array<BYTE, 4> factors)
{
    WordTable table{};
    for (std::size_t i = 0; i < table.size(); ++i)
        for (std::size_t row = 0; row < 4; ++row)
            table[i] |= std::uint32_t{Product(substitution[i], factors[row])} << 8 * row;
    return table;
}

constexpr ByteTable Substitution = MakeSubstitution();
constexpr ByteTable InverseSubstitution = Inverted(Substitution);
constexpr WordTable MixedColumns = MakeColumns(Substitution, {2, 1, 1, 3});
constexpr WordTable InverseMixedColumns = MakeColumns(InverseSubstitution, {14, 9, 13, 11});

// ---- columns ----------------------------------------------------------------------------------------------

using Columns = std::array<std::uint32_t, 4>;

std::uint32_t LoadColumn(const BYTE* from)
{
    return from[0] | std::uint32_t{from[1]} << 8 | std::uint32_t{from[2]} << 16 |
           std::uint32_t{from[3]} << 24;
}

BYTE RowOf(std::uint32_t column, std::size_t row)
{
    return static_cast<BYTE>(column >> 8 * row);
}

// A block joined with a key, as columns.
Columns Join(const BYTE* block, const Block& key)
{
    Columns columns;
    for (std::size_t c = 0; c < 4; ++c)
        columns[c] = LoadColumn(block + 4 * c) ^ LoadColumn(key.data() + 4 * c);
    return columns;
}

// One direction of the cipher: its tables, and how far each row moves to the left.
struct Direction {
    const WordTable& mixedColumns;
    const ByteTable& substitution;
    std::size_t shift;
};

constexpr Direction Forwards{MixedColumns, Substitution, 1};
constexpr Direction Backwards{InverseMixedColumns, InverseSubstitution, 3};

template <const Direction& direction>
Block Transform(const BYTE* in, const std::array<Block, MostRounds + 1>& keys, int rounds)
{
    const auto source = [](const Columns& columns, std::size_t column, std::size_t row) {
        return RowOf(columns[(column + row * direction.shift) % 4], row);
    };
    Columns columns = Join(in, keys[0]);
    for (std::size_t round = 1; round < static_cast<std::size_t>(rounds); ++round) {
        const Columns before = columns;
        for (std::size_t c = 0; c < 4; ++c) {
            columns[c] = LoadColumn(keys[round].data() + 4 * c);
            for (std::size_t row = 0; row < 4; ++row)
                columns[c] ^=
                    std::rotl(direction.mixedColumns[source(before, c, row)], static_cast<int>(8 * row));
        }
    }
    Block out = keys[static_cast<std::size_t>(rounds)]; // the last round mixes no columns
    for (std::size_t i = 0; i < BlockSize; ++i)
        out[i] ^= direction.substitution[source(columns, i / 4, i % 4)];
    return out;
}

// ---- the chain by tables ----------------------------------------------------------------------------------

void EncryptByTables(const KeySchedule& keys, Block& chain, const BYTE* in, BYTE* out, std::size_t blocks)
{
    for (; blocks > 0; --blocks, in += BlockSize, out += BlockSize) {
        for (std::size_t i = 0; i < BlockSize; ++i)
            chain[i] ^= in[i];
        chain = Transform<Forwards>(chain.data(), keys.encryption, keys.rounds);
        std::copy_n(chain.data(), BlockSize, out);
    }
}

void DecryptByTables(const KeySchedule& keys, Block& chain, const BYTE* in, BYTE* out, std::size_t blocks)
{
    for (; blocks > 0; --blocks, in += BlockSize, out += BlockSize) {
        const Block plain = Transform<Backwards>(in, keys.decryption, keys.rounds);
        for (std::size_t i = 0; i < BlockSize; ++i)
            out[i] = plain[i] ^ chain[i];
        std::copy_n(in, BlockSize, chain.data());
    }
}

// ---- the round keys (FIPS 197, 5.2) -----------------------------------------------------------------------

using KeyWord = std::array<BYTE, 4>;

KeyWord Substituted(KeyWord word)
{
    for (BYTE& byte : word)
        byte = Substitution[byte];
    return word;
}

Block InverseMixed(const Block& key)
{
    Block mixed;
    for (std::size_t i = 0; i < BlockSize; ++i) {
        std::uint32_t column = 0;
        for (std::size_t row = 0; row < 4; ++row)
            column ^=
                std::rotl(InverseMixedColumns[Substitution[key[i / 4 * 4 + row]]], static_cast<int>(8 * row));
        mixed[i] = RowOf(column, i % 4);
    }
    return mixed;
}

} // namespace

KeySchedule ExpandKey(std::span<const BYTE> key)
{
    KeySchedule schedule;
    schedule.rounds = RoundsFor(key.size());
    if (schedule.rounds == 0)
        return schedule;
    const std::size_t keyWords = key.size() / 4;
    const auto rounds = static_cast<std::size_t>(schedule.rounds);
    std::array<KeyWord, 4 * (MostRounds + 1)> words{};
    std::copy(key.begin(), key.end(), words[0].begin());
    BYTE constant = 1;
    for (std::size_t i = keyWords; i < 4 * (rounds + 1); ++i) {
        KeyWord word = words[i - 1];
        if (i % keyWords == 0) {
            std::rotate(word.begin(), word.begin() + 1, word.end());
            word = Substituted(word);
            word[0] ^= constant;
            constant = Double(constant);
        } else if (keyWords > 6 && i % keyWords == 4) {
            word = Substituted(word);
        }
        for (std::size_t row = 0; row < 4; ++row)
            words[i][row] = words[i - keyWords][row] ^ word[row];
    }
    for (std::size_t round = 0; round <= rounds; ++round)
        for (std::size_t i = 0; i < BlockSize; ++i)
            schedule.encryption[round][i] = words[4 * round + i / 4][i % 4];
    for (std::size_t round = 0; round <= rounds; ++round) {
        const Block& used = schedule.encryption[rounds - round];
        schedule.decryption[round] = round == 0 || round == rounds ? used : InverseMixed(used);
    }
    return schedule;
}

std::span<const Implementation> UsableImplementations() noexcept
{
#if defined(__x86_64__)
    static constexpr Implementation All[] = {
        {"instructions on four blocks", EncryptByInstructions, DecryptByWideInstructions},
        {"instructions", EncryptByInstructions, DecryptByInstructions},
        {"tables", EncryptByTables, DecryptByTables},
    };
    const std::size_t quickest = CpuFeatures::HasVaes512() ? 0 : CpuFeatures::HasAes() ? 1 : 2;
#else
    static constexpr Implementation All[] = {{"tables", EncryptByTables, DecryptByTables}};
    const std::size_t quickest = 0;
#endif
    return std::span(All).subspan(quickest);
}

} // namespace Aes
