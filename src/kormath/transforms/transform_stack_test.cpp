#include <kormath/transforms/transform_stack.h>

#include <kormath/transforms/concat.h>
#include <kormath/transforms/identity_transform.h>
#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/twist_transform_test.h>

#include <gtest/gtest.h>

#include <random>

namespace {

using Twist = TwistForTest;
using P = MMPoint3d<double>;

MMTransformMatrix RandomMatrix(std::mt19937 &rng) {
  std::uniform_real_distribution<double> angle(-170.0, 170.0), shift(-5.0, 5.0), scale(0.5, 2.0);
  MMTransformMatrix m, s;
  m.MakeRotationZYX(angle(rng), angle(rng), angle(rng));
  s.MakeScale3D(scale(rng), scale(rng), scale(rng));
  m.PostMultiply(s);
  m.AddTranslation(P(shift(rng), shift(rng), shift(rng)));
  return m;
}

P Map(const MMTransform &t, const P &p, bool inverse = false) {
  P out;
  EXPECT_TRUE(inverse ? t.InverseTransform(out, p) : t.Transform(out, p));
  return out;
}

// Points of size ~10 through up to six factors with scales up to 2: a few
// hundred ulps of 100, well below 1e-9.
void ExpectNear(const P &a, const P &b) { EXPECT_LT(a.Distance(b), 1e-9) << a.x << " " << b.x; }

TEST(TransformStack, InvertedStacksRoundTrip) {
  std::mt19937 rng(2u);
  std::uniform_real_distribution<double> coord(-3.0, 3.0);
  for (int size = 1; size <= 6; ++size) {
    MMTransformStack s;
    for (int k = 0; k < size; ++k)
      k % 2 ? s.PostMultiplyUseTransformation(new Twist(0.1 * k)) : s.PostMultiply(RandomMatrix(rng));
    MMTransformStack inverted(s);
    ASSERT_TRUE(inverted.Invert());
    for (int n = 0; n < 20; ++n) {
      const P p(coord(rng), coord(rng), coord(rng));
      ExpectNear(Map(s, Map(s, p), true), p);
      ExpectNear(Map(inverted, p), Map(s, p, true));
      ExpectNear(Map(inverted, p, true), Map(s, p));
    }
    ASSERT_TRUE(inverted.Invert());  // twice: every element back in place
    for (int k = 0; k < size; k += 2) EXPECT_TRUE(*inverted[k] == *s[k]) << size << " " << k;
  }
  // A failing element stops the inversion halfway: the outer pair is
  // already inverted and exchanged when the singular middle fails.
  MMTransformMatrix singular, shift;
  singular.MakeScale1D(0.0);
  shift.MakeTranslation(P(1, 0, 0));
  MMTransformStack s;
  for (const MMTransformMatrix *m : {&shift, &singular, &shift}) s.PostMultiply(*m);
  EXPECT_FALSE(s.Invert());
  EXPECT_EQ(static_cast<MMTransformMatrix *>(s.GetFirst())->GetElement(0, 3), -1.0);
}

TEST(TransformStack, BackActsFirstAndEveryElementIsFreedOnce) {
  const int base = Twist::live;
  {
    MMTransformStack a, b;
    const P p(0.5, 1.0, -2.0);
    EXPECT_TRUE(Map(a, p) == p && Map(a, p, true) == p && a.IsIdentity());  // empty: the identity
    std::mt19937 rng(1u);
    const MMTransformMatrix m = RandomMatrix(rng), n = RandomMatrix(rng);
    a.PostMultiply(n);
    a.PreMultiply(m);  // [m, n]
    float m16[16];
    EXPECT_FALSE(a.ConvertFloat16(m16));  // not even a stack of matrices has a matrix form
    auto *front = new Twist(0.1), *back = new Twist(0.2);
    a.PreMultiplyUseTransformation(front);  // taken over, not cloned: [front, m, n, back]
    a.PostMultiplyUseTransformation(back);
    EXPECT_TRUE(a.GetFirst() == front && a.GetLast() == back && *a[1] == m);
    ExpectNear(Map(a, p), Map(*front, Map(m, Map(n, Map(*back, p)))));
    MMTransformStack copy(a), shared;  // a deep copy
    delete a.Clone();
    // Assignment is shallow, on purpose: the pointers are shared. Assigning
    // an empty stack detaches again without freeing anything.
    shared = a;
    EXPECT_TRUE(copy[0] != a[0] && shared[0] == a[0]);
    EXPECT_EQ(Twist::live, base + 4);
    shared = MMTransformStack();

    a.PostAddStack(a);  // clones, also from itself
    b.PostMultiply(Twist(0.2));
    MMTransform *moved = b[0];
    a.PostAddStackTakeOverTransformations(b);
    EXPECT_TRUE(b.GetNrTransforms() == 0 && a.GetLast() == moved);
    b.PostMultiply(Twist(0.4));                // still usable
    a.PostAddStackTakeOverTransformations(a);  // from itself: nothing
    EXPECT_EQ(a.GetNrTransforms(), 9);
    EXPECT_EQ(Twist::live, base + 8);
    a.SetFirst(MMTransformIdentity());  // the old front is deleted
    EXPECT_EQ(Twist::live, base + 7);
    auto *last = new Twist(0.5);
    a.SetLast(last);
    a.SetLast(last);  // the same pointer again is kept
    EXPECT_EQ(a.GetLast(), last);
    EXPECT_EQ(Twist::live, base + 7);
    a.MakeIdentity();
    EXPECT_EQ(a.GetNrTransforms(), 0);
    EXPECT_EQ(Twist::live, base + 3);
  }
  EXPECT_EQ(Twist::live, base);
}

}  // namespace
