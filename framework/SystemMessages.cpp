#include "framework/SystemMessages.h"

#include "platform/Platform.h"

CString SystemMessages::TextFor(DWORD error)
{
    char text[512] = "";
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        error, 0, text, sizeof text, nullptr);
    CString message(text, static_cast<int>(length));
    message.TrimRight();
    if (message.IsEmpty())
        message.Format("Error %u", error);
    return message;
}
