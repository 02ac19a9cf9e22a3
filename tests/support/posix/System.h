// What tests ask of the system beside the platform's operations.
#pragma once

#include <csignal>
#include <cstdlib>
#include <string>
#include <sys/wait.h>

// One variable of the environment; nullptr removes it.
inline void SetVariable(const char* name, const char* value)
{
    if (value != nullptr)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

// Runs a program with words as a shell takes them, and gives its exit code.
inline int RunProgram(const std::string& program, const std::string& words)
{
    return WEXITSTATUS(std::system(("'" + program + "' " + words).c_str()));
}

// As a user kills it.
inline void KillProcess(int id)
{
    kill(id, SIGKILL);
}

// In a program that a test runs: from now on it works for the TestUser of that test.
inline void JoinTestUser() {}
