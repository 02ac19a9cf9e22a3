// Brings in the module of IcuInterface.h.
#pragma once

#include <string>

#include "platform/posix/IcuInterface.h"

namespace IcuLoader {

// The interface, or nullptr where the module is missing or of another version. Loads it at the first call.
const IcuInterface* Get();

// After a failure of Get, the first call of this leaves one marker line in the log. To be called without a
// lock: the log may ask for the locale itself.
void ReportFailure();

// The module in that file, or nullptr.
const IcuInterface* Load(const std::string& file);

// Where Get looks: the folder of the binary that this code is part of, before the first call of Get only.
using FolderName = std::string (*)();
extern FolderName moduleFolder;

} // namespace IcuLoader
