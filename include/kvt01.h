// Everything of the library at once.
#pragma once

#include "BasicTypes.h"
#include "COleDateTime.h"
#include "CString.h"
#include "DateEntry.h"
#include "DateTime.h"
#include "FileTime.h"
#include "LocaleUtils.h"
#include "NumberTextConv.h"
#include "StringUtils.h"
#include "TextArray.h"
