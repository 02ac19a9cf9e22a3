#include "platform/posix/IcuLoader.h"

#include <atomic>

#include <dlfcn.h>

#include "framework/FailureMarkers.h"

namespace {

constexpr char ModuleName[] = "libkvt01_icu.so";
constexpr char MissingMarker[] = "{1E4C9A90-0E84-416D-89B9-06A0BF033F65}";

std::atomic<bool> mustReport = false;

std::string FolderOfThisBinary()
{
    Dl_info about{};
    if (dladdr(reinterpret_cast<const void*>(&FolderOfThisBinary), &about) == 0 || about.dli_fname == nullptr)
        return {};
    const std::string file = about.dli_fname;
    const std::size_t separator = file.rfind('/');
    return separator == std::string::npos ? std::string() : file.substr(0, separator);
}

} // namespace

namespace IcuLoader {

constinit FolderName moduleFolder = FolderOfThisBinary;

const IcuInterface* Load(const std::string& file)
{
    void* const module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr)
        return nullptr;
    using Entry = const IcuInterface* (*)();
    const auto entry = reinterpret_cast<Entry>(dlsym(module, IcuInterface::EntryPoint));
    const IcuInterface* const icu = entry == nullptr ? nullptr : entry();
    if (icu != nullptr && icu->version == IcuInterface::CurrentVersion)
        return icu; // and the module stays
    dlclose(module);
    return nullptr;
}

const IcuInterface* Get()
{
    static const IcuInterface* const icu = [] {
        const IcuInterface* const loaded = Load(moduleFolder() + '/' + ModuleName);
        mustReport = loaded == nullptr;
        return loaded;
    }();
    return icu;
}

void ReportFailure()
{
    if (mustReport && mustReport.exchange(false))
        FailureMarkers::Report(MissingMarker);
}

} // namespace IcuLoader
