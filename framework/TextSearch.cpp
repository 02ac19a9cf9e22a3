#include "framework/TextSearch.h"

#include <algorithm>
#include <cstddef>

namespace TextSearch {

int Find(std::string_view text, std::string_view wanted, int start) noexcept
{
    const auto found = text.find(wanted, static_cast<std::size_t>(std::max(start, 0)));
    return found == std::string_view::npos ? -1 : static_cast<int>(found);
}

} // namespace TextSearch
