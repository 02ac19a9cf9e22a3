// What the library asks of ICU: one table of functions, made by a module that is linked with ICU and lies
// beside the library. The library itself is not linked with ICU, so that its start does not pay for it.
#pragma once

#include "BasicTypes.h"

struct IcuInterface {
    static constexpr unsigned int CurrentVersion = 1; // another one counts as no module
    static constexpr char EntryPoint[] = "kvt01_icu"; // const IcuInterface* kvt01_icu()

    unsigned int version;

    // Tells `take` the locale's own facts, each under the number of the locale item that it answers and in
    // Windows-1252: all that cannot be read off another one. `name` is a locale's name as POSIX writes it
    // (de_AT.UTF-8@euro), or any other text. False when the language is unknown; nothing was told then.
    using TakeFact = void (*)(void* context, DWORD item, const char* text);
    bool (*describeLocale)(const char* name, TakeFact take, void* context);
};
