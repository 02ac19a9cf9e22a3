// CArchive: a buffered little-endian binary stream over a CFile, opened for storing or for loading, for its
// whole life. What the values look like on the stream (docs/archive-format.md has worked examples):
//   bool                    a 16-bit word, 1 or 0; on load only 1 is true
//   numbers                 their own width, unpadded: 1, 2, 4 or 8 bytes; float and double as IEEE 754
//   CString, std::string    a length prefix, then the characters, no terminator
// std::int64_t and std::uint64_t have 8 bytes, whatever type they are. So `long` has 8 bytes where it is one
// of them, and 4 on the original platform, where it is LONG: cast a plain `long` to int or int64.
//
// Every failure raises CArchiveException, whose cause says which (storing on a loading archive, loading on a
// storing one, the end of the data, malformed data, a closed archive), or passes on what the file threw.
// Lengths and counts on the stream are claims: memory grows only with the data that are really there. A text
// longer than CString can hold counts as malformed.
//
// The file must outlive the archive. While the archive is open the file's own position is not that of the
// archive; Flush and Close make it so. One thread at a time.
#pragma once

#include "BasicTypes.h"
#include "CArchiveException.h"
#include "CString.h"
#include "Kvt01Api.h"

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

class CFile;

template <class T, class... Types>
concept OneOf = (std::same_as<T, Types> || ...);

// The numbers an archive knows: those whose width is the same everywhere.
template <class T>
concept ArchiveNumber =
    OneOf<T, char, signed char, BYTE, short, WORD, int, UINT, LONG, DWORD, int64, uint64, float, double> ||
    LongInt64<T> || LongUint64<T>;

class KVT01_API CArchive {
public:
    enum Mode : UINT {
        store = 0,
        load = 1,
        bNoFlushOnDelete = 2 // the destructor drops what is not written yet; combine with store or load
    };

    // A buffer of the caller's is used if one is given and must outlive the archive; one of fewer than
    // MinBuffer bytes is replaced by the archive's own.
    static constexpr int MinBuffer = 128;
    CArchive(CFile* file, UINT mode, int bufferSize = 4096, void* buffer = nullptr);
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;
    // Closes an archive that is still open. A failure to write is swallowed then; Close reports it.
    virtual ~CArchive();

    bool IsStoring() const noexcept { return (m_mode & load) == 0; }
    bool IsLoading() const noexcept { return (m_mode & load) != 0; }
    // Whether loading has used up all that was fetched from the file; true while storing.
    bool IsBufferEmpty() const noexcept { return m_loadLimit <= m_current; }
    CFile* GetFile() const noexcept { return m_file; } // nullptr once the archive is closed

    // Storing: hands all that was stored to the file. Loading: gives what was fetched too much back to the
    // file, so that its position is that of the archive.
    void Flush();
    void Close();          // Flush, then lets go of the file, which stays open
    void Abort() noexcept; // lets go of the file without Flush

    // ---- raw bytes; blocks larger than the buffer go straight between the file and the caller's memory --
    // Read answers how many bytes it got, fewer than asked for only at the end of the data; EnsureRead raises
    // endOfFile then.
    std::size_t Read(void* buffer, std::size_t count);
    void EnsureRead(void* buffer, std::size_t count);
    void Write(const void* buffer, std::size_t count);
    // How many bytes are known to be left for loading: never more than there are. Of a file that does not
    // know its length, those that have been fetched.
    uint64 GetBytesAhead() const noexcept;

    // ---- numbers and bool -------------------------------------------------------------------------------
    template <ArchiveNumber Number>
    CArchive& operator<<(Number value)
    {
        if (m_storeLimit - m_current < static_cast<std::ptrdiff_t>(sizeof value)) [[unlikely]]
            MakeRoom(sizeof value);
        PutNumber(m_current, value);
        m_current += sizeof value;
        return *this;
    }
    template <ArchiveNumber Number>
    CArchive& operator>>(Number& value)
    {
        if (m_loadLimit - m_current < static_cast<std::ptrdiff_t>(sizeof value)) [[unlikely]]
            FetchAtLeast(sizeof value);
        value = GetNumber<Number>(m_current);
        m_current += sizeof value;
        return *this;
    }
    CArchive& operator<<(std::same_as<bool> auto value) { return *this << static_cast<WORD>(value ? 1 : 0); }
    CArchive& operator>>(bool& value)
    {
        WORD word = 0;
        *this >> word;
        value = word == 1;
        return *this;
    }
    template <class T>
    requires(std::is_arithmetic_v<T> && !ArchiveNumber<T> && !std::same_as<T, bool>) CArchive&
    operator<<(T) = delete;
    template <class T>
    requires(std::is_arithmetic_v<T> && !ArchiveNumber<T> && !std::same_as<T, bool>) CArchive&
    operator>>(T&) = delete;

    // ---- texts ------------------------------------------------------------------------------------------
    // A text that was stored as UTF-16 loads in the process code page, with a lookalike or else a '?' for
    // every 16-bit unit that has no character there; such texts are never stored.
    CArchive& operator<<(const CString& text)
    {
        if (!text.IsInline() || m_storeLimit - m_current <= CString::MaxInline)
            return StoreText(text.View());
        const int length = text.GetLength();
        *m_current = static_cast<BYTE>(length);
        std::memcpy(m_current + 1, text.GetString(), CString::MaxInline); // all of its room
        m_current += 1 + length;
        return *this;
    }
    CArchive& operator<<(const char* text) { return *this << CString(text); }
    CArchive& operator<<(const std::string& text) { return StoreText(text); }
    CArchive& operator>>(CString& text)
    {
        std::string_view shortText;
        if (TakeBufferedText(shortText)) [[likely]]
            text = CString(shortText.data(), static_cast<int>(shortText.size()));
        else
            LoadLongText(text);
        return *this;
    }
    CArchive& operator>>(std::string& text);

    // Plain characters, without a length: WriteString stores just these. ReadString loads a line, up to the
    // next LF, which is dropped with a CR in front of it, or to the end of the data; false, and an empty
    // line, when nothing is left. A line longer than CString can hold counts as malformed.
    void WriteString(const char* text) { WriteText(text == nullptr ? std::string_view() : text); }
    void WriteString(const CString& text) { WriteText(text.View()); }
    bool ReadString(CString& line);

    // The next text without a copy, if its prefix is a single byte and all of it is in the buffer (most texts
    // are like that); else the answer is false, nothing is taken, and operator>> loads it. The view holds
    // until the next operation.
    bool TakeBufferedText(std::string_view& text) noexcept
    {
        if (!IsBufferedText(m_current))
            return false;
        text = {reinterpret_cast<const char*>(m_current) + 1, *m_current};
        m_current += 1 + text.size();
        return true;
    }
    // The same for at most so many in a row: calls take(characters, length) for each and answers how many.
    template <class Take>
    std::size_t TakeBufferedTexts(std::size_t most, Take take)
    {
        BYTE* at = m_current;
        std::size_t taken = 0;
        for (; taken < most && IsBufferedText(at); ++taken) {
            const int length = *at;
            take(reinterpret_cast<const char*>(at) + 1, length);
            at += 1 + length;
        }
        m_current = at;
        return taken;
    }

    // ---- the count of a byte array: one word below 0xFFFF, else a 32-bit, else a 64-bit count behind marks
    void WriteCount(uint64 count);
    uint64 ReadCount();

protected:
    // Steps back over bytes that were just read; the file must be able to seek if they left the buffer.
    void RewindRead(std::size_t count);

    CFile* m_file;
    UINT m_mode;

private:
    template <class Number>
    static void PutNumber(BYTE* to, Number value) noexcept
    {
        std::memcpy(to, &value, sizeof value);
        MakeLittleEndian(to, sizeof value);
    }
    template <class Number>
    static Number GetNumber(const BYTE* from) noexcept
    {
        BYTE bytes[sizeof(Number)];
        std::memcpy(bytes, from, sizeof bytes);
        MakeLittleEndian(bytes, sizeof bytes);
        return std::bit_cast<Number>(bytes);
    }
    static void MakeLittleEndian(BYTE* bytes, std::size_t size) noexcept
    {
        if constexpr (std::endian::native == std::endian::big)
            for (std::size_t i = 0; i < size / 2; ++i)
                std::swap(bytes[i], bytes[size - 1 - i]);
    }

    bool IsBufferedText(const BYTE* at) const noexcept
    {
        return at < m_loadLimit && *at != LongMark && *at < m_loadLimit - at;
    }
    void WriteText(std::string_view text) { Write(text.data(), text.size()); }
    CArchive& StoreText(std::string_view text);
    void LoadLongText(CString& text);
    void LoadNarrowText(CString& text, uint64 length);
    void LoadWideText(CString& text, uint64 length);
    uint64 LoadCountAfter(WORD word); // the word, or the wider number that it announces
    uint64 LoadTextLength(bool& isWide);

    void MakeRoom(std::size_t count);
    void WritePending();
    void FetchAtLeast(std::size_t count);
    std::size_t Fetch();
    std::size_t Unread() const noexcept { return static_cast<std::size_t>(m_loadLimit - m_current); }
    std::size_t TakeFetched(BYTE* to, std::size_t count) noexcept;
    void GiveBackUnread();
    void RequireStoring() const;
    void RequireLoading() const;
    void LetGo() noexcept;

    static constexpr BYTE LongMark = 0xFF;

    // Storing: the bytes from m_buffer to m_current are not written yet, and there is room up to
    // m_storeLimit. Loading: the bytes from m_current to m_loadLimit are fetched and not used yet. The limit
    // of the other direction stands at m_buffer, so that one comparison finds a used-up buffer and a wrong
    // direction.
    BYTE* m_current = nullptr;
    BYTE* m_storeLimit = nullptr;
    BYTE* m_loadLimit = nullptr;
    BYTE* m_buffer = nullptr;
    std::size_t m_bufferSize;
    uint64 m_fetched = 0; // bytes that loading took from the file in all
    bool m_ownsBuffer;
};
