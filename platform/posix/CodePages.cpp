#include "platform/posix/CodePages.h"

#include <limits>
#include <new>
#include <string>

#include "platform/posix/Failures.h"

namespace {

using CodePages::Output;
using CodePages::SingleBytePage;

constexpr UINT Windows1252Number = 1252;
constexpr UINT OemNumber = 437;

UINT NumberOf(UINT page) noexcept
{
    return page == CP_ACP || page == CP_THREAD_ACP ? Windows1252Number : page == CP_OEMCP ? OemNumber : page;
}

// nullptr with the error set where there is no such page.
const SingleBytePage* PageOf(UINT number) noexcept
try {
    const SingleBytePage* const page =
        number == Windows1252Number ? &CodePages::Windows1252 : CodePages::Find(number);
    if (page == nullptr)
        Fail(ERROR_INVALID_PARAMETER);
    return page;
} catch (const std::bad_alloc&) {
    Fail(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

template <class From, class To>
bool AreUsable(const From* text, int length, const To* buffer, int size) noexcept
{
    return text != nullptr && length != 0 && size >= 0 && (size == 0 || buffer != nullptr) &&
           static_cast<const void*>(text) != static_cast<const void*>(buffer);
}

// Of a text whose length may be negative.
template <class Unit>
std::size_t LengthOf(const Unit* text, int length) noexcept
{
    return length < 0 ? std::char_traits<Unit>::length(text) + 1 : static_cast<std::size_t>(length);
}

// What the operations answer when there are so many units.
int Delivered(std::size_t count, int size) noexcept
{
    const int room = size == 0 ? std::numeric_limits<int>::max() : size;
    return count <= static_cast<std::size_t>(room) ? static_cast<int>(count)
                                                   : Fail(ERROR_INSUFFICIENT_BUFFER);
}

// ---- pages of one byte per character --------------------------------------------------------------------

bool IsUndefined(char16_t unit) noexcept
{
    const bool isForPrivateUse = unit >= 0xE000 && unit <= 0xF8FF;
    return isForPrivateUse || unit == CodePages::Replacement;
}

// Whether all bytes have a character.
bool Widen(const SingleBytePage& page, const char* text, std::size_t length,
           Output<char16_t>& output) noexcept
{
    bool isDefined = true;
    CodePages::Convert(text, length, output, [&](const char* rest, std::size_t, char16_t*& to) {
        const char16_t unit = page.wide[static_cast<BYTE>(*rest)];
        isDefined &= !IsUndefined(unit);
        *to++ = unit;
        return std::size_t{1};
    });
    return isDefined;
}

// Whether all units have a byte.
bool Narrow(const SingleBytePage& page, bool takesLookalikes, char defaultByte, const char16_t* text,
            std::size_t length, Output<char>& output) noexcept
{
    bool isDefined = true;
    CodePages::Convert(text, length, output, [&](const char16_t* rest, std::size_t, char*& to) {
        const char16_t unit = *rest;
        const BYTE byte = page.ByteOf(unit);
        const bool isThere = (byte != 0 || unit == 0) && (takesLookalikes || page.wide[byte] == unit);
        isDefined &= isThere;
        *to++ = isThere ? static_cast<char>(byte) : defaultByte;
        return std::size_t{1};
    });
    return isDefined;
}

} // namespace

int MultiByteToWideChar(UINT page, DWORD flags, const char* text, int length, WCHAR* buffer,
                        int size) noexcept
{
    if (!AreUsable(text, length, buffer, size))
        return Fail(ERROR_INVALID_PARAMETER);
    Output output(buffer, static_cast<std::size_t>(size));
    bool isSound = false;
    if (page == CP_UTF8) {
        if ((flags & ~MB_ERR_INVALID_CHARS) != 0)
            return Fail(ERROR_INVALID_FLAGS);
        isSound = CodePages::Utf8ToUtf16(text, LengthOf(text, length), output);
    } else {
        const SingleBytePage* const tables = PageOf(NumberOf(page));
        if (tables == nullptr)
            return 0;
        if ((flags & ~(MB_ERR_INVALID_CHARS | MB_PRECOMPOSED)) != 0)
            return Fail(ERROR_INVALID_FLAGS);
        isSound = Widen(*tables, text, LengthOf(text, length), output);
    }
    if (!isSound && (flags & MB_ERR_INVALID_CHARS) != 0)
        return Fail(ERROR_NO_UNICODE_TRANSLATION);
    return Delivered(output.Count(), size);
}

int WideCharToMultiByte(UINT page, DWORD flags, const WCHAR* text, int length, char* buffer, int size,
                        const char* defaultChar, int* usedDefault) noexcept
{
    if (!AreUsable(text, length, buffer, size))
        return Fail(ERROR_INVALID_PARAMETER);
    Output output(buffer, static_cast<std::size_t>(size));
    if (page == CP_UTF8) {
        if (defaultChar != nullptr || usedDefault != nullptr)
            return Fail(ERROR_INVALID_PARAMETER);
        if ((flags & ~WC_ERR_INVALID_CHARS) != 0)
            return Fail(ERROR_INVALID_FLAGS);
        const bool isSound = CodePages::Utf16ToUtf8(text, LengthOf(text, length), output);
        if (!isSound && flags != 0)
            return Fail(ERROR_NO_UNICODE_TRANSLATION);
        return Delivered(output.Count(), size);
    }
    const SingleBytePage* const tables = PageOf(NumberOf(page));
    if (tables == nullptr)
        return 0;
    if ((flags & ~WC_NO_BEST_FIT_CHARS) != 0)
        return Fail(ERROR_INVALID_FLAGS);
    const char defaultByte = defaultChar == nullptr ? '?' : *defaultChar;
    const bool isDefined = Narrow(*tables, flags == 0, defaultByte, text, LengthOf(text, length), output);
    if (usedDefault != nullptr)
        *usedDefault = isDefined ? FALSE : TRUE;
    return Delivered(output.Count(), size);
}
