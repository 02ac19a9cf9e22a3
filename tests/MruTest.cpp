#include <gtest/gtest.h>

#include "MRUArray.h"
#include "MRUArrayByTime.h"
#include "support/ArchiveBytes.h"
#include "support/TextModels.h"

namespace {

TEST(MruArray, UnusualRecordsComeBackAsTheyAreAndBrokenOnesChangeNothing)
{
    const std::string start = "0400 0400 0100 0300000000000000 01 61 01 62 01 61 0100 ",
                      emptyBucket = "FFFFFFFF 0400 0100 0000000000000000",
                      buckets = "01000000 0400 0100 0200000000000000 01 61 01 62"
                                "FFFFFF7F 0400 0100 0200000000000000 01 61 01 63";
    const std::string record = BytesOf(start + "0300000000000000" + emptyBucket + buckets);
    MRUArray lists;
    Load(lists, record);
    EXPECT_EQ(StoredBytesOf(lists), BytesOf(start + "0200000000000000" + buckets));
    TextArray recent = ListOf("d"), popular; // what stood there is sorted as well
    lists.GetRecent(recent, true, true, true);
    lists.AddToPopular("a"); // no count is above INT_MAX
    lists.GetPopular(popular, false);
    EXPECT_EQ(LineOf(recent) + "," + LineOf(popular), "a;a;b;d,c;a;a;b");
    const std::string before = StoredBytesOf(lists);
    EXPECT_THROW(Load(lists, record.substr(0, record.size() - 1)), CArchiveException);
    EXPECT_EQ(StoredBytesOf(lists), before);
}

// Just the number of totals at which a current count could be mistaken for a legacy one.
TEST(MruArrayByTime, ReadsManyTotalsBack)
{
    MRUArrayByTime times;
    for (uint64 i = 0; i < 65536; ++i)
        times.ApplyDuration("", i);
    MRUArrayByTime loaded;
    Load(loaded, StoredBytesOf(times));
    EXPECT_TRUE(StoredBytesOf(loaded) == StoredBytesOf(times));
}

// Where each of them looked through all the others this would take minutes.
TEST(MruArrayByTime, ManyEqualTextsGoAtOnce)
{
    MRUArrayByTime times;
    for (uint64 i = 0; i < 200'000; ++i)
        times.ApplyDuration("same", i % 7);
    times.RemoveAllBut(TextArray());
    EXPECT_FALSE(times.HavePopular());
}

} // namespace
