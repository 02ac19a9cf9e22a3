// The readers of text files on any bytes, against their rules, one unit after the other.
#include <algorithm>
#include <memory>

#include "files/FileHandle.h"
#include "files/TextFileReader.h"
#include "fuzz/Difference.h"
#include "fuzz/Targets.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TextFiles.h"
#include "tests/support/TextModels.h"

namespace {

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

Texts Read(const std::string& path, int encoding, int bufferSize)
{
    const FileHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    const auto reader = MakeReader(encoding, file.Get(), bufferSize);
    Texts lines;
    CString line;
    while (reader->ReadLine(line, CP_ACP, nullptr, nullptr) == TextFileReader::LineDelivered)
        lines.push_back(line);
    Expect("ReadLine", reader->ReadLine(line, CP_ACP, nullptr, nullptr), int{TextFileReader::EndOfFile});
    return lines;
}

// Many line ends, leads and NULs among letters, and long runs that reach over the ends of fills and reads.
std::string MakeBytes(Choices& choices, int encoding)
{
    static const std::string bytes("\r\n\r\n\0ab\x7F\x80\x9F\xBF\xC3\xDF\xE0\xE2\xEF\xF0\xF4\xF7\xF8\xFF",
                                   21);
    std::string text;
    while (choices.AreLeft() && text.size() < 300'000) {
        if (choices.OneIn(8))
            text += Encoded("\r\n", encoding);
        const char byte = choices.Pick(bytes);
        text.append(choices.OneIn(40) ? choices.Below(9000) : 1, byte);
    }
    return text;
}

} // namespace

void Targets::TextFiles(Choices& choices)
{
    static const TemporaryFolder folder;
    static const int bufferSizes[] = {0, 1, 2, 3, 7, 64, 4095, 4096, 5000, 200'000};
    const int encoding = choices.Pick(Encodings), bufferSize = choices.Pick(bufferSizes);
    const std::string bytes = MakeBytes(choices, encoding);
    Expect("ReadLine", Read(folder.Write("file", bytes), encoding, bufferSize),
           Model(bytes, encoding, bufferSize == 0 ? 4096 : static_cast<std::size_t>(bufferSize)), encoding,
           bufferSize, bytes);
}
