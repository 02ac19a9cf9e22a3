// Everything of the library at once.
#pragma once

#include "BasicTypes.h"
#include "CByteArray.h"
#include "CString.h"
#include "CStringArray.h"
#include "CStringList.h"
#include "LocaleUtils.h"
#include "NumberTextConv.h"
#include "StringUtils.h"
#include "TextArray.h"
