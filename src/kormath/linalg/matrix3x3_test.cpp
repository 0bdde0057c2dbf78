#include <gtest/gtest.h>
#include <kormath/linalg/matrix3x3.h>

#include <algorithm>
#include <cmath>
#include <random>

#if KORMATH_HAVE_EIGEN
#include <Eigen/Dense>
#endif

namespace {

constexpr double kEps = 2.220446049250313e-16;
constexpr unsigned kSeed = 20261121u;
using Point = MMPoint3d<double>;

MMatrix3x3 Random(std::mt19937 &rng, double scale, bool symmetric) {
  std::uniform_real_distribution<double> u(-scale, scale);
  MMatrix3x3 a;
  for (int i = 0; i < 3; ++i)
    for (int j = symmetric ? i : 0; j < 3; ++j) a.m[i][j] = a.m[symmetric ? j : i][symmetric ? i : j] = u(rng);
  return a;
}

// Largest element of a - b; against the zero default, the largest magnitude.
double MaxDifference(const MMatrix3x3 &a, const MMatrix3x3 &b = MMatrix3x3()) {
  double worst = 0.0;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) worst = std::max(worst, std::fabs(a.m[i][j] - b.m[i][j]));
  return worst;
}

// Largest component of M e - l e.
double EigenResidual(const MMatrix3x3 &a, const Point &e, double l) {
  double worst = 0.0;
  for (int i = 0; i < 3; ++i) worst = std::max(worst, std::fabs(a.GetRow(i).Dot(e) - l * e[i]));
  return worst;
}

double ShiftedDeterminant(MMatrix3x3 a, double l) {
  for (int k = 0; k < 3; ++k) a.m[k][k] -= l;
  return a.Determinant();
}

void SortDescending(double *l) {
  std::sort(l, l + 3, [](double x, double y) { return x > y; });
}

#if KORMATH_HAVE_EIGEN
Eigen::Matrix3d ToEigen(const MMatrix3x3 &a) { return Eigen::Matrix<double, 3, 3, Eigen::RowMajor>::Map(&a.m[0][0]); }
#endif

TEST(Matrix3x3, EigenAnalysisOfKnownMatrices) {
  // Sorted spectra; the lower pair of the second is that of [[250, 0.01], [5, 300000]].
  const std::pair<MMatrix3x3, Point> cases[] = {
      {MMatrix3x3(10, 25, 0, 0, 25, 0, 10, 25, 30), Point(30, 25, 10)},
      {MMatrix3x3(10000, 2, 1, 0, 250, 0.01, 0, 5, 300000), Point(300000.0000001668057, 10000, 249.9999998331943)},
      {MMatrix3x3(2, 1, 0, 1, 2, 0, 0, 0, 0), Point(3, 1, 0)}};  // rank two
  for (const auto &[a, sorted] : cases) {
    double l[3];
    ASSERT_TRUE(a.GetEigenValues(l));
    const double m = a.GetMaxElement();
    for (double value : l) EXPECT_LT(std::fabs(ShiftedDeterminant(a, value)), m * m * m * 5 * kEps);
    Point e[3];
    ASSERT_TRUE(a.GetEigenVectors(e, l));  // in the solver's order
    for (int k = 0; k < 3; ++k) {
      EXPECT_NEAR(e[k].Length(), 1.0, 4 * kEps);
      EXPECT_LT(EigenResidual(a, e[k], l[k]), m * m * kEps);
    }
    SortDescending(l);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(l[k], sorted[k], 1e-13 * m);
  }
}

TEST(Matrix3x3, EigenAnalysisOfRandomSymmetricMatrices) {
  std::mt19937 rng(kSeed);
  double worstValue = 0.0, worstResidual = 0.0;
  int failures = 0;
  for (int trial = 0; trial < 3000; ++trial) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " trial " << trial);
    const MMatrix3x3 a = Random(rng, std::pow(10.0, (trial % 7) - 3), true);  // 1e-3 .. 1e3
    const double size = MaxDifference(a);
    double l[3];
    if (!a.GetEigenValues(l)) {
      // The imaginary bound is 40 eps times the signed maximum element, so
      // only matrices whose largest element is small (or negative) fail.
      EXPECT_LT(a.GetMaxElement(), 0.25 * size);
      ++failures;
      continue;
    }
    // Roots carry a few eps * size; |det(A - l I)| scales with size^3.
    for (double value : l)
      worstValue = std::max(worstValue, std::fabs(ShiftedDeterminant(a, value)) / std::pow(size, 3));
    SortDescending(l);
#if KORMATH_HAVE_EIGEN
    Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver(ToEigen(a), Eigen::EigenvaluesOnly);
    // Symmetric eigenvalues are well conditioned (Eigen sorts ascending).
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(l[k], solver.eigenvalues()(2 - k), 1e-13 * size);
#endif
    if (l[0] - l[1] < 1e-3 * size || l[1] - l[2] < 1e-3 * size) continue;  // close pairs: degenerate test
    Point e[3];
    ASSERT_TRUE(a.GetEigenVectors(e, l));
    for (int k = 0; k < 3; ++k) {
      EXPECT_NEAR(e[k].Length(), 1.0, 8 * kEps);
      worstResidual = std::max(worstResidual, EigenResidual(a, e[k], l[k]) / size);
    }
    EXPECT_LT(std::fabs(e[0].Dot(e[1])) + std::fabs(e[1].Dot(e[2])), 1e-9);
  }
  // Gaps of at least 1e-3 of the size turn an eigenvalue error of ~10 eps
  // into a vector error of up to ~1e-12 (observed residual 1.4e-14).
  EXPECT_LT(worstValue, 1e-13);
  EXPECT_LT(worstResidual, 1e-11);
  EXPECT_LT(failures, 3000 / 20);
}

TEST(Matrix3x3, EigenAnalysisOfDegenerateMatrices) {
  double l[3];
  Point e[3];
  // Zero and multiples of the identity: a bound of 0 passes ("at most"), identity frame.
  for (const MMatrix3x3 &a : {MMatrix3x3(), MMatrix3x3(4, 0, 0, 0, 4, 0, 0, 0, 4)}) {
    ASSERT_TRUE(a.GetEigenValues(l));
    for (double value : l) EXPECT_NEAR(value, a.m[0][0], 1e-14);
    ASSERT_TRUE(a.GetEigenVectors(e, l));
    EXPECT_EQ(e[0], Point(1, 0, 0));
    EXPECT_EQ(e[2], Point(0, 0, 1));
  }
  // Rank 1, s w w^T with a tilted w: the double root at 0 costs ~sqrt(eps), so
  // the null vectors may stay unnormalised but are orthogonal to w to ~1e-8.
  std::mt19937 rng(kSeed);
  std::normal_distribution<double> n(0.0, 1.0);
  int solved = 0;
  for (int trial = 0; trial < 200; ++trial) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " trial " << trial);
    Point w(n(rng), n(rng), n(rng));
    w.Normalise();
    MMatrix3x3 a;
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 3; ++j) a.m[i][j] = 2.5 * w[i] * w[j];
    if (!a.GetEigenValues(l)) continue;  // may exceed the imaginary bound
    ++solved;
    SortDescending(l);
    EXPECT_NEAR(l[0], 2.5, 1e-7);
    ASSERT_TRUE(a.GetEigenVectors(e, l));
    EXPECT_NEAR(std::fabs(e[0].Dot(w)), 1.0, 1e-12);
    for (int k = 1; k < 3; ++k) EXPECT_LT(std::fabs(e[k].Dot(w)) / e[k].Length(), 1e-6);
  }
  EXPECT_GT(solved, 100);
  // A repeated non-zero eigenvalue is split by about sqrt(eps) or refused.
  for (const auto &d : {Point(3, 3, 5), Point(3, 5, 5), Point(1, 1, 2), Point(0, 1, 1)}) {
    if (!MMatrix3x3(d.x, 0, 0, 0, d.y, 0, 0, 0, d.z).GetEigenValues(l)) continue;
    std::sort(l, l + 3);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(l[k], d[k], 1e-7);  // both ascending
  }
  // All elements negative: negative imaginary bound, false, real parts written.
  const MMatrix3x3 negative(-2, -1, -1, -1, -3, -1, -1, -1, -4);
  l[0] = l[1] = l[2] = 99.0;
  EXPECT_FALSE(negative.GetEigenValues(l));
  for (double value : l) EXPECT_LT(std::fabs(ShiftedDeterminant(negative, value)), 1e-12);
}

TEST(Matrix3x3, InverseByCofactors) {
  std::mt19937 rng(kSeed);
  for (int trial = 0; trial < 200; ++trial) {
    const MMatrix3x3 a = Random(rng, 1.0, false);
    if (std::fabs(a.Determinant()) < 0.05) continue;  // keeps the condition number below ~100
    EXPECT_LT(MaxDifference(a * a.Inverse(), MMatrix3x3::Identity()), 1e-12) << "trial " << trial;
  }
  EXPECT_FALSE(std::isfinite(MMatrix3x3(1, 2, 3, 2, 4, 6, 0, 1, 1).Inverse().m[0][0]));  // no test
}

TEST(Matrix3x3, NearestOrthonormal) {
  const double s = std::sqrt(2.0) / 2.0;
  const MMatrix3x3 rotation(0, s, s, 0, s, -s, -1, 0, 0);
  MMatrix3x3 r;
  ASSERT_TRUE(rotation.NearestOrthonormal(r));
  EXPECT_LT(MaxDifference(r, rotation), 10 * kEps);                           // a proper rotation comes back unchanged
  EXPECT_FALSE(MMatrix3x3(1, 2, 3, 2, 4, 6, 3, 6, 9).NearestOrthonormal(r));  // rank 1
  EXPECT_FALSE(MMatrix3x3().NearestOrthonormal(r));
}

TEST(Matrix3x3, NearestOrthonormalAgainstPolarDecomposition) {
  std::mt19937 rng(kSeed);
  double worst = 0.0, worstRankTwo = 0.0;
  int checked = 0;
  for (int trial = 0; trial < 2400; ++trial) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " trial " << trial);
    const bool rankTwo = trial % 6 == 0;
    MMatrix3x3 a = Random(rng, 1.0, false);
    if (rankTwo) a = a * MMatrix3x3(1, 0, 0, 0, 1, 0, 0, 0, 0) * Random(rng, 1.0, false);
    MMatrix3x3 r;
    if (!a.NearestOrthonormal(r)) continue;
    // The quaternion rebuild always gives a proper rotation.
    EXPECT_LT(MaxDifference(r.GetATransposeA(), MMatrix3x3::Identity()), 1e-14);
    EXPECT_NEAR(r.Determinant(), 1.0, 1e-14);
#if KORMATH_HAVE_EIGEN
    // U diag(1, 1, det(U V^T)) V^T is the rotation nearest to A.
    Eigen::JacobiSVD<Eigen::Matrix3d> svd(ToEigen(a), Eigen::ComputeFullU | Eigen::ComputeFullV);
    const Eigen::Vector3d sv = svd.singularValues();
    Eigen::Matrix3d d = Eigen::Matrix3d::Identity();
    d(2, 2) = (svd.matrixU() * svd.matrixV().transpose()).determinant() < 0 ? -1.0 : 1.0;
    // Only proper, well-conditioned input is the polar factor: an improper A
    // enters the quaternion rebuild as it is. Singular values at least 5% of
    // the largest apart keep the closed-form eigenvectors of A^T A sharp.
    if (!rankTwo && (a.Determinant() <= 0 || sv(2) < 0.1 * sv(0))) continue;
    if (sv(0) - sv(1) < 0.05 * sv(0) || (!rankTwo && sv(1) - sv(2) < 0.05 * sv(0)) || sv(1) < 0.1 * sv(0)) continue;
    const double deviation = (ToEigen(r) - svd.matrixU() * d * svd.matrixV().transpose()).cwiseAbs().maxCoeff();
    (rankTwo ? worstRankTwo : worst) = std::max(rankTwo ? worstRankTwo : worst, deviation);
    ++checked;
#endif
  }
#if KORMATH_HAVE_EIGEN
  // Condition below 10: eigenvector errors of A^T A of eps*|S|/gap, damped in
  // S^(-1/2), leave about eps * cond^3 (observed 1e-13). The rank-2 route
  // treats the rounded determinant of A^T A as 0 (observed 9e-15).
  EXPECT_LT(worst, 1e-11);
  EXPECT_LT(worstRankTwo, 1e-12);
  EXPECT_GT(checked, 300);
#endif
}

}  // namespace
