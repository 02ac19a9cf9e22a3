#include "platform/posix/ShareLocks.h"

#include <bit>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <limits>
#include <unistd.h>

using namespace ShareLocks;

namespace {

// The bytes from here on: one per use in the order of the enumeration, then one per denial in the opposite
// order, so that what is used and denied together lies side by side and takes one system call.
constexpr off_t FirstByte = std::numeric_limits<off_t>::max() - 255;
constexpr int UseCount = 3;
constexpr int Attempts = 15;

struct flock LockOf(short type, int firstByte, int count) noexcept
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = FirstByte + firstByte;
    lock.l_len = count;
    return lock;
}

// Bit for bit, the bytes that stand for some uses and denials.
unsigned BytesFor(unsigned uses, unsigned denies) noexcept
{
    const unsigned mirrored = (denies & Deletes) << 2 | (denies & Reads) | (denies & Writes) >> 2;
    return uses | mirrored << UseCount;
}

// Whether visit(first, count) is true for one of the runs of bytes.
template <class Visit>
bool AnyRun(unsigned bytes, Visit visit) noexcept
{
    int first = 0;
    while (bytes >> first != 0) {
        first += std::countr_zero(bytes >> first);
        const int count = std::countr_one(bytes >> first);
        if (visit(first, count))
            return true;
        first += count;
    }
    return false;
}

bool IsAnyHeldByOthers(int descriptor, unsigned bytes) noexcept
{
    return AnyRun(bytes, [descriptor](int first, int count) {
        struct flock lock = LockOf(F_WRLCK, first, count);
        return fcntl(descriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    });
}

bool IsRefusal(int posixError) noexcept
{
    return posixError == EAGAIN || posixError == EACCES; // anything else: no locks in this place
}

bool Announce(int descriptor, unsigned bytes) noexcept
{
    return !AnyRun(bytes, [descriptor](int first, int count) {
        struct flock lock = LockOf(F_RDLCK, first, count);
        return fcntl(descriptor, F_OFD_SETLK, &lock) != 0 && IsRefusal(errno);
    });
}

void Withdraw(int descriptor) noexcept
{
    struct flock lock = LockOf(F_UNLCK, 0, 2 * UseCount);
    fcntl(descriptor, F_OFD_SETLK, &lock);
}

void WaitShortly(int attempt) noexcept
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const long spread = 10'000L << attempt; // nanoseconds; uneven, so that two who met part
    const timespec pause = {0, (now.tv_nsec ^ getpid() * 7919L) % spread};
    nanosleep(&pause, nullptr);
}

} // namespace

bool ShareLocks::Enter(int descriptor, unsigned uses, unsigned denies, bool isNew) noexcept
{
    const unsigned own = BytesFor(uses, denies);
    const unsigned opposed = BytesFor(denies, uses);
    const unsigned lasting = opposed & ~BytesFor(Deletes, 0); // deleting takes a moment: worth waiting for
    const bool isFirstLookSpared = isNew || (uses == Deletes && denies == 0);
    for (int attempt = 0; attempt < Attempts; ++attempt) {
        // Looked at before anything is announced, so that one who is not let in disturbs nobody. Deleting
        // only makes others wait, and hardly anybody has got at a file that was made a moment ago.
        const bool looksFirst = attempt > 0 || !isFirstLookSpared;
        if ((looksFirst && IsAnyHeldByOthers(descriptor, lasting)) || !Announce(descriptor, own))
            return false;
        if (!IsAnyHeldByOthers(descriptor, opposed))
            return true;
        Withdraw(descriptor); // two came at the same moment and saw each other
        WaitShortly(attempt);
    }
    return false;
}
