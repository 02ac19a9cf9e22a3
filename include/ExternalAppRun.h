// ExternalAppRun: an outside program that the application can start: its path, arguments, initial folder and
// title. Only Serialize throws, and what stores a text for want of memory. One thread at a time may use an
// object.
#pragma once

#include "CString.h"
#include "Kvt01Api.h"

class CArchive;

class KVT01_API ExternalAppRun {
public:
    void SetPath(const CString& path) { m_csPath = path; }
    void SetArgs(const CString& args) { m_csArgs = args; }
    void SetInitDir(const CString& initDir) { m_csInitDir = initDir; }
    void SetTitle(const CString& title) { m_csTitle = title; }
    const CString& GetPath() const { return m_csPath; }
    const CString& GetArgs() const { return m_csArgs; }
    const CString& GetInitDir() const { return m_csInitDir; }
    const CString& GetTitle() const { return m_csTitle; }
    void Clear() { *this = ExternalAppRun(); }

    // Whether the path and the initial folder are both there: neither blank, and a file or folder of each
    // name on disk. Without an initial folder a program cannot run.
    bool CanRun() const;
    // Starts the program by ExeUtils::LaunchApp, with nothing but the four texts and the flag; false when
    // CanRun is false or it did not start.
    bool Run(bool minimized = false) const;

    // Less, or greater, by title with case, or else by path with case. Kept as sorted lists depend on it:
    // these are no mirror images and no ordering. With a later title and an earlier path an entry is both
    // less and greater than the other.
    bool operator<(const ExternalAppRun& other) const;
    bool operator>(const ExternalAppRun& other) const;

    // Stored: the 16-bit word 3 and path, arguments, initial folder, title as texts. In records of version 2
    // these are encrypted-string records; those of version 1 are read likewise. Any other version raises
    // CArchiveException (badSchema). An exception leaves the object as it was.
    //   "a", "", "b", "T"   03 00  01 61  00  01 62  01 54
    void Serialize(CArchive& archive);

private:
    CString m_csPath;
    CString m_csArgs;
    CString m_csInitDir;
    CString m_csTitle;
};
