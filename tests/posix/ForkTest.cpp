#include <gtest/gtest.h>

#include <atomic>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "ExeUtils.h"

namespace {

// Each child has copies of all that the host had open while a launch went on, and stays for as long as the
// gate is open.
TEST(LaunchOnPosix, ALaunchDoesNotWaitForWhatAnotherThreadForks)
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

} // namespace
