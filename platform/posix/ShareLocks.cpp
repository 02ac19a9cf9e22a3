#include "platform/posix/ShareLocks.h"

#include <fcntl.h>
#include <unistd.h>

#include "platform/posix/PosixFiles.h"

namespace {

enum Sign : off_t {
    Reads = 0x7000000000000000,
    Writes,
    DeniesReading,
    DeniesWriting,
    DeniesDeleting,
};

struct flock LockOn(Sign sign, short type)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = sign;
    lock.l_len = 1;
    return lock;
}

void Show(int file, Sign sign)
{
    struct flock lock = LockOn(sign, F_RDLCK);
    fcntl(file, F_OFD_SETLK, &lock);
}

void Hide(int file, Sign sign)
{
    struct flock lock = LockOn(sign, F_UNLCK);
    fcntl(file, F_OFD_SETLK, &lock);
}

// Whether another open file shows this sign.
bool IsShown(int file, Sign sign)
{
    struct flock lock = LockOn(sign, F_WRLCK);
    return fcntl(file, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

struct Rule {
    bool applies;  // to this handle
    Sign shown;    // what it shows then
    Sign excluded; // what no other may show
    bool isStrict; // false: nothing is excluded
};

} // namespace

bool ShareLocks::Claim(int file, DWORD access, DWORD share)
{
    if (access == 0)
        return true;
    const Rule rules[] = {
        {(access & GENERIC_READ) != 0, Reads, DeniesReading, true},
        {(access & GENERIC_WRITE) != 0, Writes, DeniesWriting, true},
        {(share & FILE_SHARE_READ) == 0, DeniesReading, Reads, true},
        {(share & FILE_SHARE_WRITE) == 0, DeniesWriting, Writes, true},
        {(share & FILE_SHARE_DELETE) == 0, DeniesDeleting, DeniesDeleting, false},
    };
    for (const Rule& rule : rules)
        if (rule.applies)
            Show(file, rule.shown);
    bool isFree = true;
    for (const Rule& rule : rules)
        isFree = isFree && !(rule.applies && rule.isStrict && IsShown(file, rule.excluded));
    if (!isFree)
        for (const Rule& rule : rules)
            Hide(file, rule.shown);
    return isFree;
}

bool ShareLocks::IsDeletingDenied(const std::string& systemPath)
{
    const int file = open(systemPath.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0)
        return false;
    const bool isDenied = IsShown(file, DeniesDeleting);
    close(file);
    return isDenied;
}
