// The command kvt01-inspect, run as a user runs it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <vector>

#include "DateTime.h"
#include "support/ArchiveBytes.h"
#include "support/TemporaryFolder.h"

namespace {

class Inspect : public testing::Test {
protected:
    // The words after the command, for a shell in the test's folder; what it answers: the exit code, what it
    // printed, and its complaint.
    std::string Run(const std::string& words)
    {
        m_folder.Write("out", "");
        const std::string command =
            "cd '" + m_folder.Path() + "' && " KVT01_INSPECT " " + words + " >out 2>complaint";
        const int status = std::system(command.c_str());
        m_out = m_folder.Read("out");
        m_complaint = m_folder.Read("complaint");
        m_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return std::to_string(m_code) + '|' + m_out + '|' + m_complaint;
    }
    std::string RunOn(const std::string& bytes, const std::string& words)
    {
        m_folder.Write("file", bytes);
        return Run(words);
    }
    static std::string Good(const std::string& out) { return "0|" + out + '|'; }
    static std::string Bad(int code, const std::string& out, const std::string& complaint)
    {
        return std::to_string(code) + '|' + out + "|kvt01-inspect: " + complaint + '\n';
    }

    TemporaryFolder m_folder;
    std::string m_out, m_complaint;
    int m_code = 0;
};

struct Entry {
    DateTime time;
    const char *marker, *text;
};

std::string Log(const std::vector<Entry>& entries, WORD version = 7, uint64 count = 0)
{
    return StoredBy([&](CArchive& archive) {
        archive << "Corvane Software Log File" << version << "Ed\x8E"
                << (count == 0 ? uint64{entries.size()} : count);
        for (Entry entry : entries) {
            archive << WORD{2};
            entry.time.Serialize(archive);
            archive << entry.marker << entry.text;
        }
    });
}

const std::vector<Entry> entries = {
    {DateTime(2024, 2, 29, 1, 2, 3), "{A-1}", "start"},
    {DateTime(), "", "caf\xE9 \x80 \x1B[2J \x9D \x7F C:\\x\ty\r\n"},
};
constexpr char Printed[] = "Log of Ed\xC5\xBD, entries: 2\n"
                           "2024-02-29 01:02:03\t{A-1}\tstart\n"
                           "- -\t\tcaf\xC3\xA9 \xE2\x82\xAC \\x1B[2J \\x9D \\x7F C:\\x\\x09y\\x0D\\x0A\n";

TEST_F(Inspect, PrintsALog)
{
    EXPECT_EQ(RunOn(Log(entries), "log file"), Good(Printed));
    EXPECT_EQ(RunOn(Log(entries, 6), "log -- file"), Good(Printed));
    EXPECT_EQ(RunOn(Log({}), "log file"), Good("Log of Ed\xC5\xBD, entries: 0\n"));
}

TEST_F(Inspect, SaysWhereALogBreaks)
{
    const std::string whole = Log(entries);
    const std::string first = std::string(Printed).substr(0, std::string(Printed).find("- -"));
    const auto with = [&](std::size_t at, char byte) {
        std::string bytes = whole;
        bytes[at] = byte;
        return bytes;
    };
    // Title 0, version 26, name 28, count 32, entry 40: time 42, marker 52, text 58; entry 64, time 66.
    const struct {
        std::string bytes, out, complaint;
    } cases[] = {
        {"", "", "byte 0: expected the title of a log file, but the file ends"},
        {with(1, 'x'), "", "byte 0: expected the title of a log file, but something else stands there"},
        {with(26, 5), "", "byte 26: expected version 6 or 7, but it is 5"},
        {with(26, 8), "", "byte 26: expected version 6 or 7, but it is 8"},
        {whole.substr(0, 31), "", "byte 28: expected the application's name, but the file ends"},
        {with(64, 3), first, "byte 64, entry 2: expected an entry, of version 2, but it is 3"},
        {with(66, 4), first, "byte 66, entry 2: expected the time, a record of version 1 to 3, but it is 4"},
        {whole.substr(0, 70), first, "byte 66, entry 2: expected the time, but the file ends"},
        {with(76, '\x7E'), first, "byte 76, entry 2: expected the marker, but the file ends"},
        {whole.substr(0, 80), first, "byte 77, entry 2: expected the text, but the file ends"},
        {with(76, '\xFF').replace(77, 6, 6, '\xFF'), first,
         "byte 76, entry 2: expected the marker, but text in the archive is too long"},
        {whole + "xyz", Printed, "byte " + std::to_string(whole.size()) + ": bytes left over: 3"},
        {Log({}, 7, ~uint64{0}), "Log of Ed\xC5\xBD, entries: 18446744073709551615\n",
         "byte 40, entry 1: expected an entry, of version 2, but the file ends"},
    };
    for (const auto& [bytes, out, complaint] : cases)
        EXPECT_EQ(RunOn(bytes, "log file"), Bad(1, out, "file: " + complaint));
    for (std::size_t length = 0; length < whole.size(); length += 3) {
        RunOn(whole.substr(0, length), "log file");
        EXPECT_TRUE(m_code == 1 && std::string(Printed).starts_with(m_out) &&
                    std::count(m_complaint.begin(), m_complaint.end(), '\n') == 1)
            << length << m_complaint;
    }
}

TEST_F(Inspect, PrintsWhatIsStoredAndSaysWhatIsWrong)
{
    const struct {
        const char *hex, *type, *out;
        const char* complaint = nullptr;
    } cases[] = {
        {"0400 0100 0200000000000000 026193 00", "TextArray", "a\xE2\x80\x9C\n\n"},
        {"0200 01000000 0000 0161", "TextArray --encrypted", "a\n"},
        {"0200 01000000 0161", "TextArray", "a\n"},
        {"0300 02000000 0A000000", "DateTime", "0001-01-02 00:00:10\n"},
        {"0300 00000000 FFFFFFFF", "DateTime", "- -\n"},
        {"0100 00000000 00000000 0100 18000000 00000000 FEFFFFFF 05000000 00000000 07000000 0144",
         "DateEntry",
         "description: D\nID: 7\nmonth: 5\nday: 24\noccurrence: 0\nday of week: 0\n"
         "before or after day of week: -2\nweekdays only: true\nyear type: 0\nyear: 0\n"},
        {"0400 0400 0100 0200000000000000 0178 0179 0100 0100000000000000 05000000 0400 0100 "
         "0100000000000000 0179",
         "MRUArray", "recent:\n  x\n  y\npopular, by uses:\n  5:\n    y\n"},
        {"0200 0200 01000000 0000 0178 01000000 05000000 0200 01000000 0000 0179", "MRUArray",
         "recent:\n  x\npopular, by uses:\n  5:\n    y\n"},
        {"0100 0100 0100000000000000 0500000000000000 0400 0100 0100000000000000 0161", "MRUArrayByTime",
         "popular, by time:\n  5:\n    a\n"},
        {"0100 01000000 0500000000000000 0400 0100 0100000000000000 0161", "MRUArrayByTime --legacy",
         "popular, by time:\n  5:\n    a\n"},
        {"0400 0100000000000000 0141 022F61", "MRUApplications", "A: /a\n"},
        {"0100 01000000 0000 0141 0000 022F61", "MRUApplications", "A: /a\n"},
        {"0100 FFFFFF7F", "NextIDMgr", "next ID: 2147483647\n"},
        {"0100 02000000 05000000 01000000", "VersionNumber", "2.5.1\n"},
        {"0300 0161 0162 0163 0164", "ExternalAppRun",
         "path: a\narguments: b\ninitial folder: c\ntitle: d\n"},
        {"0100 0200000000000000 0100 0200", "'vector<bool>'", "true\nfalse\n"},
        {"0100 0100000000000000 9A9999999999B93F", "'vector<double>'", "0.1\n"},
        {"0100 0100000000000000 FFFFFFFFFFFFFFFF", "'vector<uint64>'", "18446744073709551615\n"},
        {"0100 0100000000000000 FFFFFFFF 010A", "'map< int, std::string >'", "-1: \\x0A\n"},
        {"01000000 07000000 02000000 01000000 02000000", "'map<int,vector<int>>' --legacy", "7:\n  1\n  2\n"},
        {"0100 0100000000000000 0000 0161 05000000", "'map<CString,int>' --encrypted", "a: 5\n"},
        {"0100 0100000000000000 03000000 0100 0100000000000000 0172 01000000 02000000 FDFFFFFF 04000000",
         "'map<UINT,map<CString,CRect>>'", "3:\n  r: left 1, top 2, right -3, bottom 4\n"},
        {"0300 01000000", "DateTime", "", "byte 6: the archive ended before the value did"},
        {"0900 01000000", "DateTime", "", "byte 0: no known version of the record: 9"},
        {"0000", "DateEntry", "", "byte 0: no known version of the record: 0"},
        {"0500", "TextArray", "", "byte 0: no known version of the record: 5"},
        {"0500", "ExternalAppRun", "", "byte 2: record layout that cannot be read"},
        {"0100 05000000 99", "NextIDMgr", "next ID: 5\n", "byte 6: bytes left over: 1"},
        {"0100 0300000000000000 0161 0162", "'vector<CString>'", "a\nb\n",
         "byte 14: the archive ended before the value did"},
        {"0100 FFFFFFFFFFFFFFFF", "'vector<int>'", "", "byte 10: container in the archive is too long"}};
    for (const auto& [hex, type, out, complaint] : cases)
        EXPECT_EQ(RunOn(BytesOf(hex), std::string("archive file --as ") + type),
                  complaint == nullptr ? Good(out) : Bad(1, out, std::string("file: ") + complaint));
}

TEST_F(Inspect, AnswersAsACommandShould)
{
    m_folder.Write("file", "");
    const struct {
        const char* words;
        int code;
        const char* complaint;
    } cases[] = {
        {"", 2, "no command; see --help"},
        {"list file", 2, "unknown command list"},
        {"log", 2, "log needs one file"},
        {"log file file", 2, "log needs one file"},
        {"log file --legacy", 2, "log takes no options"},
        {"log --colour file", 2, "unknown option --colour"},
        {"archive file", 2, "archive needs --as TYPE"},
        {"archive file --as", 2, "--as needs a type"},
        {"archive file --as=Text", 2, "unknown type Text; --help lists them"},
        {"archive file --as DateTime --legacy", 2, "DateTime has no legacy layout to choose"},
        {"archive file --as 'set<CString>' --encrypted", 2, "set<CString> has no encrypted layout to choose"},
        {"log none", 1, "none: The system cannot find the file specified."},
        {"log .", 1, ".: Access is denied."},
        {"log \"$(printf 'a\\033b\\302\\233')\"", 1,
         "a\\x1Bb\\xC2\x9B: The system cannot find the file specified."},
    };
    for (const auto& [words, code, complaint] : cases)
        EXPECT_EQ(Run(words), Bad(code, "", complaint)) << words;
    EXPECT_EQ(Run("--version"), Good("kvt01-inspect 1.0.0\n"));
    Run("log --help");
    EXPECT_TRUE(m_code == 0 && m_complaint.empty() && m_out.starts_with("usage: kvt01-inspect log FILE\n") &&
                m_out.ends_with("  map<UINT,map<CString,CRect>>\n"))
        << m_out;
    EXPECT_EQ(Run("--version 2>complaint >/dev/full #"),
              "1||kvt01-inspect: cannot write: No space left on device\n");
}

} // namespace
