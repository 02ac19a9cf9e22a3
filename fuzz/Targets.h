// The targets: each makes something of any bytes and holds what the library answers against the rule, written
// once more without regard to speed. It raises a Difference where the two part.
#pragma once

#include <string_view>

#include "fuzz/Choices.h"

namespace Targets {

void Search(Choices& choices);
void Matching(Choices& choices);
void Orderings(Choices& choices);
void FileNameOrder(Choices& choices);
void Sorting(Choices& choices);
void Lists(Choices& choices);
void Strings(Choices& choices);
void Numbers(Choices& choices);
void RecentLists(Choices& choices);
void Times(Choices& choices);
void Records(Choices& choices);
void Encryption(Choices& choices);
void TextFiles(Choices& choices);

using Target = void (*)(Choices&);

struct NamedTarget {
    std::string_view name; // that of its corpus, too
    Target run;
};
inline constexpr NamedTarget All[] = {
    {"search", Search},
    {"matching", Matching},
    {"orderings", Orderings},
    {"file-name-order", FileNameOrder},
    {"sorting", Sorting},
    {"lists", Lists},
    {"strings", Strings},
    {"numbers", Numbers},
    {"recent-lists", RecentLists},
    {"times", Times},
    {"records", Records},
    {"encryption", Encryption},
    {"text-files", TextFiles},
};

// Null for a name that there is not.
inline Target Named(std::string_view name)
{
    for (const NamedTarget& target : All)
        if (target.name == name)
            return target.run;
    return nullptr;
}

} // namespace Targets
