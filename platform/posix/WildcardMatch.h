// File names and the platform's wildcards, by bytes.
#pragma once

#include <string_view>

// The rules stand at FindFirstFileA. Costs at most the product of the lengths.
bool MatchesWildcards(std::string_view name, std::string_view mask) noexcept;
