// The marker lines that the library writes while this lives.
#pragma once

#include <utility>
#include <vector>

#include "framework/FailureMarkers.h"

class MarkerLines {
public:
    MarkerLines() { s_lines.clear(); }
    ~MarkerLines() { FailureMarkers::SetSink(m_before); }

    // Those since the last call; tags are without the system's text behind them.
    static std::vector<CString> Take() { return std::exchange(s_lines, {}); }
    static std::vector<CString> TakeTags()
    {
        std::vector<CString> lines = Take();
        for (CString& line : lines)
            line.Truncate(line.Find('}') + 1);
        return lines;
    }

private:
    static inline std::vector<CString> s_lines;
    FailureMarkers::Sink m_before =
        FailureMarkers::SetSink([](const CString& line) { s_lines.push_back(line); });
};
