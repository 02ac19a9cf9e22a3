// The command kvt01-inspect, run as a user runs it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <sys/wait.h>

#include "support/ArchiveBytes.h"
#include "support/Cases.h"
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
        const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return std::to_string(code) + '|' + m_folder.Read("out") + '|' + m_folder.Read("complaint");
    }
    static std::string Bad(int code, const std::string& out, const std::string& complaint)
    {
        return std::to_string(code) + '|' + out + "|kvt01-inspect: " + complaint + '\n';
    }

    TemporaryFolder m_folder;
};

TEST_F(Inspect, PrintsWhatIsStoredAndSaysWhatIsWrong)
{
    for (const auto& [hex, words, out, complaint] : Cases<4>("inspected files")) {
        m_folder.Write("file", BytesOf(hex));
        const std::string answer = Run(words);
        EXPECT_EQ(answer, complaint.empty() ? "0|" + out + '|' : Bad(1, out, "file: " + complaint)) << hex;
    }
}

TEST_F(Inspect, AnswersAsACommandShould)
{
    m_folder.Write("file", "");
    for (const auto& [words, code, complaint] : Cases<3>("inspect commands"))
        EXPECT_EQ(Run(words), Bad(std::stoi(code), "", complaint)) << words;
    EXPECT_EQ(Run("--version"), "0|kvt01-inspect 1.0.0\n|");
    const std::string help = Run("log --help");
    EXPECT_TRUE(help.starts_with("0|usage: kvt01-inspect log FILE\n") &&
                help.ends_with("  map<UINT,map<CString,CRect>>\n|"))
        << help;
    EXPECT_EQ(Run("--version 2>complaint >/dev/full #"),
              "1||kvt01-inspect: cannot write: No space left on device\n");
}

} // namespace
