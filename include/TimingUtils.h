// TimingUtils: a stopwatch in milliseconds, as fine as the system's tick counter.
#pragma once

#include "BasicTypes.h"
#include "Kvt01Api.h"

class KVT01_API TimingUtils {
public:
    void Start(); // begins anew when already running

    // Ends the measurement: the milliseconds since Start, modulo 2^32 (49.7 days), right across one wrap of
    // the system's 32-bit counter. 0 when not running, thus also for a second Stop.
    unsigned int Stop();

private:
    bool m_bRunning = false;
    DWORD m_nStart = 0; // the tick count
};
