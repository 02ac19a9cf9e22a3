// The sub-command `convert`: a text file put into another encoding.
#pragma once

namespace Convert {

extern const char* const Usage;

// The arguments behind `convert`; the answer is the program's.
int Run(int argc, char** argv);

} // namespace Convert
