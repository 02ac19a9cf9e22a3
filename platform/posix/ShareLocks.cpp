#include "platform/posix/ShareLocks.h"

#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <limits>
#include <unistd.h>

namespace {

// The bytes from here on: one per use in the order of the enumeration, then one per denial.
constexpr off_t FirstByte = std::numeric_limits<off_t>::max() - 255;
constexpr int UseCount = 3;
constexpr int Attempts = 15;

struct flock LockOf(short type, int byte) noexcept
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = FirstByte + byte;
    lock.l_len = 1;
    return lock;
}

// Bit for bit, the bytes that stand for some uses and denials.
unsigned BytesFor(unsigned uses, unsigned denies) noexcept
{
    return uses | denies << UseCount;
}

bool IsAnyHeldByOthers(int descriptor, unsigned bytes) noexcept
{
    for (int byte = 0; byte < 2 * UseCount; ++byte) {
        struct flock lock = LockOf(F_WRLCK, byte);
        if ((bytes >> byte & 1) != 0 && fcntl(descriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK)
            return true;
    }
    return false;
}

bool IsRefusal(int posixError) noexcept
{
    return posixError == EAGAIN || posixError == EACCES; // anything else: no locks in this place
}

bool Announce(int descriptor, unsigned bytes) noexcept
{
    for (int byte = 0; byte < 2 * UseCount; ++byte) {
        struct flock lock = LockOf(F_RDLCK, byte);
        if ((bytes >> byte & 1) != 0 && fcntl(descriptor, F_OFD_SETLK, &lock) != 0 && IsRefusal(errno))
            return false;
    }
    return true;
}

void Withdraw(int descriptor) noexcept
{
    struct flock lock = LockOf(F_UNLCK, 0);
    lock.l_len = 2 * UseCount;
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

bool ShareLocks::Enter(int descriptor, unsigned uses, unsigned denies) noexcept
{
    const unsigned own = BytesFor(uses, denies);
    const unsigned opposed = BytesFor(denies, uses);
    const unsigned lasting = opposed & ~BytesFor(Deletes, 0); // deleting takes a moment: worth waiting for
    for (int attempt = 0; attempt < Attempts; ++attempt) {
        // Looked at before anything is announced, so that one who is not let in disturbs nobody.
        if (IsAnyHeldByOthers(descriptor, lasting) || !Announce(descriptor, own))
            return false;
        if (!IsAnyHeldByOthers(descriptor, opposed))
            return true;
        Withdraw(descriptor); // two came at the same moment and saw each other
        WaitShortly(attempt);
    }
    return false;
}
