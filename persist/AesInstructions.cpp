#include "persist/AesInstructions.h"

#if defined(__x86_64__)

#include <immintrin.h>

namespace Aes {

namespace {

__m128i Load(const BYTE* from)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

void Store(BYTE* to, __m128i block)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), block);
}

// Blocks do not wait for each other in decryption, so several are under way at once: an instruction takes a
// few times as long as the processor needs to begin the next one.
template <std::size_t count>
__attribute__((target("aes"))) inline __m128i DecryptBlocks(const KeySchedule& keys, __m128i chain,
                                                            const BYTE* in, BYTE* out)
{
    __m128i blocks[count];
    for (std::size_t i = 0; i < count; ++i)
        blocks[i] = _mm_xor_si128(Load(in + i * BlockSize), Load(keys.decryption[0].data()));
    const auto rounds = static_cast<std::size_t>(keys.rounds);
    for (std::size_t round = 1; round < rounds; ++round) {
        const __m128i key = Load(keys.decryption[round].data());
        for (std::size_t i = 0; i < count; ++i)
            blocks[i] = _mm_aesdec_si128(blocks[i], key);
    }
    const __m128i lastKey = Load(keys.decryption[rounds].data());
    for (std::size_t i = 0; i < count; ++i) {
        Store(out + i * BlockSize, _mm_xor_si128(_mm_aesdeclast_si128(blocks[i], lastKey), chain));
        chain = Load(in + i * BlockSize);
    }
    return chain;
}

// A round key for each of the four blocks in a register. (The form with a mask, as g++ 12 warns of the
// other.)
__attribute__((target("avx512f"))) inline __m512i LoadWideKey(const Block& key)
{
    return _mm512_maskz_broadcast_i32x4(0xFFFF, Load(key.data()));
}

constexpr std::size_t WideRegisters = 4;
constexpr std::size_t WideGroup = WideRegisters * 4;

// The same for a group of blocks that is not the first.
__attribute__((target("aes,vaes,avx512f"))) inline void DecryptWideGroup(const KeySchedule& keys,
                                                                         const BYTE* in, BYTE* out)
{
    __m512i blocks[WideRegisters];
    const auto rounds = static_cast<std::size_t>(keys.rounds);
    const __m512i firstKey = LoadWideKey(keys.decryption[0]);
    for (std::size_t i = 0; i < WideRegisters; ++i)
        blocks[i] = _mm512_xor_si512(_mm512_loadu_si512(in + i * sizeof(__m512i)), firstKey);
    for (std::size_t round = 1; round < rounds; ++round) {
        const __m512i key = LoadWideKey(keys.decryption[round]);
        for (__m512i& block : blocks)
            block = _mm512_aesdec_epi128(block, key);
    }
    const __m512i lastKey = LoadWideKey(keys.decryption[rounds]);
    for (std::size_t i = 0; i < WideRegisters; ++i) {
        const __m512i before = _mm512_loadu_si512(in + i * sizeof(__m512i) - BlockSize);
        const __m512i plain = _mm512_xor_si512(_mm512_aesdeclast_epi128(blocks[i], lastKey), before);
        _mm512_storeu_si512(out + i * sizeof(__m512i), plain);
    }
}

} // namespace

// Each block waits for the one before: the time is the instruction's latency.
__attribute__((target("aes"))) void EncryptByInstructions(const KeySchedule& keys, Block& chain,
                                                          const BYTE* in, BYTE* out, std::size_t blocks)
{
    const auto rounds = static_cast<std::size_t>(keys.rounds);
    const __m128i firstKey = Load(keys.encryption[0].data());
    const __m128i lastKey = Load(keys.encryption[rounds].data());
    __m128i block = Load(chain.data());
    for (; blocks > 0; --blocks, in += BlockSize, out += BlockSize) {
        block = _mm_xor_si128(block, _mm_xor_si128(Load(in), firstKey));
        for (std::size_t round = 1; round < rounds; ++round)
            block = _mm_aesenc_si128(block, Load(keys.encryption[round].data()));
        block = _mm_aesenclast_si128(block, lastKey);
        Store(out, block);
    }
    Store(chain.data(), block);
}

__attribute__((target("aes"))) void DecryptByInstructions(const KeySchedule& keys, Block& chain,
                                                          const BYTE* in, BYTE* out, std::size_t blocks)
{
    constexpr std::size_t AtOnce = 8;
    __m128i last = Load(chain.data());
    for (; blocks >= AtOnce; blocks -= AtOnce, in += AtOnce * BlockSize, out += AtOnce * BlockSize)
        last = DecryptBlocks<AtOnce>(keys, last, in, out);
    for (; blocks > 0; --blocks, in += BlockSize, out += BlockSize)
        last = DecryptBlocks<1>(keys, last, in, out);
    Store(chain.data(), last);
}

__attribute__((target("aes,vaes,avx512f"))) void DecryptByWideInstructions(const KeySchedule& keys,
                                                                           Block& chain, const BYTE* in,
                                                                           BYTE* out, std::size_t blocks)
{
    if (blocks >
        WideGroup) { // behind the first block, the one that a block is joined with lies in front of it
        DecryptByInstructions(keys, chain, in, out, 1);
        --blocks;
        in += BlockSize;
        out += BlockSize;
        for (; blocks >= WideGroup; blocks -= WideGroup) {
            DecryptWideGroup(keys, in, out);
            in += WideGroup * BlockSize;
            out += WideGroup * BlockSize;
        }
        Store(chain.data(), Load(in - BlockSize));
    }
    DecryptByInstructions(keys, chain, in, out, blocks);
}

} // namespace Aes

#endif
