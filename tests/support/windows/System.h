// What tests ask of the system beside the platform's operations.
#pragma once

#include <cstdlib>
#include <string>

#include "platform/Platform.h"

// One variable of the environment; nullptr removes it, and so does an empty text here.
inline void SetVariable(const char* name, const char* value)
{
    _putenv_s(name, value == nullptr ? "" : value);
}

// Runs a program with words as a shell takes them, and gives its exit code.
inline int RunProgram(const std::string& program, const std::string& words)
{
    return std::system(("\"\"" + program + "\" " + words + "\"").c_str());
}

// As a user kills it.
inline void KillProcess(int id)
{
    const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, static_cast<DWORD>(id));
    TerminateProcess(process, 1);
    CloseHandle(process);
}

// In a program that a test runs: from now on it works for the TestUser of that test.
inline void JoinTestUser()
{
    HKEY key = nullptr;
    RegCreateKeyExA(HKEY_CURRENT_USER, std::getenv("KVT01_TEST_USER"), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                    &key, nullptr);
    RegOverridePredefKey(HKEY_CURRENT_USER, key);
    RegCloseKey(key);
}
