// How a target says that the library did something else than the rule: Expect raises a Difference that shows
// both answers, and what was asked.
#pragma once

#include <iomanip>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

struct Difference : std::runtime_error {
    using std::runtime_error::runtime_error;
};

template <class Value>
void Show(std::ostream& out, const Value& value)
{
    if constexpr (std::is_constructible_v<std::string_view, const Value&>) {
        out << '"';
        for (const char c : std::string_view(value))
            if (c >= ' ' && c <= '~')
                out << c;
            else
                out << "\\x" << std::hex << std::setw(2) << std::setfill('0')
                    << static_cast<int>(static_cast<unsigned char>(c)) << std::dec;
        out << '"';
    } else if constexpr (std::is_arithmetic_v<Value>) {
        out << std::setprecision(17) << value;
    } else {
        out << '[';
        for (const auto& element : value)
            Show(out << ' ', element);
        out << " ]";
    }
}

template <class Actual, class Expected, class... Asked>
void Expect(const char* operation, const Actual& actual, const Expected& expected, const Asked&... asked)
{
    if (actual == expected)
        return;
    std::ostringstream out;
    out << operation;
    (Show(out << ' ', asked), ...);
    Show(out << "\n  answered ", actual);
    Show(out << "\n  wanted   ", expected);
    throw Difference(out.str());
}
