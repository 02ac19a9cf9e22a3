// The natural order of file names, in which numbers count by value: "file2.txt" before "file10.txt".
//
// `Compare` is the rule. `FileNameKeys` writes a name as bytes whose plain order is the rule's order, so that
// a sort looks at each name once; where bytes cannot express the rule it says so.
#pragma once

#include "CString.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace FileNameOrder {

// A path cut as PathParts cuts it, but quickly.
struct Pieces {
    std::string_view folder; // with its separator
    std::string_view base;
    const char* extension; // ends with a NUL, as the path does
};
Pieces Split(const CString& path);

// Below, equal to or above 0. The rule, on the text after the last separator of each path, cut at its last
// dot into base name and extension:
// - The base names are walked at one index. Where both have a digit, the numbers that begin there are
//   compared by value; when they differ by less than 0.001 the index moves on by the shorter one's length.
//   Elsewhere the characters are compared: signed when case counts, else by the lower-case table with 0 for
//   a byte of 128 or more.
// - Then the shorter base name comes first, then the extensions decide as plain text.
// A number is a run of digits and decimal separators (the first character of TextArray::m_csDecimal), read by
// NumberTextConv::GetDoubleFromString. The tolerance makes this no strict ordering: 1.0010, 1.0015 and 1.0020
// tie with their neighbours only.
int Compare(const CString& a, const CString& b, bool caseSensitive);

struct Number {
    std::size_t at, length;
    double value;
};

// A name whose numbers have been read, for many comparisons; the path and the separator must outlive it.
class ReadName {
public:
    ReadName(const CString& path, const CString& decimal);
    static int Compare(const ReadName& a, const ReadName& b, bool caseSensitive); // the rule

private:
    Number NumberAt(std::size_t at) const;

    Pieces m_pieces;
    const CString& m_decimal;
    std::vector<Number> m_numbers; // by their places
};

} // namespace FileNameOrder

// Writes keys for one sort; the separators of numbers are those at the time of construction. A key is
//
//   character   its code: characters below the digits, then codes kept for numbers, then those above
//   number      Numbers + n and n bytes, highest first: a hundred times its value (n up to 7), or
//               Numbers + 8 and the bits of the double, for integers of 2^48 and more
//   then, unless the number is an integer of up to 14 digits without leading zeros,
//               Numbers and its length, or 255 - length when a character above the digits follows
//   end         0 and the extension, as it is compared
//
// The length stands there because numbers of one value and different length are told apart by the character
// that follows the shorter one: against a digit it is either below or above.
class FileNameKeys {
public:
    struct Key {
        unsigned char* end;
        bool isWhole; // false: ends in front of a number that only Compare can judge
    };

    explicit FileNameKeys(bool caseSensitive);

    // The most bytes that `Write` touches for a name of this path.
    static std::size_t MaxSize(const CString& path)
    {
        return 3 * static_cast<std::size_t>(path.GetLength()) + 16;
    }
    // Two whole keys compare (the shorter one first) as the rule does. So do any two keys that differ before
    // either one ends.
    Key Write(const FileNameOrder::Pieces& name, unsigned char* out) const;

private:
    // How far the name was read and the key written; `at` is null behind a number that bytes cannot express.
    struct Place {
        const char* at;
        unsigned char* out;
    };

    Place WriteNumber(Place place, const char* end) const;
    Place WriteDecimal(Place place, const char* end, std::uint64_t integer) const;
    Place WriteWide(Place place, const char* end, const char* first) const;
    Place WriteLength(Place place, const char* end, std::ptrdiff_t length) const;

    const unsigned char* m_codes;    // of a character in a base name; 0 for a digit
    unsigned char m_numbers;         // the first of the nine codes for numbers
    unsigned char m_extensions[256]; // what is compared of the bytes of an extension
    char m_decimal;                  // continues a number, when there is one
    bool m_hasDecimal;
    bool m_isPoint;  // the decimal separator is a point, and numbers are read with it
    bool m_isUsable; // the tables and separators are such that the above holds
};
