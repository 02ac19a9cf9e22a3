#include "TextArray.h"

#include "framework/FailureMarkers.h"
#include "persist/ContainerRecord.h"

namespace {

enum : WORD {
    LegacyPlain = 1,      // a legacy vector of strings
    LegacyProtected = 2,  // the same, of encrypted-string records when the caller says so
    CurrentProtected = 3, // a current vector, of encrypted-string records when the caller says so
    CurrentPlain = 4      // a current vector of strings: what is stored
};

void LoadTexts(CArchive& archive, std::vector<CString>& texts, bool legacy, bool decrypt)
{
    if (decrypt)
        ContainerRecord::LoadBy(archive, texts, legacy, ContainerRecord::ProtectedValue());
    else
        ContainerRecord::Load(archive, texts, legacy);
}

} // namespace

void TextArray::Serialize(CArchive& archive, bool decrypt)
{
    if (archive.IsStoring()) {
        archive << WORD{CurrentPlain};
        ContainerRecord::Store(archive, m_strings);
        return;
    }
    WORD version = 0;
    archive >> version;
    switch (version) {
    case LegacyPlain:
        return LoadTexts(archive, m_strings, true, false);
    case LegacyProtected:
        return LoadTexts(archive, m_strings, true, decrypt);
    case CurrentProtected:
        return LoadTexts(archive, m_strings, false, decrypt);
    case CurrentPlain:
        return LoadTexts(archive, m_strings, false, false);
    default:
        FailureMarkers::Report("{B57EE119-2C25-4A8C-8506-45F22B9B02D5}");
    }
}
