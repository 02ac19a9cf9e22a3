// A new empty folder for one test, removed with all that is in it.
#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>

class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::random_device random;
        std::filesystem::path folder;
        do
            folder = std::filesystem::temp_directory_path() / ("kvt01-test-" + std::to_string(random()));
        while (!std::filesystem::create_directory(folder));
        m_path = folder.string() + '/';
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    const std::string& Path() const { return m_path; } // ends with a separator
    std::string Path(std::string_view name) const { return m_path + std::string(name); }

    // Makes the file, in a folder that need not be there, or replaces it, and says its path.
    std::string Write(std::string_view name, std::string_view bytes) const
    {
        std::filesystem::create_directories(std::filesystem::path(Path(name)).parent_path());
        std::ofstream file(Path(name), std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return Path(name);
    }
    std::string Read(std::string_view name) const
    {
        std::ifstream file(Path(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    bool Has(std::string_view name) const
    {
        return std::filesystem::exists(std::filesystem::symlink_status(Path(name)));
    }
    std::string MakeFolder(std::string_view name) const
    {
        std::filesystem::create_directories(Path(name));
        return Path(name);
    }
    // What is in a file as soon as that is complete, or after a minute.
    template <class IsComplete>
    std::string Await(std::string_view name, IsComplete isComplete) const
    {
        for (int tries = 0; tries < 60'000 && !isComplete(Read(name)); ++tries)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return Read(name);
    }
    std::string Await(std::string_view name) const
    {
        return Await(name, [](const std::string& bytes) { return !bytes.empty(); });
    }

private:
    std::string m_path;
};
