// The platform's critical sections: locks that the thread which holds one may enter again, and leaves as
// often.
#pragma once

#include <pthread.h>

#include "platform/posix/PosixPlatform.h"

struct CRITICAL_SECTION {
    pthread_mutex_t mutex;
};

// Leaving a section that the calling thread does not hold does nothing.
void InitializeCriticalSection(CRITICAL_SECTION* section) noexcept;
BOOL InitializeCriticalSectionAndSpinCount(CRITICAL_SECTION* section,
                                           DWORD spinCount) noexcept; // no spinning
void EnterCriticalSection(CRITICAL_SECTION* section) noexcept;
BOOL TryEnterCriticalSection(CRITICAL_SECTION* section) noexcept;
void LeaveCriticalSection(CRITICAL_SECTION* section) noexcept;
void DeleteCriticalSection(CRITICAL_SECTION* section) noexcept;
