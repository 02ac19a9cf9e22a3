#include "persist/LogMerge.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace {

struct Line {
    std::string_view bytes;
    DateTime time;
    bool isPending;
};
using Lines = std::vector<Line>;

Lines LinesOf(const LogEntries& entries)
{
    Lines lines;
    lines.reserve(entries.GetCount());
    entries.ForEach([&](std::string_view bytes, bool isPending) {
        lines.push_back({bytes, LogEntries::TimeOf(bytes), isPending});
    });
    return lines;
}

// Each list keeps its order, whatever a clock that was set back did to its times. At the same time those of
// `a` come first.
Lines MergedByTime(const Lines& a, const Lines& b)
{
    Lines merged;
    merged.reserve(a.size() + b.size());
    auto next = b.begin();
    for (const Line& line : a) {
        for (; next != b.end() && next->time < line.time; ++next)
            merged.push_back(*next);
        merged.push_back(line);
    }
    merged.insert(merged.end(), next, b.end());
    return merged;
}

// Which of our lines the file has. Counted from the newest on: of equal lines it is the oldest that fell out.
std::vector<bool> FoundInFile(const Lines& inFile, const Lines& ours)
{
    std::unordered_map<std::string_view, std::size_t> left;
    for (const Line& line : inFile)
        ++left[line.bytes];
    std::vector<bool> isFound(ours.size());
    for (std::size_t i = ours.size(); i-- > 0;) {
        const auto same = ours[i].isPending ? left.end() : left.find(ours[i].bytes);
        isFound[i] = same != left.end() && same->second > 0;
        if (isFound[i])
            --same->second;
    }
    return isFound;
}

} // namespace

LogEntries LogMerge::Merged(const LogEntries& inFile, const LogEntries& ours)
{
    const Lines fileLines = LinesOf(inFile);
    const Lines ourLines = LinesOf(ours);
    const std::vector<bool> isFound = FoundInFile(fileLines, ourLines);
    const auto firstFound = std::find(isFound.begin(), isFound.end(), true) - isFound.begin();
    Lines older;
    Lines newer;
    for (std::size_t i = 0; i < ourLines.size(); ++i)
        if (!isFound[i])
            (i < static_cast<std::size_t>(firstFound) ? older : newer).push_back(ourLines[i]);
    LogEntries merged;
    for (const Line& line : MergedByTime(MergedByTime(older, fileLines), newer))
        merged.AddEncoded(line.bytes, line.isPending);
    return merged;
}
