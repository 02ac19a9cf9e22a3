// The answers of the locale items against those of the original platform.
#include <gtest/gtest.h>

#include "support/Agreement.h"
#include "support/UserSettings.h"

namespace {

// The conversions have a test of their own.
std::string InCodePage(const std::string& utf8)
{
    std::vector<WCHAR> wide(utf8.size());
    const auto room = static_cast<int>(utf8.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), room, wide.data(), room);
    std::string narrow(utf8.size(), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), length, narrow.data(), length, nullptr, nullptr);
    narrow.resize(static_cast<std::size_t>(length));
    return narrow;
}

TEST(LocaleAgreement, WithTheOriginalPlatform)
{
    UserSettings user;
    Agreement::Comparison comparison("locale-answers.tsv", "locale exceptions");
    for (const auto& cells : RecordedRows("locale-answers.tsv")) {
        const auto [locale, flags] = user.UseLocale(cells[0]);
        char answer[256] = "none";
        GetLocaleInfoA(locale, static_cast<LCTYPE>(std::stoul(cells[2])) | flags, answer, sizeof answer);
        const bool isText = cells[1].starts_with("LOCALE_S");
        comparison.Check(cells[1], cells[0], answer, isText ? InCodePage(cells[4]) : cells[3]);
    }
}

} // namespace
