// The queue between callers and writer.

#include <gtest/gtest.h>

#include <string>

#include "tools/recorder/record_queue.h"

namespace {

using recorder::RecordQueue;

TEST(RecordQueue, GivesWhatWasPushedInOrder) {
  RecordQueue queue;
  queue.Open(100);
  queue.Push("one ");
  queue.Push("two");
  queue.Close();
  const RecordQueue::Batch batch = queue.Take();
  EXPECT_EQ(batch.records, "one two");
  EXPECT_EQ(batch.dropped, 0U);
  EXPECT_TRUE(batch.isLast);
}

TEST(RecordQueue, DropsAndCountsWhatDoesNotFit) {
  RecordQueue queue;
  queue.Open(8);
  queue.Push("12345");
  queue.Push("6789");
  queue.Push("678");
  queue.Push("9");
  queue.Drop();
  const RecordQueue::Batch batch = queue.Take();
  EXPECT_EQ(batch.records, "12345678");
  EXPECT_EQ(batch.dropped, 3U);
  EXPECT_FALSE(batch.isLast);
}

TEST(RecordQueue, HasCapacityAgainAfterABatchAndCountsFromZero) {
  RecordQueue queue;
  queue.Open(8);
  queue.Push("too long for it");
  queue.Push("1234");
  EXPECT_EQ(queue.Take().dropped, 1U);
  queue.Push("12345678");
  const RecordQueue::Batch batch = queue.Take();
  EXPECT_EQ(batch.records, "12345678");
  EXPECT_EQ(batch.dropped, 0U);
}

TEST(RecordQueue, IgnoresWhatIsPushedAfterTheEnd) {
  RecordQueue queue;
  queue.Push("before");
  queue.Open(8);
  queue.Close();
  queue.Push("after");
  const RecordQueue::Batch batch = queue.Take();
  EXPECT_EQ(batch.records, "");
  EXPECT_EQ(batch.dropped, 0U);
}

TEST(RecordQueue, StartsEmptyWhenItIsOpenedAgain) {
  RecordQueue queue;
  queue.Open(8);
  queue.Push("left");
  queue.Push("too long for it");
  queue.Close();
  queue.Release();
  queue.Open(16);
  queue.Push("0123456789abcdef");
  const RecordQueue::Batch batch = queue.Take();
  EXPECT_EQ(batch.records, "0123456789abcdef");
  EXPECT_EQ(batch.dropped, 0U);
}

}  // namespace
