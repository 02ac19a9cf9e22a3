// Prime: primes, and sizes for hash tables.
#pragma once

#include <vector>

#include "BasicTypes.h"
#include "Kvt01Api.h"

class KVT01_API Prime {
public:
    // Right for every n. An odd n is divided by every odd number below it: a prime n costs n / 2 divisions,
    // seconds near 2^32 and far more than a lifetime near 2^64; a composite n costs as many as half its
    // smallest factor.
    static bool IsPrime(uint64 n);

    // The smallest prime that is n or more, 2 at least, found with IsPrime and at its cost. The search ends
    // at 4294967295: a larger n, and one with no prime between it and that limit (4294967292 and up), is
    // itself the result, prime or not.
    static uint64 GetNearestPrimeNumber(uint64 n);

    // A table size for n expected entries: GetNearestPrimeNumber of n (3 at least) x 120 / 100 in integers.
    // From 3579139410 entries on that search finds nothing and the result is no prime in general; above
    // 153722867280912930 the product wraps modulo 2^64 and the result may be too small.
    static uint64 CalculateHashTableSize(uint64 n);

    // Appends the primes from lo to hi, both included, in ascending order; nothing when lo > hi. A sieve: all
    // primes below a million take milliseconds; a range that holds a prime near 2^64 takes some ten seconds,
    // as its divisors go up to the square root of hi.
    static void GetPrimesInRange(uint64 lo, uint64 hi, std::vector<uint64>& primes);
    template <LongUint64 Number>
    static void GetPrimesInRange(uint64 lo, uint64 hi, std::vector<Number>& primes)
    {
        std::vector<uint64> found;
        GetPrimesInRange(lo, hi, found);
        primes.insert(primes.end(), found.begin(), found.end());
    }
};
