#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "FileUtils.h"
#include "TextArray.h"
#include "files/FileHandle.h"
#include "files/TextEncoding.h"
#include "files/TextFile.h"
#include "files/TextFileReader.h"
#include "support/TemporaryFolder.h"

namespace {

using Lines = std::vector<std::string>;
using Units = std::vector<unsigned int>;

constexpr int AllEncodings[] = {TextEncoding::Ansi, TextEncoding::Utf16LittleEndian,
                                TextEncoding::Utf16BigEndian, TextEncoding::Utf8};

bool IsWide(int encoding)
{
    return encoding == TextEncoding::Utf16LittleEndian || encoding == TextEncoding::Utf16BigEndian;
}

// ---- the rules, one unit after the other ----------------------------------------------------------------

Units UnitsOf(const std::string& bytes, int encoding)
{
    Units units;
    const std::size_t size = IsWide(encoding) ? 2 : 1;
    for (std::size_t i = 0; i + size <= bytes.size(); i += size) {
        const unsigned int first = static_cast<unsigned char>(bytes[i]);
        const unsigned int second = static_cast<unsigned char>(bytes[i + size - 1]);
        units.push_back(size == 1                                  ? first
                        : encoding == TextEncoding::Utf16BigEndian ? first * 256 + second
                                                                   : second * 256 + first);
    }
    return units;
}

std::vector<Units> SplitLines(const Units& units, std::size_t unitsOfFill)
{
    std::vector<Units> lines;
    Units line;
    for (std::size_t fill = 0; fill < units.size(); fill += unitsOfFill)
        for (std::size_t i = fill; i < std::min(fill + unitsOfFill, units.size()); ++i) {
            if (units[i] != '\n') {
                line.push_back(units[i]);
                continue;
            }
            if (i > fill && units[i - 1] == '\r')
                line.pop_back();
            lines.push_back(line);
            line.clear();
        }
    if (!line.empty())
        lines.push_back(line);
    return lines;
}

Units DecodeUtf8(const Units& bytes)
{
    Units codes;
    unsigned int last = 0xFFFD;
    for (std::size_t i = 0; i < bytes.size();) {
        const unsigned int lead = bytes[i];
        const std::size_t length = lead < 128 ? 1 : lead < 224 ? 2 : lead < 240 ? 3 : lead < 248 ? 4 : 1;
        const unsigned int kept[] = {0, 128, 32, 16, 8};
        if (i + length <= bytes.size()) {
            last = lead % kept[length];
            for (std::size_t k = 1; k < length; ++k)
                last = last * 64 + bytes[i + k] % 64;
            if (lead >= 248)
                last = 0xFFFD;
        }
        codes.push_back(std::min(last, 0x10FFFFU));
        i += length;
    }
    return codes;
}

std::string Narrow(const Units& codes)
{
    std::basic_string<WCHAR> wide;
    for (const unsigned int code : codes)
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

Lines Model(const std::string& bytes, int encoding, std::size_t fillSize)
{
    const std::size_t unitsOfFill = IsWide(encoding) ? std::max<std::size_t>(fillSize / 2, 1) : fillSize;
    Lines lines;
    for (const Units& raw : SplitLines(UnitsOf(bytes, encoding), unitsOfFill))
        lines.push_back(encoding == TextEncoding::Ansi   ? std::string(raw.begin(), raw.end())
                        : encoding == TextEncoding::Utf8 ? Narrow(DecodeUtf8(raw))
                                                         : Narrow(raw));
    return lines;
}

// ---- what is read ---------------------------------------------------------------------------------------

std::unique_ptr<TextFileReader> MakeReader(int encoding, HANDLE file, int bufferSize)
{
    switch (encoding) {
    case TextEncoding::Utf16LittleEndian:
        return std::make_unique<UTF16LE_TextFileReader>("", file, bufferSize);
    case TextEncoding::Utf16BigEndian:
        return std::make_unique<UTF16BE_TextFileReader>("", file, bufferSize);
    case TextEncoding::Utf8:
        return std::make_unique<UTF8_TextFileReader>("", file, bufferSize);
    default:
        return std::make_unique<ANSI_TextFileReader>("", file, bufferSize);
    }
}

class TextFileReaders : public testing::Test {
protected:
    FileHandle Open() const
    {
        return FileHandle(CreateFileA(folder.Path("file").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    }
    Lines Read(const std::string& bytes, int encoding, int bufferSize) const
    {
        folder.Write("file", bytes);
        const FileHandle file = Open();
        const auto reader = MakeReader(encoding, file.Get(), bufferSize);
        Lines lines;
        CString line;
        int result = 0;
        while ((result = reader->ReadLine(line, CP_ACP, nullptr, nullptr)) == 0)
            lines.emplace_back(line.View());
        EXPECT_EQ(result, TextFileReader::EndOfFile);
        EXPECT_EQ(reader->ReadLine(line, CP_ACP, nullptr, nullptr), TextFileReader::EndOfFile);
        return lines;
    }
    Lines ReadContent(const std::string& bytes, bool detects, int* encoding = nullptr) const
    {
        TextArray content;
        FileUtils::ReadFileContent(CString(folder.Write("file", bytes)), content, detects, encoding);
        Lines lines;
        for (const CString& line : content)
            lines.emplace_back(line.View());
        return lines;
    }

    TemporaryFolder folder;
};

std::string Encoded(const std::string& ascii, int encoding)
{
    if (!IsWide(encoding))
        return ascii;
    std::string bytes;
    for (const char c : ascii)
        bytes += encoding == TextEncoding::Utf16BigEndian ? std::string{'\0', c} : std::string{c, '\0'};
    return bytes;
}

// Many line ends, leads and NULs among letters, and long runs that reach over the ends of fills and reads.
std::string RandomBytes(std::mt19937& random, std::size_t length)
{
    const std::string bytes("\r\n\r\n\0ab\x7F\x80\x9F\xBF\xC3\xDF\xE2\xEF\xF0\xF4\xF7\xF8\xFF", 20);
    std::string text;
    while (text.size() < length) {
        const std::size_t run = random() % 40 == 0 ? random() % 9000 : 1 + random() % 2;
        const char byte = bytes[random() % bytes.size()];
        if (random() % 8 == 0)
            text += Encoded("\r\n", AllEncodings[random() % 4]);
        text.append(byte == '\n' || byte == '\r' ? 1 : run, byte);
    }
    text.resize(length);
    return text;
}

TEST_F(TextFileReaders, AgreeWithTheRulesOnAnyBytes)
{
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (const int bufferSize : {0, 1, 2, 3, 7, 64, 4095, 4096, 5000, 200'000})
        for (const int encoding : AllEncodings)
            for (int round = 0; round < 4; ++round) {
                const std::size_t fill = bufferSize == 0 ? 4096 : static_cast<std::size_t>(bufferSize);
                const std::size_t fills = bufferSize < 100 ? random() % 5 : random() % 50;
                const std::string bytes =
                    RandomBytes(random, std::min<std::size_t>(fill * fills, 300'000) + random() % 5);
                SCOPED_TRACE("encoding " + std::to_string(encoding) + ", buffer " +
                             std::to_string(bufferSize) + ", bytes " + std::to_string(bytes.size()));
                ASSERT_EQ(Read(bytes, encoding, bufferSize), Model(bytes, encoding, fill));
            }
}

// The line ends are put so that every LF stands at the same distance from the beginning of a fill.
TEST_F(TextFileReaders, KeepTheReturnWhoseLineFeedBeginsAFill)
{
    for (const int encoding : AllEncodings)
        for (const int distance : {-2, -1, 0, 1}) {
            SCOPED_TRACE("encoding " + std::to_string(encoding) + ", distance " + std::to_string(distance));
            const auto fill = IsWide(encoding) ? 2048 : 4096;
            const auto first = static_cast<std::size_t>(fill + distance - 1);
            std::string text;
            Lines expected;
            for (int i = 0; i < 100; ++i) {
                const std::string letters(i == 0 ? first : static_cast<std::size_t>(fill - 2), 'x');
                text += letters + "\r\n";
                expected.push_back(distance == 0 ? letters + "\r" : letters);
            }
            int found = 0;
            const std::string mark(TextEncoding::MarkOf(encoding));
            ASSERT_EQ(ReadContent(mark + Encoded(text, encoding), true, &found), expected);
            EXPECT_EQ(found, encoding);
            for (std::string& line : expected)
                line.resize(line.find_last_not_of('\r') + 1);
            if (encoding == TextEncoding::Ansi) {
                ASSERT_EQ(ReadContent(text, false), expected); // the stream knows no fills
            }
        }
}

TEST_F(TextFileReaders, EndLinesAndDecodeAsTheyAlwaysDid)
{
    const std::string mark = "\xEF\xBB\xBF";
    const struct {
        std::string bytes;
        int encoding;
        Lines lines;
    } cases[] = {
        {"", 1, {}},
        {mark, 4, {}},
        {"\xFF\xFE", 2, {}},
        {"\xFE\xFF", 3, {}},
        {"\xFF", 1, {"\xFF"}},
        {"\xEF\xBB", 1, {"\xEF\xBB"}},
        {"\xFF\xFE\x41", 2, {}}, // half a unit
        {std::string("\xFF\xFE\x41\0\x42", 5), 2, {"A"}},
        {std::string("\xFF\xFE\0\0", 4), 2, {std::string(1, '\0')}}, // the mark of UTF-32
        {std::string("\xFE\xFF\0A\0\r\0\n\x0A\x0D\x0D\x0A\0\n", 14), 3, {"A", "??"}},
        {std::string("\xFF\xFE\xAC\x20\x0A\x0A\x0A\0", 8), 2, {"\x80?"}}, // a 0A byte is no line feed
        {"a\r\nb", 1, {"a", "b"}},
        {"a\rb\r", 1, {"a\rb\r"}},
        {"a\n", 1, {"a"}},
        {"\n\r\n\n", 1, {"", "", ""}},
        {std::string("a\0b\n\0", 5), 1, {std::string("a\0b", 3), std::string(1, '\0')}},
        {mark + "\xC3\xA9\xE2\x82\xAC", 4, {"\xE9\x80"}},
        {mark + "\x80\xA9\xBF\xBF", 4, {")?"}},        // 80 and BF lead two: U+0029, U+07FF
        {mark + "\xC3\x41\xE2\x41\x42", 4, {"\xC1?"}}, // any byte follows: U+00C1, U+2042
        {mark + "a\xC3\nb\xE2\x82\n\xF0\n\xC3", 4, {"aa", "bb", "?", "?"}},
        {mark + "\xF8\xFE\xFFz\xF0", 4, {"???zz"}},
        {mark + "\xF0\x9F\x98\x80\xC3\n\xF7\xBF\xBF\xBF", 4, {"????", "??"}}, // each half of a pair is a ?
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(testing::PrintToString(row.bytes));
        int encoding = 77;
        EXPECT_EQ(ReadContent(row.bytes, true, &encoding), row.lines);
        EXPECT_EQ(encoding, row.encoding);
    }
}

TEST_F(TextFileReaders, ConvertToTheCodePageThatIsAskedFor)
{
    const struct {
        unsigned int codePage;
        int result;
        const char* line;
        int usedDefault;
    } rows[] = {
        {1251, 0, "\xC6\x88", FALSE},
        {CP_ACP, 0, "_\x80", TRUE},
        {CP_ACP, 0, "abc", FALSE},
        {28591, 0, "abc", FALSE},
        {CP_UTF8, 0, "\xF0\x9F\x98\x80", FALSE}, // more bytes than units
        {4711, TextFileReader::ReadError, "\xF0\x9F\x98\x80", FALSE},
    };
    folder.Write("file", "\xD0\x96\xE2\x82\xAC\n\xD0\x96\xE2\x82\xAC\nabc\nabc\n\xF0\x9F\x98\x80\n\xC3\xA4");
    const FileHandle handle = Open();
    UTF8_TextFileReader reader("", handle.Get());
    CString line;
    for (const auto& row : rows) {
        int usedDefault = FALSE;
        EXPECT_EQ(reader.ReadLine(line, row.codePage, "_", &usedDefault), row.result);
        EXPECT_EQ(line, row.line);
        EXPECT_EQ(usedDefault, row.usedDefault);
    }
}

TEST_F(TextFileReaders, OpenWhatWasAskedFor)
{
    constexpr unsigned int noMark = TextFile::NoMarkExpected;
    const struct {
        std::string bytes;
        int encoding;
        unsigned int options;
        int result;
        const char* line;
    } rows[] = {
        {"\xEF\xBB\xBF\x41", 4, 0, TextFile::Done, "A"},
        {"\xEF\xBB\xBF\x41", 4, noMark, TextFile::Done, "?A"}, // the mark is a character then
        {"\xEF\xBB\xBF\x41", 0, noMark, TextFile::Done, "A"},
        {"\xEF\xBB\xBF\x41", 1, 0, TextFile::Done, "\xEF\xBB\xBF\x41"},
        {"\xEF\xBB\xBF\x41", 2, 0, TextFile::WrongEncoding, ""},
        {"\xFF\xFE\x41\1", 3, 0, TextFile::WrongEncoding, ""},
        {"\xFF\xFE\x19 ", 2, 0, TextFile::Done, "\x92"},
        {"\x19 ", 2, noMark, TextFile::Done, "\x92"},
        {" \x19", 3, noMark, TextFile::Done, "\x92"},
        {"", 4, 0, TextFile::WrongEncoding, ""},
        {"A", 5, noMark, TextFile::WrongEncoding, ""},
        {"A", -1, noMark, TextFile::WrongEncoding, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.bytes) + std::to_string(row.encoding));
        TextFile file;
        CString line;
        EXPECT_EQ(
            file.Open(CString(folder.Write("file", row.bytes)), TextFile::Read, row.encoding, row.options),
            row.result);
        EXPECT_EQ(file.ReadLine(line), row.result == TextFile::Done ? TextFile::Done : TextFile::SystemError);
        EXPECT_EQ(line, row.line);
    }
}

TEST_F(TextFileReaders, EndWhereNothingCanBeRead)
{
    CString line("kept");
    folder.Write("file", std::string(500'000, '\n'));
    FileHandle file = Open();
    TextFileReader empty("", file.Get());
    EXPECT_EQ(empty.ReadLine(line, CP_ACP, nullptr, nullptr), TextFileReader::EndOfFile);
    ANSI_TextFileReader unbuffered("", file.Get(), -1);
    EXPECT_EQ(unbuffered.ReadLine(line, CP_ACP, nullptr, nullptr), TextFileReader::EndOfFile);
    ANSI_TextFileReader closed("", INVALID_HANDLE_VALUE);
    EXPECT_EQ(closed.ReadLine(line, CP_ACP, nullptr, nullptr), TextFileReader::ReadError);
    EXPECT_EQ(line, "kept");

    ANSI_TextFileReader shrunk("", file.Get());
    EXPECT_EQ(shrunk.ReadLine(line, CP_ACP, nullptr, nullptr), TextFileReader::LineDelivered);
    std::filesystem::resize_file(folder.Path("file"), 10);
    std::size_t count = 1;
    while (shrunk.ReadLine(line, CP_ACP, nullptr, nullptr) == TextFileReader::LineDelivered)
        ++count;
    EXPECT_LT(count, 500'000U);
    file.Close();
    EXPECT_EQ(shrunk.ReadLine(line, CP_ACP, nullptr, nullptr), TextFileReader::EndOfFile);
}

TEST_F(TextFileReaders, TakeLongLines)
{
    const std::string ascii(2'000'000, 'a');
    for (const int encoding : AllEncodings)
        EXPECT_TRUE(Read(Encoded(ascii + "\r\n", encoding), encoding, 0) == Lines{ascii});
    std::string umlauts, narrow;
    for (int i = 0; i < 1'000'000; ++i)
        umlauts += "\xC3\xA4";
    EXPECT_TRUE(Read(umlauts, TextEncoding::Utf8, 1) == Lines{std::string(1'000'000, '\xE4')});
}

} // namespace
