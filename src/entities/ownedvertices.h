#pragma once

#include <cstddef>
#include <new>
#include <vector>

#include "vek0core/entities/vertex.h"

namespace vek0::detail {

/// The vertex that a factory created; throws if it failed.
inline CVertex* orThrow(CVertex* vertex) {
  if (vertex == nullptr) throw std::bad_alloc();
  return vertex;
}

/// Deletes the vertices from `from` on, last to first.
inline void deleteAll(const std::vector<CVertex*>& vertexes, std::size_t from) {
  for (std::size_t i = vertexes.size(); i > from; --i) delete vertexes[i - 1];
}

}  // namespace vek0::detail
