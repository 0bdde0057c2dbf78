#include <kormath/geometry/orient3d.h>

#include <cmath>

namespace KorMathPredicates {
namespace {

// Constants of the adaptive method, with e = 2^-53 the unit roundoff. They
// are literals on purpose: nothing is computed at run time.
// Splitter of the exact product, 2^27 + 1: splits a double into two halves
// of at most 26 significant bits each.
constexpr double kSplitter = 134217729.0;
// Bound of the plain double evaluation, (7 + 56 e) e.
constexpr double kErrBoundA = 7.771561172376103e-16;
// Bound of the stage with exact minors of the rounded differences,
// (3 + 28 e) e.
constexpr double kErrBoundB = 3.330669073875473e-16;
// Bound of the first-order tail correction, (26 + 288 e) e e, applied to the
// permanent, plus (3 + 8 e) e applied to the magnitude of the estimate.
constexpr double kErrBoundC = 3.204747427460364e-31;
constexpr double kResultErrBound = 3.330669073875471e-16;

// ---- error-free transformations --------------------------------------

// x + y == a + b exactly, when |a| >= |b| (or a == 0).
inline void FastTwoSum(double a, double b, double &x, double &y) {
  x = a + b;
  const double bVirtual = x - a;
  y = b - bVirtual;
}

// x + y == a + b exactly, for any a, b.
inline void TwoSum(double a, double b, double &x, double &y) {
  x = a + b;
  const double bVirtual = x - a;
  const double aVirtual = x - bVirtual;
  const double bRound = b - bVirtual;
  const double aRound = a - aVirtual;
  y = aRound + bRound;
}

// The rounding error of x = fl(a - b): x + tail == a - b exactly.
inline double TwoDiffTail(double a, double b, double x) {
  const double bVirtual = a - x;
  const double aVirtual = x + bVirtual;
  const double bRound = bVirtual - b;
  const double aRound = a - aVirtual;
  return aRound + bRound;
}

// hi + lo == a, each half with at most 26 significant bits.
inline void Split(double a, double &hi, double &lo) {
  const double c = kSplitter * a;
  const double aBig = c - a;
  hi = c - aBig;
  lo = a - hi;
}

// x + y == a * b exactly.
inline void TwoProduct(double a, double b, double &x, double &y) {
  x = a * b;
  double aHi, aLo, bHi, bLo;
  Split(a, aHi, aLo);
  Split(b, bHi, bLo);
  const double err1 = x - aHi * bHi;
  const double err2 = err1 - aLo * bHi;
  const double err3 = err2 - aHi * bLo;
  y = aLo * bLo - err3;
}

// ---- expansions ------------------------------------------------------
// An expansion is an array of doubles, ordered by increasing magnitude and
// nonoverlapping, whose exact sum is the value represented. Zero components
// are dropped; the zero value is the one-component expansion {0}.

// h = e + f. The inputs are merged by magnitude and accumulated with a chain
// of error-free sums; the rounding errors become the components of h. The
// capacity of h must be elen + flen. Returns the length of h.
int ExpansionSum(int elen, const double *e, int flen, const double *f, double *h) {
  int i = 0;
  int j = 0;
  const auto next = [&]() -> double {
    if (i < elen && (j >= flen || std::abs(e[i]) <= std::abs(f[j]))) return e[i++];
    return f[j++];
  };
  const int total = elen + flen;
  if (total == 0) {
    h[0] = 0.0;
    return 1;
  }
  double q = next();
  if (total == 1) {
    h[0] = q;
    return 1;
  }
  int hlen = 0;
  double sum, err;
  // The second smallest is at least as large as the smallest.
  FastTwoSum(next(), q, sum, err);
  q = sum;
  if (err != 0.0) h[hlen++] = err;
  for (int k = 2; k < total; ++k) {
    TwoSum(q, next(), sum, err);
    q = sum;
    if (err != 0.0) h[hlen++] = err;
  }
  if (q != 0.0 || hlen == 0) h[hlen++] = q;
  return hlen;
}

// h = e * b. The capacity of h must be 2 elen. Returns the length of h.
int ScaleExpansion(int elen, const double *e, double b, double *h) {
  int hlen = 0;
  double q, err;
  TwoProduct(e[0], b, q, err);
  if (err != 0.0) h[hlen++] = err;
  for (int i = 1; i < elen; ++i) {
    double productHi, productLo, sum;
    TwoProduct(e[i], b, productHi, productLo);
    TwoSum(q, productLo, sum, err);
    if (err != 0.0) h[hlen++] = err;
    FastTwoSum(productHi, sum, q, err);
    if (err != 0.0) h[hlen++] = err;
  }
  if (q != 0.0 || hlen == 0) h[hlen++] = q;
  return hlen;
}

// h = -e.
void Negate(int elen, const double *e, double *h) {
  for (int i = 0; i < elen; ++i) h[i] = -e[i];
}

// A double approximation of the value of an expansion.
double Estimate(int elen, const double *e) {
  double s = e[0];
  for (int i = 1; i < elen; ++i) s += e[i];
  return s;
}

// h = (a1 + a0) - (b1 + b0) for two exact products; at most 4 components.
int TwoTwoDiff(double a1, double a0, double b1, double b0, double *h) {
  const double e[2] = {a0, a1};
  const double f[2] = {-b0, -b1};
  return ExpansionSum(2, e, 2, f, h);
}

// h = p * q for two-component expansions {tail, head}; at most 8 components.
int ProductOfPairs(const double *p, const double *q, double *h) {
  double byHead[4], byTail[4];
  const int n1 = ScaleExpansion(2, p, q[1], byHead);
  const int n0 = ScaleExpansion(2, p, q[0], byTail);
  return ExpansionSum(n1, byHead, n0, byTail, h);
}

// h = p * q - r * s for two-component expansions; at most 16 components.
int ExactMinor(const double *p, const double *q, const double *r, const double *s, double *h) {
  double pq[8], rs[8], negRs[8];
  const int n1 = ProductOfPairs(p, q, pq);
  const int n2 = ProductOfPairs(r, s, rs);
  Negate(n2, rs, negRs);
  return ExpansionSum(n1, pq, n2, negRs, h);
}

// h = minor * z for a two-component z; at most 64 components.
int MinorTimesPair(int mlen, const double *minor, const double *z, double *h) {
  double byHead[32], byTail[32];
  const int n1 = ScaleExpansion(mlen, minor, z[1], byHead);
  const int n0 = ScaleExpansion(mlen, minor, z[0], byTail);
  return ExpansionSum(n1, byHead, n0, byTail, h);
}

// The exact determinant as an expansion of at most 192 components, from the
// differences given as two-component expansions {tail, head}.
int ExactDeterminant(const double (&adx)[2], const double (&ady)[2], const double (&adz)[2], const double (&bdx)[2],
                     const double (&bdy)[2], const double (&bdz)[2], const double (&cdx)[2], const double (&cdy)[2],
                     const double (&cdz)[2], double *h) {
  double bc[16], ca[16], ab[16];
  const int bcLen = ExactMinor(bdx, cdy, cdx, bdy, bc);
  const int caLen = ExactMinor(cdx, ady, adx, cdy, ca);
  const int abLen = ExactMinor(adx, bdy, bdx, ady, ab);
  double aTerm[64], bTerm[64], cTerm[64], abTerm[128];
  const int aLen = MinorTimesPair(bcLen, bc, adz, aTerm);
  const int bLen = MinorTimesPair(caLen, ca, bdz, bTerm);
  const int cLen = MinorTimesPair(abLen, ab, cdz, cTerm);
  const int abSum = ExpansionSum(aLen, aTerm, bLen, bTerm, abTerm);
  return ExpansionSum(abSum, abTerm, cLen, cTerm, h);
}

// Stages 2 to 4, entered when the plain evaluation could not decide.
double Adaptive(const double *a, const double *b, const double *c, const double *d, double permanent, int &stage) {
  const double adx = a[0] - d[0], bdx = b[0] - d[0], cdx = c[0] - d[0];
  const double ady = a[1] - d[1], bdy = b[1] - d[1], cdy = c[1] - d[1];
  const double adz = a[2] - d[2], bdz = b[2] - d[2], cdz = c[2] - d[2];

  // Stage 2: exact minors and products of the rounded differences.
  double p1, p0, q1, q0;
  double bc[4], ca[4], ab[4];
  TwoProduct(bdx, cdy, p1, p0);
  TwoProduct(cdx, bdy, q1, q0);
  const int bcLen = TwoTwoDiff(p1, p0, q1, q0, bc);
  TwoProduct(cdx, ady, p1, p0);
  TwoProduct(adx, cdy, q1, q0);
  const int caLen = TwoTwoDiff(p1, p0, q1, q0, ca);
  TwoProduct(adx, bdy, p1, p0);
  TwoProduct(bdx, ady, q1, q0);
  const int abLen = TwoTwoDiff(p1, p0, q1, q0, ab);

  double aDet[8], bDet[8], cDet[8], abDet[16], fin[24];
  const int aLen = ScaleExpansion(bcLen, bc, adz, aDet);
  const int bLen = ScaleExpansion(caLen, ca, bdz, bDet);
  const int cLen = ScaleExpansion(abLen, ab, cdz, cDet);
  const int abSum = ExpansionSum(aLen, aDet, bLen, bDet, abDet);
  const int finLen = ExpansionSum(abSum, abDet, cLen, cDet, fin);

  double det = Estimate(finLen, fin);
  double errBound = kErrBoundB * permanent;
  stage = 2;
  if (det >= errBound || -det >= errBound) return det;

  const double adxTail = TwoDiffTail(a[0], d[0], adx);
  const double bdxTail = TwoDiffTail(b[0], d[0], bdx);
  const double cdxTail = TwoDiffTail(c[0], d[0], cdx);
  const double adyTail = TwoDiffTail(a[1], d[1], ady);
  const double bdyTail = TwoDiffTail(b[1], d[1], bdy);
  const double cdyTail = TwoDiffTail(c[1], d[1], cdy);
  const double adzTail = TwoDiffTail(a[2], d[2], adz);
  const double bdzTail = TwoDiffTail(b[2], d[2], bdz);
  const double cdzTail = TwoDiffTail(c[2], d[2], cdz);
  // The differences were exact, so the expansion above is the determinant.
  if (adxTail == 0.0 && bdxTail == 0.0 && cdxTail == 0.0 && adyTail == 0.0 && bdyTail == 0.0 && cdyTail == 0.0 &&
      adzTail == 0.0 && bdzTail == 0.0 && cdzTail == 0.0) {
    return fin[finLen - 1];
  }

  // Stage 3: first-order correction with the tails of the differences.
  stage = 3;
  errBound = kErrBoundC * permanent + kResultErrBound * std::abs(det);
  det +=
      (adz * ((bdx * cdyTail + cdy * bdxTail) - (bdy * cdxTail + cdx * bdyTail)) + adzTail * (bdx * cdy - bdy * cdx)) +
      (bdz * ((cdx * adyTail + ady * cdxTail) - (cdy * adxTail + adx * cdyTail)) + bdzTail * (cdx * ady - cdy * adx)) +
      (cdz * ((adx * bdyTail + bdy * adxTail) - (ady * bdxTail + bdx * adyTail)) + cdzTail * (adx * bdy - ady * bdx));
  if (det >= errBound || -det >= errBound) return det;

  // Stage 4: the exact determinant.
  stage = 4;
  const double ax[2] = {adxTail, adx}, bx[2] = {bdxTail, bdx}, cx[2] = {cdxTail, cdx};
  const double ay[2] = {adyTail, ady}, by[2] = {bdyTail, bdy}, cy[2] = {cdyTail, cdy};
  const double az[2] = {adzTail, adz}, bz[2] = {bdzTail, bdz}, cz[2] = {cdzTail, cdz};
  double exact[192];
  const int len = ExactDeterminant(ax, ay, az, bx, by, bz, cx, cy, cz, exact);
  return exact[len - 1];
}

}  // namespace

double orient3d(const double *a, const double *b, const double *c, const double *d, int &stage) {
  const double adx = a[0] - d[0], bdx = b[0] - d[0], cdx = c[0] - d[0];
  const double ady = a[1] - d[1], bdy = b[1] - d[1], cdy = c[1] - d[1];
  const double adz = a[2] - d[2], bdz = b[2] - d[2], cdz = c[2] - d[2];

  const double bdxcdy = bdx * cdy, cdxbdy = cdx * bdy;
  const double cdxady = cdx * ady, adxcdy = adx * cdy;
  const double adxbdy = adx * bdy, bdxady = bdx * ady;

  const double det = adz * (bdxcdy - cdxbdy) + bdz * (cdxady - adxcdy) + cdz * (adxbdy - bdxady);
  const double permanent = (std::abs(bdxcdy) + std::abs(cdxbdy)) * std::abs(adz) +
                           (std::abs(cdxady) + std::abs(adxcdy)) * std::abs(bdz) +
                           (std::abs(adxbdy) + std::abs(bdxady)) * std::abs(cdz);
  const double errBound = kErrBoundA * permanent;
  stage = 1;
  if (det > errBound || -det > errBound) return det;
  return Adaptive(a, b, c, d, permanent, stage);
}

double orient3d(const double *a, const double *b, const double *c, const double *d) {
  int stage = 0;
  return orient3d(a, b, c, d, stage);
}

}  // namespace KorMathPredicates
