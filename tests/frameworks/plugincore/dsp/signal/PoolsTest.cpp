// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/signal/FFTPool.h"
#include "frameworks/plugincore/dsp/signal/MemoryPool.h"

#include <gtest/gtest.h>

#include <cstdlib>

TEST(MemoryPool, GivesStackedBlocksAndTakesThemBack)
{
    DSP::MemoryPool pool("Test");
    pool.Reserve(256);
    void* first = pool.Allocate(100); // 112 with its alignment
    void* second = pool.Allocate(100);
    EXPECT_EQ(static_cast<char*>(second) - static_cast<char*>(first), 112);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(second) % 16, 0U);
    EXPECT_EQ(pool.GetMark(), 224U);
    pool.Free(second, 100);
    EXPECT_EQ(pool.Allocate(100), second);
    pool.SetMark(0);
    EXPECT_EQ(pool.Allocate(1), first);
}

TEST(MemoryPool, FallsBackToTheHeap)
{
    DSP::MemoryPool empty("Empty");
    void* block = empty.Allocate(64);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(empty.GetMark(), 0U);
    // A heap block larger than all that is in use can't be told from the pool's by the mark: it is
    // left alone, and so still ours to free.
    empty.Free(block, 64);
    std::free(block);

    DSP::MemoryPool pool("Small");
    pool.Reserve(64);
    pool.Allocate(48);
    void* large = pool.Allocate(32); // doesn't fit any more
    EXPECT_EQ(pool.GetMark(), 48U);
    pool.Free(large, 32); // goes to the heap, the pool keeps its count
    EXPECT_EQ(pool.GetMark(), 48U);
}

TEST(MemoryPool, GrowsOnlyWhileNothingIsTaken)
{
    DSP::MemoryPool pool("Test");
    pool.Reserve(32);
    void* block = pool.Allocate(16);
    pool.Reserve(1024); // would move the block
    pool.Free(block, 16);
    pool.Reserve(1024);
    const void* first = pool.Allocate(512);
    const void* second = pool.Allocate(512);
    EXPECT_EQ(static_cast<const char*>(second) - static_cast<const char*>(first), 512);
}

TEST(FFTPool, MakesEachSizeOnceAndKeepsIt)
{
    DSP::FFTPool pool("Test");
    pool.PrepareFFT(10);
    DSP::FFTImpl<float>* transform = pool.GetFFT(10);
    ASSERT_NE(transform, nullptr);
    EXPECT_EQ(transform->GetSize(), 1024);
    EXPECT_EQ(pool.GetFFT(10), transform);
    EXPECT_NE(pool.GetFFT(11), transform);
    EXPECT_EQ(pool.GetFFT(32), nullptr);
    EXPECT_EQ(pool.GetFFT(1), nullptr);
    EXPECT_EQ(pool.GetFFT(UINT32_MAX), nullptr);
}
