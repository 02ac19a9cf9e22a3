// CRect: a rectangle of 32-bit coordinates. The right and bottom edges lie outside: a rectangle from 10 to 15
// is 5 wide. Nothing keeps left <= right; arithmetic beyond 32 bits wraps around.
#pragma once

#include "BasicTypes.h"

#include <algorithm>
#include <utility>

struct CRect {
    LONG left = 0;
    LONG top = 0;
    LONG right = 0;
    LONG bottom = 0;

    constexpr CRect() noexcept = default;
    constexpr CRect(LONG l, LONG t, LONG r, LONG b) noexcept : left(l), top(t), right(r), bottom(b) {}
    constexpr bool operator==(const CRect&) const noexcept = default;

    constexpr LONG Width() const noexcept { return Minus(right, left); }
    constexpr LONG Height() const noexcept { return Minus(bottom, top); }
    constexpr bool IsRectEmpty() const noexcept { return left >= right || top >= bottom; } // no area
    constexpr bool IsRectNull() const noexcept { return *this == CRect(); }                // all zero
    constexpr bool PtInRect(LONG x, LONG y) const noexcept
    {
        return left <= x && x < right && top <= y && y < bottom;
    }
    constexpr void SetRect(LONG l, LONG t, LONG r, LONG b) noexcept { *this = CRect(l, t, r, b); }
    constexpr void SetRectEmpty() noexcept { *this = CRect(); }
    constexpr void OffsetRect(LONG x, LONG y) noexcept
    {
        SetRect(Plus(left, x), Plus(top, y), Plus(right, x), Plus(bottom, y));
    }
    constexpr void InflateRect(LONG x, LONG y) noexcept // on each of the four sides; below 0 shrinks
    {
        SetRect(Minus(left, x), Minus(top, y), Plus(right, x), Plus(bottom, y));
    }
    constexpr void DeflateRect(LONG x, LONG y) noexcept // the opposite
    {
        SetRect(Plus(left, x), Plus(top, y), Minus(right, x), Minus(bottom, y));
    }
    // The area that two rectangles share, and the smallest that holds both, for which one without an area
    // does not count. False, and all zero, when the result has no area.
    constexpr bool IntersectRect(const CRect& a, const CRect& b) noexcept
    {
        return SetArea(CRect(std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                             std::min(a.bottom, b.bottom)));
    }
    constexpr bool UnionRect(const CRect& a, const CRect& b) noexcept
    {
        if (a.IsRectEmpty() || b.IsRectEmpty())
            return SetArea(a.IsRectEmpty() ? b : a);
        return SetArea(CRect(std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                             std::max(a.bottom, b.bottom)));
    }
    constexpr void NormalizeRect() noexcept // swaps edges that stand the wrong way round
    {
        if (left > right)
            std::swap(left, right);
        if (top > bottom)
            std::swap(top, bottom);
    }

private:
    constexpr bool SetArea(CRect area) noexcept
    {
        *this = area.IsRectEmpty() ? CRect() : area;
        return !IsRectEmpty();
    }
    static constexpr LONG Plus(LONG a, LONG b) noexcept
    {
        return static_cast<LONG>(static_cast<DWORD>(a) + static_cast<DWORD>(b));
    }
    static constexpr LONG Minus(LONG a, LONG b) noexcept
    {
        return static_cast<LONG>(static_cast<DWORD>(a) - static_cast<DWORD>(b));
    }
};
