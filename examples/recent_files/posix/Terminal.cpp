#include "Terminal.h"

#include <iconv.h>

CString ForTerminal(const CString& text)
{
    const iconv_t converter = iconv_open("UTF-8", "CP1252");
    if (converter == iconv_t(-1))
        return text;
    CString in(text);
    CString out;
    char* from = in.GetBuffer();
    char* to = out.GetBuffer(3 * text.GetLength());
    auto left = static_cast<std::size_t>(text.GetLength());
    auto room = 3 * left;
    const bool isDone = iconv(converter, &from, &left, &to, &room) != static_cast<std::size_t>(-1);
    out.ReleaseBuffer(3 * text.GetLength() - static_cast<int>(room));
    iconv_close(converter);
    return isDone ? out : text;
}
