// A zone of the recorded answers for one test. The process has the system's for good, which under Wine the
// variable TZ of its start names; the runtime would read that variable in a form of its own.
#pragma once

#include <string>

#include "platform/Platform.h"
#include "support/Environment.h"

class RecordedZone : Environment {
public:
    RecordedZone(const std::string& zone, bool isWinter)
    {
        Unset("TZ");
        _tzset();
        TIME_ZONE_INFORMATION here = {};
        const bool isSummer = GetTimeZoneInformation(&here) == TIME_ZONE_ID_DAYLIGHT;
        const LONG minutes = zone == "Europe/Berlin" ? -60 : zone == "America/New_York" ? 300 : 0;
        const bool hasSummer = here.DaylightDate.wMonth != 0;
        IsHere = here.Bias == minutes && hasSummer == (minutes != 0) && !(isWinter && isSummer);
    }
    bool IsHere;
};
