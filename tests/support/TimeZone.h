// The process's time zone for one test.
#pragma once

#include "platform/Platform.h"
#include "support/Environment.h"

class TimeZone : Environment {
public:
    explicit TimeZone(const char* zone)
    {
        Set("TZ", zone);
        _tzset();
    }
};
