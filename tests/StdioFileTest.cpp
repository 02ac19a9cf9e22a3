#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "CStdioFile.h"
#include "support/TemporaryFolder.h"

namespace {

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
std::string RandomText(std::mt19937& random, std::size_t length)
{
    const std::string letters("\r\n\0ab\xE9", 6);
    std::string text;
    while (text.size() < length) {
        const std::size_t run = random() % 50 == 0 ? random() % 30'000 : 1;
        text.append(run, letters[random() % letters.size()]);
    }
    text.resize(length);
    return text;
}

constexpr std::size_t Buffer = 1 << 16;

TEST_F(StdioFileTest, LinesEndAsTheModeSays)
{
    const struct {
        std::string bytes;
        std::vector<std::string> text, binary;
    } cases[] = {
        {"", {}, {}},
        {"a\r\n\r\nb", {"a", "", "b"}, {"a\r", "\r", "b"}},
        {"a\n", {"a"}, {"a"}},
        {"\n\n", {"", ""}, {"", ""}},
        {"a\rb\r", {"a\rb\r"}, {"a\rb\r"}},
        {"a\r\r\n", {"a\r"}, {"a\r\r"}},
        {std::string("a\0b\n\0", 5),
         {std::string("a\0b", 3), std::string(1, '\0')},
         {std::string("a\0b", 3), std::string(1, '\0')}},
        {std::string(Buffer - 1, 'x') + "\r\ny",
         {std::string(Buffer - 1, 'x'), "y"},
         {std::string(Buffer - 1, 'x') + "\r", "y"}},
    };
    for (const auto& row : cases) {
        folder.Write("file", row.bytes);
        EXPECT_EQ(Lines(CFile::typeText), row.text);
        EXPECT_EQ(Lines(0), row.text);
        EXPECT_EQ(Lines(CFile::typeBinary), row.binary);
        CStdioFile file(Path().c_str(), CFile::modeRead);
        std::string whole(row.bytes.size(), '#');
        whole.resize(file.Read(whole.data(), whole.size()));
        EXPECT_EQ(whole, AsText(row.bytes));
    }
}

TEST_F(StdioFileTest, ReadingAgreesWithTheRuleAtAllSizes)
{
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 20; ++round) {
        const std::string bytes = RandomText(random, Buffer * (random() % 3) + random() % 5);
        folder.Write("file", bytes);
        for (const bool isText : {true, false}) {
            const std::string expected = isText ? AsText(bytes) : bytes;
            const UINT mode = isText ? CFile::typeText : CFile::typeBinary;
            ASSERT_EQ(Lines(mode), SplitLines(expected));
            CStdioFile file(Path().c_str(), CFile::modeRead | mode);
            std::string text;
            for (std::size_t got = 1; got > 0;) {
                std::string piece(1 + random() % 20'000, '#');
                piece.resize(got = file.Read(piece.data(), piece.size()));
                text += piece;
            }
            ASSERT_EQ(text, expected);
            EXPECT_EQ(file.GetPosition(), bytes.size());
        }
    }
}

TEST_F(StdioFileTest, WritingMakesLineEnds)
{
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 15; ++round) {
        const std::string text = RandomText(random, Buffer * (random() % 3) + random() % 5);
        std::string asWritten;
        for (const char c : text)
            asWritten += c == '\n' ? std::string("\r\n") : std::string(1, c);
        for (const bool isText : {true, false}) {
            CStdioFile file(Path().c_str(), CFile::modeCreate | CFile::modeWrite |
                                                (isText ? CFile::typeText : CFile::typeBinary));
            for (std::size_t at = 0; at < text.size();) {
                const std::size_t count = std::min<std::size_t>(text.size() - at, 1 + random() % 20'000);
                if (random() % 2 == 0)
                    file.Write(text.data() + at, count);
                else
                    file.WriteString(CString(text.data() + at, static_cast<int>(count)));
                at += count;
            }
            EXPECT_EQ(file.GetPosition(), (isText ? asWritten : text).size());
            EXPECT_EQ(file.GetLength(), (isText ? asWritten : text).size());
            file.Close();
            ASSERT_EQ(folder.Read("file"), isText ? asWritten : text);
        }
    }
}

TEST_F(StdioFileTest, ReadingWritingAndSeekingMix)
{
    folder.Write("file", "one\r\ntwo\r\nthree\r\n");
    CStdioFile file(Path().c_str(), CFile::modeReadWrite);
    CString line;
    EXPECT_TRUE(file.ReadString(line));
    EXPECT_EQ(file.GetPosition(), 5U);
    file.WriteString("TWO"); // over what the reader would get next
    EXPECT_EQ(file.GetPosition(), 8U);
    EXPECT_TRUE(file.ReadString(line));
    EXPECT_EQ(line, "");
    EXPECT_TRUE(file.ReadString(line));
    EXPECT_EQ(line, "three");
    file.WriteString("four\n");
    EXPECT_EQ(file.GetLength(), 23U);
    EXPECT_EQ(file.Seek(-6, CFile::end), 17U);
    EXPECT_TRUE(file.ReadString(line));
    EXPECT_EQ(line, "four");
    file.Seek(5, CFile::begin);
    EXPECT_TRUE(file.ReadString(line));
    EXPECT_EQ(file.Seek(0, CFile::current), 10U);
    file.SetLength(4);
    file.WriteString(static_cast<const char*>(nullptr));
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
    EXPECT_FALSE(file.IsOpen());
    EXPECT_THROW(file.WriteString("x"), CFileException);
    CString line;
    EXPECT_THROW(file.ReadString(line), CFileException);
    EXPECT_THROW(CStdioFile(folder.Path("none").c_str(), CFile::modeRead), CFileException);
    {
        CStdioFile writer(Path().c_str(), CFile::modeWrite | CFile::modeCreate | CFile::modeNoTruncate);
        writer.WriteString("KE");
        writer.Abort();
        ASSERT_TRUE(writer.Open(Path().c_str(), CFile::modeWrite));
        writer.WriteString("Ke");
        // The destructor writes.
    }
    EXPECT_EQ(folder.Read("file"), "Kept");
}

} // namespace
