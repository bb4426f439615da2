#include "support/ht.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "support/heap.h"

namespace {

const char removal_warning[] = "WARNING: Attempt to remove non-existant element from ht\n";

class HashTable : public testing::Test {
  protected:
    ~HashTable() override { ht_dispose_hash_table(table_, 0); }

    std::string output_of_removing(uint32_t key) {
        testing::internal::CaptureStdout();
        ht_remove(table_, key);
        fflush(stdout);
        return testing::internal::GetCapturedStdout();
    }

    // Runs the action in a thread while the table is locked. Looks at the table once the action
    // waits for the lock.
    void expect_to_wait_for_the_lock(const std::function<void()>& action,
                                     const std::function<void()>& look) {
        std::atomic<pid_t> id = 0;
        std::atomic<bool> done = false;
        pthread_mutex_lock(&table_->lock);
        std::thread thread([&] {
            id = gettid();
            action();
            done = true;
        });
        while (!done && !(id && is_asleep(id))) std::this_thread::yield();
        EXPECT_FALSE(done);
        look();
        pthread_mutex_unlock(&table_->lock);
        thread.join();
        EXPECT_EQ(pthread_mutex_trylock(&table_->lock), 0) << "given back";
        pthread_mutex_unlock(&table_->lock);
    }
    static bool is_asleep(pid_t thread) {
        std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/stat");
        std::string text;
        std::getline(status, text);
        const size_t name_end = text.rfind(") ");
        return name_end != text.npos && text[name_end + 2] == 'S';
    }

    ht_table_t* table_ = ht_create_hash_table(97, 7);
    int one_ = 1, two_ = 2;
};

TEST_F(HashTable, KeysThatShareABucketAreEachFound) {
    ht_table_t* table = ht_create_hash_table(2, 0);
    int values[3] = {};
    for (uint32_t key = 0; key < 3; key++) ht_insert(table, 2 * key + 1, &values[key]);
    for (uint32_t key = 0; key < 3; key++) EXPECT_EQ(ht_find(table, 2 * key + 1), &values[key]);
    EXPECT_EQ(ht_find(table, 7), nullptr);
    ht_dispose_hash_table(table, 0);
}

TEST_F(HashTable, ANewTableIsEmpty) {
    EXPECT_EQ(table_->bucket_count, 97u);
    EXPECT_EQ(table_->user_flags, 7u);
    EXPECT_EQ(ht_num_elems(table_), 0u);
    EXPECT_EQ(table_->used_bucket_count, 0u);
    EXPECT_EQ(ht_find(table_, 5), nullptr);
}

TEST_F(HashTable, RemovingAMissingKeyWarnsOnceAndChangesNoCount) {
    ht_insert(table_, 5, &one_);
    EXPECT_EQ(output_of_removing(102), removal_warning);
    EXPECT_EQ(ht_num_elems(table_), 1u);
    EXPECT_EQ(table_->used_bucket_count, 1u);
    EXPECT_EQ(output_of_removing(5), "");
}

TEST_F(HashTable, KeysOfOneBucketShareItsChain) {
    ht_insert(table_, 5, &one_);
    ht_insert(table_, 102, &two_);
    uint32_t bucket = 0;
    EXPECT_EQ(ht_find_root_for_key(table_, 102, &bucket)->key, 102u);
    EXPECT_EQ(bucket, 5u);
    EXPECT_EQ(ht_num_elems(table_), 2u);
    EXPECT_EQ(table_->used_bucket_count, 1u);
    ht_remove(table_, 102);
    EXPECT_EQ(table_->used_bucket_count, 1u);
    EXPECT_EQ(ht_find(table_, 5), &one_);
    ht_remove(table_, 5);
    EXPECT_EQ(table_->used_bucket_count, 0u);
    EXPECT_EQ(ht_num_elems(table_), 0u);
}

TEST_F(HashTable, NullDataLooksLikeAMissingKeyExceptToExists) {
    ht_insert(table_, 9, nullptr);
    EXPECT_EQ(ht_find(table_, 9), nullptr);
    EXPECT_EQ(ht_find(table_, 10), nullptr);
    EXPECT_EQ(ht_exists(table_, 9), 1);
    EXPECT_EQ(ht_exists(table_, 10), 0);
}

TEST_F(HashTable, TheNewestOfEqualKeysIsFoundAndRemovedFirst) {
    ht_insert(table_, 5, &one_);
    ht_insert(table_, 5, &two_);
    EXPECT_EQ(ht_find(table_, 5), &two_);
    ht_remove(table_, 5);
    EXPECT_EQ(ht_find(table_, 5), &one_);
    EXPECT_EQ(ht_num_elems(table_), 1u);
}

TEST_F(HashTable, TheLargestKeyHashesAsUnsigned) {
    EXPECT_EQ(ht_hash(97, 0xFFFFFFFFu), 0xFFFFFFFFu % 97u);
    ht_insert(table_, 0xFFFFFFFFu, &one_);
    EXPECT_EQ(ht_find(table_, 0xFFFFFFFFu), &one_);
    EXPECT_EQ(ht_find_root_for_key(table_, 0xFFFFFFFFu, nullptr)->data, &one_);
}

TEST_F(HashTable, DumpPrintsBucketsInOrderAndChainsFromTheHead) {
    ht_insert(table_, 6, nullptr);
    ht_insert(table_, 5, nullptr);
    ht_insert(table_, 102, nullptr);
    testing::internal::CaptureStdout();
    ht_dump(table_);
    fflush(stdout);
    char header[64];
    snprintf(header, sizeof header, "Contents for hash table %p\n", static_cast<void*>(table_));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              std::string(header) +
                  "Key:       66 Data: (nil)\nKey:        5 Data: (nil)\n"
                  "Key:        6 Data: (nil)\n");
}

TEST_F(HashTable, RehashChangesNothing) {
    ht_insert(table_, 5, &one_);
    ht_rehash(table_);
    EXPECT_EQ(ht_find(table_, 5), &one_);
    EXPECT_EQ(table_->bucket_count, 97u);
}

TEST_F(HashTable, DisposeFreesEachEntrysDataWhenAsked) {
    // The sanitizers report data that is freed twice or never.
    ht_table_t* table = ht_create_hash_table(3, 0);
    for (uint32_t key = 0; key < 10; key++) ht_insert(table, key, malloc(8));
    EXPECT_EQ(table->used_bucket_count, 3u);
    ht_dispose_hash_table(table, 1);
}

TEST_F(HashTable, DisposingGivesItsMemoryBack) {
    const auto round = [] {
        ht_table_t* table = ht_create_hash_table(97, 0);
        for (uint32_t key = 0; key < 10; key++) ht_insert(table, key, malloc(50));
        ht_dispose_hash_table(table, 1);
    };
    for (int i = 0; i < 10; i++) round();
    const size_t before = test::memory_in_use();
    for (int i = 0; i < 1000; i++) round();
    EXPECT_LT(test::memory_in_use(), before + 2000);
}

TEST_F(HashTable, InsertingWaitsForTheLock) {
    expect_to_wait_for_the_lock([&] { ht_insert(table_, 5, &one_); },
                                [&] {
                                    EXPECT_EQ(table_->buckets[5], nullptr);
                                    EXPECT_EQ(table_->elem_count, 0u);
                                    EXPECT_EQ(table_->used_bucket_count, 0u);
                                });
    EXPECT_EQ(ht_find(table_, 5), &one_);
}

TEST_F(HashTable, RemovingWaitsForTheLock) {
    ht_insert(table_, 5, &one_);
    expect_to_wait_for_the_lock([&] { ht_remove(table_, 5); },
                                [&] {
                                    EXPECT_NE(table_->buckets[5], nullptr);
                                    EXPECT_EQ(table_->elem_count, 1u);
                                    EXPECT_EQ(table_->used_bucket_count, 1u);
                                });
    EXPECT_EQ(ht_exists(table_, 5), 0);
}

TEST_F(HashTable, LookingUpWaitsForTheLock) {
    ht_insert(table_, 5, &one_);
    const auto nothing = [] {};
    expect_to_wait_for_the_lock([&] { EXPECT_EQ(ht_find(table_, 5), &one_); }, nothing);
    expect_to_wait_for_the_lock([&] { EXPECT_EQ(ht_exists(table_, 5), 1); }, nothing);
}

TEST_F(HashTable, CountingAndDumpingTakeNoLock) {
    ht_insert(table_, 5, nullptr);
    pthread_mutex_lock(&table_->lock);
    EXPECT_EQ(ht_num_elems(table_), 1u);
    EXPECT_NE(ht_find_root_for_key(table_, 5, nullptr), nullptr);
    testing::internal::CaptureStdout();
    ht_dump(table_);
    fflush(stdout);
    EXPECT_NE(testing::internal::GetCapturedStdout(), "");
    pthread_mutex_unlock(&table_->lock);
}

TEST_F(HashTable, ThreadsInsertAndRemoveTogether) {
    std::vector<std::thread> threads;
    for (uint32_t i = 0; i < 4; i++) {
        threads.emplace_back([this, i] {
            for (uint32_t key = i * 1000; key < (i + 1) * 1000; key++)
                ht_insert(table_, key, &one_);
            for (uint32_t key = i * 1000; key < (i + 1) * 1000 - 1; key++) ht_remove(table_, key);
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(ht_num_elems(table_), 4u);
    EXPECT_EQ(table_->used_bucket_count, 4u);
    for (uint32_t i = 0; i < 4; i++) EXPECT_EQ(ht_exists(table_, (i + 1) * 1000 - 1), 1);
}

}  // namespace
