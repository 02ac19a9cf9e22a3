// What tests of texts share: characters as the rules see them, and lists of texts.
#pragma once

#include <string>
#include <vector>

#include "TextArray.h"

using Texts = std::vector<CString>;

inline TextArray ArrayOf(const Texts& texts)
{
    TextArray array;
    for (const CString& text : texts)
        array.Add(text);
    return array;
}

// "a;b" -> the texts a and b; "" -> none.
inline TextArray ListOf(const std::string& text)
{
    TextArray array;
    for (std::size_t at = 0, end = 0; end != std::string::npos && !text.empty(); at = end + 1) {
        end = text.find(';', at);
        array.Add(CString(text.substr(at, end - at)));
    }
    return array;
}

inline CString LineOf(const TextArray& array)
{
    return array.ConvertIntoOneLine(";");
}

template <class List>
Texts TextsOf(const List& list)
{
    return Texts(list.begin(), list.end());
}

inline bool Has(const std::string& set, char c)
{
    return set.find(c) != std::string::npos;
}

inline const std::string Space = "\t\n\v\f\r ";
inline const std::string Punctuation = "!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";

// The lower-case table as strings are looked up in it: each byte of 128 or more counts as 0.
inline int LowerOf(char c)
{
    const int value = static_cast<signed char>(c);
    return value < 0 ? 0 : value >= 'A' && value <= 'Z' ? value + 32 : value;
}

// As the runtime library lower-cases in the "C" locale, which the tests run in.
inline std::string Lowered(std::string text)
{
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c + 32);
    return text;
}

inline int Sign(int value)
{
    return (value > 0) - (value < 0);
}
