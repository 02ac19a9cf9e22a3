#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

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

// ---- the rules, one unit after the other ----------------------------------------------------------------

std::u32string UnitsOf(const std::string& bytes, int encoding)
{
    std::u32string units;
    const std::size_t size = IsWide(encoding) ? 2 : 1;
    for (std::size_t i = 0; i + size <= bytes.size(); i += size) {
        const std::size_t low = encoding == 3 ? i + 1 : i;
        units += static_cast<unsigned char>(bytes[low]);
        if (size == 2)
            units.back() += static_cast<unsigned char>(bytes[2 * i + 1 - low]) * 256U;
    }
    return units;
}

std::vector<std::u32string> SplitLines(const std::u32string& units, std::size_t fill)
{
    std::vector<std::u32string> lines;
    std::u32string line;
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (units[i] != '\n') {
            line += units[i];
            continue;
        }
        if (i % fill != 0 && units[i - 1] == '\r')
            line.pop_back();
        lines.push_back(std::exchange(line, {}));
    }
    if (!line.empty())
        lines.push_back(line);
    return lines;
}

std::u32string DecodeUtf8(const std::u32string& bytes)
{
    std::u32string codes;
    char32_t last = 0xFFFD;
    for (std::size_t i = 0; i < bytes.size();) {
        const char32_t lead = bytes[i];
        const std::size_t length = lead < 128 ? 1 : lead < 224 ? 2 : lead < 240 ? 3 : lead < 248 ? 4 : 1;
        const char32_t kept[] = {0, 128, 32, 16, 8};
        if (i + length <= bytes.size()) {
            last = lead % kept[length];
            for (std::size_t k = 1; k < length; ++k)
                last = last * 64 + bytes[i + k] % 64;
            if (lead >= 248)
                last = 0xFFFD;
        }
        codes += std::min<char32_t>(last, 0x10FFFF);
        i += length;
    }
    return codes;
}

CString Narrow(const std::u32string& codes)
{
    std::basic_string<WCHAR> wide;
    for (const char32_t code : codes)
        if (code > 0xFFFF) {
            wide += static_cast<WCHAR>(0xD800 + (code - 0x10000) / 0x400);
            wide += static_cast<WCHAR>(0xDC00 + code % 0x400);
        } else {
            wide += static_cast<WCHAR>(code);
        }
    std::string narrow(wide.size(), '#');
    if (!wide.empty())
        WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), narrow.data(),
                            static_cast<int>(narrow.size()), nullptr, nullptr);
    return narrow;
}

Texts Model(const std::string& bytes, int encoding, std::size_t fill)
{
    Texts lines;
    for (const auto& raw :
         SplitLines(UnitsOf(bytes, encoding), IsWide(encoding) && fill > 1 ? fill / 2 : fill))
        lines.push_back(encoding == 1   ? CString(std::string(raw.begin(), raw.end()))
                        : encoding == 4 ? Narrow(DecodeUtf8(raw))
                                        : Narrow(raw));
    return lines;
}

// ---- what is read ---------------------------------------------------------------------------------------

std::unique_ptr<TextFileReader> MakeReader(int encoding, HANDLE file, int bufferSize)
{
    if (encoding == 2)
        return std::make_unique<UTF16LE_TextFileReader>("", file, bufferSize);
    if (encoding == 3)
        return std::make_unique<UTF16BE_TextFileReader>("", file, bufferSize);
    if (encoding == 4)
        return std::make_unique<UTF8_TextFileReader>("", file, bufferSize);
    return std::make_unique<ANSI_TextFileReader>("", file, bufferSize);
}

class TextFileReaders : public testing::Test {
protected:
    FileHandle Open(const std::string& bytes) const
    {
        const std::string path = folder.Write("file", bytes);
        return FileHandle(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    }
    Texts Read(const std::string& bytes, int encoding, int bufferSize) const
    {
        const FileHandle file = Open(bytes);
        const auto reader = MakeReader(encoding, file.Get(), bufferSize);
        Texts lines;
        CString line;
        int result = 0;
        while ((result = reader->ReadLine(line, CP_ACP, nullptr, nullptr)) == 0)
            lines.push_back(line);
        EXPECT_EQ(result, TextFileReader::EndOfFile);
        EXPECT_EQ(reader->ReadLine(line, CP_ACP, nullptr, nullptr), TextFileReader::EndOfFile);
        return lines;
    }

    TemporaryFolder folder;
};

// Many line ends, leads and NULs among letters, and long runs that reach over the ends of fills and reads.
std::string RandomBytes(RandomTexts& random, std::size_t length)
{
    const std::string bytes("\r\n\r\n\0ab\x7F\x80\x9F\xBF\xC3\xDF\xE0\xE2\xEF\xF0\xF4\xF7\xF8\xFF", 21);
    std::string text;
    while (text.size() < length) {
        const std::size_t run = random.OneIn(40) ? random.Below(9000) : 1 + random.Below(2);
        const char byte = random.Pick(bytes);
        if (random.OneIn(8))
            text += Encoded("\r\n", random.Pick(Encodings));
        text.append(byte == '\n' || byte == '\r' ? 1 : run, byte);
    }
    return text.substr(0, length);
}

TEST_F(TextFileReaders, AgreeWithTheRulesOnAnyBytes)
{
    RandomTexts random;
    for (const int bufferSize : {0, 1, 2, 3, 7, 64, 4095, 4096, 5000, 200'000})
        for (const int encoding : Encodings)
            for (int round = 0; round < 4; ++round) {
                SCOPED_TRACE(testing::Message() << "encoding " << encoding << ", buffer " << bufferSize);
                const std::size_t fill = bufferSize == 0 ? 4096 : static_cast<std::size_t>(bufferSize);
                const std::size_t length = fill * random.Below(bufferSize < 100 ? 5 : 50);
                const std::string bytes =
                    RandomBytes(random, std::min<std::size_t>(length, 300'000) + random.Below(5));
                ASSERT_EQ(Read(bytes, encoding, bufferSize), Model(bytes, encoding, fill));
            }
}

TEST_F(TextFileReaders, EndLinesAndDecodeAsTheyAlwaysDid)
{
    for (const auto& [bytes, encoding, lines] : Cases<3>("text files")) {
        int found = 77;
        TextArray content;
        FileUtils::ReadFileContent(folder.Write("file", bytes), content, true, &found);
        std::string read;
        for (const CString& line : content)
            read.append(line.View()) += ';';
        EXPECT_EQ(read, lines) << testing::PrintToString(bytes);
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

} // namespace
