#include <gtest/gtest.h>

#include "FileUtils.h"
#include "files/FileHandle.h"
#include "files/TextFile.h"
#include "files/TextFileReader.h"
#include "support/Cases.h"
#include "support/RandomTexts.h"
#include "support/TemporaryFolder.h"
#include "support/TextFiles.h"
#include "support/TextModels.h"

namespace {

class TextFileReaders : public testing::Test {
protected:
    FileHandle Open(const std::string& bytes) const
    {
        const std::string path = folder.Write("file", bytes);
        return FileHandle(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    }

    TemporaryFolder folder;
};

TEST_F(TextFileReaders, EndLinesAndDecodeAsTheyAlwaysDid)
{
    for (const auto& [bytes, encoding, lines] : Cases<3>("text files")) {
        int found = 77;
        TextArray content;
        FileUtils::ReadFileContent(folder.Write("file", bytes), content, true, &found);
        content.AdjustEntries(";", false);
        EXPECT_EQ(content.ConvertIntoOneLine(""), lines) << testing::PrintToString(bytes);
        EXPECT_EQ(found, std::stoi(encoding)) << testing::PrintToString(bytes);
    }
}

TEST_F(TextFileReaders, ConvertToTheCodePageThatIsAskedFor)
{
    for (const auto& [bytes, codePage, expected, byDefault] : Cases<4>("lines in code pages")) {
        const FileHandle file = Open(bytes);
        UTF8_TextFileReader reader("", file.Get());
        CString line("before");
        int usedDefault = FALSE;
        const int result =
            reader.ReadLine(line, static_cast<unsigned>(std::stoi(codePage)), "_", &usedDefault);
        EXPECT_EQ(result, expected == "before" ? TextFileReader::ReadError : TextFileReader::LineDelivered);
        EXPECT_EQ(line, expected);
        EXPECT_EQ(usedDefault, std::stoi(byDefault)) << line;
    }
}

TEST_F(TextFileReaders, OpenWhatWasAskedFor)
{
    for (const auto& [bytes, encoding, options, opens, expected] : Cases<5>("opened text files")) {
        SCOPED_TRACE(testing::PrintToString(bytes) + encoding);
        TextFile file;
        CString line;
        EXPECT_EQ(file.Open(folder.Write("file", bytes), TextFile::Read, std::stoi(encoding),
                            options == "unmarked" ? TextFile::NoMarkExpected : 0),
                  opens == "1" ? TextFile::Done : TextFile::WrongEncoding);
        EXPECT_EQ(file.ReadLine(line), opens == "1" ? TextFile::Done : TextFile::SystemError);
        EXPECT_EQ(line, expected);
    }
}

TEST_F(TextFileReaders, EndWhereNothingCanBeRead)
{
    CString line;
    const FileHandle file = Open(std::string(500'000, '\n'));
    const auto read = [&](TextFileReader& reader) { return reader.ReadLine(line, CP_ACP, nullptr, nullptr); };
    ANSI_TextFileReader unbuffered("", file.Get(), -1), closed("", INVALID_HANDLE_VALUE);
    EXPECT_EQ(read(unbuffered), TextFileReader::EndOfFile);
    EXPECT_EQ(read(closed), TextFileReader::ReadError);
    ANSI_TextFileReader shrunk("", file.Get());
    EXPECT_EQ(read(shrunk), TextFileReader::LineDelivered);
    std::filesystem::resize_file(folder.Path("file"), 10);
    int count = 1;
    while (read(shrunk) == TextFileReader::LineDelivered)
        ++count;
    EXPECT_LT(count, 500'000);
}

// Long stretches of ASCII are taken at once: another letter now and then must stop them, wherever it stands.
// In UTF-8 letters are written as those of Latin-1.
TEST_F(TextFileReaders, StopAtFewOtherLettersAmongMuchAscii)
{
    RandomTexts random;
    const CString path(folder.Path("file"));
    for (const int encoding : Encodings) {
        SCOPED_TRACE(encoding);
        TextArray lines;
        std::string toRead = Marks[encoding], written = Marks[encoding];
        while (toRead.size() < 600'000) {
            std::string line(random.Below(random.OneIn(500) ? 140'000 : 100), random.Pick("az"));
            if (!line.empty() && random.OneIn(8))
                line[random.Below(line.size())] = random.OneIn(2) || encoding == 4 ? '\xE9' : '\x80';
            lines.Add(CString(line));
            toRead += Encoded(line + "\n", encoding);
            written += Encoded(line + "\r\n", encoding);
        }
        folder.Write("file", toRead);
        EXPECT_TRUE(FileUtils::IsFileContentIdentical(path, lines));
        EXPECT_TRUE(FileUtils::WriteFileContent(path, lines, true, encoding));
        EXPECT_TRUE(folder.Read("file") == written);
    }
}

TEST_F(TextFileReaders, ShareTheFile)
{
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
