// Sets the process's time zone for one test and puts the old one back.
#pragma once

#include <cstdlib>
#include <string>

class TimeZone {
public:
    explicit TimeZone(const char* zone)
    {
        if (const char* old = std::getenv("TZ")) {
            m_old = old;
            m_wasSet = true;
        }
        setenv("TZ", zone, 1);
    }
    ~TimeZone()
    {
        if (m_wasSet)
            setenv("TZ", m_old.c_str(), 1);
        else
            unsetenv("TZ");
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    std::string m_old;
    bool m_wasSet = false;
};
