#include "DebugUtils.h"

CString DebugUtils::ComposeTraceCore(const CString& text, long number)
{
    CString trace(text);
    trace.AppendFormat(" (%ld)", number);
    return trace;
}
