// How a CString is best kept for what this library does with strings: arrays of file names, filled, copied,
// sorted and returned by value. The rival is the other usual form, one pointer to a counted block that all
// copies share.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "CString.h"

namespace {

class PointerString {
public:
    PointerString(const char* text, int length)
    {
        const auto size = static_cast<std::size_t>(length);
        m_text = static_cast<char*>(std::malloc(sizeof(Head) + size + 1)) + sizeof(Head);
        new (HeadOf()) Head{1, length};
        std::memcpy(m_text, text, size);
        m_text[size] = '\0';
    }
    PointerString(const PointerString& other) noexcept : m_text(other.m_text) { ++HeadOf()->references; }
    PointerString(PointerString&& other) noexcept : m_text(std::exchange(other.m_text, nullptr)) {}
    PointerString& operator=(PointerString other) noexcept
    {
        std::swap(m_text, other.m_text);
        return *this;
    }
    ~PointerString()
    {
        if (m_text != nullptr && --HeadOf()->references == 0)
            std::free(HeadOf());
    }
    int GetLength() const { return HeadOf()->length; }
    const char* GetString() const { return m_text; }
    int Compare(const PointerString& other) const { return std::strcmp(m_text, other.m_text); }
    PointerString Left(int count) const { return {m_text, std::min(count, GetLength())}; }

private:
    struct Head {
        std::atomic<int> references;
        int length;
    };
    Head* HeadOf() const { return reinterpret_cast<Head*>(m_text - sizeof(Head)); }

    char* m_text;
};

// File names of 8 to 44 characters, two thirds of them up to 30.
const std::vector<std::string>& Names()
{
    static const std::vector<std::string> names = [] {
        std::mt19937 random(1);
        std::vector<std::string> list;
        for (int i = 0; i < 100000; ++i) {
            std::string name;
            for (auto length = 4 + random() % 37; length > 0; --length)
                name += static_cast<char>('a' + random() % 26);
            list.push_back(name + ".txt");
        }
        return list;
    }();
    return names;
}

template <class String>
std::vector<String> Filled()
{
    std::vector<String> list;
    list.reserve(Names().size());
    for (const auto& name : Names())
        list.emplace_back(name.c_str(), static_cast<int>(name.size()));
    return list;
}

// In another order than they were made in, as after a sort.
template <class String>
std::vector<String> Shuffled()
{
    auto list = Filled<String>();
    std::shuffle(list.begin(), list.end(), std::mt19937(2));
    return list;
}

template <class String>
void Fill(benchmark::State& state)
{
    for (auto step : state)
        benchmark::DoNotOptimize(Filled<String>());
}

template <class String>
void Copy(benchmark::State& state)
{
    const auto list = Shuffled<String>();
    for (auto step : state)
        benchmark::DoNotOptimize(std::vector<String>(list));
}

template <class String>
void SortByBytes(benchmark::State& state)
{
    const auto list = Shuffled<String>();
    for (auto step : state) {
        state.PauseTiming();
        auto sorted = list;
        state.ResumeTiming();
        std::sort(sorted.begin(), sorted.end(),
                  [](const String& a, const String& b) { return a.Compare(b) < 0; });
    }
}

template <class String>
void ReturnFronts(benchmark::State& state)
{
    const auto list = Shuffled<String>();
    for (auto step : state)
        for (const String& name : list)
            benchmark::DoNotOptimize(name.Left(name.GetLength() - 4));
}

template <class String>
void VisitFirstCharacters(benchmark::State& state)
{
    const auto list = Shuffled<String>();
    for (auto step : state) {
        int sum = 0;
        for (const String& name : list)
            sum += name.GetString()[0];
        benchmark::DoNotOptimize(sum);
    }
}

BENCHMARK(Fill<CString>)->Unit(benchmark::kMillisecond);
BENCHMARK(Fill<PointerString>)->Unit(benchmark::kMillisecond);
BENCHMARK(Copy<CString>)->Unit(benchmark::kMillisecond);
BENCHMARK(Copy<PointerString>)->Unit(benchmark::kMillisecond);
BENCHMARK(SortByBytes<CString>)->Unit(benchmark::kMillisecond);
BENCHMARK(SortByBytes<PointerString>)->Unit(benchmark::kMillisecond);
BENCHMARK(ReturnFronts<CString>)->Unit(benchmark::kMillisecond);
BENCHMARK(ReturnFronts<PointerString>)->Unit(benchmark::kMillisecond);
BENCHMARK(VisitFirstCharacters<CString>)->Unit(benchmark::kMillisecond);
BENCHMARK(VisitFirstCharacters<PointerString>)->Unit(benchmark::kMillisecond);

} // namespace
