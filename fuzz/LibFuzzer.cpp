// kvt01_fuzz [OPTION_OR_FOLDER...]: the target that the environment variable KVT01_FUZZ names, led by the
// code that an input reaches.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "fuzz/Targets.h"

namespace {

Targets::Target TargetOfEnvironment()
{
    const char* name = std::getenv("KVT01_FUZZ");
    const Targets::Target target = name != nullptr ? Targets::Named(name) : nullptr;
    if (target == nullptr) {
        std::fputs("KVT01_FUZZ names none of the targets\n", stderr);
        std::exit(2);
    }
    return target;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static const Targets::Target target = TargetOfEnvironment();
    Choices choices({reinterpret_cast<const char*>(bytes), size});
    target(choices);
    return 0;
}
