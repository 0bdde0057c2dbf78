// The kormath library is assembled from the subsystem libraries; this unit
// only gives the target a source of its own.
namespace {
[[maybe_unused]] constexpr int kKorMathVersionMajor = 0;
}  // namespace
