// Starting programs, under the platform's names.
#pragma once

#include "platform/posix/PosixPlatform.h"

struct STARTUPINFOA {
    DWORD cb;
    char* lpReserved;
    char* lpDesktop;
    char* lpTitle;
    DWORD dwX;
    DWORD dwY;
    DWORD dwXSize;
    DWORD dwYSize;
    DWORD dwXCountChars;
    DWORD dwYCountChars;
    DWORD dwFillAttribute;
    DWORD dwFlags;
    WORD wShowWindow;
    WORD cbReserved2;
    BYTE* lpReserved2;
    HANDLE hStdInput;
    HANDLE hStdOutput;
    HANDLE hStdError;
};
struct PROCESS_INFORMATION {
    HANDLE hProcess;
    HANDLE hThread;
    DWORD dwProcessId;
    DWORD dwThreadId;
};
inline constexpr DWORD STARTF_USESHOWWINDOW = 1;
inline constexpr WORD SW_SHOWMINIMIZED = 2;

// Starts the program at that path (relative to the current folder of the caller) in that folder (null: the
// caller's own) and answers when it runs, or why it does not: error 2 or 3 for a missing program, 5 for one
// that may not be run, 193 for a file that is no program, 267 for the folder.
//
// The command line is cut into words by the rules of the platform's runtime; the first is replaced by the
// path. The caller's environment is handed on. `inheritHandles` must be FALSE and `environment` null, else
// error 87; attributes, flags and what stands in `startup` say nothing here.
//
// The program is no child of the caller's but of the system's first process: nobody waits for it, and
// `process` is all 0. It runs in a session of its own, with no input, the caller's output and error output,
// none of the other open files, every signal at its default, and none blocked. The caller sees one SIGCHLD,
// of an intermediary that is gone when the operation returns.
BOOL CreateProcessA(const char* program, char* commandLine, void* processAttributes, void* threadAttributes,
                    BOOL inheritHandles, DWORD flags, void* environment, const char* folder,
                    STARTUPINFOA* startup, PROCESS_INFORMATION* process) noexcept;
