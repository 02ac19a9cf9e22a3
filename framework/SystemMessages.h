// The platform's texts for its error numbers.
#pragma once

#include "CString.h"

namespace SystemMessages {

// In one line, without a line end; a number without a text of its own gives "Error 123".
CString TextFor(DWORD error);

} // namespace SystemMessages
