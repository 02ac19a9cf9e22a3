// NumberTextConv: numbers as text and text as numbers.
//
// Writers always return text; readers take what they find and report no error: text without digits reads as
// 0. The separators are LocaleUtils::m_csDecimalSeparator and m_csThousandsSeparator, filled from the user's
// settings when they are needed and still empty, and fixed from then on; at most their first four characters
// are written. Grouping and the place of the minus are asked of the user's settings at each call. Nothing
// throws but std::bad_alloc and std::length_error.
#pragma once

#include "BasicTypes.h"
#include "CByteArray.h"
#include "CString.h"
#include "Kvt01Api.h"

class KVT01_API NumberTextConv {
public:
    // The digits' values are constants; kept for hosts that call it.
    static void DoPreLoad() {}

    // ---- integers to text, plain or in the user's groups of digits and with the user's form of a minus --
    // The pad is put in front as a whole until the text has `minWidth` characters, so one of several
    // characters may overshoot; an empty one pads nothing.
    //   (7, false, 3, "0") -> "007"   (7, false, 4, "ab") -> "abab7"   (-1234, true) -> "-1,234"
    static CString NumberToString(int value, bool grouped = false);
    static CString NumberToString(int value, bool grouped, int minWidth, const CString& pad = CString());
    static CString NumberToString(uint64 value, bool grouped = false);
    static CString NumberToString(unsigned int value, bool grouped = false)
    {
        return NumberToString(uint64{value}, grouped);
    }
    static CString NumberToString(unsigned long value, bool grouped = false)
    {
        return NumberToString(uint64{value}, grouped);
    }

    // ---- text to integers: all digits of the text in a row, whatever stands between them, negative when -
    // there is a '(' or '-' anywhere. No overflow check: the result is the number modulo 2^32 or 2^64.
    //   "1,234" -> 1234   "1.5" -> 15   "1 2 3" -> 123   "(5)", "5-" -> -5   "" -> 0
    static int GetNumberFromString(const CString& s);
    static int64 GetNumber64FromString(const CString& s);

    // ---- text to a decimal number -----------------------------------------------------------------------
    // What stands before the first digit is skipped, but '-' there, and '(' with `parenthesesNegative`, makes
    // the number negative and a decimal separator begins the fraction. Then thousands separators are skipped,
    // also in the fraction; another decimal separator begins the fraction's places anew; any other character
    // ends the number. Of a separator of several characters the first one counts. The fraction is the sum of
    // digit times scale with a scale that is multiplied by 0.1 at each place, which is not always the nearest
    // double.
    //   "abc 12" -> 12   ".5" -> 0.5   "5-" -> 5   "1,234.50" -> 1234.5   "1.2.3" -> 1.5
    static double GetDoubleFromString(const CString& s, bool parenthesesNegative = false);

    // ---- the rest ---------------------------------------------------------------------------------------
    // Drops zeros from the end of a text that holds the decimal separator, then the separator's first
    // character if it is now the last one. An empty separator is in no text.
    //   "12.500" -> "12.5"   "12.000" -> "12"   "120" -> "120"
    static void RemoveDecimalZeroes(CString& s);
    static bool HasDigit(const CString& s);
    // The hexadecimal digits behind "0x", up to the first other character; at most 0x7FFFFFFF, on every
    // platform. Without that prefix in lower case, or with nothing behind it, 0.
    static long ConvertFromHex(const CString& s);

    // How many decimal digits the value has, 1 for 0; of a negative one, its magnitude.
    static int GetDigitCount(int value, bool& negative) { return GetDigitCount(int64{value}, negative); }
    static int GetDigitCount(long value, bool& negative) { return GetDigitCount(int64{value}, negative); }
    static int GetDigitCount(int64 value, bool& negative);
    static int GetDigitCount(int value) { return GetDigitCount(int64{value}); }
    static int GetDigitCount(long value) { return GetDigitCount(int64{value}); }
    static int GetDigitCount(int64 value)
    {
        bool negative = false;
        return GetDigitCount(value, negative);
    }
    static int GetDigitCount(unsigned int value) { return GetDigitCount(uint64{value}); }
    static int GetDigitCount(unsigned long value) { return GetDigitCount(uint64{value}); }
    static int GetDigitCount(uint64 value);

    // ---- bytes as decimal numbers separated by ", ": 12, 0, 255. Reading takes the low 8 bits of what ---
    // GetNumberFromString makes of each piece between two separators, also of an empty one, and is the
    // inverse of writing; an empty text has no piece. What the output held before is dropped.
    static void ConvertByteArrayToString(const CByteArray& bytes, CString& out);
    static void ConvertStringToByteArray(const CString& text, CByteArray& bytes);
};
