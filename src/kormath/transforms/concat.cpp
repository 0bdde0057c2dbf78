#include <kormath/transforms/concat.h>

#include <kormath/transforms/identity_transform.h>
#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/transform_stack.h>

#include <algorithm>
#include <cstddef>

namespace {

enum class Kind { Identity, Matrix, Stack, Other };

// The concrete kind as far as composition and equality care. Extension
// point: every other transform (the field transform, the line perspective,
// a host's own kind) is Other. Composition treats an Other as one opaque
// transform (it is cloned or taken over into a stack, never merged), and
// equality answers false for it; a new kind that must merge or compare
// gets its own entry here and its rows in ConcatPair and operator==.
Kind KindOf(const MMTransform &t) {
  if (dynamic_cast<const MMTransformIdentity *>(&t) != nullptr) return Kind::Identity;
  if (dynamic_cast<const MMTransformMatrix *>(&t) != nullptr) return Kind::Matrix;
  if (dynamic_cast<const MMTransformStack *>(&t) != nullptr) return Kind::Stack;
  return Kind::Other;
}

bool IsMatrix(const MMTransform *t) { return dynamic_cast<const MMTransformMatrix *>(t) != nullptr; }

// An operand of the pairwise product. `owned` is its take flag: non-null
// (and equal to `view`) when the caller gives the operand up. The product
// clears it when it reuses the operand as the result or places it in the
// result; if it is still set on return, the caller deletes the operand.
struct Operand {
  const MMTransform *view;
  MMTransform *owned;

  // The operand itself if taken (the flag is cleared), else a clone.
  MMTransform *TakeOrClone() {
    if (owned != nullptr) {
      MMTransform *t = owned;
      owned = nullptr;
      return t;
    }
    return view->Clone();
  }
};

// The product first * second. Sets wasNotMerged when the result could not
// be one matrix (or a reused identity operand); with mergeOnly it then
// returns null and touches neither operand.
MMTransform *ConcatPair(Operand &first, Operand &second, bool mergeOnly, bool &wasNotMerged) {
  if (first.view->IsIdentity()) {
    wasNotMerged = false;
    return second.TakeOrClone();
  }
  if (second.view->IsIdentity()) {
    wasNotMerged = false;
    return first.TakeOrClone();
  }

  const Kind firstKind = KindOf(*first.view);
  const Kind secondKind = KindOf(*second.view);

  if (firstKind == Kind::Matrix && secondKind == Kind::Matrix) {
    wasNotMerged = false;
    const auto &firstMatrix = static_cast<const MMTransformMatrix &>(*first.view);
    const auto &secondMatrix = static_cast<const MMTransformMatrix &>(*second.view);
    if (first.owned != nullptr) {
      auto *result = static_cast<MMTransformMatrix *>(first.owned);
      first.owned = nullptr;
      result->PostMultiply(secondMatrix);
      return result;
    }
    if (second.owned != nullptr) {
      auto *result = static_cast<MMTransformMatrix *>(second.owned);
      second.owned = nullptr;
      result->PreMultiply(firstMatrix);
      return result;
    }
    auto *result = new MMTransformMatrix(firstMatrix);
    result->PostMultiply(secondMatrix);
    return result;
  }

  wasNotMerged = true;
  if (mergeOnly) return nullptr;

  if (firstKind != Kind::Stack && secondKind != Kind::Stack) {
    auto *stack = new MMTransformStack();
    stack->PreMultiplyUseTransformation(second.TakeOrClone());
    stack->PreMultiplyUseTransformation(first.TakeOrClone());
    return stack;
  }

  if (secondKind == Kind::Stack && firstKind != Kind::Stack) {
    // Taken, or a deep copy (a stack's Clone is its copy constructor).
    auto *stack = static_cast<MMTransformStack *>(second.TakeOrClone());
    // Not an identity stack (tested above), so it holds a front element.
    Operand front{stack->GetFirst(), nullptr};
    bool notMerged = false;
    MMTransform *merged = ConcatPair(first, front, true, notMerged);
    if (!notMerged)
      stack->SetFirst(merged);
    else
      stack->PreMultiplyUseTransformation(first.TakeOrClone());
    return stack;
  }

  if (firstKind == Kind::Stack && secondKind != Kind::Stack) {
    // Taken, or a deep copy (a stack's Clone is its copy constructor).
    auto *stack = static_cast<MMTransformStack *>(first.TakeOrClone());
    Operand back{stack->GetLast(), nullptr};
    bool notMerged = false;
    MMTransform *merged = ConcatPair(back, second, true, notMerged);
    if (!notMerged)
      stack->SetLast(merged);
    else
      stack->PostMultiplyUseTransformation(second.TakeOrClone());
    return stack;
  }

  // Both are stacks.
  auto *stack = static_cast<MMTransformStack *>(first.TakeOrClone());
  if (second.owned != nullptr) {
    auto *other = static_cast<MMTransformStack *>(second.owned);
    second.owned = nullptr;
    stack->PostAddStackTakeOverTransformations(*other);
    delete other;
  } else {
    stack->PostAddStack(static_cast<const MMTransformStack &>(*second.view));
  }
  return stack;
}

// The objects the list form must delete in the end or hand on as result.
class OwnedList {
 public:
  ~OwnedList() {
    for (MMTransform *t : m_items) delete t;
  }
  bool Has(const MMTransform *t) const { return std::find(m_items.begin(), m_items.end(), t) != m_items.end(); }
  void Add(MMTransform *t) { m_items.push_back(t); }
  void Remove(const MMTransform *t) {
    auto it = std::find(m_items.begin(), m_items.end(), t);
    if (it != m_items.end()) m_items.erase(it);
  }
  // Takes `t` out of the list when it is there; returns it, or null.
  MMTransform *Release(MMTransform *t) {
    if (!Has(t)) return nullptr;
    Remove(t);
    return t;
  }

 private:
  std::vector<MMTransform *> m_items;
};

// One pairwise step of the list form on working-list entries a and b, each
// taken if owned. The product is noted as owned; operands left with their
// flag set are deleted.
MMTransform *OwnedStep(OwnedList &owned, MMTransform *a, MMTransform *b) {
  Operand first{a, owned.Release(a)};
  Operand second{b, owned.Release(b)};
  bool notMerged = false;
  MMTransform *product = ConcatPair(first, second, false, notMerged);
  delete first.owned;
  delete second.owned;
  owned.Add(product);
  return product;
}

}  // namespace

MMTransform *Concat(const MMTransform &first, const MMTransform &second) {
  Operand a{&first, nullptr};
  Operand b{&second, nullptr};
  bool notMerged = false;
  return ConcatPair(a, b, false, notMerged);
}

MMTransform *Concat(const std::vector<MMTransform *> &transforms, MMTransform **seed) {
  MMTransform *seedTransform = nullptr;
  if (seed != nullptr) {
    seedTransform = *seed;
    *seed = nullptr;
  }
  if (seedTransform != nullptr && seedTransform->IsIdentity()) {
    delete seedTransform;
    seedTransform = nullptr;
  }

  std::vector<MMTransform *> work;
  work.reserve(transforms.size() + 1);
  if (seedTransform != nullptr) work.push_back(seedTransform);
  for (MMTransform *t : transforms)
    if (t != nullptr && !t->IsIdentity()) work.push_back(t);

  if (work.empty()) return new MMTransformMatrix();
  if (work.size() == 1 && seedTransform != nullptr) return seedTransform;

  OwnedList owned;
  if (seedTransform != nullptr) owned.Add(seedTransform);

  // Merge neighbouring matrices; a product stays in place so that it can
  // merge with the next one too.
  std::vector<MMTransform *> merged;
  merged.reserve(work.size());
  for (MMTransform *t : work) {
    if (!merged.empty() && IsMatrix(merged.back()) && IsMatrix(t))
      merged.back() = OwnedStep(owned, merged.back(), t);
    else
      merged.push_back(t);
  }

  MMTransform *result = nullptr;
  if (merged.size() == 1) {
    result = owned.Release(merged.front());
    if (result == nullptr) result = merged.front()->Clone();
  } else {
    // Fold from the left; from the second step on the running result is
    // always owned.
    result = merged.front();
    for (std::size_t k = 1; k < merged.size(); ++k) result = OwnedStep(owned, result, merged[k]);
    owned.Remove(result);
  }
  return result;  // ~OwnedList deletes whatever else is left
}

bool operator==(const MMTransform &a, const MMTransform &b) {
  const Kind kindA = KindOf(a);
  const Kind kindB = KindOf(b);
  switch (kindA) {
    case Kind::Identity:
      if (kindB == Kind::Identity) return true;
      if (kindB == Kind::Matrix || kindB == Kind::Stack) return b.IsIdentity();
      return false;
    case Kind::Matrix: {
      const auto &matrix = static_cast<const MMTransformMatrix &>(a);
      if (kindB == Kind::Matrix) return matrix._Equal(static_cast<const MMTransformMatrix &>(b));
      if (kindB == Kind::Identity) return a.IsIdentity();
      if (kindB == Kind::Stack) {
        const auto &stack = static_cast<const MMTransformStack &>(b);
        return stack.GetNrTransforms() == 1 && a == *stack[0];
      }
      return false;
    }
    case Kind::Stack: {
      const auto &stack = static_cast<const MMTransformStack &>(a);
      if (kindB == Kind::Identity) return a.IsIdentity();
      if (kindB == Kind::Stack) return stack._Equal(static_cast<const MMTransformStack &>(b));
      return stack.GetNrTransforms() == 1 && *stack[0] == b;
    }
    case Kind::Other:
      break;
  }
  return false;
}
