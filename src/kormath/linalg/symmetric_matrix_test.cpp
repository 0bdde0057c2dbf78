#include <gtest/gtest.h>
#include <kormath/linalg/symmetric_matrix.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

namespace {

constexpr double kEps = 2.220446049250313e-16;
constexpr unsigned kSeed = 9001u;

// Order n from the packed lower triangle, row by row.
MSymmetricMatrix Packed(unsigned n, std::initializer_list<double> lower) {
  MSymmetricMatrix s(n);
  std::copy(lower.begin(), lower.end(), s.data);
  return s;
}

void FreeRows(double **vectors, unsigned n) {
  for (unsigned i = 0; i < n; ++i) delete[] vectors[i];
  delete[] vectors;
}

TEST(SymmetricMatrix, PackedStorageAndCopies) {
  MSymmetricMatrix s(3), scaled(3);
  EXPECT_EQ(&s.Element(2, 1), &s.Element(1, 2));
  EXPECT_EQ(&s.Element(2, 1), s.data + 4);  // 2*3/2 + 1
  EXPECT_FALSE(s.SetDimensions(3, 4));
  EXPECT_EQ(s.GetNumColumns(), 3u);
  s.MakeIdentity();
  s.Element(1, 0) = 2.0;
  EXPECT_EQ(s.GetEuclidNormSq(), 11.0);  // off-diagonal counted twice
  EXPECT_EQ(s.GetOffDiagonalEuclidNormSq(), 8.0);
  s.MultiplyDiagonal(scaled, 10.0);
  EXPECT_EQ(scaled.Value(1, 1), 10.0);
  EXPECT_EQ(scaled.Value(0, 1), 2.0);
  // The copy is shallow on purpose; detach it so only one object frees.
  MSymmetricMatrix shallow(s);
  EXPECT_EQ(shallow.data, s.data);
  shallow.data = nullptr;
  MSymmetricMatrix moved(std::move(scaled));
  EXPECT_EQ(scaled.data, nullptr);
  EXPECT_EQ(moved.Value(1, 1), 10.0);

  MLowerTriangularMatrix g;
  ASSERT_TRUE(g.SetDimensions(2, 2));
  g.Element(0, 0) = 7.0;
  EXPECT_EQ(g.Value(0, 1), 0.0);
  EXPECT_EQ(&g.Element(0, 1), &g.Element(0, 0));  // above the diagonal: element (0,0)
}

TEST(Cholesky, DocumentedCases) {
  MSymmetricMatrix a = Packed(2, {4, 2, 3}), zero = Packed(2, {0, 0, 0}), indefinite = Packed(2, {1, 2, 1});
  MLowerTriangularMatrix g, untouched;
  ASSERT_TRUE(a.FACTORISE_CHOLESKY(g));
  EXPECT_TRUE(a.data == nullptr && a.GetNumRows() == 0u);  // moved out, this one empty
  EXPECT_DOUBLE_EQ(g.Value(1, 1), std::sqrt(2.0));         // computed as 2 / sqrt(2)
  EXPECT_FALSE(zero.FactoriseCholesky());
  EXPECT_FALSE(indefinite.FACTORISE_CHOLESKY(untouched));
  EXPECT_EQ(untouched.data, nullptr);
  EXPECT_EQ(indefinite.Value(1, 1), -3.0);  // 1 - 2*2: the failing pivot, left in place
}

TEST(Cholesky, ReconstructionAndSolveOnRandomMatrices) {
  std::mt19937 rng(kSeed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  for (int trial = 0; trial < 100; ++trial) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " trial " << trial);
    const unsigned n = 1 + trial % 7;
    // A = B^T B + n I: symmetric positive definite, condition below ~5.
    MGeneralMatrix b(n, n);
    for (unsigned i = 0; i < n * n; ++i) b.data[i] = u(rng);
    MSymmetricMatrix a, original(n);
    ASSERT_TRUE(b.CreateATransposeA(a));
    for (unsigned i = 0; i < n; ++i) a.Element(i, i) += n;
    original.Copy(&a);
    std::vector<double> x(n), rhs(n, 0.0);
    MLowerTriangularMatrix g;
    ASSERT_TRUE(a.FACTORISE_CHOLESKY(g));
    for (unsigned i = 0; i < n; ++i) {
      x[i] = 1.0 - 0.5 * i;
      for (unsigned j = 0; j <= i; ++j) {
        double sum = 0.0;
        for (unsigned k = 0; k <= j; ++k) sum += g.Value(i, k) * g.Value(j, k);
        EXPECT_NEAR(sum, original.Value(i, j), 32 * kEps * n);  // elements up to ~2n, backward stable
      }
    }
    for (unsigned i = 0; i < n; ++i)
      for (unsigned j = 0; j < n; ++j) rhs[i] += original.Value(i, j) * x[j];
    ASSERT_TRUE(g.SOLVE_G_TG_X_B(rhs.data()));
    for (unsigned i = 0; i < n; ++i) EXPECT_NEAR(rhs[i], x[i], 1e-13);
  }
}

TEST(Jacobi, IndicesAndDiagonalCases) {
  MSymmetricMatrix s(3);
  s.SetToZero();
  unsigned p = 9, q = 9;
  s.ChooseJacobiIndices(p, q);
  EXPECT_EQ(p + q, 0u);  // diagonal: (0, 0)
  s.Element(2, 0) = -3.0;
  s.Element(1, 0) = 3.0;
  s.ChooseJacobiIndices(p, q);
  EXPECT_EQ(q, 1u);  // tie of (0,1) and (0,2): first in row-major order
  // A diagonal matrix: one pass with p = q = 0 and the identity rotation;
  // values sorted by magnitude, identity rows permuted alike. (A matrix
  // that is not diagonal would not end: the rotation is not a similarity.)
  MSymmetricMatrix d = Packed(3, {2, 0, -5, 0, 0, 3}), full = Packed(2, {2, 1, 3}), zeroFirst = Packed(2, {0, 0, 1});
  double **vectors = nullptr, values[3];
  d.GetEigensJacobi(vectors, values, 1e-12);
  EXPECT_EQ(std::vector<double>(values, values + 3), (std::vector<double>{-5, 3, 2}));
  EXPECT_EQ(vectors[0][1] + vectors[1][2] + vectors[2][0], 3.0);
  FreeRows(vectors, 3);
  full.GetEigensJacobi(vectors, values, 1.0);  // a tolerance of 1 or more skips the iteration
  EXPECT_EQ(values[0], 3.0);
  EXPECT_EQ(vectors[0][1], 1.0);
  FreeRows(vectors, 2);
  full.GetEigensJacobi(vectors, values, std::nan(""));  // NaN is not >= 1: one rotation, then stop
  EXPECT_NE(std::fabs(vectors[0][0]) + std::fabs(vectors[1][0]), 1.0);
  FreeRows(vectors, 2);
  zeroFirst.GetEigensJacobi(vectors, values, 1e-12);  // theta = 0/0
  EXPECT_TRUE(std::isnan(values[0]) || std::isnan(values[1]));
  FreeRows(vectors, 2);
}

}  // namespace
