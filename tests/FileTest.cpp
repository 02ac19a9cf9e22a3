#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <new>
#include <string>

#include "CMemFile.h"
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
    CMemFile memory, smallSteps(1), outgrown(bytes, sizeof bytes, 16);
    for (CFile* file : {&onDisk, static_cast<CFile*>(&memory), static_cast<CFile*>(&smallSteps),
                        static_cast<CFile*>(&outgrown)})
        BehavesAsBytes(*file);
}

TEST(File, ModesDecideWhatOpenDoesWithWhatIsThere)
{
    const TemporaryFolder folder;
    constexpr UINT Create = CFile::modeCreate, Keep = CFile::modeCreate | CFile::modeNoTruncate;
    const struct {
        UINT flags;
        bool existing;
        const char* after; // once "new" is written; nullptr where it does not open
    } rows[] = {{CFile::modeRead, false, nullptr},
                {CFile::modeWrite, false, nullptr},
                {CFile::modeWrite, true, "newcontent"},
                {CFile::modeReadWrite, true, "newcontent"},
                {Create | CFile::modeWrite, false, "new"},
                {Create | CFile::modeWrite, true, "new"},
                {Keep | CFile::modeWrite, true, "newcontent"},
                {Keep | CFile::modeReadWrite, false, "new"}};
    for (const auto& row : rows) {
        const std::string name = std::to_string(&row - rows);
        SCOPED_TRACE(name);
        if (row.existing)
            folder.Write(name, "oldcontent");
        CFile file;
        CFileException error;
        const bool opens = row.after != nullptr;
        ASSERT_EQ(file.Open(folder.Path(name).c_str(), row.flags | CFile::shareDenyNone, &error), opens);
        EXPECT_EQ(file.IsOpen(), opens);
        EXPECT_EQ(error.m_cause, opens ? CFileException::none : CFileException::fileNotFound);
        if (opens)
            file.Write("new", 3);
        file.Close();
        EXPECT_EQ(folder.Read(name), opens ? row.after : "");
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
    {
        CFile first(path.c_str(), CFile::modeRead | CFile::shareDenyNone), second;
        CFileException error;
        EXPECT_FALSE(second.Open(path.c_str(), CFile::modeRead | CFile::shareExclusive, &error));
        EXPECT_EQ(error.m_cause, CFileException::sharingViolation);
        EXPECT_TRUE(second.Open(path.c_str(), CFile::modeReadWrite | CFile::shareDenyNone));
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
