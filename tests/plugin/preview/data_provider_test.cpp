#include "preview/dv_data_provider.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>

#include <string>

namespace {

// A block over six bytes, as the callbacks get it.
class DataProvider : public testing::Test {
  protected:
    std::string read(size_t count) {
        char buffer[64] = {};
        const size_t got = get_bytes(&block_, buffer, count);
        return {buffer, got};
    }

    char data_[7] = "abcdef";
    dv_provider_t block_ = {data_, 6, 0, 0, 0, 0, 1};
};

dv_provider_t* new_block(uint32_t free_data, uint32_t verbose, uint32_t direct, uint32_t released) {
    auto* block = static_cast<dv_provider_t*>(calloc(1, sizeof(dv_provider_t)));
    *block = {free_data ? malloc(6) : nullptr, 6, 0, free_data, verbose, direct, released};
    return block;
}

std::string printed_by_releasing(dv_provider_t* block) {
    testing::internal::CaptureStdout();
    release_info(block);
    return testing::internal::GetCapturedStdout();
}

}  // namespace

TEST_F(DataProvider, ABlockHas32Bytes) {
    if (sizeof(void*) == 8) EXPECT_EQ(sizeof(dv_provider_t), 32u);
}

TEST_F(DataProvider, BytesAreReadInSequence) {
    EXPECT_EQ(read(4), "abcd");
    EXPECT_EQ(read(4), "ef");
    EXPECT_EQ(read(4), "");
}

TEST_F(DataProvider, ReadingStartsAgainAfterARewind) {
    read(5);
    provider_rewind(&block_);
    EXPECT_EQ(read(2), "ab");
}

TEST_F(DataProvider, SkippedBytesAreNotRead) {
    skip_bytes(&block_, 4);
    EXPECT_EQ(read(4), "ef");
}

TEST_F(DataProvider, SkippingIsNotBounded) {
    skip_bytes(&block_, 100);
    EXPECT_EQ(block_.position, 100u);
    EXPECT_EQ(read(4), "");
}

TEST_F(DataProvider, ABytePointerIsOutstandingUntilItIsGivenBack) {
    EXPECT_EQ(get_byte_pointer(&block_), data_);
    EXPECT_EQ(block_.released, 0u);
    release_byte_pointer(&block_, data_ + 1);
    EXPECT_EQ(block_.released, 0u);
    release_byte_pointer(&block_, data_);
    EXPECT_EQ(block_.released, 1u);
}

TEST_F(DataProvider, ReleasePrintsNothingByDefault) {
    EXPECT_EQ(printed_by_releasing(new_block(0, 0, 1, 0)), "");
    EXPECT_EQ(printed_by_releasing(new_block(1, 0, 0, 0)), "");
}

TEST_F(DataProvider, FreeingDataUnderAPointerIsToldOf) {
    EXPECT_EQ(printed_by_releasing(new_block(1, 0, 1, 0)),
              "Warning: Freeing unreleased byte pointer!\n");
    EXPECT_EQ(printed_by_releasing(new_block(1, 0, 1, 1)), "");
}

TEST_F(DataProvider, AVerboseReleaseTellsTheSize) {
    EXPECT_EQ(printed_by_releasing(new_block(1, 1, 1, 1)), "free data.. bytes: 6\n");
    EXPECT_EQ(printed_by_releasing(new_block(0, 1, 1, 0)), "dont free.. bytes: 6\n");
    EXPECT_EQ(printed_by_releasing(new_block(1, 1, 1, 0)),
              "Warning: Freeing unreleased byte pointer!\nfree data.. bytes: 6\n");
}

TEST_F(DataProvider, TheTablesHaveThePlatformsOrder) {
    EXPECT_EQ(dp_provider_callbacks.getBytes, get_bytes);
    EXPECT_EQ(dp_provider_callbacks.skipBytes, skip_bytes);
    EXPECT_EQ(dp_provider_callbacks.rewind, provider_rewind);
    EXPECT_EQ(dp_provider_callbacks.releaseProvider, release_info);
    EXPECT_EQ(dp_direct_callbacks.getBytePointer, get_byte_pointer);
    EXPECT_EQ(dp_direct_callbacks.releaseBytePointer, release_byte_pointer);
    EXPECT_EQ(dp_direct_callbacks.getBytes, nullptr);
    EXPECT_EQ(dp_direct_callbacks.releaseProvider, release_info);
}

TEST_F(DataProvider, BothKindsOfProvidersComeAndGo) {
    for (const int direct : {0, 1}) {
        void* data = malloc(6);
        CGDataProviderRef provider = create_data_provider(data, 6, 1, direct);
        ASSERT_NE(provider, nullptr);
        CGDataProviderRelease(provider);  // frees the data: the sanitizers would tell
    }
}
