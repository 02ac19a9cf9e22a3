#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <new>
#include <string>

#include "CMemFile.h"
#include "CStdioFile.h"
#include "support/ArchiveBytes.h"
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

TEST(File, ModesDecideWhatOpenDoesWithWhatIsThere)
{
    const TemporaryFolder folder;
    constexpr UINT Create = CFile::modeCreate, Keep = CFile::modeCreate | CFile::modeNoTruncate;
    const struct {
        UINT flags;
        const char *existing, *after; // once "new" is written; nullptr where there is none
    } rows[] = {{CFile::modeRead, nullptr, nullptr},
                {CFile::modeReadWrite, "oldcontent", "newcontent"},
                {Create | CFile::modeWrite, nullptr, "new"},
                {Create | CFile::modeWrite, "oldcontent", "new"},
                {Keep | CFile::modeWrite, "oldcontent", "newcontent"},
                {Keep | CFile::modeReadWrite, nullptr, "new"}};
    for (const auto& row : rows) {
        const std::string path = folder.Path(std::to_string(&row - rows));
        SCOPED_TRACE(path);
        if (row.existing != nullptr)
            folder.Write(std::to_string(&row - rows), row.existing);
        CFile file;
        CFileException error;
        ASSERT_EQ(file.Open(path.c_str(), row.flags | CFile::shareDenyNone, &error), row.after != nullptr);
        EXPECT_EQ(error.m_cause, file.IsOpen() ? CFileException::none : CFileException::fileNotFound);
        if (file.IsOpen())
            file.Write("new", 3);
        file.Close();
        EXPECT_EQ(folder.Read(std::to_string(&row - rows)), row.after == nullptr ? "" : row.after);
    }
}

TEST(File, FailuresNameTheFileAndTheReason)
{
    const TemporaryFolder folder;
    const std::string missing = folder.Path("missing.txt");
    CFile closed, full;
    closed.Close();
    const bool isFull = full.Open("/dev/full", CFile::modeWrite);
    char c = 0;
    const struct {
        std::function<void()> operation;
        int cause, error;
        std::string file;
    } rows[] = {{[&] { CFile(missing.c_str(), CFile::modeRead); }, CFileException::fileNotFound, 2, missing},
                {[&] { CFile::Remove(missing.c_str()); }, CFileException::fileNotFound, 2, missing},
                {[&] { CFile::Rename(missing.c_str(), "x"); }, CFileException::fileNotFound, 2, missing},
                {[&] { full.Write(&c, 1); }, isFull ? CFileException::diskFull : CFileException::invalidFile,
                 isFull ? 112 : 0, isFull ? "/dev/full" : ""},
                {[&] { closed.Read(&c, 1); }, CFileException::invalidFile, 0, ""},
                {[&] { closed.Write(&c, 1); }, CFileException::invalidFile, 0, ""},
                {[&] { closed.GetLength(); }, CFileException::invalidFile, 0, ""},
                {[&] { closed.Flush(); }, CFileException::invalidFile, 0, ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        try {
            row.operation();
            ADD_FAILURE();
        } catch (const CFileException& exception) {
            EXPECT_EQ(exception.m_cause, row.cause);
            EXPECT_EQ(exception.m_lOsError, row.error);
            EXPECT_EQ(exception.m_strFileName, row.file.c_str());
            EXPECT_NE(std::string(exception.what()).find(row.file), std::string::npos);
        }
    }
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
    CFileStatus status;
    EXPECT_FALSE(CFile::GetStatus(path.c_str(), status));
    ASSERT_TRUE(CFile::GetStatus(other.c_str(), status));
    EXPECT_TRUE(status.m_size == 5 && !status.m_readOnly && !status.m_folder);
    std::filesystem::permissions(other, std::filesystem::perms::owner_read);
    ASSERT_TRUE(CFile::GetStatus(other.c_str(), status));
    EXPECT_TRUE(status.m_size == 5 && status.m_readOnly);
    ASSERT_TRUE(CFile::GetStatus(folder.Path().c_str(), status));
    EXPECT_TRUE(status.m_folder);
    CFile::Remove(folder.Write("report.old.txt", "").c_str());
    EXPECT_FALSE(std::filesystem::exists(path));
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
