// The parts of an OLE automation date.
#pragma once

#include <cmath>

#include "platform/Platform.h"

// False outside of the years 100 to 9999, and for a NaN, which not every system refuses by itself.
inline bool GetPartsOfOleDate(double date, SYSTEMTIME& parts) noexcept
{
    return !std::isnan(date) && VariantTimeToSystemTime(date, &parts) != FALSE;
}
