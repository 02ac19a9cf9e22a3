// File names and the platform's wildcards, by bytes.
#pragma once

#include <string_view>

// The rules stand at FindFirstFileA. Costs the product of the lengths; a name of more than 1023 bytes
// matches nothing.
bool MatchesWildcards(std::string_view name, std::string_view mask) noexcept;
