// Links the installed library and maps a point forward and back through a
// classified matrix held by the abstract interface.
#include <kormath/kormath.h>

#include <cmath>
#include <cstdio>

int main() {
  MMTransformMatrix m;
  m.MakeRotationZYX(MMPoint3d<double>(1.0, 2.0, 3.0), 10.0, 20.0, 30.0);
  const MMTransform &t = m;
  MMPoint3d<double> p(4.0, 5.0, 6.0), q, back;
  t.Transform(q, p);
  if (!t.InverseTransform(back, q)) return 1;
  MMTransform *clone = t.Clone();
  MMPoint3d<double> r;
  clone->Transform(r, p);
  delete clone;
  const double err = (back - p).Length() + (r - q).Length();
  std::printf("consumer: class %d, round-trip error %.3g\n", static_cast<int>(m.GetClass()), err);
  return err < 1e-12 ? 0 : 1;
}
