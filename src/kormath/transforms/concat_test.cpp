#include <kormath/transforms/concat.h>

#include <kormath/transforms/identity_transform.h>
#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/transform_stack.h>
#include <kormath/transforms/twist_transform_test.h>

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

namespace {

using Twist = TwistForTest;

MMTransformMatrix Matrix(double rx, double ry, double rz, double tx, double ty, double tz) {
  MMTransformMatrix m;
  m.MakeRotationZYX(rx, ry, rz);
  m.AddTranslation(MMPoint3d<double>(tx, ty, tz));
  return m;
}

// Checks that `result` maps like the product of `factors` (front first, the
// back acting first). Rigid motions of points of size ~3 through a handful
// of factors stay within a few hundred ulps of 10, far below 1e-10.
void ExpectSameMapping(const MMTransform &result, const std::vector<const MMTransform *> &factors) {
  std::mt19937 rng(5u);
  std::uniform_real_distribution<double> coord(-3.0, 3.0);
  for (int n = 0; n < 10; ++n) {
    MMPoint3d<double> p(coord(rng), coord(rng), coord(rng)), a, b = p;
    EXPECT_TRUE(result.Transform(a, p));
    for (auto it = factors.rbegin(); it != factors.rend(); ++it)
      if (*it) (*it)->Transform(b, b);  // a null list element is an identity
    EXPECT_LT(a.Distance(b), 1e-10);
  }
}

// Kind of a result: 'I' identity, 'M' matrix, 'T' twist, or the length of a
// stack as a digit.
char KindOf(const MMTransform *t) {
  if (const auto *s = dynamic_cast<const MMTransformStack *>(t)) return static_cast<char>('0' + s->GetNrTransforms());
  if (dynamic_cast<const MMTransformMatrix *>(t)) return t->IsIdentity() ? 'I' : 'M';
  if (dynamic_cast<const Twist *>(t)) return 'T';
  return t->IsIdentity() ? 'I' : '?';
}

MMTransformStack StackOf(std::initializer_list<const MMTransform *> items) {
  MMTransformStack s;
  for (const MMTransform *t : items) s.PostMultiply(*t);
  return s;
}

TEST(Concat, PairwiseKindsMappingAndOwnership) {
  const MMTransformIdentity id;
  const MMTransformMatrix m0 = Matrix(10, 20, 30, 1, 2, 3), m1 = Matrix(-40, 5, 60, 0, -1, 2),
                          m2 = Matrix(70, -15, 5, 3, 0, -2);
  const Twist tw(0.3), tw2(-0.7), rest(0.0);
  const MMTransformStack sTwM1 = StackOf({&tw, &m1}), sM1Tw = StackOf({&m1, &tw}), sM2Tw2 = StackOf({&m2, &tw2}),
                         sIds = StackOf({&id, &rest});
  // A matrix beside a stack merges into the stack's end matrix ('2', not
  // '3'); two stacks never merge.
  struct Case {
    const MMTransform &first, &second;
    char kind;
  } cases[] = {
      {id, id, 'I'},    {m0, id, 'M'},     {id, m0, 'M'},     {sIds, tw, 'T'},      {tw, sIds, 'T'},
      {m0, m1, 'M'},    {m0, tw, '2'},     {tw, m0, '2'},     {tw, tw2, '2'},       {sTwM1, m2, '2'},
      {m0, sM1Tw, '2'}, {tw2, sM1Tw, '3'}, {sTwM1, tw2, '3'}, {sTwM1, sM2Tw2, '4'},
  };
  const int base = Twist::live;
  for (const Case &c : cases) {
    SCOPED_TRACE(testing::Message() << "case " << (&c - cases));
    std::unique_ptr<MMTransform> result(Concat(c.first, c.second));
    EXPECT_TRUE(result.get() != &c.first && result.get() != &c.second);
    EXPECT_EQ(KindOf(result.get()), c.kind);
    ExpectSameMapping(*result, {&c.first, &c.second});
    result.reset();
    EXPECT_EQ(Twist::live, base);
  }
}

TEST(Concat, ListFormMergesNeighboursAndFreesExactlyOnce) {
  MMTransformMatrix m1 = Matrix(10, 20, 30, 1, 2, 3), m2 = Matrix(-40, 5, 60, 0, -1, 2),
                    m3 = Matrix(70, -15, 5, 3, 0, -2), m4 = Matrix(-5, 35, -25, -1, 1, 1),
                    m5 = Matrix(15, 15, 15, 2, 2, 2), up = Matrix(0, 0, 0, 1, 2, 3), down = Matrix(0, 0, 0, -1, -2, -3);
  MMTransformIdentity id;
  Twist tw(0.25), tw2(-0.5), rest(0.0);
  const int base = Twist::live;
  MMTransformStack listStack = StackOf({&tw2, &m2});  // a stack in the list stays the caller's
  struct Case {
    std::vector<MMTransform *> list;
    MMTransform *seed;  // handed over; null for none
    char kind;
    bool resultIsSeed;
  } cases[] = {
      {{}, nullptr, 'I', false},
      {{&id, &rest, nullptr}, nullptr, 'I', false},
      {{}, new Twist(0.4), 'T', true},
      {{&m1}, new Twist(0.0), 'M', false},  // an identity seed is deleted
      {{&tw}, nullptr, 'T', false},         // one element is cloned
      {{&id, &rest}, new Twist(0.4), 'T', true},
      {{&m1, &m2, &m3, &m4, &m5}, nullptr, 'M', false},
      {{&m1, &id, &m2}, nullptr, 'M', false},
      {{&m1, &m2, &tw, &m3, &m4}, nullptr, '3', false},
      {{&tw, &m1, &m2}, nullptr, '2', false},    // an owned product folded in
      {{&up, &down, &tw}, nullptr, 'T', false},  // a product that is the identity
      {{&m2, &tw, &m3}, new MMTransformMatrix(m1), '3', false},
      {{&down}, new MMTransformMatrix(up), 'I', true},
      {{&m1, &m2}, new Twist(0.4), '2', false},
      {{&m2, &tw2}, new MMTransformStack(StackOf({&tw, &m1})), '3', true},  // the seed stack is reused
      {{&listStack, &m3}, new MMTransformStack(StackOf({&m1, &tw})), '4', true},
  };
  for (Case &c : cases) {
    SCOPED_TRACE(testing::Message() << "case " << (&c - cases));
    // The oracle needs the seed before it is handed over; cloning it also
    // tells how many twists it holds.
    const int before = Twist::live;
    std::unique_ptr<MMTransform> seedCopy(c.seed ? c.seed->Clone() : nullptr);
    const int twistsInSeed = Twist::live - before;
    std::vector<const MMTransform *> factors(c.list.begin(), c.list.end());
    if (seedCopy) factors.insert(factors.begin(), seedCopy.get());

    MMTransform *seed = c.seed;
    std::unique_ptr<MMTransform> result(Concat(c.list, c.seed ? &seed : nullptr));
    EXPECT_EQ(seed, nullptr);
    EXPECT_EQ(result.get() == c.seed, c.resultIsSeed);
    for (MMTransform *t : c.list) EXPECT_NE(result.get(), t);
    EXPECT_EQ(KindOf(result.get()), c.kind);
    ExpectSameMapping(*result, factors);
    result.reset();
    seedCopy.reset();
    EXPECT_EQ(Twist::live, before - twistsInSeed);  // all made or handed over is gone
  }
  EXPECT_TRUE(m1 == Matrix(10, 20, 30, 1, 2, 3));  // the caller's elements are untouched
  EXPECT_EQ(Twist::live, base + 1);                // the twist inside listStack
}

TEST(TransformEquality, StructuralTable) {
  const MMTransformIdentity id;
  const MMTransformMatrix unit, m = Matrix(10, 0, 0, 1, 0, 0);
  MMTransformMatrix near = m, far = m;
  near.AccessElement(0, 3) += 1e-6;  // below kDoubleSqrtEpsilonX100
  far.AccessElement(0, 3) += 2e-6;   // above it
  const Twist tw(0.5), rest(0.0);
  const MMTransformStack empty, sM = StackOf({&m}), sMM = StackOf({&m, &m}), sTw = StackOf({&tw}),
                                sMI = StackOf({&m, &id});
  struct Case {
    const MMTransform &a, &b;
    bool expected;
  } cases[] = {
      {id, id, true},   {id, unit, true},  {id, m, false},  {id, empty, true}, {id, rest, false}, {m, near, true},
      {m, far, false},  {unit, id, true},  {m, sM, true},   {sM, m, true},     {m, sMI, false},   {m, sMM, false},
      {m, tw, false},   {empty, id, true}, {sM, id, false}, {sMM, sMM, true},  {sM, sMM, false},  {sMI, sMM, false},
      {sTw, tw, false}, {sTw, sTw, false}, {tw, tw, false}, {rest, id, false},
  };
  for (const Case &c : cases) EXPECT_EQ(c.a == c.b, c.expected) << "case " << (&c - cases);
}

}  // namespace
