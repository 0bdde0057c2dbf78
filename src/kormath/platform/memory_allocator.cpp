#include <kormath/platform/memory_allocator.h>

SizeMappedAllocator<StdBase::LocalLocking> g_mmtransforms_kor_memory_allocator;
