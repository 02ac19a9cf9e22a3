// kvt01_fuzz TARGET ROUNDS [FILE_OR_FOLDER...]: tries the given inputs, then so many random ones, half of
// them made from the given ones by changing some bytes. Ends at the first that fails and leaves it as
// TARGET.failed.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "fuzz/Targets.h"

namespace {

using Inputs = std::vector<std::string>;

void Add(Inputs& inputs, const std::filesystem::path& path)
{
    if (std::filesystem::is_directory(path)) {
        for (const auto& entry : std::filesystem::directory_iterator(path))
            Add(inputs, entry.path());
        return;
    }
    std::ifstream file(path, std::ios::binary);
    inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

// Mostly short ones.
std::string RandomInput(std::mt19937& random, const Inputs& inputs)
{
    const auto below = [&](std::size_t end) { return random() % end; };
    const auto byte = [&] { return static_cast<char>(below(256)); };
    if (inputs.empty() || below(2) == 0) {
        std::string input(below(below(20) == 0 ? 3000 : 60), '\0');
        for (char& c : input)
            c = byte();
        return input;
    }
    std::string input = inputs[below(inputs.size())];
    for (std::size_t changes = 1 + below(4); changes > 0; --changes) {
        const std::size_t at = below(input.size() + 1);
        if (below(3) == 0)
            input.erase(at, below(8));
        else if (at < input.size() && below(2) == 0)
            input[at] = byte();
        else
            input.insert(at, 1, byte());
    }
    return input;
}

bool Try(const Targets::NamedTarget& target, const std::string& input)
{
    try {
        Choices choices(input);
        target.run(choices);
        return true;
    } catch (const std::exception& failure) {
        const std::string name = std::string(target.name) + ".failed";
        std::ofstream(name, std::ios::binary) << input;
        std::cerr << failure.what() << "\nthe input is in " << name << '\n';
        return false;
    }
}

} // namespace

int main(int count, char** arguments)
{
    const Targets::Target run = count > 2 ? Targets::Named(arguments[1]) : nullptr;
    if (run == nullptr) {
        std::cerr << "usage: kvt01_fuzz TARGET ROUNDS [FILE_OR_FOLDER...]\n";
        return 2;
    }
    Inputs inputs;
    for (int i = 3; i < count; ++i)
        Add(inputs, arguments[i]);
    const unsigned seed = std::random_device()();
    std::cout << inputs.size() << " inputs, then " << arguments[2] << " from the seed " << seed << '\n';
    std::mt19937 random(seed);
    const Targets::NamedTarget target = {arguments[1], run};
    for (const std::string& input : inputs)
        if (!Try(target, input))
            return 1;
    for (long round = std::atol(arguments[2]); round > 0; --round)
        if (!Try(target, RandomInput(random, inputs)))
            return 1;
    return 0;
}
