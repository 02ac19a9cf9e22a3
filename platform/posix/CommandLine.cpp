#include "platform/posix/CommandLine.h"

#include <algorithm>

namespace CommandLine {

namespace {

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

// A walk along the line.
struct Reader {
    std::string_view rest;
    bool isQuoted = false;

    bool AtEndOfWord() const { return rest.empty() || (!isQuoted && IsBlank(rest.front())); }
    char Take()
    {
        const char c = rest.front();
        rest.remove_prefix(1);
        return c;
    }
    void SkipBlanks() { rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size())); }
};

std::string FirstWord(Reader& reader)
{
    std::string word;
    while (!reader.AtEndOfWord()) {
        const char c = reader.Take();
        if (c == '"')
            reader.isQuoted = !reader.isQuoted;
        else
            word += c;
    }
    return word;
}

// Backslashes, and the quote behind them if it is an ordinary character.
void TakeBackslashes(Reader& reader, std::string& word)
{
    const std::size_t count = std::min(reader.rest.find_first_not_of('\\'), reader.rest.size());
    reader.rest.remove_prefix(count);
    const bool isBeforeQuote = !reader.rest.empty() && reader.rest.front() == '"';
    word.append(isBeforeQuote ? count / 2 : count, '\\');
    if (isBeforeQuote && count % 2 != 0)
        word += reader.Take();
}

void TakeQuote(Reader& reader, std::string& word)
{
    reader.Take();
    if (reader.isQuoted && !reader.rest.empty() && reader.rest.front() == '"')
        word += reader.Take();
    else
        reader.isQuoted = !reader.isQuoted;
}

std::string NextWord(Reader& reader)
{
    std::string word;
    while (!reader.AtEndOfWord()) {
        if (reader.rest.front() == '\\')
            TakeBackslashes(reader, word);
        else if (reader.rest.front() == '"')
            TakeQuote(reader, word);
        else
            word += reader.Take();
    }
    return word;
}

} // namespace

std::vector<std::string> Split(std::string_view line)
{
    Reader reader{line};
    std::vector<std::string> words{FirstWord(reader)};
    for (reader.SkipBlanks(); !reader.rest.empty(); reader.SkipBlanks()) {
        reader.isQuoted = false;
        words.push_back(NextWord(reader));
    }
    return words;
}

} // namespace CommandLine
