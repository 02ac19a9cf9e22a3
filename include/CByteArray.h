// CByteArray: an array of bytes. What it offers is described with FrameworkArray.
#pragma once

#include "BasicTypes.h"
#include "FrameworkArray.h"

class CByteArray : public FrameworkArray<BYTE> {};
