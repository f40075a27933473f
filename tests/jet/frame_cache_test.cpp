// Which pages stay in memory.
#include "page/frame_cache.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace jet {
namespace {

constexpr std::uint32_t kPageSize = 64;

std::size_t CountFrames(FrameCache& cache) {
    std::size_t count = 0;
    cache.ForEach([&count](Frame&) { ++count; });
    return count;
}

TEST(FrameCache, PassingPages_TakeEachOthersFrames) {
    FrameCache cache(kPageSize, 1000);
    for (std::uint32_t page = 0; page < 20; ++page) cache.Insert(page);
    for (std::uint32_t page = 100; page < 5000; ++page) {
        cache.Insert(page, true);
        EXPECT_NE(cache.Find(page), nullptr);
        EXPECT_NE(cache.Find(std::max(100U, page - 15)), nullptr) << "of the same reading";
    }
    EXPECT_LT(CountFrames(cache), 100U);
    EXPECT_EQ(cache.Find(100), nullptr);
    for (std::uint32_t page = 0; page < 20; ++page) EXPECT_NE(cache.Find(page), nullptr);
}

TEST(FrameCache, PassingPagesInUse_StayWhereTheyAre) {
    FrameCache cache(kPageSize, 1000);
    Frame& pinned = cache.Insert(1, true);
    pinned.pins = 1;
    Frame& dirty = cache.Insert(2, true);
    dirty.dirty = true;
    for (std::uint32_t page = 3; page < 500; ++page) cache.Insert(page, true);
    EXPECT_EQ(cache.Find(1), &pinned);
    EXPECT_EQ(cache.Find(2), &dirty);
    pinned.pins = 0;
    dirty.dirty = false;
    cache.Shrink();
    for (std::uint32_t page = 500; page < 1000; ++page) cache.Insert(page, true);
    EXPECT_EQ(cache.Find(2), nullptr);
}

TEST(FrameCache, AFullCacheOfPassingPages_TakesOthersAllTheSame) {
    FrameCache cache(kPageSize, 32);
    for (std::uint32_t page = 0; page < 200; ++page) cache.Insert(page, true);
    for (std::uint32_t page = 1000; page < 1200; ++page) {
        cache.Insert(page);
        EXPECT_NE(cache.Find(page), nullptr);
    }
    EXPECT_LE(CountFrames(cache), 32U + 64U + 1U);
}

TEST(FrameCache, Shrink_GivesBackWhatNobodyNeeds) {
    FrameCache cache(kPageSize, 2000);
    for (std::uint32_t page = 0; page < 20'000; ++page) {
        Frame& frame = cache.Insert(page);
        frame.dirty = true;
        std::fill_n(frame.bytes, kPageSize, static_cast<std::byte>(page));
    }
    ASSERT_EQ(CountFrames(cache), 20'000U);
    cache.ForEach([](Frame& frame) { frame.dirty = frame.number < 2 || frame.number == 19'999; });
    cache.Shrink();
    EXPECT_GE(CountFrames(cache), 2000U);
    EXPECT_LT(CountFrames(cache), 10'000U);
    for (const std::uint32_t page : {0, 1, 19'999}) {
        ASSERT_NE(cache.Find(page), nullptr);
        EXPECT_EQ(cache.Find(page)->bytes[kPageSize - 1], static_cast<std::byte>(page));
    }
    for (std::uint32_t page = 50'000; page < 60'000; ++page) {
        Frame& frame = cache.Insert(page);
        frame.dirty = true;
        std::fill_n(frame.bytes, kPageSize, static_cast<std::byte>(page));
    }
    for (std::uint32_t page = 50'000; page < 60'000; ++page) {
        ASSERT_NE(cache.Find(page), nullptr);
        EXPECT_EQ(cache.Find(page)->bytes[0], static_cast<std::byte>(page));
    }
}

TEST(FrameCache, PagesFarApart_AreFound) {
    FrameCache cache(kPageSize, 10);
    EXPECT_EQ(cache.Find(16'000'000), nullptr);
    Frame& far = cache.Insert(16'000'000);
    Frame& near = cache.Insert(0);
    EXPECT_EQ(cache.Find(16'000'000), &far);
    EXPECT_EQ(cache.Find(0), &near);
    EXPECT_EQ(cache.Find(1), nullptr);
}

}  // namespace
}  // namespace jet
