// CString: the library's counted narrow string (8-bit text in the process code page).
//
// A text has a length of its own, so a NUL may stand inside; one more NUL always follows the last character.
// Up to 30 characters lie inside the object and cost no allocation; a longer text lies in a counted block
// that copies share until one of them is changed. Copying is therefore cheap at every length, and an empty
// string allocates nothing. Moving leaves the source empty.
//
// Threads: one object belongs to one thread at a time. Two objects never disturb each other, even when they
// share a block.
//
// Positions and counts are `int`. Where a position or count is out of range, the operation takes the nearest
// one in range unless it says otherwise; nothing reads or writes outside the text. A null pointer counts as
// an empty text. Texts longer than MaxLength raise std::length_error, exhausted memory std::bad_alloc.
#pragma once

#include "BasicTypes.h"
#include "Kvt01Api.h"

#include <atomic>
#include <bit>
#include <compare>
#include <concepts>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

class CString;

// One argument of CString::Format, with its type: what makes Format safe against a format that does not fit.
class KVT01_API FormatArgument {
public:
    enum class Kind { Signed, Unsigned, Real, Text, Pointer };

    template <std::signed_integral T>
    FormatArgument(T value) noexcept : m_kind(Kind::Signed), m_size(sizeof(T)), m_signed(value)
    {
    }
    template <std::unsigned_integral T>
    FormatArgument(T value) noexcept : m_kind(Kind::Unsigned), m_size(sizeof(T)), m_unsigned(value)
    {
    }
    template <class T>
    requires std::is_enum_v<T> FormatArgument(T value)
    noexcept : FormatArgument(static_cast<std::underlying_type_t<T>>(value)) {}
    FormatArgument(double value) noexcept : m_kind(Kind::Real), m_real(value) {}
    FormatArgument(const char* text) noexcept : m_kind(Kind::Text), m_text(text) {}
    FormatArgument(const unsigned char* text) noexcept : FormatArgument(reinterpret_cast<const char*>(text))
    {
    }
    FormatArgument(std::nullptr_t) noexcept : FormatArgument(static_cast<const char*>(nullptr)) {}
    FormatArgument(const CString& text) noexcept;
    FormatArgument(const std::string& text) noexcept : m_kind(Kind::Text), m_text(text.c_str()) {}
    FormatArgument(const void* pointer) noexcept : m_kind(Kind::Pointer), m_pointer(pointer) {}

private:
    friend class FormatWriter;
    Kind m_kind;
    std::size_t m_size = sizeof(int64); // of the integer as it was given
    union {
        int64 m_signed;
        uint64 m_unsigned;
        double m_real;
        const char* m_text;
        const void* m_pointer;
    };
};

class KVT01_API CString {
public:
    static constexpr int MaxInline = 30;              // characters that need no allocation
    static constexpr int MaxLength = 0x7FFFFFFF - 64; // characters of the longest text

    constexpr CString() noexcept : m_bytes{} {}
    CString(const char* text) : CString(text, text == nullptr ? 0 : CheckedLength(std::strlen(text))) {}
    CString(const char* text, int length) // a length below 0 counts as 0
    {
        if (length > MaxInline && text != nullptr) {
            MakeLong(text, length);
            return;
        }
        ClearBytes();
        if (length > 0 && text != nullptr) {
            CopyFew(m_bytes, text, length);
            m_bytes[TagAt] = static_cast<char>(length);
        }
    }
    explicit CString(char c, int count = 1);
    CString(const std::string& text) : CString(text.data(), CheckedLength(text.size())) {}
    explicit CString(std::string_view text) : CString(text.data(), CheckedLength(text.size())) {}
    template <std::same_as<unsigned char> Byte>
    explicit CString(const Byte* text) : CString(reinterpret_cast<const char*>(text))
    {
    }
    CString(const CString& other) noexcept
    {
        TakeBytes(other);
        if (IsLong()) [[unlikely]]
            AddReference();
    }
    CString(CString&& other) noexcept
    {
        TakeBytes(other);
        other.ClearBytes();
    }
    ~CString()
    {
        if (IsLong()) [[unlikely]]
            Release();
    }
    CString& operator=(const CString& other) noexcept
    {
        CString copy(other);
        Swap(copy);
        return *this;
    }
    CString& operator=(CString&& other) noexcept
    {
        if (this != &other) {
            if (IsLong()) [[unlikely]]
                Release();
            TakeBytes(other);
            other.ClearBytes();
        }
        return *this;
    }
    CString& operator=(const char* text) { return *this = CString(text); }
    CString& operator=(char c) { return *this = CString(c); }
    template <std::same_as<std::string_view> View> // just this type, so that "" and {} stay unambiguous
    CString& operator=(View text)
    {
        return *this = CString(text);
    }
    void Swap(CString& other) noexcept { std::swap(m_bytes, other.m_bytes); }

    // ---- the text as a whole; pointers hold until the next change ---------------------------------------
    int GetLength() const noexcept { return IsLong() ? LongLength() : m_bytes[TagAt]; }
    bool IsEmpty() const noexcept { return GetLength() == 0; }
    const char* GetString() const noexcept { return IsLong() ? LongText() : m_bytes; }
    operator const char*() const noexcept { return GetString(); }
    explicit operator std::string_view() const noexcept { return View(); }
    std::string_view View() const noexcept { return {GetString(), static_cast<std::size_t>(GetLength())}; }
    const char* begin() const noexcept { return GetString(); }
    const char* end() const noexcept { return GetString() + GetLength(); }
    void Empty() noexcept { *this = CString(); }
    void SetString(const char* text) { *this = CString(text); }
    void SetString(const char* text, int length) { *this = CString(text, length); }

    // The first FrontSize characters, to be read without a look at a long text itself, which lies elsewhere.
    // A shorter text ends in a NUL, and what stands behind that is undefined.
    static constexpr int FrontSize = 16;
    const char* GetFront() const noexcept { return IsHandedOut() ? LongText() : m_bytes; }

    // ---- single characters; a position outside the text reads as NUL, and SetAt does nothing there ------
    char GetAt(int index) const noexcept
    {
        return index >= 0 && index < GetLength() ? GetString()[index] : '\0';
    }
    template <std::integral Index>
    char operator[](Index index) const noexcept
    {
        return std::cmp_less(index, GetLength()) && std::cmp_greater_equal(index, 0) ? GetString()[index]
                                                                                     : '\0';
    }
    void SetAt(int index, char c);

    // ---- joining ----------------------------------------------------------------------------------------
    CString& operator+=(const CString& other)
    {
        if (IsLong() && LongLength() >= FrontSize) {
            char* const text = LongText();
            const int length = LongLength();
            const int room = RoomIn(text) - length; // below 0 when the block is not ours alone
            if (other.IsLong()) {
                const int added = other.LongLength();
                if (added <= room) {
                    std::memcpy(text + length, other.LongText(), static_cast<std::size_t>(added));
                    SetLongLength(text, length + added);
                    return *this;
                }
            } else if (room >= MaxInline) {
                std::memcpy(text + length, other.m_bytes, MaxInline); // all of it: no call for a few bytes
                SetLongLength(text, length + other.m_bytes[TagAt]);
                return *this;
            }
        } else if (!IsLong() && !other.IsLong() && m_bytes[TagAt] + other.m_bytes[TagAt] <= MaxInline) {
            CopyFew(m_bytes + m_bytes[TagAt], other.m_bytes, other.m_bytes[TagAt]);
            m_bytes[TagAt] = static_cast<char>(m_bytes[TagAt] + other.m_bytes[TagAt]);
            return *this;
        }
        return Append(other.GetString(), other.GetLength());
    }
    CString& operator+=(const char* text) { return Append(text); }
    CString& operator+=(char c) { return AppendChar(c); }
    CString& operator+=(std::string_view text) { return Append(text.data(), CheckedLength(text.size())); }
    CString& operator+=(const std::string& text) { return *this += std::string_view(text); }
    CString& Append(const char* text)
    {
        return text == nullptr ? *this : Append(text, CheckedLength(std::strlen(text)));
    }
    CString& Append(const char* text, int length); // the text may be a piece of this string
    CString& AppendChar(char c);

    // ---- comparing --------------------------------------------------------------------------------------
    // Compare, CompareNoCase and Collate are the runtime library's strcmp, case-insensitive comparison and
    // strcoll: they end at the first NUL, and the last two follow the current locale. CollateNoCase is
    // Collate of what MakeLower makes of both. The operators compare whole counted texts as unsigned bytes.
    // All three-way results are below, equal to or above 0.
    int Compare(const char* other) const noexcept;
    int Compare(const CString& other) const noexcept { return HasSameText(other) ? 0 : CompareTexts(other); }
    int CompareNoCase(const char* other) const noexcept;
    int Collate(const char* other) const noexcept;
    int CollateNoCase(const char* other) const;
    friend bool operator==(const CString& a, const CString& b) noexcept
    {
        return a.HasSameBytes(b) || ((a.IsLong() || b.IsLong()) && a.View() == b.View());
    }
    friend bool operator==(const CString& a, const char* b) noexcept { return a.View() == ViewOf(b); }
    friend bool operator==(const CString& a, std::same_as<std::string_view> auto b) noexcept
    {
        return a.View() == b;
    }
    friend std::strong_ordering operator<=>(const CString& a, const CString& b) noexcept
    {
        return a.View() <=> b.View();
    }
    friend std::strong_ordering operator<=>(const CString& a, const char* b) noexcept
    {
        return a.View() <=> ViewOf(b);
    }
    friend std::strong_ordering operator<=>(const CString& a, std::same_as<std::string_view> auto b) noexcept
    {
        return a.View() <=> b;
    }

    // ---- searching: the position found, or -1; a negative start counts as 0 -----------------------------
    // An empty text is found at the start position, if that lies inside the string or at its end.
    int Find(char c, int start = 0) const noexcept
    {
        if (std::endian::native == std::endian::little && !IsLong() && start <= 0)
            return FindShort(c);
        const char* const text = GetString();
        const int length = GetLength();
        start = start < 0 ? 0 : start;
        if (start >= length)
            return -1;
        const void* const found = std::memchr(text + start, c, static_cast<std::size_t>(length - start));
        return found == nullptr ? -1 : static_cast<int>(static_cast<const char*>(found) - text);
    }
    int Find(const char* text, int start = 0) const noexcept;
    int Find(const CString& text, int start = 0) const noexcept;
    int ReverseFind(char c) const noexcept;
    int FindOneOf(const char* set) const noexcept;

    // ---- parts ------------------------------------------------------------------------------------------
    CString Left(int count) const;
    CString Mid(int first) const { return Mid(first, GetLength()); }
    CString Mid(int first, int count) const;
    CString Right(int count) const;
    CString SpanIncluding(const char* set) const; // the longest front made of characters of the set only
    CString SpanExcluding(const char* set) const; // the longest front without any of them
    // The next piece between separators, at or after `start`, which moves behind it. Separators in a row
    // count as one. When no piece is left the result is empty and `start` becomes -1; a negative start gives
    // that at once.
    //   "  a b" by " ": start 0 -> "a" and 4, then "b" and 5, then "" and -1
    CString Tokenize(const char* separators, int& start) const;

    // ---- changing in place ------------------------------------------------------------------------------
    CString& MakeLower(); // byte by byte, by the runtime library's current locale
    CString& MakeUpper();
    CString& MakeReverse();
    CString& Trim() { return TrimRight().TrimLeft(); } // white space by the runtime library's isspace
    CString& Trim(char c) { return TrimRight(c).TrimLeft(c); }
    CString& Trim(const char* set) { return TrimRight(set).TrimLeft(set); }
    CString& TrimLeft();
    CString& TrimLeft(char c);
    CString& TrimLeft(const char* set);
    CString& TrimRight();
    CString& TrimRight(char c);
    CString& TrimRight(const char* set);
    int Insert(int index, char c);           // the new length; an index past the end appends
    int Insert(int index, const char* text); //
    int Delete(int index, int count = 1);    // the new length
    int Remove(char c);                      // how many were removed
    int Replace(char from, char to);         // how many were replaced
    int Replace(const char* from,
                const char* to); // left to right, never inside a replacement; "" is not found
    int Replace(const CString& from, const CString& to); // the same for counted texts
    int Replace(const CString& from, const char* to) { return Replace(from, CString(to)); }
    int Replace(const char* from, const CString& to) { return Replace(CString(from), to); }
    void Truncate(int length); // keeps at most that many characters

    // ---- formatting -------------------------------------------------------------------------------------
    // printf's directives (flags, width, precision, * included). The type of each argument decides how it is
    // read, so length modifiers (h, l, ll, z, I64) are accepted and need not fit; a CString, std::string or
    // text of unsigned characters serves for %s, and nullptr as an empty one. A directive without an argument
    // is left standing, an argument of another kind is shown in its own kind's form, arguments left over are
    // ignored, and %n writes nothing. FormatV is vsnprintf.
    //   Format("%s: %5.1f%%", name, 12.34) -> "name:  12.3%"
    template <class... Arguments>
    void Format(const char* format, const Arguments&... arguments)
    {
        CString result; // an argument may be this string
        result.AppendFormat(format, arguments...);
        Swap(result);
    }
    template <class... Arguments>
    void AppendFormat(const char* format, const Arguments&... arguments)
    {
        const FormatArgument list[sizeof...(arguments) + 1] = {FormatArgument(arguments)...,
                                                               FormatArgument(0)};
        AppendFormatList(format, list, sizeof...(arguments));
    }
    void FormatV(const char* format, std::va_list arguments);

    // ---- the buffer -------------------------------------------------------------------------------------
    // GetBuffer gives room for at least `minLength` characters and a NUL, holding the present text; it may be
    // written until ReleaseBuffer sets the new length (-1: up to the first NUL). In between no other
    // operation of this object may be called.
    char* GetBuffer(int minLength = 0);
    char* GetBufferSetLength(int length);
    void ReleaseBuffer(int newLength = -1);
    void Preallocate(int length);
    int GetAllocLength() const noexcept; // characters that fit without another allocation
    void FreeExtra();
    // A short text that is put down in place: write(room) gets MaxInline zeros and returns the end of what it
    // wrote there.
    template <class Write>
    static CString Written(Write write)
    {
        CString text;
        text.m_bytes[TagAt] = static_cast<char>(write(text.m_bytes) - text.m_bytes);
        return text;
    }
    // Whether the text lies inside the object: then MaxInline characters can be read there, whatever its
    // length.
    bool IsInline() const noexcept { return !IsLong(); }

private:
    // What stands in front of the characters of a long text.
    struct Block {
        std::atomic<int> references;
        int capacity; // characters, the closing NUL not counted
    };
    static constexpr int TextAt = 16;   // in a long text: where its pointer,
    static constexpr int LengthAt = 24; // and its length stand
    static constexpr int TagAt = 31;
    static constexpr signed char LongTag = -1;
    static constexpr signed char HandedOutTag = -2; // long, and its buffer may be written by the owner

    static std::string_view ViewOf(const char* text) noexcept
    {
        return text == nullptr ? std::string_view() : std::string_view(text);
    }
    static int CheckedLength(std::size_t length)
    {
        if (length > static_cast<std::size_t>(MaxLength)) [[unlikely]]
            ThrowTooLong();
        return static_cast<int>(length);
    }
    [[noreturn]] static void ThrowTooLong();

    bool IsLong() const noexcept { return static_cast<signed char>(m_bytes[TagAt]) < 0; }
    bool IsHandedOut() const noexcept { return static_cast<signed char>(m_bytes[TagAt]) == HandedOutTag; }
    bool HasSameBytes(const CString& other) const noexcept
    {
        return std::memcmp(m_bytes, other.m_bytes, sizeof m_bytes) == 0;
    }
    // Never true for different texts, but false for equal ones that are kept in different ways.
    bool HasSameText(const CString& other) const noexcept
    {
        if (std::memcmp(m_bytes + LengthAt, other.m_bytes + LengthAt, sizeof m_bytes - LengthAt) != 0)
            return false;
        if (!IsLong())
            return std::memcmp(m_bytes, other.m_bytes, LengthAt) == 0;
        return std::memcmp(LongText(), other.LongText(), static_cast<std::size_t>(LongLength())) == 0;
    }
    void TakeBytes(const CString& other) noexcept { std::memcpy(m_bytes, other.m_bytes, sizeof m_bytes); }
    void ClearBytes() noexcept { std::memset(m_bytes, 0, sizeof m_bytes); }
    char* LongText() const noexcept
    {
        char* text;
        std::memcpy(&text, m_bytes + TextAt, sizeof text);
        return text;
    }
    int LongLength() const noexcept
    {
        int length;
        std::memcpy(&length, m_bytes + LengthAt, sizeof length);
        return length;
    }
    // Where a short text has `c` first, or -1: eight characters at a time, without a call for a few bytes.
    // The lowest bit of `found` marks the first of them whose difference from `c` is zero.
    int FindShort(char c) const noexcept
    {
        constexpr std::uint64_t Each = 0x0101010101010101;
        const int length = static_cast<unsigned char>(m_bytes[TagAt]);
        for (int at = 0; at < length; at += 8) {
            std::uint64_t eight;
            std::memcpy(&eight, m_bytes + at, sizeof eight);
            const std::uint64_t differences = eight ^ static_cast<unsigned char>(c) * Each;
            const std::uint64_t found = (differences - Each) & ~differences & Each << 7;
            if (found != 0) {
                at += std::countr_zero(found) / 8;
                return at < length ? at : -1;
            }
        }
        return -1;
    }
    // Copies 0 to MaxInline characters, as two pieces that may overlap.
    static void CopyFew(char* to, const char* from, int count) noexcept
    {
        const auto copy = [=]<std::size_t Piece>(std::integral_constant<std::size_t, Piece>) {
            std::memcpy(to, from, Piece);
            std::memcpy(to + count - Piece, from + count - Piece, Piece);
        };
        if (count >= 16)
            copy(std::integral_constant<std::size_t, 16>());
        else if (count >= 8)
            copy(std::integral_constant<std::size_t, 8>());
        else if (count >= 4)
            copy(std::integral_constant<std::size_t, 4>());
        else
            for (int i = 0; i < count; ++i)
                to[i] = from[i];
    }
    static Block* BlockOf(const char* text) noexcept
    {
        return reinterpret_cast<Block*>(const_cast<char*>(text) - sizeof(Block));
    }
    static int RoomIn(const char* text) noexcept // characters that fit in the block, -1 if others share it
    {
        const Block* const block = BlockOf(text);
        return block->references.load(std::memory_order_acquire) == 1 ? block->capacity : -1;
    }
    bool HasRoomFor(int length) const noexcept { return RoomIn(LongText()) >= length; }
    void SetLongLength(char* text, int length) noexcept
    {
        std::memcpy(m_bytes + LengthAt, &length, sizeof length);
        text[length] = '\0';
    }
    int CompareTexts(const CString& other) const noexcept;
    void AddReference() const noexcept;
    void Release() noexcept;
    void MakeLong(const char* text, int length);
    static char* Reallocate(char* old, int capacity);
    void SetLong(char* text, int length) noexcept;
    void SetFront() noexcept;
    void HandOut() noexcept;
    void SetLength(int length) noexcept;
    char* Writable(int capacity);
    char* WritableForAppend(int added);
    template <class Step>
    CString& ChangeEach(Step step);
    CString& TrimTo(int first, int last);
    void AppendFormatList(const char* format, const FormatArgument* arguments, std::size_t count);

    // Either the characters with zeros up to the end and the length in the last byte, or, when that byte is
    // LongTag or HandedOutTag, the first 16 characters of the text's buffer, a pointer to the text of a
    // counted block, the length and zeros. Equal bytes mean equal texts, and between two short texts the
    // reverse holds too.
    alignas(8) char m_bytes[32];
};

static_assert(sizeof(CString) == 32);

inline FormatArgument::FormatArgument(const CString& text) noexcept
    : m_kind(Kind::Text), m_text(text.GetString())
{
}

inline CString operator+(const CString& a, const CString& b)
{
    CString sum(a);
    sum += b;
    return sum;
}
inline CString operator+(CString&& a, const CString& b)
{
    a += b;
    return std::move(a);
}
inline CString operator+(const CString& a, const char* b)
{
    CString sum(a);
    sum += b;
    return sum;
}
inline CString operator+(CString&& a, const char* b)
{
    a += b;
    return std::move(a);
}
inline CString operator+(const char* a, const CString& b)
{
    CString sum(a);
    sum += b;
    return sum;
}
inline CString operator+(const CString& a, char b)
{
    CString sum(a);
    sum += b;
    return sum;
}
inline CString operator+(CString&& a, char b)
{
    a += b;
    return std::move(a);
}
inline CString operator+(char a, const CString& b)
{
    CString sum(a);
    sum += b;
    return sum;
}
template <std::same_as<std::string_view> View>
CString operator+(const CString& a, View b)
{
    CString sum(a);
    sum += b;
    return sum;
}
template <std::same_as<std::string_view> View>
CString operator+(View a, const CString& b)
{
    CString sum(a);
    sum += b;
    return sum;
}

KVT01_API std::ostream& operator<<(std::ostream& out, const CString& text);

template <>
struct std::hash<CString> {
    std::size_t operator()(const CString& text) const noexcept
    {
        return std::hash<std::string_view>()(text.View());
    }
};
