#include "LocaleUtils.h"

#include "framework/NeverDestroyed.h"

static constinit NeverDestroyed<CString> decimalSeparator;
static constinit NeverDestroyed<CString> thousandsSeparator;
constinit CString& LocaleUtils::m_csDecimalSeparator = decimalSeparator.value;
constinit CString& LocaleUtils::m_csThousandsSeparator = thousandsSeparator.value;

CString LocaleUtils::GetLocaleInfoFor(unsigned long lcType)
{
    return lcType == 14 ? "." : ",";
}
