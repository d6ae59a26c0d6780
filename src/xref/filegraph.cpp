#include "xref/filegraph.h"

#include <unordered_set>
#include <utility>

#include "vek0core/xref/xrefs.h"

namespace vek0::detail {

std::optional<ReportCode> FileGraph::add(const zim::WString& from, const zim::WString& to) {
  Node& outer = m_nodes[from];
  Node& inner = m_nodes[to];
  // Checked before the edge exists, so that the graph never contains a circle.
  if (leads(inner, outer)) return ReportCode::ReferenceCircular;
  if (!sink(inner, outer.level + 1)) return ReportCode::ReferenceTooDeep;
  outer.refersTo.push_back(&inner);
  return std::nullopt;
}

// Levels increase along paths, so the search stops at the target's level: otherwise every drawing
// that shows one of many references would visit all of them.
bool FileGraph::leads(const Node& from, const Node& to) {
  std::unordered_set<const Node*> met{&from};
  std::vector<const Node*> open{&from};
  while (!open.empty()) {
    const Node* node = open.back();
    open.pop_back();
    if (node == &to) return true;
    if (node->level >= to.level) continue;
    for (const Node* next : node->refersTo)
      if (met.insert(next).second) open.push_back(next);
  }
  return false;
}

// Moves a drawing to at least that level, and its references below it; all or nothing.
bool FileGraph::sink(Node& top, int level) {
  std::vector<std::pair<Node*, int>> before;
  std::vector<std::pair<Node*, int>> open{{&top, level}};
  while (!open.empty()) {
    const auto [node, least] = open.back();
    open.pop_back();
    if (least > kMaxXRefDepth) {
      // In reverse, because a node may have been moved several times.
      for (std::size_t i = before.size(); i-- > 0;) before[i].first->level = before[i].second;
      return false;
    }
    if (node->level >= least) continue;
    before.emplace_back(node, node->level);
    node->level = least;
    for (Node* next : node->refersTo) open.emplace_back(next, least + 1);
  }
  return true;
}

}  // namespace vek0::detail
