// AppLogger: the log of an application, a list of time-stamped lines in memory that is written to a file
// after every line. It holds what the host adds, and one line for each failure inside this library: a marker,
// which is a fixed text in braces, followed by an explanation.
//
// Each user switches the log of each application on or off, by the value Log ("1" or "0") of the registry key
// Software\CorvaneSoftware\<application>. Off, there is no logger and nothing is recorded.
//
//     AppLogger::SetAppName("Editor");
//     AppLogger::AddLine("{Open} letter.txt"); // nothing while logging is off
//     ...
//     AppLogger::DeleteInstance();             // before the library is unloaded
//
// ---- What is promised -----------------------------------------------------------------------------------
// A line that AddLine has returned from is in the file, and there it survives the death of the process; a
// loss of power may take the last ones. The file is replaced as a whole (a new file takes its name), so at
// every moment it holds the old lines or the new ones. The new file gets the permissions of the old one, and
// its owner and group as far as this process may give them; a link of its name is replaced by a file. Where
// the folder allows no new file it is overwritten in place, and a process that dies meanwhile can damage it.
//
// When it cannot be written (a full disk, a file that is read-only or kept open by someone who does not share
// it) nothing is raised, the old file stays as it is, and the lines wait in memory; the next write that
// succeeds brings them all. AddLine waits half a second for a reader and three for another writer, once.
//
// Several processes may use one application name. Each takes up what the others wrote before it writes, in
// order of time, so the file has everybody's lines, up to the bound. A file that was deleted meanwhile comes
// back with the list. One that breaks off, or has another title or version, is moved to <file>.damaged
// (.damaged2, ...) before it is replaced; the entries before the break stay in the list.
//
// ---- Threads and failures -------------------------------------------------------------------------------
// AddLine may be called by any number of threads, and reports of failures come on whichever thread fails. So
// one lock covers AddLine as a whole, and it covers the other operations as well. The public members below
// are for one thread at a time, while nobody logs. Nothing is raised but std::bad_alloc, and by Serialize
// what an archive raises.
#pragma once

#include "BasicTypes.h"
#include "CString.h"
#include "CStringArray.h"
#include "Kvt01Api.h"

class CArchive;

class KVT01_API AppLogger {
public:
    static AppLogger* m_pInstance;  // null while logging is off
    static CString& m_csAppName;    // names the registry key and the log file
    static CString& m_csLogFile;    // full path; empty until it is known
    static bool m_bCheckedRegistry; // the switch has been read since the last logger was destroyed
    static uint64 m_nMaxLogEntries; // 500

    AppLogger(const AppLogger&) = delete;
    AppLogger& operator=(const AppLogger&) = delete;

    // ---- on and off -------------------------------------------------------------------------------------
    // If there is no logger, the switch has not been read yet and it is on, makes the logger with its log
    // file and adds the line "{7A7B98BB-B07D-450C-BEB1-5ECF84735ACC}Logging started". The switch counts as
    // read also when it was another name's: kept, hosts set the name more than once. A logger that is there
    // goes on under a new name, in the file of that name; the list begins anew, but for lines that could not
    // be written yet.
    static void SetAppName(const CString& appName);
    // Whether the value Log of the application's key begins with a decimal number that is 1 ("1", "01"; not
    // "", "2", "-1"). False for an empty name, which leaves m_bCheckedRegistry alone, and for one with a NUL.
    static bool CheckLogging();
    // Stores the switch and makes or destroys the logger as SetAppName does. Nothing happens without a name,
    // or if both the switch and the logger are as asked for.
    static void EnableLogging(bool enable);
    // The logger; made, without a line of its own, if there is none and the switch is on. Null while it is
    // off. The operations are static, so null or not, they may be called through it.
    static AppLogger* GetInstance();
    // The list keeps only the lines that could not be written; the others are read back from the file by the
    // next logger, which GetInstance and SetAppName can make again.
    static void DeleteInstance();

    // ---- lines ------------------------------------------------------------------------------------------
    // Adds an entry with the present local time, drops the oldest beyond the bound, and writes the file. Only
    // spaces count as blanks; those at the end are ignored.
    //   "{Open}  a b "  -> marker "{Open}", text "a b"        "plain {x}" -> marker "", text "plain {x}"
    //   "{Open"         -> marker "{Open}", text ""           "  "        -> marker "", text ""
    // A line that is added while one is being added on the same thread is dropped. Costs about as much as
    // writing the file once.
    static void AddLine(const CString& line);
    // For each entry, oldest first, appends its date and time as the user writes them (no time at midnight),
    // a tab, the marker, a tab and the text.
    static void GetLogText(CStringArray& lines);
    // Counts from the next line or write on; with 0 nothing is kept.
    static void SetMaxLogEntries(uint64 maxEntries);

    // ---- the file ---------------------------------------------------------------------------------------
    // Finds the file's name, and merges what it holds into the list, each line once. The name is
    // <application>.log in the folder of the value SettingsPathRelease_x64 (SettingsPathDebug_x64 in a debug
    // build, neither in a 32-bit one), else of SettingsPath, else in the user's folder for such files
    // ($XDG_STATE_HOME, default ~/.local/state), below CorvaneSoftware/<application>/. In these places bytes
    // of the name that no file name should have are written %2F, and a name above 80 bytes is cut and ends
    // in a number of its own. False without a name of the application or a folder.
    static bool SetLogFile();
    static CString GetSettingsPathFromRegistry(); // the folder of those values, or empty
    // Empties a folder that lies where the system keeps programs: users may not write there, so that such a
    // value of the registry does not count. GetProgramFilesDir is that place, with a separator at the end;
    // empty where there is none, so on POSIX systems.
    static void DealWithProgramFilesInstall(CString& folder);
    static CString GetProgramFilesDir();
    static bool HaveLogFile();
    // Writes the list now, to m_csLogFile or, while that is empty, the file that SetLogFile finds. A missing
    // folder is made. Does nothing if the file is read-only.
    static void ForceWrite();
    // The layout of the file (docs/archive-format.md). Loading replaces the list, unless title or version are
    // others or there is no whole entry; where the data break off or claim an impossible length,
    // CArchiveException is raised and the entries before that are the list.
    static void Serialize(CArchive& archive);

    // The text of a value of a key below HKEY_CURRENT_USER; empty without one, or above 64 KB.
    static CString GetRegistryValue(const CString& key, const CString& value);

private:
    AppLogger() = default;
    ~AppLogger() = default;
    static void MakeInstance();
};
