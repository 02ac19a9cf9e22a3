// The chain by the AES instructions of x86-64. Only for a processor that has them:
// Aes::UsableImplementations.
#pragma once

#include "persist/Aes.h"

#if defined(__x86_64__)

namespace Aes {

void EncryptByInstructions(const KeySchedule& keys, Block& chain, const BYTE* in, BYTE* out,
                           std::size_t blocks);
void DecryptByInstructions(const KeySchedule& keys, Block& chain, const BYTE* in, BYTE* out,
                           std::size_t blocks);
// Four blocks in each register; needs VAES and AVX-512F.
void DecryptByWideInstructions(const KeySchedule& keys, Block& chain, const BYTE* in, BYTE* out,
                               std::size_t blocks);

} // namespace Aes

#endif
