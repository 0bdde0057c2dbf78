#include <kormath/transforms/concat.h>
#include <kormath/transforms/transform_stack.h>

#include <cstddef>
#include <utility>

namespace {
// Below this size _DoMakeIdentity(true) keeps the slots.
constexpr std::size_t kKeepSlotsLimit = 2000;
}  // namespace

MMTransformStack::MMTransformStack() = default;

MMTransformStack::MMTransformStack(const MMTransformStack &other) : MMTransform(other) { PostAddStack(other); }

MMTransformStack &MMTransformStack::operator=(const MMTransformStack &other) {
  // Shallow on purpose: the pointers are shared, nothing is cloned or freed.
  m_transforms = other.m_transforms;
  return *this;
}

MMTransformStack::~MMTransformStack() { _DoMakeIdentity(false); }

bool MMTransformStack::_Transform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const {
  out = in;
  for (auto it = m_transforms.rbegin(); it != m_transforms.rend(); ++it)
    if (!(*it)->Transform(out, out, isVector)) return false;
  return true;
}

bool MMTransformStack::_InverseTransform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const {
  out = in;
  for (MMTransform *t : m_transforms)
    if (!t->InverseTransform(out, out, isVector)) return false;
  return true;
}

MMTransformStack *MMTransformStack::Clone() const { return new MMTransformStack(*this); }

bool MMTransformStack::ConvertFloat16(float *) const { return false; }

bool MMTransformStack::Invert() {
  const std::size_t size = m_transforms.size();
  if (size == 0) return true;
  std::size_t i = 0;
  std::size_t j = size;
  for (std::size_t pairs = 0; size >= 2 && pairs < size / 2; ++pairs) {
    --j;
    if (!m_transforms[i]->Invert()) return false;
    if (!m_transforms[j]->Invert()) return false;
    std::swap(m_transforms[i], m_transforms[j]);
    ++i;
  }
  // The middle element of an odd stack shows itself as the same pointer at i
  // and just before j.
  if (m_transforms[i] == m_transforms[j - 1]) {
    if (!m_transforms[i]->Invert()) return false;
  }
  return true;
}

bool MMTransformStack::IsIdentity() const {
  for (const MMTransform *t : m_transforms)
    if (!t->IsIdentity()) return false;
  return true;
}

void MMTransformStack::PostMultiply(const MMTransform &t) { m_transforms.push_back(t.Clone()); }

void MMTransformStack::PreMultiply(const MMTransform &t) { m_transforms.push_front(t.Clone()); }

void MMTransformStack::PostMultiplyUseTransformation(MMTransform *t) { m_transforms.push_back(t); }

void MMTransformStack::PreMultiplyUseTransformation(MMTransform *t) { m_transforms.push_front(t); }

void MMTransformStack::PostAddStack(const MMTransformStack &other) {
  // By index and with the size taken first, so that other may be *this.
  const std::size_t n = other.m_transforms.size();
  for (std::size_t k = 0; k < n; ++k) m_transforms.push_back(other.m_transforms[k]->Clone());
}

void MMTransformStack::PostAddStackTakeOverTransformations(MMTransformStack &other) {
  if (&other == this) return;
  m_transforms.insert(m_transforms.end(), other.m_transforms.begin(), other.m_transforms.end());
  std::deque<MMTransform *>().swap(other.m_transforms);
}

void MMTransformStack::SetFirst(const MMTransform &t) { SetFirst(t.Clone()); }

void MMTransformStack::SetLast(const MMTransform &t) { SetLast(t.Clone()); }

void MMTransformStack::SetFirst(MMTransform *t) {
  MMTransform *&slot = m_transforms.front();
  if (slot != nullptr && slot != t) delete slot;
  slot = t;
}

void MMTransformStack::SetLast(MMTransform *t) {
  MMTransform *&slot = m_transforms.back();
  if (slot != nullptr && slot != t) delete slot;
  slot = t;
}

MMTransform *MMTransformStack::GetFirst() { return m_transforms.front(); }
const MMTransform *MMTransformStack::GetFirst() const { return m_transforms.front(); }
MMTransform *MMTransformStack::GetLast() { return m_transforms.back(); }
const MMTransform *MMTransformStack::GetLast() const { return m_transforms.back(); }

unsigned short MMTransformStack::GetNrTransforms() const { return static_cast<unsigned short>(m_transforms.size()); }

MMTransform *MMTransformStack::operator[](int index) const { return m_transforms[static_cast<std::size_t>(index)]; }

void MMTransformStack::MakeIdentity() { _DoMakeIdentity(false); }

void MMTransformStack::_DoMakeIdentity(bool keepSlots) {
  for (MMTransform *&t : m_transforms) {
    delete t;
    t = nullptr;
  }
  if (keepSlots && m_transforms.size() < kKeepSlotsLimit) return;
  std::deque<MMTransform *>().swap(m_transforms);
}

std::deque<MMTransform *> &MMTransformStack::_AccessTransforms() { return m_transforms; }

const std::deque<MMTransform *> &MMTransformStack::_GetTransforms() const { return m_transforms; }

bool MMTransformStack::_Equal(const MMTransformStack &other) const {
  const std::size_t n = m_transforms.size();
  if (n != other.m_transforms.size()) return false;
  for (std::size_t k = 0; k < n; ++k)
    if (!(*m_transforms[k] == *other.m_transforms[k])) return false;
  return true;
}
