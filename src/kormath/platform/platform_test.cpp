#include <kormath/platform/file.h>
#include <kormath/platform/memory_allocator.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

TEST(Allocator, HammeredFromSeveralThreads) {
  // Each thread allocates blocks of varied sizes, stamps them with its own
  // pattern, checks them and releases them; overlap or a lost lock would show
  // as a wrong stamp (or as a report of the sanitizers).
  constexpr int kThreads = 8, kRounds = 2000;
  std::vector<int> failures(kThreads, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &failures] {
      std::vector<std::pair<unsigned char *, std::size_t>> live;
      for (int i = 0; i < kRounds; ++i) {
        const std::size_t size = 8 + static_cast<std::size_t>((i * 37 + t * 11) % 400);
        auto *p = static_cast<unsigned char *>(g_mmtransforms_kor_memory_allocator.NewObjectThrow(size));
        std::memset(p, t + 1, size);
        live.emplace_back(p, size);
        if (i % 3 == 2) {
          for (auto &block : live) {
            for (std::size_t k = 0; k < block.second; ++k)
              if (block.first[k] != t + 1) ++failures[t];
            g_mmtransforms_kor_memory_allocator.ReleaseObject(block.first);
          }
          live.clear();
        }
      }
      for (auto &block : live) g_mmtransforms_kor_memory_allocator.ReleaseObject(block.first);
    });
  }
  for (auto &th : threads) th.join();
  for (int t = 0; t < kThreads; ++t) EXPECT_EQ(failures[t], 0) << "thread " << t;
  g_mmtransforms_kor_memory_allocator.ReleaseObject(nullptr);
}

TEST(File, RoundTripShortReadAndFailures) {
  const std::string path = ::testing::TempDir() + "kormath_file_test.bin";
  {
    MFile f;
    ASSERT_TRUE(f.Open(path.c_str(), MFile::WRITE_MODE));
    const float floats[2] = {1.5f, -0.1f};
    const long longs[3] = {-1, 2147483647L, 42};
    EXPECT_EQ(f.WRITE(floats, 2), 2u);
    EXPECT_EQ(f.WRITE(longs, 3), 3u);
  }
  {
    MFile f(path.c_str(), MFile::READ_MODE);
    ASSERT_TRUE(f.IsOpen());
    float floats[2];
    long longs[4] = {0, 0, 0, 7};
    EXPECT_EQ(f.READ(floats, 2), 2u);
    EXPECT_TRUE(floats[0] == 1.5f && floats[1] == -0.1f);
    EXPECT_EQ(f.READ(longs, 4), 3u);  // short read returns the short count
    EXPECT_TRUE(longs[0] == -1 && longs[1] == 2147483647L && longs[2] == 42 && longs[3] == 7);
    EXPECT_EQ(f.READ(longs, 1), 0u);
  }
  std::remove(path.c_str());

  MFile missing;
  EXPECT_FALSE(missing.Open((path + ".missing").c_str(), MFile::READ_MODE));
  float x = 0;
  EXPECT_EQ(missing.READ(&x, 1), 0u);
  EXPECT_EQ(missing.WRITE(&x, 1), 0u);
  MFile unwritable;
  EXPECT_FALSE(unwritable.Open("/nonexistent-dir/kormath/file.bin", MFile::WRITE_MODE));
}

}  // namespace
