#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <new>
#include <random>
#include <string>

#include "CMemFile.h"
#include "support/ArchiveBytes.h"
#include "support/TemporaryFolder.h"

namespace {

// One random sequence of operations for every kind of file, against a plain vector of bytes.
void BehavesAsBytes(CFile& file, unsigned seed)
{
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::string model;
    std::size_t position = 0;
    for (int step = 0; step < 500; ++step) {
        const std::size_t count = random() % 300;
        switch (random() % 5) {
        case 0:
        case 1: {
            const std::string text(count, static_cast<char>(random()));
            file.Write(text.data(), count);
            if (count == 0)
                break;
            model.resize(std::max(model.size(), position + count));
            model.replace(position, count, text);
            position += count;
            break;
        }
        case 2: {
            std::string got(count, '\0');
            got.resize(file.Read(got.data(), count));
            const std::string wanted = position < model.size() ? model.substr(position, count) : "";
            ASSERT_TRUE(got == wanted);
            position += wanted.size();
            break;
        }
        case 3: {
            const auto from = static_cast<UINT>(random() % 3);
            const std::size_t origin = from == 0 ? 0 : from == 1 ? position : model.size();
            const int64 offset = static_cast<int64>(random() % 1000) - 300;
            const int64 target = static_cast<int64>(origin) + offset;
            if (target < 0) {
                EXPECT_THROW(file.Seek(offset, from), CFileException);
                break;
            }
            ASSERT_EQ(file.Seek(offset, from), static_cast<uint64>(target));
            position = static_cast<std::size_t>(target);
            break;
        }
        default:
            file.SetLength(count * 3);
            model.resize(count * 3);
            position = model.size();
        }
        ASSERT_EQ(file.GetPosition(), position);
        ASSERT_EQ(file.GetLength(), model.size());
    }
    file.SeekToBegin();
    std::string all(model.size(), '\0');
    ASSERT_EQ(file.Read(all.data(), all.size()), all.size());
    EXPECT_TRUE(all == model);
}

TEST(File, EveryKindOfFileHoldsBytesAlike)
{
    const TemporaryFolder folder;
    const unsigned seed = std::random_device()();
    CFile file(folder.Path("random").c_str(), CFile::modeCreate | CFile::modeReadWrite);
    BehavesAsBytes(file, seed);
    CMemFile memory;
    BehavesAsBytes(memory, seed);
    CMemFile smallSteps(1);
    BehavesAsBytes(smallSteps, seed);
    BYTE bytes[1000];
    CMemFile outgrown(bytes, sizeof bytes, 16);
    BehavesAsBytes(outgrown, seed);
}

TEST(File, ModesDecideWhatOpenDoesWithWhatIsThere)
{
    const TemporaryFolder folder;
    struct Row {
        UINT flags;
        bool existing, opens;
        const char* after; // once "new" is written, when it opens for writing
    };
    const Row rows[] = {
        {CFile::modeRead, false, false, ""},
        {CFile::modeWrite, false, false, ""},
        {CFile::modeWrite, true, true, "newcontent"},
        {CFile::modeReadWrite, true, true, "newcontent"},
        {CFile::modeCreate | CFile::modeWrite, false, true, "new"},
        {CFile::modeCreate | CFile::modeWrite, true, true, "new"},
        {CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite, true, true, "newcontent"},
        {CFile::modeCreate | CFile::modeNoTruncate | CFile::modeReadWrite, false, true, "new"},
    };
    int number = 0;
    for (const Row& row : rows) {
        SCOPED_TRACE(++number);
        const std::string name = std::to_string(number), path = folder.Path(name);
        if (row.existing)
            folder.Write(name, "oldcontent");
        CFile file;
        CFileException error;
        ASSERT_EQ(file.Open(path.c_str(), row.flags | CFile::shareDenyNone, &error), row.opens);
        EXPECT_EQ(file.IsOpen(), row.opens);
        EXPECT_EQ(error.m_cause, row.opens ? CFileException::none : CFileException::fileNotFound);
        if (!row.opens)
            continue;
        file.Write("new", 3);
        file.Close();
        EXPECT_EQ(folder.Read(name), row.after);
    }
}

TEST(File, FailuresNameTheFileAndTheReason)
{
    const TemporaryFolder folder;
    const std::string missing = folder.Path("missing.txt");
    try {
        CFile file(missing.c_str(), CFile::modeRead);
        FAIL();
    } catch (const CFileException& exception) {
        EXPECT_EQ(exception.m_cause, CFileException::fileNotFound);
        EXPECT_EQ(exception.m_lOsError, 2);
        EXPECT_EQ(exception.m_strFileName, missing.c_str());
        EXPECT_NE(std::string(exception.what()).find(missing), std::string::npos);
    }
    EXPECT_THROW(CFile::Remove(missing.c_str()), CFileException);
    EXPECT_THROW(CFile::Rename(missing.c_str(), folder.Path("other").c_str()), CFileException);
    CFile closed;
    char c = 0;
    EXPECT_THROW(closed.Read(&c, 1), CFileException);
    EXPECT_THROW(closed.Write(&c, 1), CFileException);
    EXPECT_THROW(closed.GetLength(), CFileException);
    EXPECT_THROW(closed.Flush(), CFileException);
    closed.Close();
    closed.Abort();
}

TEST(File, FilesAreNamedMovedAndRemoved)
{
    const TemporaryFolder folder;
    const std::string path = folder.Path("report.old.txt"), other = folder.Path("other");
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
        file.Write("12345", 5);
        file.Flush();
        EXPECT_EQ(file.GetFilePath(), path.c_str());
        EXPECT_EQ(file.GetFileName(), "report.old.txt");
        EXPECT_EQ(file.GetFileTitle(), "report.old");
    }
    CFileStatus status;
    ASSERT_TRUE(CFile::GetStatus(path.c_str(), status));
    EXPECT_TRUE(status.m_size == 5 && !status.m_readOnly && !status.m_folder);
    ASSERT_TRUE(CFile::GetStatus(folder.Path().c_str(), status));
    EXPECT_TRUE(status.m_folder);
    CFile::Rename(path.c_str(), other.c_str());
    EXPECT_FALSE(CFile::GetStatus(path.c_str(), status));
    folder.Write("report.old.txt", "");
    EXPECT_THROW(CFile::Rename(path.c_str(), other.c_str()), CFileException);
    EXPECT_EQ(folder.Read("other"), "12345");
    std::filesystem::permissions(other, std::filesystem::perms::owner_read);
    ASSERT_TRUE(CFile::GetStatus(other.c_str(), status));
    EXPECT_TRUE(status.m_readOnly);
    CFile::Remove(path.c_str());
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(File, ArchivesGoThroughFilesOnDisk)
{
    const TemporaryFolder folder;
    const std::string path = folder.Path("archive");
    const CString text('x', 100000);
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
        CArchive archive(&file, CArchive::store);
        archive << 1 << text << 2;
    }
    CFile file(path.c_str(), CFile::modeRead);
    CArchive archive(&file, CArchive::load);
    int one = 0, two = 0;
    CString loaded;
    archive >> one >> loaded >> two;
    EXPECT_TRUE(one == 1 && loaded == text && two == 2 && archive.GetBytesAhead() == 0);
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

    CMemFile growing(bytes, sizeof bytes, 1);
    EXPECT_EQ(growing.GetLength(), 0u);
    growing.Write("abc", 3);
    EXPECT_EQ(bytes[0], 'a');
    growing.Write("defgh", 5);
    EXPECT_EQ(ContentOf(growing), "abcdefgh");
    EXPECT_EQ(bytes[3], 'y');
    BYTE* const own = growing.Detach();
    EXPECT_EQ(own[7], 'h');
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

} // namespace
