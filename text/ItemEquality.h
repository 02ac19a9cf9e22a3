// When two elements of a TextArray are equal, for each content, and a hash that goes with it.
#pragma once

#include <cstdint>
#include <string_view>

#include "TextArray.h"
#include "text/PackedText.h"

// What is compared of a path's folder: without white space around it, then without one separator at its end.
std::string_view ComparedFolder(std::string_view folder);

class ItemEquality {
public:
    ItemEquality(bool caseSensitive, TextArray::Content content);

    static bool HasEqual(TextArray::Content content) // whether anything is equal at all
    {
        return content == TextArray::ContentText || content == TextArray::ContentPaths ||
               content == TextArray::ContentFiles;
    }
    bool AreEqual(const CString& a, const CString& b) const;
    std::uint64_t HashOf(const CString& item) const; // the same for equal items

private:
    bool m_caseSensitive;
    TextArray::Content m_content;
    PackedText::CaseFolding m_folding;
};
