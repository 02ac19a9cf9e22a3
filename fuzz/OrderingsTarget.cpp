#include "StringUtils.h"
#include "fuzz/Difference.h"
#include "fuzz/Targets.h"
#include "tests/support/TextModels.h"

namespace {

const std::string Lowercase = "abcdefghijklmnopqrstuvwxyz";
const std::string Uppercase = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";

// The steps of both orderings with case; of the special one, which side must be lower and which upper.
bool SlowCase(const std::string& a, const std::string& b, bool less)
{
    const auto isLower = [](char c) { return static_cast<signed char>(c) >= 0 && !Has(Uppercase, c); };
    const auto isUpper = [](char c) { return static_cast<signed char>(c) >= 0 && !Has(Lowercase, c); };
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
        const int left = LowerOf(a[i]);
        const int right = LowerOf(b[i]);
        const bool isSpecial = less ? isLower(a[i]) && isUpper(b[i]) : isUpper(a[i]) && isLower(b[i]);
        if (isSpecial && (less ? a[i] <= right : left >= b[i]))
            return true;
        if (!isSpecial && left != right)
            return (left < right) == less;
    }
    return less ? a.size() < b.size() : a.size() > b.size();
}

int SlowNoCase(const std::string& a, const std::string& b)
{
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i)
        if (LowerOf(a[i]) != LowerOf(b[i]))
            return LowerOf(a[i]) - LowerOf(b[i]);
    return static_cast<int>(a.size()) - static_cast<int>(b.size());
}

} // namespace

void Targets::Orderings(Choices& choices)
{
    static const std::string alphabet("abAB1 \0\x80\xFF", 9);
    const std::string a = choices.Make(alphabet, choices.Below(6)),
                      b = choices.Make(alphabet, choices.Below(6));
    Expect("IsLessThanCase", StringUtils::IsLessThanCase(a, b), SlowCase(a, b, true), a, b);
    Expect("IsGreaterThanCase", StringUtils::IsGreaterThanCase(a, b), SlowCase(a, b, false), a, b);
    Expect("IsLessThanNoCase", StringUtils::IsLessThanNoCase(a, b), SlowNoCase(a, b) < 0, a, b);
    Expect("IsGreaterThanNoCase", StringUtils::IsGreaterThanNoCase(a, b), SlowNoCase(a, b) > 0, a, b);
}
