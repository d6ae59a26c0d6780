#pragma once

#include <cstddef>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "vek0core/vek0core.h"

namespace vek0::web {

/// Collects what the steps of an undo stack touch, until it is asked which entities of model space
/// look different.
class EditTracker final : public IUndoListener {
 public:
  explicit EditTracker(CData& data);

  void touched(CEnt& ent) override;
  void touched(CBlock& block) override;
  void touched(CNamedItem& item) override;
  void touched(CLayout& layout) override;
  void touchedVars() override;

  struct Changes {
    /// By rank; null: not in model space any more.
    std::map<std::size_t, CEnt*> ents;
    bool isStale = false;  ///< too much may have changed to tell
    bool isAnything = false;
  };
  /// What has changed since the last call.
  Changes take();
  /// Whether `take` would return something.
  bool isPending() const { return m_isAnything; }
  std::size_t steps() const { return m_steps; }

 private:
  struct Look {
    short color;
    LAYER_TRAITS traits;
    const CLtype* ltype;

    bool operator==(const Look&) const = default;
  };
  struct VarsLook {
    double ltypeScale, pointSize;
    long pointMode;
    short weight;

    bool operator==(const VarsLook&) const = default;
  };

  static Look lookOf(const CLayer& layer);
  VarsLook varsLook() const;
  std::unordered_map<const CLayer*, Look> layerLooks() const;
  void addUsersOfBlocks(Changes& changes) const;
  void addUsersOfLayers(const std::unordered_set<const CLayer*>& layers, Changes& changes) const;

  CData& m_data;
  std::map<std::size_t, CEnt*> m_ents;
  std::unordered_set<const CBlock*> m_blocks;
  bool m_areLayersTouched = false, m_isStale = false, m_isAnything = false;
  std::size_t m_steps = 0;
  std::unordered_map<const CLayer*, Look> m_looks;
  VarsLook m_vars;
};

}  // namespace vek0::web
