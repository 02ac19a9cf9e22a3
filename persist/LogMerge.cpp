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

// Our lines that are not in the file, by the reason.
struct Missing {
    Lines fallenOut, lost, pending;
};

Missing MissingInFile(const Lines& inFile, const Lines& ours, const std::vector<bool>& isFound)
{
    Missing missing;
    bool isBehindFound = false;
    for (std::size_t i = 0; i < ours.size(); ++i) {
        const bool isNewerThanFirst = !inFile.empty() && inFile.front().time < ours[i].time;
        isBehindFound = isBehindFound || isFound[i];
        if (isFound[i])
            continue;
        Lines& lines = ours[i].isPending                   ? missing.pending
                       : isBehindFound && isNewerThanFirst ? missing.lost
                                                           : missing.fallenOut;
        lines.push_back(ours[i]);
    }
    return missing;
}

// Where the oldest of our lines that the file has stands in it; the file's end without one.
Lines::const_iterator FirstCommon(const Lines& inFile, const Lines& ours, const std::vector<bool>& isFound)
{
    const auto found = std::find(isFound.begin(), isFound.end(), true) - isFound.begin();
    if (found == std::ssize(ours))
        return inFile.end();
    const std::string_view bytes = ours[static_cast<std::size_t>(found)].bytes;
    return std::find_if(inFile.begin(), inFile.end(), [&](const Line& line) { return line.bytes == bytes; });
}

void Append(LogEntries& entries, const Lines& lines)
{
    for (const Line& line : lines)
        entries.AddEncoded(line.bytes, line.isPending);
}

} // namespace

LogEntries LogMerge::Merged(const LogEntries& inFile, const LogEntries& ours)
{
    const Lines fileLines = LinesOf(inFile);
    const Lines ourLines = LinesOf(ours);
    const std::vector<bool> isFound = FoundInFile(fileLines, ourLines);
    const Missing missing = MissingInFile(fileLines, ourLines, isFound);
    const auto common = FirstCommon(fileLines, ourLines, isFound);
    LogEntries merged;
    Append(merged, MergedByTime(missing.fallenOut, Lines(fileLines.begin(), common)));
    Append(merged, MergedByTime(MergedByTime(missing.lost, Lines(common, fileLines.end())), missing.pending));
    return merged;
}
