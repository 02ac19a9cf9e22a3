// The process's time zone for one test.
#pragma once

#include "support/Environment.h"

class TimeZone : Environment {
public:
    explicit TimeZone(const char* zone) { Set("TZ", zone); }
};
