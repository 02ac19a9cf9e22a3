// A zone of the recorded answers for one test, by its rule of 2026, or as in winter only.
#pragma once

#include <string>

#include "support/TimeZone.h"

class RecordedZone : TimeZone {
public:
    RecordedZone(const std::string& zone, bool isWinter)
        : TimeZone(zone == "Europe/Berlin"      ? isWinter ? "<+01>-1" : "CET-1CEST,M3.5.0,M10.5.0/3"
                   : zone == "America/New_York" ? isWinter ? "EST5" : "EST5EDT,M3.2.0,M11.1.0"
                                                : "UTC0")
    {
    }
    static constexpr bool IsHere = true; // false where the process has another one for good
};
