// The string through edits, against std::string. Copies share the text: none may notice a change of another.
#include <algorithm>
#include <cstring>
#include <functional>
#include <vector>

#include "CString.h"
#include "fuzz/Difference.h"
#include "fuzz/Targets.h"
#include "tests/support/TextModels.h"

namespace {

void ExpectSame(const CString& text, const std::string& model)
{
    Expect("GetLength", text.GetLength(), static_cast<int>(model.size()), model);
    Expect("the text", std::string(text.View()), model);
    Expect("the NUL behind it", text.GetString()[text.GetLength()], '\0', model);
    for (const char c : {'c', '!', '\0', '\x80'})
        Expect("Find", text.Find(c), static_cast<int>(static_cast<std::ptrdiff_t>(model.find(c))), model, c);
    // The first characters of a long text are kept in the string itself: no change may miss them.
    Expect("GetFront", std::strncmp(text.GetFront(), text, CString::FrontSize), 0, model);
}

// Of a length around one where the representation changes.
std::string MakePiece(Choices& choices)
{
    static const std::size_t lengths[] = {0, 1, 7, 15, 16, 29, 30, 31, 47, 100, 1000};
    std::string piece;
    for (const std::size_t length = choices.Pick(lengths) + choices.Below(3); piece.size() < length;)
        piece += static_cast<char>('a' + piece.size() % 26);
    return piece + std::string(choices.OneIn(5), '\0');
}

void Edit(Choices& choices, CString& text, std::string& model)
{
    const std::size_t at = choices.Below(model.size() + 1);
    const std::size_t count = choices.Below(12);
    const int i = static_cast<int>(at);
    const int n = static_cast<int>(count);
    const std::string piece = MakePiece(choices), end(count > 0, '!');
    const std::string front(std::min<std::size_t>(model.size(), 4), 'y');
    const struct {
        std::function<void(CString&)> edit;
        std::function<void(std::string&)> model;
    } edits[] = {
        {[&](auto& t) { t += CString(piece); }, [&](auto& m) { m += piece; }},
        {[&](auto& t) { t.Append(t.GetString() + i, std::min(n, t.GetLength() - i)); }, // a piece of itself
         [&](auto& m) { m += m.substr(at, count); }},
        {[&](auto& t) { t.Insert(i, t.GetString() + i); }, // another one
         [&](auto& m) { m.insert(at, std::string(m.c_str() + at)); }},
        {[&](auto& t) { t.Delete(i, n); }, [&](auto& m) { m.erase(at, count); }},
        {[&](auto& t) { t.Insert(i, piece.c_str()); }, [&](auto& m) { m.insert(at, piece.c_str()); }},
        {[&](auto& t) { t.Truncate(i); }, [&](auto& m) { m.resize(at); }},
        {[&](auto& t) { t = t.Mid(i, n * 8); }, [&](auto& m) { m = m.substr(at, count * 8); }},
        {[&](auto& t) { t.SetAt(i, '#'); }, [&](auto& m) { m.replace(at, 1, at < m.size() ? "#" : ""); }},
        {[&](auto& t) { t.Remove('c'); }, [&](auto& m) { std::erase(m, 'c'); }},
        {[&](auto& t) { t.MakeReverse(); }, [&](auto& m) { std::reverse(m.begin(), m.end()); }},
        {[&](auto& t) { t.Replace('a', 'z'); }, [&](auto& m) { std::replace(m.begin(), m.end(), 'a', 'z'); }},
        {[&](auto& t) { t.TrimLeft("ab"); }, [&](auto& m) { m.erase(0, m.find_first_not_of("ab")); }},
        {[&](auto& t) { t.MakeLower(); }, [&](auto& m) { m = Lowered(m); }},
        {[&](auto& t) {
             std::memset(t.GetBufferSetLength(t.GetLength()), 'y', front.size());
         }, // not released
         [&](auto& m) { m.replace(0, front.size(), front); }},
        {[&](auto& t) {
             std::memcpy(t.GetBuffer(), front.data(), front.size());
             t.ReleaseBuffer();
         },
         [&](auto& m) { m = m.replace(0, front.size(), front).c_str(); }}, // up to the first NUL
        {[&](auto& t) { t.FreeExtra(); }, [&](auto&) {}},
        {[&](auto& t) {
             CString moved(std::move(t));
             ExpectSame(t, "");
             t = std::move(moved);
             t = static_cast<CString&>(t);
         },
         [&](auto&) {}},
        {[&](auto& t) {
             t.GetBuffer(t.GetLength() + n)[t.GetLength()] = '!';
             t.ReleaseBuffer(t.GetLength() + (n > 0));
         },
         [&](auto& m) { m += end; }},
    };
    const auto& chosen = choices.Pick(edits);
    chosen.edit(text);
    chosen.model(model);
}

} // namespace

void Targets::Strings(Choices& choices)
{
    std::vector<std::pair<CString, std::string>> strings(1);
    while (choices.AreLeft()) {
        if (choices.OneIn(12))
            strings.push_back(strings.back());
        auto& [text, model] = strings.back();
        if (model.size() < 100'000)
            Edit(choices, text, model);
        else
            strings.back() = {};
        ExpectSame(text, model);
    }
    for (const auto& [text, model] : strings)
        ExpectSame(text, model);
}
