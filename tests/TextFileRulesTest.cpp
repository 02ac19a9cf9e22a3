#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "FileUtils.h"
#include "TextArray.h"
#include "files/FileHandle.h"
#include "support/TemporaryFolder.h"

namespace {

// One letter as a file holds it; of the page's own characters only the euro sign is used.
std::string Encoded(char letter, int encoding, bool isLatin1)
{
    const int unit = letter == '\x80' && !isLatin1 ? 0x20AC : static_cast<unsigned char>(letter);
    const auto bytes = [](auto... values) { return std::string{static_cast<char>(values)...}; };
    if (encoding == 2 || encoding == 3)
        return encoding == 2 ? bytes(unit % 256, unit / 256) : bytes(unit / 256, unit % 256);
    if (encoding == 1 || unit < 128)
        return bytes(letter);
    return unit < 2048 ? bytes(192 + unit / 64, 128 + unit % 64)
                       : bytes(224 + unit / 4096, 128 + unit / 64 % 64, 128 + unit % 64);
}

// Long stretches of ASCII are taken at once: another letter now and then must stop them, wherever it stands.
TEST(TextFileRules, FewOtherLettersAmongMuchAscii)
{
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const TemporaryFolder folder;
    const CString path(folder.Path("file"));
    const std::string marks[] = {"", "", "\xFF\xFE", "\xFE\xFF", "\xEF\xBB\xBF"};
    for (int encoding = 1; encoding <= 4; ++encoding) {
        SCOPED_TRACE(encoding);
        TextArray lines;
        std::string toRead = marks[encoding], written = marks[encoding];
        while (toRead.size() < 600'000) {
            std::string line(random() % (random() % 500 == 0 ? 140'000 : 100), "az"[random() % 2]);
            if (!line.empty() && random() % 8 == 0)
                line[random() % line.size()] = "\xE9\x80"[random() % 2];
            lines.Add(CString(line));
            for (const char letter : line + "\n") {
                toRead += Encoded(letter, encoding, false);
                written += (letter == '\n' ? Encoded('\r', encoding, false) : "") +
                           Encoded(letter, encoding, encoding == 4);
            }
        }
        folder.Write("file", toRead);
        EXPECT_TRUE(FileUtils::IsFileContentIdentical(path, lines));
        EXPECT_TRUE(FileUtils::WriteFileContent(path, lines, true, encoding));
        EXPECT_TRUE(folder.Read("file") == written);
    }
}

TEST(TextFileRules, WhoElseMayHaveTheFileOpen)
{
    const TemporaryFolder folder;
    const CString path(folder.Write("file", "\xEF\xBB\xBFx"));
    for (const bool isWritten : {false, true}) {
        const FileHandle other(CreateFileA(path, isWritten ? GENERIC_WRITE : GENERIC_READ,
                                           FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                           nullptr));
        int encoding = 77;
        EXPECT_FALSE(FileUtils::IsFileUnicode(path, encoding)); // which shares with nobody
        EXPECT_EQ(encoding, 0);
        TextArray lines;
        FileUtils::ReadFileContent(path, lines, true, &encoding);
        EXPECT_EQ(encoding, isWritten ? 1 : 4);
        EXPECT_EQ(lines.IsEmpty(), isWritten);
        FileUtils::ReadFileContent(path, lines, false);
        EXPECT_EQ(lines.GetCopyAt(0), "\xEF\xBB\xBFx");
    }
}

} // namespace
