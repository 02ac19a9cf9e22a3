// RandomNumberGen: random integers and random order. Nothing is kept between calls, so any thread may call.
#pragma once

#include <vector>

#include "Kvt01Api.h"

class KVT01_API RandomNumberGen {
public:
    // An integer from lo to hi, both included, each equally likely, also over the whole range of int; lo when
    // lo > hi. Every call seeds a 32-bit Mersenne Twister of its own from the system's random device (from
    // the clock where there is none) and pays tens of microseconds for it. Not for secrets.
    static int Get(int lo, int hi);

    // Puts the values in a random order. The seed is the clock in units of 100 ns, cut to 32 bits.
    static void RandomShuffle(std::vector<int>& values);
};
