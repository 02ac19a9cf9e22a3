#include "framework/FailureMarkers.h"

#include <atomic>

#include "framework/SystemMessages.h"
#include "platform/Platform.h"

namespace FailureMarkers {

static std::atomic<Sink> currentSink = nullptr;

Sink SetSink(Sink sink) noexcept
{
    return currentSink.exchange(sink);
}

bool IsRecording() noexcept
{
    return currentSink != nullptr;
}

void Report(const char* tag)
{
    if (const Sink sink = currentSink)
        sink(tag);
}

void Report(const char* tag, const CString& explanation)
{
    if (const Sink sink = currentSink)
        sink(tag + explanation);
}

void ReportWithLastError(const char* tag)
{
    const DWORD error = GetLastError();
    if (const Sink sink = currentSink)
        sink(tag + SystemMessages::TextFor(error));
}

} // namespace FailureMarkers
