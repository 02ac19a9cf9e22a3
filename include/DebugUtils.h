// DebugUtils: traces for a debugger. In this library they are empty: all but ComposeTraceCore do nothing,
// whatever they are given.
#pragma once

#include "CString.h"
#include "Kvt01Api.h"

class KVT01_API DebugUtils {
public:
    template <class... Values>
    static void Trace(const Values&...) noexcept
    {
    }
    template <class... Values>
    static void SetOutputToFile(const Values&...) noexcept
    {
    }
    template <class... Values>
    static void WriteToOutputFile(const Values&...) noexcept
    {
    }
    template <class... Values>
    static void BreakpointAt(const Values&...) noexcept
    {
    }

    // "Parser.cpp", 12 -> "Parser.cpp (12)"
    static CString ComposeTraceCore(const CString& text, long number);
};
