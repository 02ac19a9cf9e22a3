// CString::Format: printf's directives over arguments that know their types.
#include "CString.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <string>

namespace {

// One directive, taken apart: "%-08.3lld" is flags "-0", width 8, precision 3, size "ll", conversion 'd'.
struct Directive {
    std::string flags;
    int width = 0;
    int precision = -1;
    int integerSize = 0; // bytes, by h and hh; 0: the argument's own
    char conversion = '\0';
};

bool IsOneOf(char c, std::string_view set)
{
    return c != '\0' && set.find(c) != std::string_view::npos;
}

} // namespace

class FormatWriter {
public:
    FormatWriter(CString& out, const FormatArgument* arguments, std::size_t count)
        : m_out(out), m_next(arguments), m_end(arguments + count)
    {
    }

    void Write(const char* at)
    {
        while (const char* const percent = std::strchr(at, '%')) {
            m_out.Append(at, static_cast<int>(percent - at));
            at = WriteDirective(percent);
        }
        m_out.Append(at);
    }

private:
    // Writes the directive that starts here and answers what follows it.
    const char* WriteDirective(const char* const percent)
    {
        if (percent[1] == '%') {
            m_out.AppendChar('%');
            return percent + 2;
        }
        const FormatArgument* const first = m_next;
        Directive directive;
        const char* const end = Read(percent + 1, directive);
        if (directive.conversion == '\0' || m_next == m_end) {
            m_next = first;
            m_out.Append(percent, static_cast<int>(end - percent));
            return end;
        }
        WriteArgument(directive, *m_next++);
        return end;
    }

    const char* Read(const char* at, Directive& directive)
    {
        for (; IsOneOf(*at, "-+ #0"); ++at)
            directive.flags += *at;
        at = ReadNumber(at, directive.width);
        if (directive.width < 0) { // as printf takes a negative * width
            directive.flags += '-';
            directive.width = -directive.width;
        }
        if (*at == '.') {
            directive.precision = 0;
            at = ReadNumber(at + 1, directive.precision);
        }
        if (std::strncmp(at, "I64", 3) == 0 || std::strncmp(at, "I32", 3) == 0)
            at += 3;
        for (; IsOneOf(*at, "hlLqjztw"); ++at)
            if (*at == 'h')
                directive.integerSize = directive.integerSize == 2 ? 1 : 2;
        if (IsOneOf(*at, "diouxXcsfFeEgGaApn"))
            directive.conversion = *at++;
        return at;
    }

    // A decimal number or a * that takes an argument; neither leaves the number as it is.
    const char* ReadNumber(const char* at, int& number)
    {
        if (*at == '*') {
            if (m_next != m_end)
                number = static_cast<int>(
                    std::clamp<int64>(Signed(*m_next++, 0), -CString::MaxLength, CString::MaxLength));
            return at + 1;
        }
        const auto [end, error] = std::from_chars(at, at + std::strspn(at, "0123456789"), number);
        if (error == std::errc::result_out_of_range)
            number = CString::MaxLength;
        return end;
    }

    void WriteArgument(Directive& directive, const FormatArgument& argument)
    {
        const char wanted = directive.conversion;
        switch (argument.m_kind) {
        case FormatArgument::Kind::Signed:
        case FormatArgument::Kind::Unsigned:
            WriteInteger(directive, argument);
            break;
        case FormatArgument::Kind::Real:
            directive.conversion = IsOneOf(wanted, "fFeEgGaAn") ? wanted : 'g';
            Print(directive, "", argument.m_real);
            break;
        case FormatArgument::Kind::Text:
            if (wanted == 'p')
                Print(directive, "", static_cast<const void*>(argument.m_text));
            else
                WriteText(directive, argument.m_text);
            break;
        case FormatArgument::Kind::Pointer:
            directive.conversion = wanted == 'n' ? 'n' : 'p';
            Print(directive, "", argument.m_pointer);
            break;
        }
    }

    void WriteInteger(Directive& directive, const FormatArgument& argument)
    {
        const bool isUnsigned = argument.m_kind == FormatArgument::Kind::Unsigned;
        if (directive.conversion == 'c')
            Print(directive, "", static_cast<int>(Signed(argument, 1)));
        else if (IsOneOf(directive.conversion, "ouxX"))
            Print(directive, "ll", Unsigned(argument, directive.integerSize));
        else if (IsOneOf(directive.conversion, "din"))
            Print(directive, "ll", Signed(argument, directive.integerSize));
        else if (isUnsigned) // a directive for another kind
            Print(As(directive, 'u'), "ll", Unsigned(argument, 0));
        else
            Print(As(directive, 'd'), "ll", Signed(argument, 0));
    }

    static Directive& As(Directive& directive, char conversion)
    {
        directive.conversion = conversion;
        directive.precision = -1;
        return directive;
    }

    void WriteText(Directive& directive, const char* text)
    {
        if (text == nullptr)
            text = "";
        if (directive.width == 0 && directive.precision < 0 && directive.conversion != 'n')
            m_out.Append(text);
        else
            Print(As(directive, directive.conversion == 'n' ? 'n' : 's', directive.precision), "", text);
    }

    static Directive& As(Directive& directive, char conversion, int precision)
    {
        directive.conversion = conversion;
        directive.precision = precision;
        return directive;
    }

    // The integer as printf would read it: at least as wide as an int, unless h or hh says less.
    static uint64 Unsigned(const FormatArgument& argument, int size)
    {
        const std::size_t bytes =
            size > 0 ? static_cast<std::size_t>(size) : std::max<std::size_t>(argument.m_size, 4);
        const uint64 bits = argument.m_kind == FormatArgument::Kind::Signed
                                ? static_cast<uint64>(argument.m_signed)
                                : argument.m_unsigned;
        return bytes >= 8 ? bits : bits & ((uint64{1} << (8 * bytes)) - 1);
    }

    static int64 Signed(const FormatArgument& argument, int size)
    {
        switch (argument.m_kind) {
        case FormatArgument::Kind::Signed:
        case FormatArgument::Kind::Unsigned:
            break;
        default:
            return 0;
        }
        const std::size_t bytes =
            size > 0 ? static_cast<std::size_t>(size) : std::max<std::size_t>(argument.m_size, 4);
        const uint64 bits = Unsigned(argument, static_cast<int>(bytes));
        const int unused = bytes >= 8 ? 0 : static_cast<int>(64 - 8 * bytes);
        return static_cast<int64>(bits << unused) >> unused;
    }

    template <class Value>
    void Print(const Directive& directive, const char* size, Value value)
    {
        if (directive.conversion == 'n')
            return;
        const std::string format = "%" + directive.flags + "*.*" + size + directive.conversion;
        const auto print = [&](char* to, std::size_t room) {
            return std::snprintf(to, room, format.c_str(), directive.width, directive.precision, value);
        };
        char brief[128];
        const int length = print(brief, sizeof brief);
        if (length < static_cast<int>(sizeof brief)) {
            m_out.Append(brief, length);
            return;
        }
        CString large;
        print(large.GetBuffer(length), static_cast<std::size_t>(length) + 1);
        large.ReleaseBuffer(length);
        m_out += large;
    }

    CString& m_out;
    const FormatArgument* m_next;
    const FormatArgument* m_end;
};

void CString::AppendFormatList(const char* format, const FormatArgument* arguments, std::size_t count)
{
    CString added; // an argument may be this string
    if (format != nullptr)
        FormatWriter(added, arguments, count).Write(format);
    *this += added;
}
