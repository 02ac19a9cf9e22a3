#include <cstring>
#include <string_view>
#include <vector>

#include "FileUtils.h"
#include "platform/Platform.h"

namespace {

using VersionBlock = std::vector<BYTE>;

VersionBlock ReadVersionBlock(const CString& path)
{
    DWORD ignored = 0;
    VersionBlock block(GetFileVersionInfoSizeA(path, &ignored));
    const auto size = static_cast<DWORD>(block.size());
    return size > 0 && GetFileVersionInfoA(path, 0, size, block.data()) ? block : VersionBlock();
}

// A value of the block, empty without one.
std::string_view ValueOf(const VersionBlock& block, const CString& name)
{
    void* value = nullptr;
    UINT length = 0;
    if (block.empty() || !VerQueryValueA(block.data(), name, &value, &length) || value == nullptr)
        return {};
    return {static_cast<const char*>(value), length};
}

} // namespace

CString FileUtils::GetVersionText(const CString& path, const CString& field)
{
    WORD languageAndCodePage[2];
    const VersionBlock block = ReadVersionBlock(path);
    const std::string_view languages = ValueOf(block, "\\VarFileInfo\\Translation");
    if (languages.size() < sizeof languageAndCodePage)
        return {};
    std::memcpy(languageAndCodePage, languages.data(), sizeof languageAndCodePage);
    CString name;
    name.Format("\\StringFileInfo\\%04x%04x\\%s", languageAndCodePage[0], languageAndCodePage[1], field);
    const std::string_view text = ValueOf(block, name);
    return CString(text.substr(0, text.find('\0')));
}
