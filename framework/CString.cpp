#include "CString.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <ostream>
#include <stdexcept>

#include "framework/RuntimeText.h"
#include "framework/TextSearch.h"

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#define KVT01_SINGLE_THREADED __libc_single_threaded
#else
#define KVT01_SINGLE_THREADED false
#endif

namespace {

// The allocator hands out multiples of the step, less what it keeps for itself.
constexpr std::size_t AllocationStep = 16;
constexpr std::size_t AllocationHead = 8;

std::size_t Size(int length) noexcept
{
    return static_cast<std::size_t>(length);
}

} // namespace

// ---- representation -------------------------------------------------------------------------------------

void CString::ThrowTooLong()
{
    throw std::length_error("CString too long");
}

// Gives the text of a long string (or, from nullptr, a new one) room for so many characters, rounded up to
// what the allocator hands out anyway; what stood there is kept.
char* CString::Reallocate(char* old, int capacity)
{
    if (capacity > MaxLength)
        ThrowTooLong();
    const std::size_t needed = sizeof(Block) + Size(capacity) + 1;
    const std::size_t steps = (needed + AllocationHead + AllocationStep - 1) / AllocationStep;
    const std::size_t size = steps * AllocationStep - AllocationHead;
    void* const memory =
        old == nullptr ? std::malloc(size) : std::realloc(static_cast<void*>(BlockOf(old)), size);
    if (memory == nullptr)
        throw std::bad_alloc();
    auto* const block = static_cast<Block*>(memory);
    if (old == nullptr)
        new (block) Block{1, 0};
    block->capacity = std::min(static_cast<int>(size - sizeof(Block)) - 1, MaxLength);
    return static_cast<char*>(memory) + sizeof(Block);
}

void CString::MakeLong(const char* text, int length)
{
    char* const to = Reallocate(nullptr, length);
    std::memcpy(to, text, Size(length));
    to[length] = '\0';
    SetLong(to, length);
}

// Plain arithmetic while the process has one thread, atomic from the second one on.
void CString::AddReference() const noexcept
{
    auto& references = BlockOf(LongText())->references;
    if (KVT01_SINGLE_THREADED)
        references.store(references.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    else
        references.fetch_add(1, std::memory_order_relaxed);
}

void CString::Release() noexcept
{
    Block* const block = BlockOf(LongText());
    // The last owner needs no exchange: nobody else is left who could change the count.
    if (block->references.load(std::memory_order_acquire) == 1)
        std::free(block);
    else if (KVT01_SINGLE_THREADED)
        block->references.store(block->references.load(std::memory_order_relaxed) - 1,
                                std::memory_order_relaxed);
    else if (block->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        std::free(block);
}

// The text has room for at least FrontSize characters.
void CString::SetLong(char* text, int length) noexcept
{
    ClearBytes();
    std::memcpy(m_bytes + TextAt, &text, sizeof text);
    std::memcpy(m_bytes + LengthAt, &length, sizeof length);
    SetFront();
}

// After each change of a long text's first characters.
void CString::SetFront() noexcept
{
    std::memcpy(m_bytes, LongText(), FrontSize);
    m_bytes[TagAt] = static_cast<char>(LongTag);
}

// From now on the first characters may be changed behind our back.
void CString::HandOut() noexcept
{
    if (IsLong())
        m_bytes[TagAt] = static_cast<char>(HandedOutTag);
}

// The length of a text that is ours alone, after any change of it; what lies behind it is closed with a NUL,
// or zeros if short.
void CString::SetLength(int length) noexcept
{
    if (IsLong()) {
        SetLongLength(LongText(), length);
        SetFront();
    } else {
        std::memset(m_bytes + length, 0, Size(TagAt - length));
        m_bytes[TagAt] = static_cast<char>(length);
    }
}

// Makes the text ours alone with room for so many characters; the text itself stays.
char* CString::Writable(int capacity)
{
    const int length = GetLength();
    capacity = std::max(capacity, length);
    if (!IsLong()) {
        if (capacity <= MaxInline)
            return m_bytes;
        char* const text = Reallocate(nullptr, capacity);
        std::memcpy(text, m_bytes, Size(MaxInline + 1));
        SetLong(text, length);
        return text;
    }
    char* text = LongText();
    if (!HasRoomFor(0)) {
        char* const copy = Reallocate(nullptr, capacity);
        std::memcpy(copy, text, Size(length) + 1);
        Release();
        text = copy;
    } else if (BlockOf(text)->capacity < capacity) {
        text = Reallocate(text, capacity);
    }
    SetLong(text, length);
    return text;
}

// The same with room that doubles, so that appending piece by piece costs constant time per character.
char* CString::WritableForAppend(int added)
{
    const int length = GetLength();
    if (added > MaxLength - length)
        ThrowTooLong();
    const int needed = length + added;
    if (needed <= MaxInline && !IsLong())
        return m_bytes;
    if (IsLong() && HasRoomFor(needed))
        return LongText();
    const int grown = length < MaxLength / 2 ? 2 * length : MaxLength;
    return Writable(std::max(needed, grown));
}

CString::CString(char c, int count) : m_bytes{}
{
    std::memset(Writable(std::max(count, 0)), c, Size(std::max(count, 0)));
    SetLength(std::max(count, 0));
}

// ---- joining --------------------------------------------------------------------------------------------

CString& CString::Append(const char* text, int length)
{
    if (text == nullptr || length <= 0)
        return *this;
    const int old = GetLength();
    const char* const own = GetString();
    const bool isOwnPiece = !std::less<>()(text, own) && std::less<>()(text, own + old);
    const std::ptrdiff_t offset = isOwnPiece ? text - own : 0;
    char* const to = WritableForAppend(length);
    std::memmove(to + old, isOwnPiece ? to + offset : text, Size(length));
    SetLength(old + length);
    return *this;
}

CString& CString::AppendChar(char c)
{
    const int old = GetLength();
    WritableForAppend(1)[old] = c;
    SetLength(old + 1);
    return *this;
}

void CString::SetAt(int index, char c)
{
    if (index < 0 || index >= GetLength())
        return;
    Writable(0)[index] = c;
    SetLength(GetLength());
}

// ---- comparing ------------------------------------------------------------------------------------------

int CString::CompareTexts(const CString& other) const noexcept
{
    return std::strcmp(GetString(), other.GetString()); // which ends at a NUL inside
}

int CString::Compare(const char* other) const noexcept
{
    return std::strcmp(GetString(), other == nullptr ? "" : other);
}

int CString::CompareNoCase(const char* other) const noexcept
{
    return RuntimeText::CompareNoCase(GetString(), other == nullptr ? "" : other);
}

int CString::Collate(const char* other) const noexcept
{
    return std::strcoll(GetString(), other == nullptr ? "" : other);
}

int CString::CollateNoCase(const char* other) const
{
    CString lowered(*this);
    return lowered.MakeLower().Collate(CString(other).MakeLower());
}

// ---- searching ------------------------------------------------------------------------------------------

int CString::Find(const char* text, int start) const noexcept
{
    return TextSearch::Find(View(), ViewOf(text), start);
}

int CString::Find(const CString& text, int start) const noexcept
{
    return TextSearch::Find(View(), text.View(), start);
}

int CString::ReverseFind(char c) const noexcept
{
    return static_cast<int>(static_cast<std::ptrdiff_t>(View().rfind(c)));
}

int CString::FindOneOf(const char* set) const noexcept
{
    return static_cast<int>(static_cast<std::ptrdiff_t>(View().find_first_of(ViewOf(set))));
}

// ---- parts ----------------------------------------------------------------------------------------------

CString CString::Left(int count) const
{
    return Mid(0, count);
}

CString CString::Right(int count) const
{
    const int length = GetLength();
    count = std::clamp(count, 0, length);
    return Mid(length - count, count);
}

CString CString::Mid(int first, int count) const
{
    const int length = GetLength();
    first = std::clamp(first, 0, length);
    count = std::clamp(count, 0, length - first);
    return count == length ? *this : CString(GetString() + first, count);
}

CString CString::SpanIncluding(const char* set) const
{
    const auto end = View().find_first_not_of(ViewOf(set));
    return end == std::string_view::npos ? *this : Left(static_cast<int>(end));
}

CString CString::SpanExcluding(const char* set) const
{
    const int end = FindOneOf(set);
    return end < 0 ? *this : Left(end);
}

CString CString::Tokenize(const char* separators, int& start) const
{
    const std::string_view set = ViewOf(separators);
    const std::string_view text = View();
    const auto first =
        start < 0 ? std::string_view::npos : text.find_first_not_of(set, static_cast<std::size_t>(start));
    if (first == std::string_view::npos) {
        start = -1;
        return {};
    }
    const auto last = std::min(text.find_first_of(set, first), text.size());
    start = static_cast<int>(std::min(last + 1, text.size()));
    return Mid(static_cast<int>(first), static_cast<int>(last - first));
}

// ---- changing in place ----------------------------------------------------------------------------------

template <class Step>
CString& CString::ChangeEach(Step step)
{
    const int length = GetLength();
    char* const text = Writable(0);
    std::transform(text, text + length, text, step);
    SetLength(length);
    return *this;
}

CString& CString::MakeLower()
{
    return ChangeEach(RuntimeText::Lowercase());
}

CString& CString::MakeUpper()
{
    return ChangeEach(RuntimeText::Uppercase());
}

CString& CString::MakeReverse()
{
    char* const text = Writable(0);
    std::reverse(text, text + GetLength());
    SetLength(GetLength());
    return *this;
}

CString& CString::TrimTo(int first, int last)
{
    if (first > 0 || last < GetLength())
        *this = Mid(first, last - first);
    return *this;
}

CString& CString::TrimLeft()
{
    const char* const found = std::find_if_not(begin(), end(), RuntimeText::IsSpace);
    return TrimTo(static_cast<int>(found - begin()), GetLength());
}

CString& CString::TrimLeft(char c)
{
    const auto first = View().find_first_not_of(c);
    return TrimTo(first == std::string_view::npos ? GetLength() : static_cast<int>(first), GetLength());
}

CString& CString::TrimLeft(const char* set)
{
    const auto first = View().find_first_not_of(ViewOf(set));
    return TrimTo(first == std::string_view::npos ? GetLength() : static_cast<int>(first), GetLength());
}

CString& CString::TrimRight()
{
    int last = GetLength();
    while (last > 0 && RuntimeText::IsSpace(GetString()[last - 1]))
        --last;
    return TrimTo(0, last);
}

CString& CString::TrimRight(char c)
{
    return TrimTo(0, static_cast<int>(View().find_last_not_of(c) + 1));
}

CString& CString::TrimRight(const char* set)
{
    return TrimTo(0, static_cast<int>(View().find_last_not_of(ViewOf(set)) + 1));
}

int CString::Insert(int index, char c)
{
    const int length = GetLength();
    index = std::clamp(index, 0, length);
    char* const text = WritableForAppend(1);
    std::memmove(text + index + 1, text + index, Size(length - index));
    text[index] = c;
    SetLength(length + 1);
    return length + 1;
}

int CString::Insert(int index, const char* text)
{
    const CString tail = Mid(std::max(index, 0));
    const CString middle(text); // a copy, for the text may be a piece of this string
    Truncate(std::max(index, 0));
    Append(middle.GetString(), middle.GetLength());
    *this += tail;
    return GetLength();
}

int CString::Delete(int index, int count)
{
    const int length = GetLength();
    index = std::clamp(index, 0, length);
    count = std::clamp(count, 0, length - index);
    if (count > 0) {
        char* const text = Writable(0);
        std::memmove(text + index, text + index + count, Size(length - index - count));
        SetLength(length - count);
    }
    return length - count;
}

int CString::Remove(char c)
{
    if (Find(c) < 0)
        return 0;
    const int length = GetLength();
    char* const text = Writable(0);
    const int kept = static_cast<int>(std::remove(text, text + length, c) - text);
    SetLength(kept);
    return length - kept;
}

int CString::Replace(char from, char to)
{
    int replaced = 0;
    if (from == to || Find(from) < 0)
        return 0;
    ChangeEach([&](char c) {
        replaced += c == from;
        return c == from ? to : c;
    });
    return replaced;
}

int CString::Replace(const char* from, const char* to)
{
    return Replace(CString(from), CString(to));
}

int CString::Replace(const CString& from, const CString& to)
{
    if (from.IsEmpty())
        return 0;
    CString result;
    int replaced = 0;
    int start = 0;
    for (int at = Find(from); at >= 0; at = Find(from, start)) {
        result.Append(GetString() + start, at - start);
        result += to;
        start = at + from.GetLength();
        ++replaced;
    }
    if (replaced > 0) {
        result.Append(GetString() + start, GetLength() - start);
        Swap(result);
    }
    return replaced;
}

void CString::Truncate(int length)
{
    length = std::max(length, 0);
    if (length >= GetLength())
        return;
    if (IsLong() && !HasRoomFor(0)) {
        *this = Left(length);
        return;
    }
    SetLength(length);
}

// ---- formatting -----------------------------------------------------------------------------------------

void CString::FormatV(const char* format, std::va_list arguments)
{
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    CString result;
    if (length > 0) {
        std::vsnprintf(result.GetBuffer(length), Size(length) + 1, format, arguments);
        result.ReleaseBuffer(length);
    }
    Swap(result);
}

std::ostream& operator<<(std::ostream& out, const CString& text)
{
    return out << text.View();
}

// ---- the buffer -----------------------------------------------------------------------------------------

char* CString::GetBuffer(int minLength)
{
    char* const text = Writable(minLength);
    HandOut();
    return text;
}

char* CString::GetBufferSetLength(int length)
{
    length = std::max(length, 0);
    const int old = GetLength();
    char* const text = Writable(length);
    if (length > old)
        std::memset(text + old, 0, Size(length - old));
    SetLength(length);
    HandOut();
    return text;
}

void CString::ReleaseBuffer(int newLength)
{
    char* const text = Writable(0); // never a block that others read
    const int capacity = GetAllocLength();
    if (newLength < 0)
        newLength = static_cast<int>(strnlen(text, Size(capacity)));
    SetLength(std::min(newLength, capacity));
}

void CString::Preallocate(int length)
{
    Writable(length);
}

int CString::GetAllocLength() const noexcept
{
    return IsLong() ? BlockOf(LongText())->capacity : MaxInline;
}

void CString::FreeExtra()
{
    if (IsLong() && GetAllocLength() > GetLength() && HasRoomFor(0))
        *this = CString(GetString(), GetLength());
}
