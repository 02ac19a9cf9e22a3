// Where the library's own failures are reported: one marker line each, the brace-enclosed tag of the failing
// site followed directly by an explanation. The application log takes the lines while it exists; without a
// log nothing is recorded.
#pragma once

#include "CString.h"

namespace FailureMarkers {

using Sink = void (*)(const CString& line);

// Where the lines go from now on; nullptr for nowhere. Answers where they went before.
Sink SetSink(Sink sink) noexcept;

// Whether anybody takes the lines: for a site whose explanation costs something to make.
bool IsRecording() noexcept;

void Report(const char* tag);
void Report(const char* tag, const CString& explanation);
void ReportWithLastError(const char* tag); // followed by the system's text for GetLastError

} // namespace FailureMarkers
