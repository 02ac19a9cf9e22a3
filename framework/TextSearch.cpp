#include "framework/TextSearch.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "framework/CpuFeatures.h"
#include "framework/RuntimeText.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace TextSearch {

namespace {

using Pair = Candidates::Pair;
using Probe = Candidates::Probe;
constexpr std::size_t BlockSize = Candidates::BlockSize;

// ---- which bytes to look for ----------------------------------------------------------------------------

// The bytes of ordinary text, the most common ones first; those not listed are the rarest.
constexpr std::string_view CommonBytes = " etaonirshldcumpfgywbvk,.0-1\r\n\txj2qz\"_3456789:/\\'()=;";

constexpr auto Rarity = [] {
    std::array<std::uint8_t, 256> rarity{};
    rarity.fill(255);
    for (std::size_t i = 0; i < CommonBytes.size(); ++i)
        rarity[static_cast<std::uint8_t>(CommonBytes[i])] = static_cast<std::uint8_t>(i + 1);
    return rarity;
}();

Probe ProbeFor(char c, const ByteFold& fold) noexcept
{
    const std::uint8_t ignored = fold.VaryingBits(c);
    return {static_cast<std::uint8_t>(static_cast<std::uint8_t>(c) | ignored), ignored};
}

// How much a probe tells: nothing if it fits more than the two cases of a letter.
int Worth(Probe probe) noexcept
{
    const bool ignoresMany = (probe.ignored & (probe.ignored - 1)) != 0;
    return ignoresMany ? 0 : Rarity[probe.wanted];
}

// A byte that not even one character in a hundred is.
bool IsRare(Probe probe) noexcept
{
    return probe.ignored == 0 && Worth(probe) > 24;
}

Pair ChoosePair(const char* text, std::string_view pattern, const ByteFold& fold) noexcept
{
    constexpr std::size_t Enough = 256; // characters to choose from
    std::size_t best = 0;
    std::size_t second = 0;
    int bestWorth = -1;
    int secondWorth = -1;
    for (std::size_t i = 0; i < std::min(pattern.size(), Enough); ++i) {
        const int worth = Worth(ProbeFor(pattern[i], fold));
        if (worth > bestWorth) {
            second = best;
            secondWorth = bestWorth;
            best = i;
            bestWorth = worth;
        } else if (worth > secondWorth) {
            second = i;
            secondWorth = worth;
        }
    }
    return {text + best, text + second, ProbeFor(pattern[best], fold), ProbeFor(pattern[second], fold)};
}

// ---- looking for them -----------------------------------------------------------------------------------

using Bits = Candidates::Bits;

// The start of the next block; the first time one that begins with a cache line and shares some places.
std::size_t NextBlock(const Pair& pair, std::size_t from) noexcept
{
    return from + BlockSize - reinterpret_cast<std::uintptr_t>(pair.first + from) % 64;
}

// At most a block of places, one after the other.
void ScanPlaces(const Pair& pair, std::size_t from, std::size_t end, Bits& bits) noexcept
{
    bits.fill(0);
    for (std::size_t i = 0; i < end - from; ++i) {
        const std::uint64_t first = pair.firstProbe.Fits(pair.first[from + i]);
        const std::uint64_t second = pair.secondProbe.Fits(pair.second[from + i]);
        bits[i / 64] |= (first & second) << i % 64;
    }
}

// Whether any of eight places fits both probes, which is where their differences have a zero byte.
bool AnyOfEightFits(const Pair& pair, std::size_t from) noexcept
{
    constexpr std::uint64_t Each = 0x0101010101010101;
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    std::memcpy(&first, pair.first + from, sizeof first);
    std::memcpy(&second, pair.second + from, sizeof second);
    const std::uint64_t differences =
        ((first | pair.firstProbe.ignored * Each) ^ pair.firstProbe.wanted * Each) |
        ((second | pair.secondProbe.ignored * Each) ^ pair.secondProbe.wanted * Each);
    return ((differences - Each) & ~differences & 0x80 * Each) != 0;
}

std::size_t ScanBlocksPortable(const Pair& pair, std::size_t from, std::size_t end, Bits& bits) noexcept
{
    for (; end - from >= BlockSize; from = NextBlock(pair, from)) {
        bool any = false;
        for (std::size_t i = 0; i < BlockSize && !any; i += 8)
            any = AnyOfEightFits(pair, from + i);
        if (any) {
            ScanPlaces(pair, from, from + BlockSize, bits);
            return from;
        }
    }
    bits.fill(0);
    return from;
}

#if defined(__x86_64__)

__m128i Fitting(const char* text, Probe probe) noexcept
{
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
    return _mm_cmpeq_epi8(_mm_or_si128(bytes, _mm_set1_epi8(static_cast<char>(probe.ignored))),
                          _mm_set1_epi8(static_cast<char>(probe.wanted)));
}

std::size_t ScanBlocksSse2(const Pair& pair, std::size_t from, std::size_t end, Bits& bits) noexcept
{
    for (; end - from >= BlockSize; from = NextBlock(pair, from)) {
        std::uint64_t any = 0;
        for (std::size_t i = 0; i < BlockSize; i += 16) {
            const __m128i both = _mm_and_si128(Fitting(pair.first + from + i, pair.firstProbe),
                                               Fitting(pair.second + from + i, pair.secondProbe));
            const std::uint64_t fits = static_cast<std::uint32_t>(_mm_movemask_epi8(both));
            bits[i / 64] = (i % 64 == 0 ? 0 : bits[i / 64]) | fits << i % 64;
            any |= fits;
        }
        if (any != 0)
            return from;
    }
    return from;
}

__attribute__((target("avx2"))) std::uint32_t FitsAvx2(const char* first, const char* second,
                                                       const __m256i* probes) noexcept
{
    const __m256i bytes1 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(first));
    const __m256i bytes2 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(second));
    const __m256i both = _mm256_and_si256(_mm256_cmpeq_epi8(_mm256_or_si256(bytes1, probes[0]), probes[1]),
                                          _mm256_cmpeq_epi8(_mm256_or_si256(bytes2, probes[2]), probes[3]));
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(both));
}

__attribute__((target("avx2"))) std::size_t ScanBlocksAvx2(const Pair& pair, std::size_t from,
                                                           std::size_t end, Bits& bits) noexcept
{
    const __m256i probes[] = {_mm256_set1_epi8(static_cast<char>(pair.firstProbe.ignored)),
                              _mm256_set1_epi8(static_cast<char>(pair.firstProbe.wanted)),
                              _mm256_set1_epi8(static_cast<char>(pair.secondProbe.ignored)),
                              _mm256_set1_epi8(static_cast<char>(pair.secondProbe.wanted))};
    for (; end - from >= BlockSize; from = NextBlock(pair, from)) {
        std::uint64_t any = 0;
        for (std::size_t i = 0; i < BlockSize; i += 64) {
            const char* const first = pair.first + from + i;
            const char* const second = pair.second + from + i;
            bits[i / 64] = FitsAvx2(first, second, probes) |
                           std::uint64_t{FitsAvx2(first + 32, second + 32, probes)} << 32;
            any |= bits[i / 64];
        }
        if (any != 0)
            return from;
    }
    return from;
}

__attribute__((target("avx512bw"))) std::size_t ScanBlocksAvx512(const Pair& pair, std::size_t from,
                                                                 std::size_t end, Bits& bits) noexcept
{
    const __m512i ignored1 = _mm512_set1_epi8(static_cast<char>(pair.firstProbe.ignored));
    const __m512i wanted1 = _mm512_set1_epi8(static_cast<char>(pair.firstProbe.wanted));
    const __m512i ignored2 = _mm512_set1_epi8(static_cast<char>(pair.secondProbe.ignored));
    const __m512i wanted2 = _mm512_set1_epi8(static_cast<char>(pair.secondProbe.wanted));
    for (; end - from >= BlockSize; from = NextBlock(pair, from)) {
        std::uint64_t any = 0;
        for (std::size_t i = 0; i < BlockSize; i += 64) {
            const __m512i bytes1 = _mm512_or_si512(_mm512_loadu_si512(pair.first + from + i), ignored1);
            const __m512i bytes2 = _mm512_or_si512(_mm512_loadu_si512(pair.second + from + i), ignored2);
            bits[i / 64] =
                _mm512_mask_cmpeq_epi8_mask(_mm512_cmpeq_epi8_mask(bytes1, wanted1), bytes2, wanted2);
            any |= bits[i / 64];
        }
        if (any != 0)
            return from;
    }
    return from;
}

#endif

} // namespace

// ---- candidates -----------------------------------------------------------------------------------------

std::span<const Candidates::ScanFunction> Candidates::UsableScans() noexcept
{
#if defined(__x86_64__)
    static constexpr ScanFunction Scans[] = {ScanBlocksAvx512, ScanBlocksAvx2, ScanBlocksSse2,
                                             ScanBlocksPortable};
    const std::size_t quickest = CpuFeatures::HasAvx512Bw() ? 0 : CpuFeatures::HasAvx2() ? 1 : 2;
#else
    static constexpr ScanFunction Scans[] = {ScanBlocksPortable};
    const std::size_t quickest = 0;
#endif
    return std::span(Scans).subspan(quickest);
}

Candidates::Candidates(std::string_view text, std::string_view pattern, const ByteFold& fold) noexcept
{
    if (pattern.empty() || pattern.size() > text.size())
        return;
    m_count = text.size() - pattern.size() + 1;
    m_pair = ChoosePair(text.data(), pattern, fold);
    m_isFirstRare = IsRare(m_pair.firstProbe);
    m_scanBlocks = UsableScans().front();
}

// Goes on to the next block that may have candidates; false at the end.
bool Candidates::Scan(std::size_t from) noexcept
{
    return from < m_count && (m_isFirstRare ? ScanByRareByte(from) : ScanTo(from, m_count));
}

bool Candidates::ScanTo(std::size_t from, std::size_t end) noexcept
{
    m_base = m_scanBlocks(m_pair, from, end, m_bits);
    m_end = m_base + BlockSize;
    if (m_end <= end)
        return true;
    m_end = end;
    if (end >= BlockSize) {
        // the last whole block, some of whose places were seen already
        m_base = end - BlockSize;
        m_scanBlocks(m_pair, m_base, end, m_bits);
    } else {
        ScanPlaces(m_pair, m_base, end, m_bits);
    }
    return true;
}

// memchr goes twice as fast, as long as the first byte proves to be rare.
bool Candidates::ScanByRareByte(std::size_t from) noexcept
{
    constexpr std::size_t Far = 1024;
    const void* const found = std::memchr(m_pair.first + from, m_pair.firstProbe.wanted, m_count - from);
    if (found == nullptr)
        return false;
    const auto at = static_cast<std::size_t>(static_cast<const char*>(found) - m_pair.first);
    m_isFirstRare = at - from >= Far;
    return ScanTo(at, std::min(at + BlockSize, m_count));
}

// ---- occurrences ----------------------------------------------------------------------------------------

namespace {

// How many characters of the pattern stand in the text, which is at least as long.
std::size_t CommonLength(const char* text, std::string_view pattern, const ByteFold& fold) noexcept
{
    std::size_t i = 0;
    while (i < pattern.size() && fold(text[i]) == fold(pattern[i]))
        ++i;
    return i;
}

} // namespace

ByteFold RuntimeLowercase() noexcept
{
    static constexpr ByteFold Ascii(
        [](unsigned int byte) { return byte >= 'A' && byte <= 'Z' ? byte + ('a' - 'A') : byte; });
    if (RuntimeText::FoldsAsciiOnly())
        return Ascii;
    const auto lower = RuntimeText::Lowercase();
    return ByteFold([&](unsigned int byte) { return lower(static_cast<char>(byte)); });
}

Occurrences::Occurrences(std::string_view text, std::string_view pattern, const ByteFold& fold) noexcept
    : m_text(text), m_pattern(pattern), m_fold(&fold), m_candidates(text, pattern, fold)
{
}

std::size_t Occurrences::Next(std::size_t from) noexcept
{
    if (m_borders != nullptr)
        return NextByAutomaton(from);
    m_start = std::min(m_start, from);
    for (std::size_t at = m_candidates.Next(from); at != None; at = m_candidates.Next(at + 1)) {
        const std::size_t matched = CommonLength(m_text.data() + at, m_pattern, *m_fold);
        if (matched == m_pattern.size())
            return at;
        // "aaaa..." in "aaaa...b": comparing at every place would take quadratic time.
        m_wasted += matched;
        if (m_wasted / 8 > at - m_start + 1024 && PrepareAutomaton())
            return NextByAutomaton(at + 1);
    }
    return None;
}

// The prefix function of Knuth, Morris and Pratt. Without the memory for it the search goes on as before.
bool Occurrences::PrepareAutomaton() noexcept
{
    m_borders.reset(new (std::nothrow) std::uint32_t[m_pattern.size()]);
    if (m_borders == nullptr)
        return false;
    m_borders[0] = 0;
    std::uint32_t border = 0;
    for (std::size_t i = 1; i < m_pattern.size(); ++i) {
        while (border > 0 && (*m_fold)(m_pattern[i]) != (*m_fold)(m_pattern[border]))
            border = m_borders[border - 1];
        if ((*m_fold)(m_pattern[i]) == (*m_fold)(m_pattern[border]))
            ++border;
        m_borders[i] = border;
    }
    return true;
}

std::size_t Occurrences::NextByAutomaton(std::size_t from) noexcept
{
    std::size_t matched = 0;
    for (std::size_t i = from; i < m_text.size(); ++i) {
        while (matched > 0 && (*m_fold)(m_text[i]) != (*m_fold)(m_pattern[matched]))
            matched = m_borders[matched - 1];
        if ((*m_fold)(m_text[i]) == (*m_fold)(m_pattern[matched]))
            ++matched;
        if (matched == m_pattern.size())
            return i + 1 - matched;
    }
    return None;
}

int Find(std::string_view text, std::string_view wanted, int start) noexcept
{
    const auto from = static_cast<std::size_t>(std::max(start, 0));
    constexpr std::size_t Short = BlockSize + 64; // too little text for the preparation to pay
    std::size_t found = None;
    if (wanted.empty() || text.size() < from + Short)
        found = text.find(wanted, from);
    else
        found = Occurrences(text, wanted).Next(from);
    return found == None ? -1 : static_cast<int>(found);
}

} // namespace TextSearch
