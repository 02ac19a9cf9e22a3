#include <gtest/gtest.h>

#include "MRUArrayByTime.h"
#include "TextArray.h"

namespace {

// Where each of them looked through all the others this would take minutes.
TEST(RecordRules, ManyEqualTextsGoAtOnce)
{
    MRUArrayByTime times;
    for (uint64 i = 0; i < 200'000; ++i)
        times.ApplyDuration("same", i % 7);
    times.RemoveAllBut(TextArray());
    EXPECT_FALSE(times.HavePopular());
}

} // namespace
