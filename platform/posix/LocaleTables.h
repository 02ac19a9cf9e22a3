// Facts of locales that ICU does not have.
#pragma once

#include <string_view>

#include "BasicTypes.h"

namespace LocaleTables {

// The telephone code of a country by its ISO 3166 code of two letters; 0 for an unknown one.
DWORD TelephoneCode(std::string_view country);

// Where the minus stands, as a number of LOCALE_INEGNUMBER, by the ISO 639 code of the language.
DWORD NegativeNumberOrder(std::string_view language);

} // namespace LocaleTables
