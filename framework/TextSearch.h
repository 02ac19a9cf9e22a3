// Substring search on counted texts: exact, for every byte value.
#pragma once

#include <string_view>

namespace TextSearch {

// Where `wanted` first stands in `text` at or after `start` (below 0: from the beginning), or -1. An empty
// `wanted` stands at `start` if that is not past the end.
int Find(std::string_view text, std::string_view wanted, int start) noexcept;

} // namespace TextSearch
