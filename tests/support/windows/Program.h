// A program that a test starts and that has ended when this ends. It has no input; its output and its
// complaints go to files.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/Platform.h"

class Program {
public:
    explicit Program(std::string commandLine, const std::string& folder = ".",
                     const std::string& output = "NUL", const std::string& complaints = "NUL")
    {
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = File("NUL");
        startup.hStdOutput = File(output);
        startup.hStdError = File(complaints);
        EXPECT_TRUE(CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                   folder.c_str(), &startup, &m_process));
        for (const HANDLE handle :
             {startup.hStdInput, startup.hStdOutput, startup.hStdError, m_process.hThread})
            CloseHandle(handle);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program()
    {
        Kill();
        CloseHandle(m_process.hProcess);
    }

    int Wait() // gives its exit code
    {
        DWORD code = 0;
        WaitForSingleObject(m_process.hProcess, INFINITE);
        GetExitCodeProcess(m_process.hProcess, &code);
        return static_cast<int>(code);
    }
    void Kill()
    {
        TerminateProcess(m_process.hProcess, 255);
        Wait();
    }

private:
    static HANDLE File(const std::string& path)
    {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        return CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, &inherited,
                           path == "NUL" ? OPEN_EXISTING : CREATE_ALWAYS, 0, nullptr);
    }

    PROCESS_INFORMATION m_process = {};
};
