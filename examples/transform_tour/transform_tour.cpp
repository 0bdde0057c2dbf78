// A short tour of the transforms: builds classified matrices, maps points
// forward and back, reads angles back and shows the inverse routes.

#include <kormath/kormath.h>

#include <cstdio>
#include <vector>

namespace {

const char *ClassName(MMTransformClass c) {
  switch (c) {
    case MMTransformClass::Identity:
      return "Identity";
    case MMTransformClass::Translation:
      return "Translation";
    case MMTransformClass::General:
      return "General";
    case MMTransformClass::OrthoNormal:
      return "OrthoNormal";
    case MMTransformClass::OrthoGonal:
      return "OrthoGonal";
    case MMTransformClass::Scale1D:
      return "Scale1D";
    case MMTransformClass::Scale3D:
      return "Scale3D";
  }
  return "?";
}

void Show(const char *what, const MMTransform &t, const MMPoint3d<double> &p) {
  MMPoint3d<double> q, back;
  t.Transform(q, p);
  const bool inv = t.InverseTransform(back, q);
  std::printf("%-38s (%g, %g, %g) -> (%.6g, %.6g, %.6g)", what, p.x, p.y, p.z, q.x, q.y, q.z);
  if (inv)
    std::printf("  back (%.6g, %.6g, %.6g)\n", back.x, back.y, back.z);
  else
    std::printf("  no inverse\n");
}

}  // namespace

int main() {
  const MMPoint3d<double> p(1.0, 2.0, 3.0);

  MMTransformMatrix translation;
  translation.MakeTranslation(MMPoint3d<double>(10.0, 0.0, -5.0));
  std::printf("translation: class %s\n", ClassName(translation.GetClass()));
  Show("  translate by (10, 0, -5)", translation, p);

  MMTransformMatrix rotation;
  rotation.MakeRotationZYX(MMPoint3d<double>(1.0, 1.0, 1.0), 30.0, -20.0, 45.0);
  double rx, ry, rz;
  rotation.GetRotationZYX(rx, ry, rz);
  std::printf("rotation about (1,1,1): class %s, angles read back %.6f %.6f %.6f degrees\n",
              ClassName(rotation.GetClass()), rx, ry, rz);
  Show("  rotate ZYX(30, -20, 45)", rotation, p);

  MMTransformMatrix scale;
  scale.MakeScale3D(2.0, 3.0, 4.0);
  std::printf("scale: class %s, determinant %g\n", ClassName(scale.GetClass()), scale.Determinant());
  Show("  scale (2, 3, 4)", scale, p);

  MMTransformMatrix chain = rotation;
  chain.PostMultiply(scale);
  std::printf("rotation after scale: class %s\n", ClassName(chain.GetClass()));
  Show("  rotation * scale", chain, p);

  MMTransformMatrix projection;
  projection.MakePerspectiveProjection(-1.0, 1.0, -1.0, 1.0, 1.0, 10.0, 0.0);
  std::printf("perspective: class %s, homogeneous %s\n", ClassName(projection.GetClass()),
              projection.IsHomogeneous() ? "yes" : "no");
  Show("  perspective", projection, MMPoint3d<double>(0.5, 0.5, 4.0));

  MMTransformMatrix singular;
  singular.MakeScale3D(1.0, 0.0, 1.0);
  Show("singular scale (1, 0, 1)", singular, p);

  MMOrthoTransform rigid;
  rigid.MakeRotation(MMPoint3d<double>(0.0, 0.0, 0.0), MMPoint3d<double>(0.0, 0.0, 1.0), 1.5707963267948966, true);
  rigid.SetTranslation(MMPoint3d<double>(0.1, 0.2, 0.3));
  MMTransformMatrix fromRigid;
  fromRigid.Make(rigid);
  std::printf("rigid motion as matrix: class %s, verified %s\n", ClassName(fromRigid.GetClass()),
              rigid.Verify() ? "yes" : "no");
  Show("  quarter turn + (0.1, 0.2, 0.3)", fromRigid, p);

  // Composition: a stack holds any mix of transforms; Concat folds
  // neighbouring matrices into one.
  MMTransformStack inverted;
  inverted.PostMultiply(translation);
  inverted.PostMultiply(rotation);
  inverted.Invert();
  MMTransformStack stack;
  stack.PostMultiply(scale);
  stack.PostAddStack(inverted);
  std::printf("stack of a scale and an inverted stack: %u transforms\n", stack.GetNrTransforms());
  Show("  scale * (translation * rotation)^-1", stack, p);
  std::vector<MMTransform *> chainList = {&translation, &rotation, &scale};
  MMTransform *folded = Concat(chainList, nullptr);
  const auto *foldedMatrix = dynamic_cast<const MMTransformMatrix *>(folded);
  std::printf("Concat of three matrices: %s\n", foldedMatrix ? "folded into one matrix" : "kept as a stack");
  Show("  translation * rotation * scale", *folded, p);
  delete folded;

  M3DBoundingBox<float> box(0.0f, 2.0f, 0.0f, 1.0f, 0.0f, 1.0f);
  fromRigid.TransformBoundingBox(box);
  std::printf("box [0,2]x[0,1]x[0,1] after the rigid motion: [%g,%g]x[%g,%g]x[%g,%g]\n", box.xMin, box.xMax, box.yMin,
              box.yMax, box.zMin, box.zMax);
  return 0;
}
