// What the user's registry says about an application's log: the values of the key
// Software\CorvaneSoftware\<application name>.
//
// A name without a key or a file (empty, or with a NUL inside) has its log switched off.
#pragma once

#include "CString.h"

namespace LogSettings {

// The text of a value; empty without one.
CString Value(const CString& key, const CString& name);

bool IsSwitchedOn(const CString& application);        // Log, as a decimal number, is 1
void SwitchOn(const CString& application, bool isOn); // 1 or 0

// The folder that SettingsPathRelease_x64 names (SettingsPathDebug_x64 in a debug build; neither counts in a
// 32-bit one), else SettingsPath; empty without one.
CString GetSettingsPathFromRegistry(const CString& application);
// Where the system keeps programs, with a separator at the end; empty where there is no such folder, so on
// POSIX systems. Users may not write there: a folder inside it is emptied.
CString GetProgramFilesDir();
void DealWithProgramFilesInstall(CString& folder);

// The full path of <application>.log in the registry's folder, or else in CorvaneSoftware/<application> below
// the user's folder for such files. Empty where there is no such folder.
CString LogFile(const CString& application);

// The name as one part of a path, for any bytes: those that a file name must not have, and a dot at the
// beginning, are written %2F; of a name that gets too long the beginning stays, with a number that stands for
// the whole.
CString AsFileName(const CString& application);

} // namespace LogSettings
