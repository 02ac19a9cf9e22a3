#include <gtest/gtest.h>

#include <sstream>

#include "ExeUtils.h"
#include "ExternalAppRun.h"
#include "support/Cases.h"
#include "support/Environment.h"
#include "support/TemporaryFolder.h"

namespace {

class Launch : public testing::Test {
protected:
    Launch() { m_environment.Set("KVT01_TEST_SAYS", m_folder.Path("said")); }

    // The words of the program that was started; its folder must be this one.
    std::string AwaitWords(const std::filesystem::path& expectedFolder)
    {
        std::istringstream said(m_folder.Await("said"));
        std::filesystem::remove(m_folder.Path("said"));
        std::string folder, words;
        std::getline(said, folder);
        std::getline(said, words, '\0');
        EXPECT_TRUE(std::filesystem::equivalent(folder, expectedFolder)) << folder;
        return words;
    }

    TemporaryFolder m_folder;
    Environment m_environment;
    const CString m_program = KVT01_TEST_CHILD;
};

TEST_F(Launch, StartsTheProgramInItsFolder)
{
    namespace fs = std::filesystem;
    const fs::path folder = m_folder.MakeFolder("in here");
    const fs::path program = m_folder.Path("show it" + fs::path(KVT01_TEST_CHILD).extension().string());
    fs::copy_file(KVT01_TEST_CHILD, program);
    ASSERT_TRUE(ExeUtils::LaunchApp(program.string(), "a", CString(folder.string()), "title", true));
    EXPECT_EQ(AwaitWords(folder), "<a>");
    ASSERT_TRUE(ExeUtils::LaunchApp(program.string()));
    EXPECT_EQ(AwaitWords(fs::current_path()), "");
    CString backslashes(folder.string());
    backslashes.Replace('/', '\\');
    ExternalAppRun app;
    app.SetPath(m_program);
    app.SetArgs("one");
    app.SetInitDir(backslashes);
    ASSERT_TRUE(app.Run());
    EXPECT_EQ(AwaitWords(folder), "<one>");
}

TEST_F(Launch, GivesTheProgramItsWords)
{
    for (const auto& [line, words] : Cases<2>("command lines")) {
        if (!line.starts_with("p "))
            continue;
        ASSERT_TRUE(ExeUtils::LaunchApp(m_program, line.substr(2)));
        std::string expected;
        for (const std::string& word : CellsOf(words.substr(2, words.size() - 3), '|'))
            expected += '<' + word + '>';
        EXPECT_EQ(AwaitWords("."), expected) << line;
    }
}

TEST_F(Launch, SaysWhatDoesNotStart)
{
    const CString plain(m_folder.Write("plain", "echo started"));
    const CString noFormat(m_folder.Write("noFormat", "echo started")); // a shell would run it
    std::filesystem::permissions(noFormat.GetString(), std::filesystem::perms::owner_all);
    const CString folder(m_folder.Path());
    const CString nul("\0", 1);
    const CString cases[][3] = {{"", "", folder},
                                {folder + "none", "", folder},
                                {folder, "", folder},
                                {plain, "", folder},
                                {noFormat, "", folder},
                                {m_program, "", plain},
                                {"child", "", folder},
                                {m_program, "", folder + nul},
                                {m_program + nul, "", folder},
                                {m_program, "a" + nul, folder}};
    for (const auto& [path, arguments, initialFolder] : cases)
        EXPECT_FALSE(ExeUtils::LaunchApp(path, arguments, initialFolder)) << path << " in " << initialFolder;
    EXPECT_FALSE(m_folder.Has("said") || m_folder.Has("said.new"));
}

} // namespace
