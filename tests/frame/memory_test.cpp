#include "kolink/memory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

namespace {

TEST(Memory, BlockHoldsWhatWasAskedFor) {
    for (const uint32_t size : {1u, 4u, 4745548u}) {
        void* const block = jMemAlloc(size);
        ASSERT_NE(block, nullptr);
        std::memset(block, 0x55, size);
        jMemFree(block);
    }
}

TEST(Memory, BlockOfNothingIsValidAndFreeable) {
    void* const first = jMemAlloc(0);
    void* const second = jMemAlloc(0);
    EXPECT_NE(first, nullptr);
    EXPECT_NE(first, second);
    jMemFree(first);
    jMemFree(second);
}

TEST(Memory, NullIsFreedWithoutHarm) { jMemFree(nullptr); }

TEST(Memory, ServesSeveralThreads) {
    std::vector<std::thread> threads;
    for (uint32_t thread = 0; thread < 4; ++thread)
        threads.emplace_back([thread] {
            for (uint32_t round = 1; round < 1000; ++round) {
                auto* const block = static_cast<unsigned char*>(jMemAlloc(round));
                std::memset(block, static_cast<int>(thread), round);
                for (uint32_t at = 0; at < round; ++at) ASSERT_EQ(block[at], thread);
                jMemFree(block);
            }
        });
    for (auto& thread : threads) thread.join();
}

}  // namespace
