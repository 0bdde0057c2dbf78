#include <kormath/transforms/transform_stack.h>

#include <kormath/transforms/concat.h>
#include <kormath/transforms/identity_transform.h>
#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/twist_transform_test.h>

#include <gtest/gtest.h>

#include <random>

namespace {

using Twist = TwistForTest;

MMTransformMatrix RandomMatrix(std::mt19937 &rng) {
  std::uniform_real_distribution<double> angle(-170.0, 170.0), shift(-5.0, 5.0), scale(0.5, 2.0);
  MMTransformMatrix m, s;
  m.MakeRotationZYX(angle(rng), angle(rng), angle(rng));
  s.MakeScale3D(scale(rng), scale(rng), scale(rng));
  m.PostMultiply(s);
  m.AddTranslation(MMPoint3d<double>(shift(rng), shift(rng), shift(rng)));
  return m;
}

MMPoint3d<double> Fwd(const MMTransform &t, const MMPoint3d<double> &p) {
  MMPoint3d<double> out;
  EXPECT_TRUE(t.Transform(out, p));
  return out;
}

MMPoint3d<double> Inv(const MMTransform &t, const MMPoint3d<double> &p) {
  MMPoint3d<double> out;
  EXPECT_TRUE(t.InverseTransform(out, p));
  return out;
}

// Points of size ~10 through up to six factors with scales up to 2: a few
// hundred ulps of 100, well below 1e-9.
void ExpectNear(const MMPoint3d<double> &a, const MMPoint3d<double> &b) {
  EXPECT_NEAR(a.x, b.x, 1e-9);
  EXPECT_NEAR(a.y, b.y, 1e-9);
  EXPECT_NEAR(a.z, b.z, 1e-9);
}

TEST(TransformStack, EmptyIsIdentityAndBackActsFirst) {
  MMTransformStack s;
  const MMPoint3d<double> p(0.5, 1.0, -2.0);
  EXPECT_EQ(Fwd(s, p), p);
  EXPECT_EQ(Inv(s, p), p);
  EXPECT_TRUE(s.IsIdentity());
  float m16[16];
  EXPECT_FALSE(s.ConvertFloat16(m16));
  s.MakeIdentity();
  s.MakeIdentity();

  std::mt19937 rng(1u);
  const MMTransformMatrix a = RandomMatrix(rng), b = RandomMatrix(rng);
  s.PostMultiply(b);             // [b]
  s.PreMultiply(a);              // [a, b]
  s.PostMultiply(Twist(0.3));    // [a, b, t]
  EXPECT_FALSE(s.ConvertFloat16(m16));  // not even a stack of matrices has a matrix form
  ExpectNear(Fwd(s, p), Fwd(a, Fwd(b, Fwd(Twist(0.3), p))));
  auto *front = new Twist(0.1), *back = new Twist(0.2);
  s.PreMultiplyUseTransformation(front);  // taken over, not cloned
  s.PostMultiplyUseTransformation(back);
  EXPECT_EQ(s.GetFirst(), front);
  EXPECT_EQ(s.GetLast(), back);
  EXPECT_TRUE(*s[1] == a);
  EXPECT_EQ(s.GetNrTransforms(), 5);
}

TEST(TransformStack, InvertReversesAndInvertsEveryElement) {
  std::mt19937 rng(2u);
  std::uniform_real_distribution<double> coord(-3.0, 3.0);
  for (int size = 1; size <= 6; ++size) {
    SCOPED_TRACE(size);
    MMTransformStack s;
    for (int k = 0; k < size; ++k) {
      if (k % 2 == 1)
        s.PostMultiplyUseTransformation(new Twist(0.1 * k));
      else
        s.PostMultiply(RandomMatrix(rng));
    }
    MMTransformStack inverted(s);
    ASSERT_TRUE(inverted.Invert());
    for (int n = 0; n < 20; ++n) {
      const MMPoint3d<double> p(coord(rng), coord(rng), coord(rng));
      ExpectNear(Inv(s, Fwd(s, p)), p);
      ExpectNear(Fwd(inverted, p), Inv(s, p));
      ExpectNear(Inv(inverted, p), Fwd(s, p));
    }
    ASSERT_TRUE(inverted.Invert());  // twice: every element back in place
    for (int k = 0; k < size; k += 2) EXPECT_TRUE(*inverted[k] == *s[k]);
  }

  // A failing element stops the inversion halfway: the outer pair is
  // already inverted and exchanged when the singular middle fails.
  MMTransformMatrix singular, shift;
  singular.MakeScale1D(0.0);
  shift.MakeTranslation(MMPoint3d<double>(1, 0, 0));
  MMTransformStack s;
  s.PostMultiply(shift);
  s.PostMultiply(singular);
  s.PostMultiply(shift);
  EXPECT_FALSE(s.Invert());
  EXPECT_EQ(static_cast<MMTransformMatrix *>(s.GetFirst())->GetElement(0, 3), -1.0);
}

TEST(TransformStack, EveryElementIsFreedExactlyOnce) {
  const int base = Twist::live;
  {
    MMTransformStack a, b;
    a.PostMultiply(Twist(0.5));
    a.PostMultiply(MMTransformMatrix());
    MMTransformStack copy(a);  // deep
    EXPECT_NE(copy[0], a[0]);
    delete a.Clone();
    EXPECT_EQ(Twist::live, base + 2);

    // Assignment is shallow, on purpose: the pointers are shared. Assigning
    // an empty stack detaches again without freeing anything.
    MMTransformStack shared;
    shared = a;
    EXPECT_EQ(shared[0], a[0]);
    EXPECT_EQ(Twist::live, base + 2);
    shared = MMTransformStack();

    a.PostAddStack(a);  // clones, also from itself
    EXPECT_EQ(a.GetNrTransforms(), 4);
    b.PostMultiply(Twist(0.2));
    MMTransform *moved = b[0];
    a.PostAddStackTakeOverTransformations(b);
    EXPECT_EQ(b.GetNrTransforms(), 0);
    EXPECT_EQ(a.GetLast(), moved);
    b.PostMultiply(Twist(0.4));  // still usable
    a.PostAddStackTakeOverTransformations(a);  // from itself: nothing
    EXPECT_EQ(a.GetNrTransforms(), 5);
    EXPECT_EQ(Twist::live, base + 5);

    a.SetFirst(MMTransformIdentity());  // the old front is deleted
    EXPECT_EQ(Twist::live, base + 4);
    auto *last = new Twist(0.5);
    a.SetLast(last);
    a.SetLast(last);  // the same pointer again is kept
    EXPECT_EQ(a.GetLast(), last);
    EXPECT_EQ(Twist::live, base + 4);
    a.MakeIdentity();
    EXPECT_EQ(a.GetNrTransforms(), 0);
    EXPECT_EQ(Twist::live, base + 2);
  }
  EXPECT_EQ(Twist::live, base);
}

}  // namespace
