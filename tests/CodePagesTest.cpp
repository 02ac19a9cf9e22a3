// The conversions between narrow text and UTF-16 against the answers of the original platform.
#include <gtest/gtest.h>

#include "support/Agreement.h"
#include "support/Conversions.h"

using namespace Conversions;

namespace {

// Calls check(what, ours, recorded) for a row of the table; a row of 80-FF stands for each of these bytes.
template <class Check>
void CompareWide(UINT page, const std::vector<std::string>& cells, Check check)
{
    const bool isOneByOne = cells[2] == "80-FF";
    const std::string inputs = isOneByOne ? AllBytes().substr(0x80) : FromHex<std::string>(cells[2]);
    for (std::size_t i = 0, length = isOneByOne ? 1 : inputs.size(); i < inputs.size(); i += length) {
        const std::string input = inputs.substr(i, length);
        check("", ToWide(page, input), cells[3]);
        check(" strictly", ToWide(page, input, MB_ERR_INVALID_CHARS), cells[7] == "ok" ? cells[3] : cells[7]);
    }
}

template <class Check>
void CompareNarrow(UINT page, const std::vector<std::string>& cells, Check check)
{
    const Units text = FromHex<Units>(cells[2]);
    const std::string used = cells[4] == "1" ? " default" : "", &kind = cells[7];
    check("", ToNarrow(page, text), cells[3] + used);
    if (page == CP_UTF8)
        return check(" strictly", ToNarrow(page, text, nullptr, WC_ERR_INVALID_CHARS),
                     kind == "replaced" ? "ERROR 1113" : cells[3]);
    check(" else ?", ToNarrow(page, text, "?"), cells[5] + used);
    check(" else _", ToNarrow(page, text, "_"), cells[6] + used);
    const std::string plain = ToNarrow(page, text, nullptr, WC_NO_BEST_FIT_CHARS);
    check(" strictly", kind != "exact" && plain.ends_with(" default") ? " default" : plain,
          kind == "exact" ? cells[3] : " default");
}

TEST(CodePages, AgreeWithTheOriginalPlatform)
{
    Agreement::Comparison comparison("codepage-answers.tsv", "code page exceptions");
    for (const auto& cells : RecordedRows("codepage-answers.tsv")) {
        const auto check = [&](const char* how, const std::string& here, const std::string& recorded) {
            comparison.Check(cells[0], cells[1] + ' ' + cells[2] + how, here, recorded);
        };
        const auto page = static_cast<UINT>(std::stoul(cells[1]));
        cells[0] == "to_wide" ? CompareWide(page, cells, check) : CompareNarrow(page, cells, check);
    }
}

} // namespace
