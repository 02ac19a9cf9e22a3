// Who reads, writes, deletes an open file and who denies it to others: the share modes, between all handles
// of this library, in one process or in several.
//
// Each use and each denial has a byte of its own, far behind the content of any file, and a handle keeps a
// shared advisory lock on the bytes of its own uses and denials. Shared locks need no more than a readable
// descriptor, never wait, belong to the open file and go with it, also when the process dies. Whether
// somebody else's use meets a denial, or the other way round, is asked by testing, not taking, an exclusive
// lock.
#pragma once

#include "BasicTypes.h"

namespace ShareLocks {

enum Use : unsigned { Deletes = 1, Reads = 2, Writes = 4 };

// Whether a handle with these uses, which denies those to all others, may go with the ones that are open. If
// so, its locks are kept until the descriptor is closed. No two handles that exclude each other are ever both
// let in; of two that come at the same moment one gets in. For that, and while another deletes or replaces
// the file, some waiting is done, usually for microseconds and never for more than a third of a second. A
// file that the caller has just made costs one question less. A file system without such locks lets everybody
// in. A whole-file lock of another program shuts everybody out.
bool Enter(int descriptor, unsigned uses, unsigned denies, bool isNew = false) noexcept;

} // namespace ShareLocks
