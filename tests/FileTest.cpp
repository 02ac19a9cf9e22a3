#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <new>
#include <string>
#include <vector>

#include "CMemFile.h"
#include "CStdioFile.h"
#include "support/Cases.h"
#include "support/RandomSource.h"
#include "support/TemporaryFolder.h"

namespace {

// A random sequence of operations, against a plain string of bytes.
void BehavesAsBytes(CFile& file)
{
    RandomSource random;
    std::string model;
    std::size_t position = 0;
    for (int step = 0; step < 500; ++step) {
        const auto count = static_cast<std::size_t>(random.From(0, 299));
        const int action = random.From(0, 4);
        if (action < 2) {
            const std::string text(count, static_cast<char>('a' + step % 26));
            file.Write(text.data(), count);
            model.resize(std::max(model.size(), count > 0 ? position + count : 0));
            model.replace(std::min(position, model.size()), count, text);
            position += count;
        } else if (action == 2) {
            std::string got(count, '\0');
            got.resize(file.Read(got.data(), count));
            ASSERT_EQ(got, position < model.size() ? model.substr(position, count) : "");
            position += got.size();
        } else if (action == 3) {
            const std::size_t origins[] = {0, position, model.size()};
            const int from = random.From(0, 2);
            const int64 target = static_cast<int64>(origins[from]) + random.From(-300, 699);
            const auto seek = [&] {
                return file.Seek(target - static_cast<int64>(origins[from]), static_cast<UINT>(from));
            };
            if (target < 0)
                EXPECT_THROW(seek(), CFileException);
            else
                ASSERT_EQ(position = seek(), static_cast<uint64>(target));
        } else {
            file.SetLength(count * 3);
            model.resize(count * 3);
            position = model.size();
        }
        ASSERT_EQ(file.GetPosition(), position);
        ASSERT_EQ(file.GetLength(), model.size());
    }
    file.SeekToBegin();
    std::string all(model.size() + 1, '\0');
    all.resize(file.Read(all.data(), all.size()));
    EXPECT_EQ(all, model);
}

TEST(File, EveryKindOfFileHoldsBytesAlike)
{
    const TemporaryFolder folder;
    BYTE bytes[1000];
    CFile onDisk(folder.Path("random").c_str(), CFile::modeCreate | CFile::modeReadWrite);
    CStdioFile buffered(folder.Path("buffered").c_str(),
                        CFile::modeCreate | CFile::modeReadWrite | CFile::typeBinary);
    CMemFile memory, smallSteps(1), outgrown(bytes, sizeof bytes, 16);
    for (CFile* file : std::initializer_list<CFile*>{&onDisk, &buffered, &memory, &smallSteps, &outgrown})
        BehavesAsBytes(*file);
}

// What stands in a file, - where there is none, and again once "new" is written.
TEST(File, ModesDecideWhatOpenDoesWithWhatIsThere)
{
    const TemporaryFolder folder;
    constexpr UINT Create = CFile::modeCreate, Keep = CFile::modeCreate | CFile::modeNoTruncate;
    const std::map<std::string, UINT> modes = {{"read", CFile::modeRead},
                                               {"change", CFile::modeReadWrite},
                                               {"create", Create | CFile::modeWrite},
                                               {"keep", Keep | CFile::modeWrite},
                                               {"keep and read", Keep | CFile::modeReadWrite}};
    for (const auto& [mode, before, after] : Cases<3>("file modes")) {
        SCOPED_TRACE(mode + ' ' + before);
        const std::string name = mode + before;
        if (before != "-")
            folder.Write(name, before);
        CFile file;
        CFileException error;
        ASSERT_EQ(file.Open(folder.Path(name).c_str(), modes.at(mode) | CFile::shareDenyNone, &error),
                  after != "-");
        EXPECT_EQ(error.m_cause, file.IsOpen() ? CFileException::none : CFileException::fileNotFound);
        if (file.IsOpen())
            file.Write("new", 3);
        file.Close();
        EXPECT_EQ(folder.Has(name) ? folder.Read(name) : "-", after);
    }
}

void ExpectFailure(const std::function<void()>& operation, int cause, int error, const std::string& file)
{
    SCOPED_TRACE(cause);
    try {
        operation();
        ADD_FAILURE();
    } catch (const CFileException& exception) {
        EXPECT_EQ(exception.m_cause, cause);
        EXPECT_EQ(exception.m_lOsError, error);
        EXPECT_EQ(exception.m_strFileName, file.c_str());
        EXPECT_NE(std::string(exception.what()).find(file), std::string::npos);
    }
}

TEST(File, FailuresNameTheFileAndTheReason)
{
    const TemporaryFolder folder;
    const std::string missing = folder.Path("missing.txt");
    CFile closed, full;
    closed.Close();
    char c = 0;
    const auto open = [&] { CFile(missing.c_str(), CFile::modeRead); };
    ExpectFailure(open, CFileException::fileNotFound, 2, missing);
    ExpectFailure([&] { CFile::Remove(missing.c_str()); }, CFileException::fileNotFound, 2, missing);
    ExpectFailure([&] { CFile::Rename(missing.c_str(), "x"); }, CFileException::fileNotFound, 2, missing);
    if (full.Open("/dev/full", CFile::modeWrite))
        ExpectFailure([&] { full.Write(&c, 1); }, CFileException::diskFull, 112, "/dev/full");
    ExpectFailure([&] { closed.Read(&c, 1); }, CFileException::invalidFile, 0, "");
    ExpectFailure([&] { closed.Write(&c, 1); }, CFileException::invalidFile, 0, "");
    ExpectFailure([&] { closed.GetLength(); }, CFileException::invalidFile, 0, "");
    ExpectFailure([&] { closed.Flush(); }, CFileException::invalidFile, 0, "");
}

TEST(File, FilesAreNamedMovedAndRemoved)
{
    const TemporaryFolder folder;
    const std::string path = folder.Write("report.old.txt", "12345"), other = folder.Path("other");
    {
        CFile first(path.c_str(), CFile::modeRead | CFile::shareDenyNone), second;
        EXPECT_EQ(first.GetFilePath() + first.GetFileName() + first.GetFileTitle(),
                  (path + "report.old.txtreport.old").c_str());
        CFileException error;
        EXPECT_FALSE(second.Open(path.c_str(), CFile::modeRead | CFile::shareExclusive, &error));
        EXPECT_EQ(error.m_cause, CFileException::sharingViolation);
        EXPECT_TRUE(second.Open(path.c_str(), CFile::modeReadWrite | CFile::shareDenyNone));
    }
    CFile::Rename(path.c_str(), other.c_str());
    std::filesystem::permissions(other, std::filesystem::perms::owner_read);
    const auto expectStatus = [](const std::string& name, uint64 size, bool isReadOnly, bool isFolder) {
        CFileStatus status;
        ASSERT_TRUE(CFile::GetStatus(name.c_str(), status));
        EXPECT_TRUE(status.m_readOnly == isReadOnly && status.m_folder == isFolder) << name;
        EXPECT_TRUE(isFolder || status.m_size == size) << name;
    };
    expectStatus(other, 5, true, false);
    expectStatus(folder.Write("report.old.txt", "1"), 1, false, false);
    expectStatus(folder.Path(), 0, false, true);
    CFile::Remove(path.c_str());
    CFileStatus status;
    EXPECT_FALSE(CFile::GetStatus(path.c_str(), status) || folder.Has("report.old.txt"));
}

TEST(MemFile, AttachedBytesStayTheirOwners)
{
    BYTE bytes[4] = {1, 2, 3, 4};
    CMemFile fixed(bytes, sizeof bytes);
    EXPECT_EQ(fixed.GetLength(), 4u);
    fixed.Seek(2, CFile::begin);
    EXPECT_THROW(fixed.Write("xyz", 3), CFileException);
    fixed.Write("xy", 2);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes), 4), "\x01\x02xy");
    EXPECT_THROW(fixed.SetLength(5), CFileException);
    EXPECT_EQ(fixed.Detach(), bytes);
    EXPECT_EQ(fixed.GetLength(), 0u);

    CMemFile growing(bytes, sizeof bytes, 1); // a copy from the first byte on that has no room
    growing.Write("abc", 3);
    growing.Write("defgh", 5);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes), 4), "abcy");
    BYTE* const own = growing.Detach();
    EXPECT_EQ(std::string(reinterpret_cast<char*>(own), 8), "abcdefgh");
    std::free(own);
}

TEST(MemFile, PositionsBeyondAllMemoryAreRefused)
{
    CMemFile file;
    EXPECT_THROW(file.Seek(-1, CFile::begin), CFileException);
    EXPECT_EQ(file.Seek(std::numeric_limits<int64>::max(), CFile::begin), 0x7FFFFFFFFFFFFFFFu);
    EXPECT_THROW(file.Seek(1, CFile::current), CFileException);
    EXPECT_THROW(file.Write("x", 1), std::bad_alloc);
    char c = 0;
    EXPECT_EQ(file.Read(&c, 1), 0u);
    EXPECT_EQ(file.GetLength(), 0u);
}

// ---- lines ----------------------------------------------------------------------------------------------

constexpr std::size_t Buffer = 1 << 16;

std::vector<std::string> Lines(const std::string& path, UINT mode)
{
    CStdioFile file(path.c_str(), CFile::modeRead | mode);
    std::vector<std::string> lines;
    CString line("left over");
    while (file.ReadString(line))
        lines.emplace_back(line.View());
    EXPECT_TRUE(line.IsEmpty());
    return lines;
}

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

TEST(StdioFile, ReadsAndWritesByTheRuleAtAllSizes)
{
    const TemporaryFolder folder;
    const std::string path = folder.Path("file");
    RandomSource random;
    const std::string hard[] = {"", "a\r\n\r\nb", "a\rb\r", "a\r\r\n",
                                std::string(Buffer - 1, 'x') + "\r\ny"};
    for (std::size_t round = 0; round < 50; ++round) {
        const bool isText = round % 2 == 0;
        const UINT mode = isText ? CFile::typeText : CFile::typeBinary;
        const std::string bytes = round / 2 < std::size(hard) ? hard[round / 2] : RandomText(random);
        const std::string expected = isText ? AsText(bytes) : bytes;
        folder.Write("file", bytes);
        ASSERT_EQ(Lines(path, mode), SplitLines(expected));
        CStdioFile reader(path.c_str(), CFile::modeRead | mode);
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
        CStdioFile writer(path.c_str(), CFile::modeCreate | CFile::modeWrite | mode);
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

TEST(StdioFile, WritingGoesOnBehindTheLineThatWasRead)
{
    const TemporaryFolder folder;
    const std::string path = folder.Path("file");
    folder.Write("file", "one\r\ntwo\r\nthree\r\n");
    CStdioFile file(path.c_str(), CFile::modeReadWrite | CFile::shareDenyNone);
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

TEST(StdioFile, WhatCannotBeWrittenIsReportedByTheLatestOnClosing)
{
    const TemporaryFolder folder;
    const std::string path = folder.Path("file");
    folder.Write("file", "kept");
    CStdioFile file(path.c_str(), CFile::modeRead);
    file.WriteString("x");
    EXPECT_THROW(file.Close(), CFileException);
    file.WriteString("x");
    CFileException error;
    EXPECT_FALSE(file.Open(path.c_str(), CFile::modeRead, &error));
    EXPECT_EQ(error.m_cause, CFileException::accessDenied);
    EXPECT_THROW(file.WriteString("x"), CFileException);
    CString line;
    EXPECT_THROW(file.ReadString(line), CFileException);
    CStdioFile(path.c_str(), CFile::modeWrite).WriteString("Ke"); // the destructor writes
    CStdioFile writer(path.c_str(), CFile::modeWrite);
    writer.WriteString("lost");
    writer.Abort();
    EXPECT_EQ(folder.Read("file"), "Kept");
}

} // namespace
