#include "files/TextFile.h"

#include "files/OpenAsText.h"
#include "files/TextEncoding.h"

// ---- opening and closing --------------------------------------------------------------------------------

int TextFile::Open(const CString& fileName, int mode, int encoding, unsigned int options)
{
    Close();
    m_fileName = fileName;
    m_mode = mode;
    m_encoding = encoding;
    m_options = options;
    m_linesRead = m_linesWritten = 0;
    if (encoding != TextEncoding::Automatic && !TextEncoding::IsReadAndWritten(encoding))
        return WrongEncoding;
    if (!CanBeOpenedAsText(fileName))
        return SystemError;
    const int result = mode == Read ? OpenForReading() : OpenForWriting();
    if (result != Done)
        m_file.Close();
    return result;
}

int TextFile::OpenForReading()
{
    m_file = FileHandle(CreateFileA(m_fileName, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
    char bytes[TextEncoding::LongestMark];
    DWORD count = 0;
    if (!m_file.IsOpen() || !ReadFile(m_file.Get(), bytes, sizeof bytes, &count, nullptr))
        return SystemError;
    const int found = TextEncoding::OfMark({bytes, count});
    bool isMarkExpected = true;
    if (m_encoding == TextEncoding::Automatic)
        m_encoding = TextEncoding::IsReadAndWritten(found) ? found : TextEncoding::Ansi;
    else
        isMarkExpected = (m_options & NoMarkExpected) == 0;
    const std::size_t markLength = isMarkExpected ? TextEncoding::MarkOf(m_encoding).size() : 0;
    if (markLength > 0 && found != m_encoding)
        return WrongEncoding;
    if (SetFilePointer(m_file.Get(), static_cast<LONG>(markLength), nullptr, FILE_BEGIN) ==
        INVALID_SET_FILE_POINTER)
        return SystemError;
    m_reader = MakeReader(count == 0);
    return Done;
}

int TextFile::OpenForWriting()
{
    if (m_encoding == TextEncoding::Automatic)
        m_encoding = TextEncoding::Ansi;
    m_file = FileHandle(CreateFileA(m_fileName, GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                    m_mode == Write ? CREATE_ALWAYS : OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                                    nullptr));
    if (!m_file.IsOpen())
        return SystemError;
    m_writer = MakeWriter();
    m_isMarkPending = true;
    return Done;
}

std::unique_ptr<TextFileReader> TextFile::MakeReader(bool isEmpty) const
{
    if (isEmpty)
        return std::make_unique<TextFileReader>(m_fileName, m_file.Get());
    switch (m_encoding) {
    case TextEncoding::Utf16LittleEndian:
        return std::make_unique<UTF16LE_TextFileReader>(m_fileName, m_file.Get());
    case TextEncoding::Utf16BigEndian:
        return std::make_unique<UTF16BE_TextFileReader>(m_fileName, m_file.Get());
    case TextEncoding::Utf8:
        return std::make_unique<UTF8_TextFileReader>(m_fileName, m_file.Get());
    default:
        return std::make_unique<ANSI_TextFileReader>(m_fileName, m_file.Get());
    }
}

std::unique_ptr<TextFileWriter> TextFile::MakeWriter() const
{
    switch (m_encoding) {
    case TextEncoding::Utf16LittleEndian:
        return std::make_unique<UTF16LE_TextFileWriter>(m_file.Get());
    case TextEncoding::Utf16BigEndian:
        return std::make_unique<UTF16BE_TextFileWriter>(m_file.Get());
    case TextEncoding::Utf8:
        return std::make_unique<UTF8_TextFileWriter>(m_file.Get());
    default:
        return std::make_unique<ANSI_TextFileWriter>(m_file.Get());
    }
}

int TextFile::Close()
{
    const bool isWritten = !m_writer || m_writer->Flush() == TextFileWriter::Written;
    m_reader.reset();
    m_writer.reset();
    const bool isClosed = m_file.Close();
    return isWritten && isClosed ? Done : SystemError;
}

uint64 TextFile::GetSize() const
{
    LARGE_INTEGER size = {};
    return m_file.IsOpen() && GetFileSizeEx(m_file.Get(), &size) ? static_cast<uint64>(size.QuadPart) : 0;
}

uint64 TextFile::GetPosition() const
{
    return m_reader ? m_reader->GetPosition() : 0;
}

// ---- lines ----------------------------------------------------------------------------------------------

void TextFile::SetCodePage(unsigned int codePage, const CString& defaultChar)
{
    m_codePage = codePage;
    m_defaultChar = defaultChar;
}

int TextFile::ReadLine(CString& line)
{
    std::string_view text;
    const int result = ReadText(text);
    if (result == Done)
        line = CString(text);
    return result;
}

int TextFile::ReadText(std::string_view& text)
{
    if (!m_reader)
        return SystemError;
    const char* const defaultChar = m_defaultChar.IsEmpty() ? nullptr : m_defaultChar.GetString();
    const int result = m_reader->ReadText(text, m_codePage, defaultChar, nullptr);
    m_linesRead += result == TextFileReader::LineDelivered;
    return result;
}
