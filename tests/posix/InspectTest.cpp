// The command kvt01-inspect with a name and an output that other platforms do not have.
#include <gtest/gtest.h>

#include "support/Environment.h"
#include "support/TemporaryFolder.h"

namespace {

TEST(InspectOnPosix, SaysThatItCannotWriteAndShowsControlCharacters)
{
    const TemporaryFolder folder;
    const std::string complaints = " 2>'" + folder.Path("complaints") + "'";
    EXPECT_EQ(RunProgram(KVT01_INSPECT, "--version >/dev/full" + complaints), 1);
    EXPECT_EQ(folder.Read("complaints"), "kvt01-inspect: cannot write: No space left on device\n");
    EXPECT_EQ(RunProgram(KVT01_INSPECT, "log 'a\x1B"
                                        "b\xC2\x9B'" +
                                            complaints),
              1);
    EXPECT_EQ(folder.Read("complaints"),
              "kvt01-inspect: a\\x1Bb\\xC2\x9B: The system cannot find the file specified.\n");
}

} // namespace
