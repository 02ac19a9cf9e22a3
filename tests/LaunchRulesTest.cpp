#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "ExeUtils.h"
#include "MRUArrayByTime.h"
#include "TextArray.h"
#include "support/ArchiveBytes.h"
#include "support/TemporaryFolder.h"

namespace {

// Each child has copies of all that the host had open while a launch went on, and stays for as long as the
// gate is open.
TEST(RecordRules, ALaunchDoesNotWaitForWhatAnotherThreadForks)
{
    int gate[2];
    ASSERT_EQ(pipe(gate), 0);
    std::atomic<int> left = 200;
    std::thread forking([&] {
        for (; left > 0; --left)
            if (fork() == 0) {
                close(gate[1]);
                _exit(static_cast<int>(read(gate[0], gate, 1)));
            }
    });
    do {
        EXPECT_TRUE(ExeUtils::LaunchApp("/bin/true"));
        EXPECT_FALSE(ExeUtils::LaunchApp("/bin/true", "", "/none"));
    } while (left > 0);
    forking.join();
    close(gate[1]);
    for (close(gate[0]); wait(nullptr) > 0;)
        ;
}

// Where each of them looked through all the others this would take minutes.
TEST(RecordRules, ManyEqualTextsGoAtOnce)
{
    MRUArrayByTime times;
    for (uint64 i = 0; i < 200'000; ++i)
        times.ApplyDuration("same", i % 7);
    times.RemoveAllBut(TextArray());
    EXPECT_FALSE(times.HavePopular());
}

// A list inside a record, of a version that the library takes for an empty list.
TEST(RecordRules, TheInspectorRefusesInnerListsOfUnknownVersions)
{
    const TemporaryFolder folder;
    for (const char* hex :
         {"0400 0500", "0400 0400 0100 0000000000000000 0100 0100000000000000 05000000 0000"}) {
        const std::string command = KVT01_INSPECT " archive '" + folder.Write("file", BytesOf(hex)) +
                                    "' --as MRUArray >/dev/null 2>&1";
        EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1) << hex;
    }
}

} // namespace
