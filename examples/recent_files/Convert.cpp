#include "Convert.h"

#include <kvt01.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <future>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

#include "Regional.h"

const char* const Convert::Usage =
    "       recent_files convert FILE --to utf-8|utf-16le|utf-16be|ansi\n"
    "         FILE is replaced by the converted text; what it was is kept beside it as \"NAME copy.EXT\". "
    "Its\n"
    "         encoding is told from its byte-order mark; without one it is taken for ANSI (Windows-1252).\n"
    "         Characters that Windows-1252 lacks become similar ones or ?. Lines end with CR LF afterwards.\n"
    "         To UTF-8, the characters 80 to 9F of Windows-1252 (the euro sign, curly quotes, dashes) "
    "become\n"
    "         control characters: their number is told, and UTF-16 keeps them.\n";

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t WorthWatching = 4'000'000; // bytes of a file that takes its time

struct Encoding {
    const char* option;
    const char* name;
    int code;
};

constexpr Encoding Encodings[] = {
    {"ansi", "ANSI", 1},
    {"utf-16le", "UTF-16LE", 2},
    {"utf-16be", "UTF-16BE", 3},
    {"utf-8", "UTF-8", 4},
};

const Encoding* EncodingNamed(std::string_view option)
{
    const auto* const found = std::find_if(std::begin(Encodings), std::end(Encodings),
                                           [=](const Encoding& one) { return one.option == option; });
    return found == std::end(Encodings) ? nullptr : found;
}

std::runtime_error Failure(const fs::path& path, const char* what)
{
    return std::runtime_error(path.string() + ": " + what);
}

// Runs the step, and meanwhile shows on a terminal how large the file is by now.
template <class Step>
auto Watched(bool isWatched, const char* what, const fs::path& file, Step step)
{
    if (!isWatched)
        return step();
    auto result = std::async(std::launch::async, step);
    while (result.wait_for(std::chrono::milliseconds(100)) == std::future_status::timeout) {
        std::error_code ignored;
        const std::uintmax_t megabytes = fs::file_size(file, ignored) / 1'000'000;
        std::fprintf(stderr, "\r%s %s: %s MB ", what, file.filename().string().c_str(),
                     Regional::Count(megabytes).GetString());
    }
    std::fputs("\r\033[K", stderr);
    return result.get();
}

// A file beside the one to be replaced; gone afterwards, unless it took the other's place.
class FileBeside {
public:
    explicit FileBeside(const fs::path& original) : m_original(original)
    {
        unsigned int ignored = 0;
        m_path = FileUtils::GetTempFile(Folder(), "cnv", ignored).GetString();
        if (m_path.empty())
            throw Failure(original, "no file can be made beside it");
        fs::permissions(m_path, fs::status(original).permissions());
    }
    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;
    ~FileBeside()
    {
        std::error_code ignored;
        fs::remove(m_path, ignored);
    }

    const fs::path& Path() const { return m_path; }

    // The original is there under one of its names at every moment. Answers what its old content is called.
    fs::path TakePlace() const
    {
        const fs::path copy =
            FileUtils::GetUniqueFileName(Folder(), m_original.filename().string()).GetString();
        std::error_code hasNoLinks;
        fs::create_hard_link(m_original, copy, hasNoLinks);
        if (hasNoLinks)
            fs::copy_file(m_original, copy);
        fs::rename(m_path, m_original);
        return copy;
    }

private:
    CString Folder() const { return (m_original.parent_path() / "").string(); }

    fs::path m_original;
    fs::path m_path;
};

TextArray Read(const fs::path& file, bool isWatched)
{
    const CString path = file.string();
    int mark = 0;
    FileUtils::IsFileUnicode(path, mark);
    if (mark == 0)
        throw Failure(file, "cannot be opened");
    if (mark > 4)
        throw Failure(file, "text in UTF-7 or UTF-32 cannot be converted");
    TextArray lines;
    int found = 0;
    Watched(isWatched, "reading", file, [&] { FileUtils::ReadFileContent(path, lines, true, &found); });
    if (lines.IsEmpty() && fs::file_size(file) > 4)
        throw Failure(file, "cannot be read");
    const char* const name =
        std::find_if(std::begin(Encodings), std::end(Encodings), [=](const Encoding& one) {
            return one.code == found;
        })->name;
    std::printf("%s: %s%s, %s lines\n", file.string().c_str(), name, mark == 1 ? " (no mark)" : "",
                Regional::Count(lines.GetCount()).GetString());
    return lines;
}

// The characters that the UTF-8 writer, which takes bytes as Latin-1, makes control characters of.
uint64 CountLost(const TextArray& lines)
{
    uint64 count = 0;
    for (const CString& line : lines)
        for (const char c : line)
            count += (static_cast<unsigned char>(c) & 0xE0) == 0x80;
    return count;
}

void ConvertFile(const fs::path& file, const Encoding& target)
{
    const bool isWatched = isatty(STDERR_FILENO) != 0 && fs::file_size(file) > WorthWatching;
    const TextArray lines = Read(file, isWatched);
    if (const uint64 lost = target.code == 4 ? CountLost(lines) : 0; lost > 0)
        std::fprintf(stderr, "%s: %s characters such as the euro sign become control characters in UTF-8\n",
                     file.string().c_str(), Regional::Count(lost).GetString());
    const FileBeside fresh(file);
    const bool isWritten = Watched(isWatched, "writing", fresh.Path(), [&] {
        return FileUtils::WriteFileContent(fresh.Path().string(), lines, true, target.code);
    });
    if (!isWritten)
        throw Failure(file, "the converted text cannot be written; the file is as it was");
    const fs::path copy = fresh.TakePlace();
    std::printf("now %s; what it was is in %s\n", target.name, copy.string().c_str());
}

} // namespace

int Convert::Run(const std::vector<CString>& arguments)
{
    if (arguments.size() == 1 && arguments[0] == "--help") {
        std::printf("usage:\n%s", Usage);
        return 0;
    }
    const bool hasTarget = arguments.size() == 3 && arguments[1] == "--to";
    const Encoding* const target = hasTarget ? EncodingNamed(arguments[2].View()) : nullptr;
    if (target == nullptr)
        return 2;
    const fs::path file =
        fs::canonical(arguments[0].GetString()); // a link stays a link to the converted file
    if (!fs::is_regular_file(file))
        throw Failure(file, "no file");
    ConvertFile(file, *target);
    return 0;
}
