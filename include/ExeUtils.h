// ExeUtils: starting other programs.
#pragma once

#include "CString.h"
#include "Kvt01Api.h"

class KVT01_API ExeUtils {
public:
    // Starts a program and does not wait for it; it goes on when the host ends. True when it runs: false for
    // a path that is no program, a folder that cannot be entered, and a NUL inside one of the first three
    // texts. The program gets the host's environment and, but for the output, none of its open files. It is
    // started itself: no command interpreter looks at the texts, so nothing in them is expanded.
    //
    // A relative path starts from the host's current folder, also when another initial folder is given, and
    // no list of folders is searched. Without an initial folder the program begins in the host's own.
    //
    // The arguments are separated by blanks and tabs. Double quotes hold an argument together and vanish; ""
    // inside quotes is one quote. Backslashes are ordinary characters but in front of a quote: there two of
    // them are one, and a single one makes the quote an ordinary character.
    //   a "b c" d     -> a, b c, d          "C:\My Files\\" x -> C:\My Files\, x
    //   \"a\" b\c ""  -> "a", b\c, empty    "say ""hi"""      -> say "hi"
    //
    // The title is that of a console window made for the program, empty for the system's choice; `minimized`
    // asks for a first window that is minimized. Both mean nothing where the system leaves its windows to the
    // program, as on POSIX systems. There the program has no input, shares the host's output, and stands in a
    // session of its own: what is typed in the host's terminal does not interrupt it, and it is no child that
    // the host would have to wait for. Its signals are as in a fresh process. May be called while other
    // threads run.
    static bool LaunchApp(const CString& path, const CString& arguments = CString(),
                          const CString& initialFolder = CString(), const CString& title = CString(),
                          bool minimized = false);
};
