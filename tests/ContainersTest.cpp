// The framework's containers: walking, growing, and what happens outside.
#include <gtest/gtest.h>

#include "CByteArray.h"
#include "CStringArray.h"
#include "CStringList.h"
#include "support/TextModels.h"

namespace {

TEST(Containers, ArrayGrowsWhereItSaysSo)
{
    CByteArray bytes;
    bytes.SetAtGrow(2, 7);
    bytes.InsertAt(5, 9, 2);
    EXPECT_EQ((std::vector<BYTE>(bytes.begin(), bytes.end())), (std::vector<BYTE>{0, 0, 7, 0, 0, 9, 9}));
    bytes.InsertAt(1, bytes);
    EXPECT_EQ(bytes.Append(bytes), 14);
    bytes.RemoveAt(3, 1000);
    EXPECT_EQ((std::vector<BYTE>(bytes.begin(), bytes.end())), (std::vector<BYTE>{0, 0, 0}));
}

TEST(Containers, ArrayIsNeutralOutside)
{
    CStringArray texts;
    texts.Add("a");
    for (const std::ptrdiff_t index : {PTRDIFF_MIN, std::ptrdiff_t{-1}, std::ptrdiff_t{1}, PTRDIFF_MAX}) {
        EXPECT_EQ(texts.GetAt(index), "");
        texts.SetAt(index, "x");
        texts[index] = "spare";
        EXPECT_EQ(texts[index], "");
        texts.RemoveAt(index, 5);
        texts.SetAtGrow(index < 0 ? index : -1, "x");
        texts.InsertAt(index < 0 ? index : -1, "x");
    }
    texts.RemoveAt(0, -1);
    EXPECT_EQ(TextsOf(texts), Texts{"a"});
    texts.InsertAt(0, texts[0], 3); // an element of the array itself
    texts.SetAtGrow(5, texts[0]);
    EXPECT_EQ(TextsOf(texts), (Texts{"a", "a", "a", "a", "", "a"}));
}

TEST(Containers, ListWalksBothWaysAndChangesInPlace)
{
    CStringList list;
    const POSITION b = list.AddTail("b");
    list.AddHead("a");
    const POSITION c = list.InsertAfter(b, "c");
    list.InsertAfter(c, "d");
    list.InsertBefore(nullptr, "first");
    list.InsertAfter(nullptr, "last");
    CString forward, backward;
    for (POSITION at = list.GetHeadPosition(); at != nullptr;)
        forward += list.GetNext(at);
    for (POSITION at = list.GetTailPosition(); at;)
        backward += list.GetPrev(at);
    EXPECT_EQ(forward + backward, "firstabcdlastlastdcbafirst");
    EXPECT_TRUE(list.FindIndex(3) == c && list.FindIndex(6) == nullptr && list.FindIndex(-1) == nullptr);
    list.RemoveAt(c);
    list.RemoveAt(nullptr);
    list.SetAt(b, "d");
    list.SetAt(nullptr, "x");
    EXPECT_TRUE(list.Find("d") == b && list.Find("d", list.Find("d", b)) == nullptr);
    EXPECT_EQ(list.RemoveHead() + list.RemoveTail(), "firstlast");
    list.AddTail(&list);
    EXPECT_EQ(TextsOf(list), (Texts{"a", "d", "d", "a", "d", "d"}));
    list.RemoveAll();
    EXPECT_EQ(list.GetHead() + list.GetTail() + list.RemoveHead() + list.RemoveTail() + list.GetAt(nullptr),
              "");
}

} // namespace
