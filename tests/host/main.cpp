#include <kvt01.h>

#include <cstdio>

CString FromOtherFile();

namespace {

// What a host may do before main: the tables are there, strings and sorting work.
struct EarlyBird {
    bool sawLetter = StringUtils::IsAlpha('q') && StringUtils::ToUpper('q') == 'Q' &&
                     StringUtils::m_tableIsDigit['7'] != 0;
    CString first;

    EarlyBird()
    {
        TextArray names;
        names.Add("file10");
        names.Add("file2");
        names.Sort(true, false, TextArray::ContentFiles);
        first = names.GetFirst();
    }
};
EarlyBird early;

int Fail(const char* what)
{
    std::printf("failed: %s\n", what);
    return 1;
}

} // namespace

int main()
{
    if (!early.sawLetter || early.first != "file2")
        return Fail("the library works before main");
    if (FromOtherFile() + "!" != "other!")
        return Fail("strings cross files");
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    archive << CString("kept");
    archive.Close();
    file.SeekToBegin();
    CArchive stored(&file, CArchive::load);
    CString text;
    stored >> text;
    if (text != "kept")
        return Fail("an archive gives back what it took");
    try {
        stored >> text;
        return Fail("reading past the end raises");
    } catch (const CArchiveException& error) { // thrown inside the library, caught here
        if (error.m_cause != CArchiveException::endOfFile)
            return Fail("the cause is the end of the file");
    }
    std::puts("ok");
    return 0;
}
