#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "CStdioFile.h"
#include "support/RandomSource.h"
#include "support/TemporaryFolder.h"

namespace {

constexpr std::size_t Buffer = 1 << 16;

class StdioFileTest : public testing::Test {
protected:
    std::string Path() const { return folder.Path("file"); }
    std::vector<std::string> Lines(UINT mode) const
    {
        CStdioFile file(Path().c_str(), CFile::modeRead | CFile::shareDenyNone | mode);
        std::vector<std::string> lines;
        CString line("left over");
        while (file.ReadString(line))
            lines.emplace_back(line.View());
        EXPECT_TRUE(line.IsEmpty());
        return lines;
    }

    TemporaryFolder folder;
};

// By the rule, one character after the other.
std::string AsText(const std::string& bytes)
{
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] != '\r' || i + 1 == bytes.size() || bytes[i + 1] != '\n')
            text += bytes[i];
    return text;
}

std::vector<std::string> SplitLines(const std::string& text)
{
    std::vector<std::string> lines(1);
    for (const char c : text)
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    if (lines.back().empty())
        lines.pop_back();
    return lines;
}

// Few letters, so that line ends of all kinds meet, in runs of which some reach over the buffer's end.
std::string RandomText(RandomSource& random)
{
    const std::string letters("\r\n\0ab\xE9", 6);
    const auto length = Buffer * (random() % 3) + random() % 5;
    std::string text;
    while (text.size() < length)
        text.append(random() % 50 == 0 ? random() % 30'000 : 1, letters[random() % letters.size()]);
    text.resize(length);
    return text;
}

TEST_F(StdioFileTest, ReadsAndWritesByTheRuleAtAllSizes)
{
    RandomSource random;
    const std::string hard[] = {"", "a\r\n\r\nb", "a\rb\r", "a\r\r\n",
                                std::string(Buffer - 1, 'x') + "\r\ny"};
    for (std::size_t round = 0; round < 50; ++round) {
        const bool isText = round % 2 == 0;
        const UINT mode = isText ? CFile::typeText : CFile::typeBinary;
        const std::string bytes = round / 2 < std::size(hard) ? hard[round / 2] : RandomText(random);
        const std::string expected = isText ? AsText(bytes) : bytes;
        folder.Write("file", bytes);
        ASSERT_EQ(Lines(mode), SplitLines(expected));
        CStdioFile reader(Path().c_str(), CFile::modeRead | mode);
        std::string text;
        for (std::size_t got = 1; got > 0;) {
            std::string piece(1 + random() % 20'000, '#');
            piece.resize(got = reader.Read(piece.data(), piece.size()));
            text += piece;
        }
        ASSERT_EQ(text, expected);
        EXPECT_EQ(reader.GetPosition(), bytes.size());
        reader.Close();

        std::string written;
        for (const char c : bytes)
            written += isText && c == '\n' ? std::string("\r\n") : std::string(1, c);
        CStdioFile writer(Path().c_str(), CFile::modeCreate | CFile::modeWrite | mode);
        for (std::string_view rest = bytes; !rest.empty();) {
            const CString piece(rest.substr(0, 1 + random() % 20'000));
            rest.remove_prefix(piece.View().size());
            if (random() % 2 == 0)
                writer.Write(piece.GetString(), piece.View().size());
            else
                writer.WriteString(piece);
        }
        EXPECT_EQ(writer.GetPosition(), written.size());
        EXPECT_EQ(writer.GetLength(), written.size());
        writer.Close();
        ASSERT_EQ(folder.Read("file"), written);
    }
}

TEST_F(StdioFileTest, WritingGoesOnBehindTheLineThatWasRead)
{
    folder.Write("file", "one\r\ntwo\r\nthree\r\n");
    CStdioFile file(Path().c_str(), CFile::modeReadWrite | CFile::shareDenyNone);
    CString line;
    EXPECT_TRUE(file.ReadString(line));
    file.WriteString("T\nO"); // over what the reader would get next
    EXPECT_EQ(file.GetPosition(), 9U);
    EXPECT_TRUE(file.ReadString(line));
    EXPECT_EQ(line, "");
    file.WriteString(static_cast<const char*>(nullptr));
    file.SetLength(4);
    file.WriteString("\n");
    file.Flush();
    EXPECT_EQ(folder.Read("file"), "one\r\r\n");
}

TEST_F(StdioFileTest, WhatCannotBeWrittenIsReportedByTheLatestOnClosing)
{
    folder.Write("file", "kept");
    CStdioFile file(Path().c_str(), CFile::modeRead);
    file.WriteString("x");
    EXPECT_THROW(file.Close(), CFileException);
    file.WriteString("x");
    CFileException error;
    EXPECT_FALSE(file.Open(Path().c_str(), CFile::modeRead, &error));
    EXPECT_EQ(error.m_cause, CFileException::accessDenied);
    EXPECT_THROW(file.WriteString("x"), CFileException);
    CString line;
    EXPECT_THROW(file.ReadString(line), CFileException);
    {
        CStdioFile writer(Path().c_str(), CFile::modeWrite);
        writer.WriteString("KE");
        writer.Abort();
        ASSERT_TRUE(writer.Open(Path().c_str(), CFile::modeWrite));
        writer.WriteString("Ke");
        // The destructor writes.
    }
    EXPECT_EQ(folder.Read("file"), "Kept");
}

} // namespace
