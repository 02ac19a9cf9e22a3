// A second file with every header, so that a definition that is not inline shows up as a duplicate.
#include <kvt01.h>

CString FromOtherFile()
{
    return "other";
}
