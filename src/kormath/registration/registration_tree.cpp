#include <kormath/registration/registration_tree.h>

#include <cstddef>

using KorMathRegistration::kNoIndex;

namespace {

// The working state of Build: the chosen edge, the placed sets and a copy of
// the cost table.
class MCostEdgeCursor {
 public:
  MCostEdgeCursor(MDataArray2D<MRegistrationCostInfo> const &table, std::uint64_t n)
      : from(kNoIndex), to(kNoIndex), placed(static_cast<std::size_t>(n), false), costs(table), m_n(n) {}

  // Clears every mark, places `root` alone and searches the first edge.
  void Start(std::uint64_t root) {
    placed.assign(placed.size(), false);
    placed.at(static_cast<std::size_t>(root)) = true;
    Next();
  }

  // One step of Prim's method: a full scan of the table for the strictly
  // cheapest edge from a placed set to an unplaced one.
  void Next() {
    MRegistrationCostInfo best;  // the infinite cost: outliers all-ones, largest error
    const std::uint64_t none = m_n + 10;
    std::uint64_t bestI = none;
    std::uint64_t bestJ = none;
    for (std::uint64_t i = 0; i < m_n; ++i) {
      if (!placed[static_cast<std::size_t>(i)]) {
        continue;
      }
      for (std::uint64_t j = 0; j < m_n; ++j) {
        if (placed[static_cast<std::size_t>(j)]) {
          continue;
        }
        MRegistrationCostInfo const &c = costs.At(i, j);
        if (c < best) {
          best = c;
          bestI = i;
          bestJ = j;
        }
      }
    }
    if (bestI != none) {
      from = bestI;
      to = bestJ;
      placed[static_cast<std::size_t>(bestJ)] = true;
    } else {
      from = kNoIndex;
      to = kNoIndex;
    }
  }

  std::uint64_t from;
  std::uint64_t to;
  std::vector<bool> placed;
  MDataArray2D<MRegistrationCostInfo> costs;

 private:
  std::uint64_t m_n;
};

}  // namespace

MRegistered3DPointsTree::MRegistered3DPointsTree() : m_nodes(), m_root(kNoIndex) {}

MRegistered3DPointsTree::~MRegistered3DPointsTree() = default;

bool MRegistered3DPointsTree::Build(MDataArray2D<MRegistrationCostInfo> const &costs,
                                    MDataArray2D<MMTransformMatrix> const &transforms,
                                    std::vector<MMTransformMatrix> const &wcsTransforms, std::uint64_t const &root) {
  const std::uint64_t n = costs.GetSize();
  if (n < 2) {
    return false;
  }
  m_nodes.resize(static_cast<std::size_t>(n));

  MCostEdgeCursor cursor(costs, n);
  cursor.Start(0);  // searched and discarded: it leaves no trace
  cursor.Start(root);
  m_root = cursor.from;

  while (cursor.from != kNoIndex && cursor.to != kNoIndex) {
    const std::uint64_t from = cursor.from;
    const std::uint64_t to = cursor.to;
    MRegisteredTreeNode &parent = m_nodes.at(static_cast<std::size_t>(from));
    MRegisteredTreeNode &child = m_nodes.at(static_cast<std::size_t>(to));
    parent.index = from;
    child.index = to;
    parent.wcsTransform = wcsTransforms.at(static_cast<std::size_t>(from));
    child.wcsTransform = wcsTransforms.at(static_cast<std::size_t>(to));
    parent.children.push_back(to);
    child.relativeTransform = transforms.At(to, from);
    child.cost = costs.At(to, from);
    cursor.Next();
  }
  return true;
}

void MRegistered3DPointsTree::UpdateWcsTransforms() {
  MRegisteredTreeNode const &rootNode = m_nodes.at(static_cast<std::size_t>(m_root));
  const MMTransformMatrix parent(rootNode.wcsTransform);
  _Visit(m_root, parent);
}

void MRegistered3DPointsTree::_Visit(std::uint64_t index, MMTransformMatrix const &parent) {
  MRegisteredTreeNode &node = m_nodes[static_cast<std::size_t>(index)];
  node.wcsTransform = node.relativeTransform;
  node.wcsTransform.PreMultiply(parent);
  for (std::uint64_t child : node.children) {
    _Visit(child, node.wcsTransform);
  }
}

std::uint64_t MRegistered3DPointsTree::GetParent(std::uint64_t index) const {
  for (std::size_t i = 0; i < m_nodes.size(); ++i) {
    for (std::uint64_t child : m_nodes[i].children) {
      if (child == index) {
        return i;
      }
    }
  }
  return kNoIndex;
}
