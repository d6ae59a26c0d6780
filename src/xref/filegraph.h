#pragma once

#include <unordered_map>
#include <vector>

#include "zim0lang/wstring.h"

namespace vek0::detail {

/// Which drawings refer to which, by file.
class FileGraph {
 public:
  /// Notes that one refers to the other. Where that closes a circle, or nests drawings too
  /// deep by any way from the outermost, answers what is wrong, and nothing is noted.
  const char* add(const zim::WString& from, const zim::WString& to);

 private:
  struct Node {
    int level = 1;  // the most drawings that are around it
    std::vector<Node*> refersTo;
  };

  static bool leads(const Node& from, const Node& to);
  static bool sink(Node& top, int level);

  std::unordered_map<zim::WString, Node> m_nodes;
};

}  // namespace vek0::detail
