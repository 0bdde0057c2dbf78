#ifndef KORMATH_TRANSFORMS_TRANSFORM_STACK_H
#define KORMATH_TRANSFORMS_TRANSFORM_STACK_H

// A product of any number of transforms of any kind.
//
// The held transforms are kept in product order, front first: the stack
// stands for front * ... * back, so the back element is applied to a point
// first. The stack owns every pointer it holds and deletes it by the virtual
// destructor (in MakeIdentity, in its own destructor, and on replacement in
// SetFirst and SetLast). An empty stack is the identity.
//
// Adding the same pointer twice with the ...UseTransformation forms leads to
// a double delete; nothing guards against it.

#include <kormath/export.h>
#include <kormath/transforms/transform.h>

#include <deque>

class KORMATH_API MMTransformStack : public MMTransform {
 protected:
  // Copies `in` to `out`, then maps `out` in place by each element from the
  // back to the front; stops at the first false and returns it. An empty
  // stack returns true with `out` a copy of `in`.
  bool _Transform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const override;
  // Copies `in` to `out`, then inverse-maps by each element from the front
  // to the back; stops at the first false and returns it.
  bool _InverseTransform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const override;

 public:
  // An empty stack: the identity.
  MMTransformStack();
  // Deep copy: every held transform of `other` is cloned (PostAddStack).
  MMTransformStack(const MMTransformStack &other);
  // SHALLOW on purpose: assigns the deque itself. The pointers are copied,
  // not the transforms, and the old pointers of this stack are neither
  // cloned nor deleted. Both stacks then share their transforms, and
  // destroying both deletes each twice. Kept as it stands; use the copy
  // constructor or PostAddStack for a real copy.
  MMTransformStack &operator=(const MMTransformStack &other);
  // Deletes every held transform, front to back.
  ~MMTransformStack() override;

  // A new stack from the transform pool, deep-copied; owned by the caller.
  MMTransformStack *Clone() const override;
  // A stack has no matrix form, not even when it holds only matrices: false,
  // nothing written.
  bool ConvertFloat16(float *matrix16) const override;
  // Inverts in place: inverts the elements pairwise from both ends and
  // exchanges them, then inverts the middle element of an odd stack. The
  // middle is recognised by pointer value (the element at i equals the one
  // before j), so an even stack holding one pointer twice inverts it once
  // more. On the first element that fails, returns false at once, leaving the
  // stack half inverted. An empty stack stays as it is and returns true.
  bool Invert() override;
  // True if every held transform is the identity; true on an empty stack.
  bool IsIdentity() const override;

  // Clones `t` and appends it at the back: the stack becomes S * t, and t
  // acts first.
  void PostMultiply(const MMTransform &t);
  // Clones `t` and inserts it at the front: the stack becomes t * S, and t
  // acts last.
  void PreMultiply(const MMTransform &t);
  // Takes over `t`, with no clone, and appends it at the back.
  void PostMultiplyUseTransformation(MMTransform *t);
  // Takes over `t`, with no clone, and inserts it at the front.
  void PreMultiplyUseTransformation(MMTransform *t);
  // Clones each element of `other`, in order, and appends the clones at the
  // back (`other` may be this stack).
  void PostAddStack(const MMTransformStack &other);
  // Appends the pointers of `other`, in order, at the back, then empties
  // `other` and gives back its deque storage; `other` stays usable as an
  // empty stack. The only way to move elements between stacks. Taking over
  // from itself does nothing.
  void PostAddStackTakeOverTransformations(MMTransformStack &other);
  // Clone `t` and call the pointer form.
  void SetFirst(const MMTransform &t);
  void SetLast(const MMTransform &t);
  // Delete the present front (back) element, if not null, and store `t` in
  // its place. The stack must not be empty (not checked).
  void SetFirst(MMTransform *t);
  void SetLast(MMTransform *t);
  // The front or back element. The stack must not be empty (not checked).
  MMTransform *GetFirst();
  const MMTransform *GetFirst() const;
  MMTransform *GetLast();
  const MMTransform *GetLast() const;
  // The number held, cut to 16 bits.
  unsigned short GetNrTransforms() const;
  // The element at `index`, not checked.
  MMTransform *operator[](int index) const;
  // Deletes every held transform and empties the stack.
  void MakeIdentity();

 private:
  // Deletes each held transform, front to back. With keepSlots and fewer
  // than 2000 elements each slot is set to null and the deque keeps its
  // size; otherwise the deque is emptied and its storage, block map
  // included, given back. The library itself only passes false.
  void _DoMakeIdentity(bool keepSlots);
  std::deque<MMTransform *> &_AccessTransforms();
  const std::deque<MMTransform *> &_GetTransforms() const;
  // Element-wise operator== from the front; stacks of different lengths are
  // not equal, whatever their product.
  bool _Equal(const MMTransformStack &other) const;

  friend KORMATH_API bool operator==(const MMTransform &a, const MMTransform &b);

  std::deque<MMTransform *> m_transforms;
};

#endif  // KORMATH_TRANSFORMS_TRANSFORM_STACK_H
