#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "vek0core/files/reportcode.h"
#include "zim0lang/wstring.h"

namespace vek0::detail {

/// Graph of references between drawings, by file.
class FileGraph {
 public:
  /// Adds a reference from one drawing to another. If that would close a cycle, or nest drawings
  /// too deeply on any path from the outermost, returns that fault and adds nothing.
  std::optional<ReportCode> add(const zim::WString& from, const zim::WString& to);

 private:
  struct Node {
    int level = 1;  // maximum number of drawings around it
    std::vector<Node*> refersTo;
  };

  static bool leads(const Node& from, const Node& to);
  static bool sink(Node& top, int level);

  std::unordered_map<zim::WString, Node> m_nodes;
};

}  // namespace vek0::detail
