// The public face of the text files.
#include <algorithm>
#include <memory>
#include <new>
#include <stdexcept>

#include "CStdioFile.h"
#include "DirUtils.h"
#include "FileUtils.h"
#include "StringUtils.h"
#include "TextArray.h"
#include "files/FileHandle.h"
#include "files/OpenAsText.h"
#include "files/TextEncoding.h"
#include "files/TextFile.h"
#include "framework/FailureMarkers.h"
#include "framework/LargeMemory.h"
#include "framework/NamesOnDisk.h"
#include "framework/PathParts.h"
#include "framework/SystemMessages.h"

bool FileUtils::IsFileUnicode(const CString& path, int& encoding)
{
    encoding = TextEncoding::Automatic;
    FileHandle file;
    if (CanBeOpenedAsText(path))
        file = FileHandle(
            CreateFileA(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.IsOpen()) {
        FailureMarkers::ReportWithLastError("{30AF5017-BA9E-4562-B859-800D0E8B175C}");
        return false;
    }
    char bytes[TextEncoding::LongestMark];
    DWORD count = 0;
    if (!ReadFile(file.Get(), bytes, sizeof bytes, &count, nullptr)) {
        FailureMarkers::ReportWithLastError("{5A161316-5A02-4BFD-B2DC-9E21E40392D9}");
        return false;
    }
    encoding = TextEncoding::OfMark({bytes, count});
    return encoding != TextEncoding::Ansi;
}

// ---- reading --------------------------------------------------------------------------------------------

namespace {

bool IsFileToRead(const CString& path)
{
    const DWORD attributes = NamesOnDisk::Attributes(path);
    const bool isThere = attributes != INVALID_FILE_ATTRIBUTES;
    const bool isNamed = !path.IsEmpty() && !PathParts::IsSeparator(path[path.GetLength() - 1]);
    if (!isNamed || (isThere && (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) != 0))
        FailureMarkers::Report("{86CDA486-681F-43D5-9211-EFACE318A623}");
    else if (!isThere)
        FailureMarkers::Report("{AB91D2F6-45CF-4D68-BFFF-829E56F7D3AD}");
    else
        return true;
    return false;
}

// Makes room for the lines of the whole file, if they are like the first ones, and an eighth more; but never
// for more than the file's own size: for lines shorter than a CString the array grows as it is filled.
void ReserveAsFor(const TextFile& file, TextArray& firstLines)
{
    const uint64 size = file.GetSize();
    const uint64 expected = size / std::max<uint64>(file.GetPosition(), 1) * firstLines.GetCount();
    const uint64 count = std::min(expected + expected / 8, size / sizeof(CString));
    firstLines.Reserve(count);
    LargeMemory::WillBeFilled(&firstLines[0], count * sizeof(CString));
}

void ReadDetecting(const CString& path, TextArray& lines, int* encoding)
{
    const std::unique_ptr<TextFile> file(new (std::nothrow) TextFile);
    if (!file)
        return FailureMarkers::Report("{2F66E03D-D93B-40AC-AB79-6C1E3FDAC548}");
    if (file->Open(path, TextFile::Read, TextEncoding::Automatic) != TextFile::Done)
        return FailureMarkers::Report("{2338D1D7-19AA-4A3A-A146-A1C9BC7162F3}");
    if (encoding != nullptr)
        *encoding = file->GetEncoding();
    constexpr std::size_t sample = 1000;
    for (std::string_view line; file->ReadText(line) == TextFile::Done;) {
        lines.Add(line.data(), static_cast<int>(line.size()));
        if (lines.GetCount() == sample)
            ReserveAsFor(*file, lines);
    }
}

void ReportNotOpened(const CString& path, const CFileException& error)
{
    if (error.m_lOsError == 0)
        return FailureMarkers::Report("{E7749E8B-3F17-4724-A5F5-92DCEA4E1D48}");
    CString marker;
    marker.Format("{8B7D1613-6441-4ff8-AD38-F0930DC9DA19} - %s", path);
    FailureMarkers::Report(marker + SystemMessages::TextFor(static_cast<DWORD>(error.m_lOsError)));
}

// Up to the end, or to what cannot be read or held.
void ReadStream(CStdioFile& stream, TextArray& lines)
{
    CString line;
    try {
        while (stream.ReadString(line))
            lines.Add(CString(line.View())); // a copy without the room that the line has to spare
    } catch (const CFileException&) {
    } catch (const std::length_error&) {
    }
    if (lines.IsEmpty() && !line.IsEmpty())
        lines.Add(line);
}

void ReadAsStream(const CString& path, TextArray& lines)
{
    const std::unique_ptr<CStdioFile> stream(new (std::nothrow) CStdioFile);
    if (!stream)
        return FailureMarkers::Report("{497F0E01-85E0-45D4-8D77-F7CFEF89E61D}");
    CFileException error;
    if (!stream->Open(path, CFile::modeRead | CFile::shareDenyNone, &error))
        return ReportNotOpened(path, error);
    ReadStream(*stream, lines);
}

} // namespace

void FileUtils::ReadFileContent(const CString& path, TextArray& lines, bool detectEncoding, int* encoding)
{
    const CString name(path); // which may be one of the lines
    if (encoding != nullptr)
        *encoding = TextEncoding::Ansi;
    lines.RemoveAll();
    if (!IsFileToRead(name))
        return;
    if (detectEncoding)
        ReadDetecting(name, lines, encoding);
    else
        ReadAsStream(name, lines);
}

bool FileUtils::IsFileContentIdentical(const CString& path, const TextArray& lines, bool detectEncoding)
{
    TextArray content;
    int ignored = 0;
    ReadFileContent(path, content, detectEncoding, &ignored);
    return content == lines;
}

// ---- writing --------------------------------------------------------------------------------------------

namespace {

bool Failed(const char* tag)
{
    FailureMarkers::Report(tag);
    return false;
}

bool FailedWithLastError(const char* tag)
{
    FailureMarkers::ReportWithLastError(tag);
    return false;
}

// A bare name goes to the current folder, which is left as it is.
bool PrepareFolder(const CString& folder)
{
    if (folder.IsEmpty())
        return true;
    if (!NamesOnDisk::Exists(folder) && !DirUtils::CreateDirectory(folder))
        return FailedWithLastError("{0584D9B2-55D5-458D-A837-D590C7F5F932}");
    if (!DirUtils::EnsureDirIsWritable(folder))
        return Failed("{91E67FDF-97D6-482E-92A6-1F13F717E627}");
    return true;
}

bool WriteEncoded(const CString& path, const TextArray& lines, int encoding)
{
    if (encoding != TextEncoding::Automatic && !TextEncoding::IsReadAndWritten(encoding))
        return Failed("{423AE097-D2E5-42C9-916D-51FFA18FA989}");
    const std::unique_ptr<TextFile> file(new (std::nothrow) TextFile);
    if (!file)
        return Failed("{A35E8B50-D8BA-4ECE-A83E-BE33E488C096}");
    if (file->Open(path, TextFile::Write, encoding) != TextFile::Done)
        return Failed("{04921E65-2BB5-411D-8C8D-7EBA96A840DB}");
    for (const CString& line : lines)
        if (file->WriteLine(line) != TextFile::Done)
            return FailedWithLastError("{7748B3A2-4926-4672-A742-F4FC85EEB4F7}");
    if (file->Close() != TextFile::Done)
        return FailedWithLastError("{B09FE32E-5A90-4F04-8D41-B4E876D35A92}");
    return true;
}

bool FailedWith(const char* tag, const CFileException& error)
{
    return Failed(tag + SystemMessages::TextFor(static_cast<DWORD>(error.m_lOsError)));
}

bool WriteAsStream(const CString& path, const TextArray& lines)
{
    const std::unique_ptr<CStdioFile> stream(new (std::nothrow) CStdioFile);
    if (!stream)
        return Failed("{FF1D87F4-BE85-4FFB-B767-335579AD1FDC}");
    if (!CanBeOpenedAsText(path))
        return FailedWithLastError("{0D586CC9-9036-401E-B183-3BE38B106F76}");
    CFileException error;
    if (!stream->Open(path, CFile::modeCreate | CFile::modeWrite | CFile::shareDenyWrite, &error))
        return FailedWith("{307CBD36-BF88-41F0-B437-FAF347B996EF}", error);
    try {
        for (const CString& line : lines) {
            stream->WriteString(line);
            stream->WriteString("\n");
        }
    } catch (const CFileException& failure) {
        stream->Abort();
        return FailedWith("{46AAABDF-F710-47A9-8648-E44BB2DB59B6}", failure);
    }
    try {
        stream->Close();
    } catch (const CFileException& failure) {
        return FailedWith("{BAD59966-D44C-4B4C-9179-073330BDADFE}", failure);
    }
    return true;
}

} // namespace

bool FileUtils::WriteFileContent(const CString& path, const TextArray& lines, bool useEncoding, int encoding)
{
    if (StringUtils::IsEffectivelyEmpty(path))
        return Failed("{38BD4A9D-A6F9-4AF4-9EEB-58A8CD9F69CC}");
    if (!PrepareFolder(DirUtils::ParsePathFromFile(path)))
        return false;
    return useEncoding ? WriteEncoded(path, lines, encoding & 0xFF) : WriteAsStream(path, lines);
}
