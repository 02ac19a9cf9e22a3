// The command kvt01-inspect, run as a user runs it.
#include <gtest/gtest.h>

#include "support/ArchiveBytes.h"
#include "support/Cases.h"
#include "support/Environment.h"
#include "support/TemporaryFolder.h"

namespace {

class Inspect : public testing::Test {
protected:
    Inspect() { std::filesystem::current_path(folder.Path()); }
    ~Inspect() override { std::filesystem::current_path(m_before); }

    // What the command answers in the test's folder: the exit code, what it printed, and its complaint.
    std::string Answer(const std::string& words)
    {
        std::string answer = std::to_string(RunProgram(KVT01_INSPECT, words + " >out 2>complaint")) + '|';
        answer += folder.Read("out") + '|' + folder.Read("complaint");
        std::erase(answer, '\r');
        return answer;
    }
    static std::string Bad(int code, const std::string& out, const std::string& complaint)
    {
        return std::to_string(code) + '|' + out + "|kvt01-inspect: " + complaint + '\n';
    }

    TemporaryFolder folder;

private:
    const std::filesystem::path m_before = std::filesystem::current_path();
};

TEST_F(Inspect, PrintsWhatIsStoredAndSaysWhatIsWrong)
{
    for (const auto& [hex, words, out, complaint] : Cases<4>("inspected files")) {
        folder.Write("file", BytesOf(hex));
        EXPECT_EQ(Answer(words), complaint.empty() ? "0|" + out + '|' : Bad(1, out, "file: " + complaint))
            << hex;
    }
}

TEST_F(Inspect, AnswersAsACommandShould)
{
    folder.Write("file", "");
    for (const auto& [words, code, complaint] : Cases<3>("inspect commands"))
        EXPECT_EQ(Answer(words), Bad(std::stoi(code), "", complaint)) << words;
    for (const std::string name : {"none", "."}) // and the system's reason
        EXPECT_TRUE(Answer("log " + name).starts_with("1||kvt01-inspect: " + name + ": ")) << name;
    EXPECT_EQ(Answer("--version"), "0|kvt01-inspect 1.0.0\n|");
    const std::string help = Answer("log --help");
    EXPECT_TRUE(help.starts_with("0|usage: kvt01-inspect log FILE\n") &&
                help.ends_with("  map<UINT,map<CString,CRect>>\n|"))
        << help;
}

} // namespace
