#include <gtest/gtest.h>
#include <kormath/linalg/general_matrix.h>
#include <kormath/linalg/symmetric_matrix.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr unsigned kSeed = 4242u;

MGeneralMatrix Make(unsigned rows, unsigned columns, std::initializer_list<double> values) {
  MGeneralMatrix m(rows, columns);
  std::copy(values.begin(), values.end(), m.data);
  return m;
}

MGeneralMatrix Random(std::mt19937 &rng, unsigned rows, unsigned columns) {
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  MGeneralMatrix m(rows, columns);
  for (unsigned i = 0; i < rows * columns; ++i) m.data[i] = u(rng);
  return m;
}

std::vector<double> Flat(const MGeneralMatrix &m) { return {m.data, m.data + m.rows * m.columns}; }

TEST(GeneralMatrix, DimensionsReinterpretTheBuffer) {
  MGeneralMatrix m(2, 3);
  m.MakeIdentity();  // not square: ones at (0,0) and (1,1)
  EXPECT_EQ(Flat(m), (std::vector<double>{1, 0, 0, 0, 1, 0}));
  MGeneralMatrix flat = Make(2, 6, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
  const double *buffer = flat.data;
  ASSERT_TRUE(flat.SetDimensions(3, 4));  // same product: same buffer, same flat order
  EXPECT_EQ(flat.data, buffer);
  EXPECT_EQ(flat.Value(2, 1), 9.0);
  flat.CleanUp();
  ASSERT_TRUE(flat.SetDimensions(4, 3));
  EXPECT_EQ(flat.data, nullptr);  // same product after CleanUp: nothing allocated

  const MGeneralMatrix a = Make(2, 2, {1, 2, 3, 4});
  MGeneralMatrix copy(a), big(3, 3), sub(2, 1);
  EXPECT_NE(copy.data, a.data);  // deep
  EXPECT_EQ(Flat((copy += a) /= 4.0), (std::vector<double>{0.5, 1, 1.5, 2}));
  big.SetToZero();
  big.SetSubMatrix(a, 1, 1);
  big.GetSubMatrix(sub, 1, 2);
  EXPECT_EQ(Flat(sub), (std::vector<double>{2, 4}));
}

TEST(GeneralMatrix, ProductsOnIntegers) {
  // Small integers: every product and sum is exact.
  MGeneralMatrix a = Make(3, 2, {1, 2, 3, 4, 5, 6});
  EXPECT_EQ(Flat(a * Make(2, 2, {1, -1, 2, 0})), (std::vector<double>{5, -1, 11, -3, 17, -5}));
  MSymmetricMatrix ata;
  ASSERT_TRUE(a.CreateATransposeA(ata));
  EXPECT_EQ((std::vector<double>{ata.Value(0, 0), ata.Value(0, 1), ata.Value(1, 1)}),
            (std::vector<double>{35, 44, 56}));
  std::vector<double> v{1, -1, 2}, out(2), out2;
  ASSERT_TRUE(a.CalculationATransposeV(out.data(), v.data()));
  ASSERT_TRUE(a.CalculationVTransposeA(out2, v));
  EXPECT_EQ(out, (std::vector<double>{8, 10}));
  EXPECT_EQ(out2, out);
}

TEST(GeneralMatrix, DeterminantAndHouseholder) {
  EXPECT_EQ(Make(2, 2, {1, 2, 3, 4}).Determinant(2), -2.0);
  // No base case for order 1, kept on purpose: the empty minor sum is 0.
  EXPECT_EQ(Make(1, 1, {5}).Determinant(1), 0.0);
  // Order 4 against the product of the LU pivots, an independent route.
  std::mt19937 rng(kSeed);
  MGeneralMatrix m = Random(rng, 4, 4);
  const double laplace = m.Determinant(4);
  MLUMatrix lu;
  ASSERT_TRUE(m.FactoriseLU(lu));
  double product = 1.0;
  for (unsigned k = 0; k < 4; ++k) product *= (lu.pivots[k] != k ? -1.0 : 1.0) * lu.Value(k, k);
  EXPECT_NEAR(laplace, product, 1e-14);  // unit-size elements, 24 terms

  // The guard is inverted on purpose: only squared lengths <= 3 * 3 * eps pass.
  MGeneralMatrix h(3, 3);
  h.SetToZero();
  double v[3] = {1, 0, 0}, tiny[3] = {1e-8, 0, 0};
  EXPECT_FALSE(h.HouseholderReflection(v));
  EXPECT_EQ(h.Value(0, 0), 0.0);
  ASSERT_TRUE(h.HouseholderReflection(tiny));
  EXPECT_NEAR(h.Value(0, 0), -1.0, 1e-15);
  EXPECT_EQ(h.Value(1, 1), 1.0);
}

TEST(GeneralMatrix, PowerIterations) {
  MGeneralMatrix identity(2, 2);
  identity.MakeIdentity();
  std::vector<double> v;
  identity.GetDominantEigenVector(v);  // the norm runs 3, 1, 1
  EXPECT_EQ(v, (std::vector<double>{1.0 / 3.0, 1.0 / 3.0}));
  // Eigenvalues 5 on (1, 1) and 1 on (1, -1). "Least" also heads for (1, 1)
  // and stops on a 0.001 norm change, so from (1, 0) the ratio is ~1.08.
  MGeneralMatrix a = Make(2, 2, {3, 2, 2, 3});
  a.GetDominantEigenVector(v);
  EXPECT_DOUBLE_EQ(v[0] / v[1], 1.0);
  a.GetLeastEigenVector(v);
  EXPECT_GT(v[0] / v[1], 1.0);
  EXPECT_LT(v[0] / v[1], 1.1);
}

TEST(LU, PivotRulesAndSingularity) {
  MGeneralMatrix tie = Make(2, 2, {1, 1, -1, 1}), swap = Make(2, 2, {0, 1, 1, 0});
  MLUMatrix lu, lu2, lu3, lu4;
  ASSERT_TRUE(tie.FactoriseLU(lu));
  EXPECT_EQ(lu.pivots[0], 0u);  // equal magnitudes: the upper row stays
  EXPECT_EQ(tie.data, nullptr);
  ASSERT_TRUE(swap.FactoriseLU(lu2));
  EXPECT_EQ(lu2.pivots[0], 1u);
  double b[2] = {3, 4}, one[1] = {2};
  ASSERT_TRUE(lu2.SolveLUxy(b));
  EXPECT_EQ(std::vector<double>(b, b + 2), (std::vector<double>{4, 3}));

  MGeneralMatrix singular = Make(2, 2, {1, 2, 2, 4}), zero = Make(1, 1, {0});
  EXPECT_FALSE(singular.FactoriseLU(lu3));  // factors still moved
  EXPECT_EQ(lu3.pivots[0], 1u);
  EXPECT_EQ(lu3.Value(1, 1), 0.0);
  EXPECT_FALSE(lu3.SolveLUxy(b));
  EXPECT_FALSE(zero.FactoriseLU(lu4));  // 0 <= 0 * 3 * eps at k = 0
  EXPECT_FALSE(lu4.SolveLUxy(one));
}

TEST(LU, ReconstructionSolveAndRetrieve) {
  std::mt19937 rng(kSeed);
  for (int trial = 0; trial < 100; ++trial) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " trial " << trial);
    const unsigned n = 1 + trial % 7;  // order 1 included
    const MGeneralMatrix a = Random(rng, n, n);
    MGeneralMatrix work(a);
    double *buffer = work.data;
    MLUMatrix lu;
    if (!work.FactoriseLU(lu)) continue;
    EXPECT_EQ(lu.data, buffer);  // moved, not copied
    // P A = L U, with P the swaps in ascending order.
    std::vector<double> pa = Flat(a), x(n), b(n, 0.0);
    for (unsigned k = 0; k + 1 < n; ++k)
      for (unsigned j = 0; j < n; ++j) std::swap(pa[k * n + j], pa[lu.pivots[k] * n + j]);
    for (unsigned i = 0; i < n; ++i) {
      x[i] = i + 1.0;
      for (unsigned j = 0; j < n; ++j) {
        double sum = 0.0;
        for (unsigned k = 0; k <= std::min(i, j); ++k) sum += (k == i ? 1.0 : lu.Value(i, k)) * lu.Value(k, j);
        EXPECT_NEAR(sum, pa[i * n + j], 1e-13);  // partial pivoting: small growth at these sizes
      }
    }
    for (unsigned i = 0; i < n; ++i)
      for (unsigned j = 0; j < n; ++j) b[i] += a.Value(i, j) * x[j];
    ASSERT_TRUE(lu.SolveLUxy(b.data()));
    // Random matrices can be ill-conditioned: 1e-6 allows cond up to ~1e9.
    for (unsigned i = 0; i < n; ++i) EXPECT_NEAR(b[i], x[i], 1e-6);
    MGeneralMatrix back;
    back.RetrieveMemory(lu);
    EXPECT_TRUE(back.data == buffer && back.GetNumRows() == n && lu.pivots == nullptr && lu.GetNumRows() == 0u);
  }
}

TEST(QR, ReconstructionAndLeastSquares) {
  std::mt19937 rng(kSeed);
  for (int trial = 0; trial < 50; ++trial) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " trial " << trial);
    const unsigned rows = 3 + trial % 5, columns = 1 + trial % 3;
    MGeneralMatrix a = Random(rng, rows, columns), q, r;
    ASSERT_TRUE(a.FactoriseQR(q, r));
    for (unsigned i = 0; i < rows; ++i)
      for (unsigned j = 0; j < columns; ++j) {
        double sum = 0.0, dot = 0.0;
        for (unsigned k = 0; k <= j; ++k) sum += q.Value(i, k) * r.Value(k, j);
        EXPECT_NEAR(sum, a.Value(i, j), 1e-14);
        // Q^T Q = I up to cond * eps (modified Gram-Schmidt).
        for (unsigned k = 0; k < rows; ++k) dot += q.Value(k, i % columns) * q.Value(k, j);
        EXPECT_NEAR(dot, i % columns == j ? 1.0 : 0.0, 1e-12);
      }
    // Least squares: A^T (b - A x) = 0, the residual orthogonal to every column.
    std::vector<double> b = Flat(Random(rng, rows, 1)), x(columns), residual(b), dots(columns);
    ASSERT_TRUE(a.SolveLeastSquare(b.data(), x.data()));
    for (unsigned i = 0; i < rows; ++i)
      for (unsigned k = 0; k < columns; ++k) residual[i] -= a.Value(i, k) * x[k];
    ASSERT_TRUE(a.CalculationATransposeV(dots.data(), residual.data()));  // exact on integers, see above
    for (double dot : dots) EXPECT_NEAR(dot, 0.0, 1e-12);
  }
  MGeneralMatrix column = Make(3, 1, {3, 0, 4}), q, r, empty, q2, r2;
  ASSERT_TRUE(column.FactoriseQR(q, r));
  EXPECT_EQ(Flat(q), (std::vector<double>{0.6, 0, 0.8}));
  EXPECT_EQ(r.Value(0, 0), 5.0);
  // Reused outputs keep their sizes through CleanUp and get no buffer.
  EXPECT_FALSE(column.FactoriseQR(q, r));
  EXPECT_EQ(q.data, nullptr);
  EXPECT_FALSE(empty.FactoriseQR(q2, r2));
}

}  // namespace
