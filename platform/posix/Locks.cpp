#include "platform/posix/PosixLocks.h"

void InitializeCriticalSection(CRITICAL_SECTION* section) noexcept
{
    section->mutex = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
}

BOOL InitializeCriticalSectionAndSpinCount(CRITICAL_SECTION* section, DWORD) noexcept
{
    InitializeCriticalSection(section);
    return TRUE;
}

void EnterCriticalSection(CRITICAL_SECTION* section) noexcept
{
    pthread_mutex_lock(&section->mutex);
}

BOOL TryEnterCriticalSection(CRITICAL_SECTION* section) noexcept
{
    return pthread_mutex_trylock(&section->mutex) == 0 ? TRUE : FALSE;
}

void LeaveCriticalSection(CRITICAL_SECTION* section) noexcept
{
    pthread_mutex_unlock(&section->mutex);
}

void DeleteCriticalSection(CRITICAL_SECTION* section) noexcept
{
    pthread_mutex_destroy(&section->mutex);
}
