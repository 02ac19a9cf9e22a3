#include <gtest/gtest.h>

#include "TimingUtils.h"
#include "platform/Platform.h"

namespace {

TEST(TimingUtils, MeasuresFromTheLastStartOnceEach)
{
    TimingUtils watch;
    EXPECT_EQ(watch.Stop(), 0u);
    watch.Start();
    const DWORD first = GetTickCount();
    while (GetTickCount() - first < 20) {
    }
    const DWORD beforeStart = GetTickCount();
    watch.Start();
    const DWORD afterStart = GetTickCount();
    while (GetTickCount() - afterStart < 5) {
    }
    const DWORD beforeStop = GetTickCount();
    const unsigned int elapsed = watch.Stop();
    const DWORD afterStop = GetTickCount();
    EXPECT_GE(elapsed, beforeStop - afterStart);
    EXPECT_LE(elapsed, afterStop - beforeStart);
    EXPECT_EQ(watch.Stop(), 0u);
}

} // namespace
