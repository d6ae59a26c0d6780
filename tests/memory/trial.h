#pragma once

#include "drawing/drawings.h"
#include "support/test.h"

namespace vek0::test {

/// A call to test, with the objects that it works on.
class Trial {
 public:
  virtual ~Trial() = default;
  /// Makes the call and returns whether it reports success. May throw `std::bad_alloc`.
  virtual bool run() = 0;
  /// Everything that a failed call must leave unchanged.
  virtual std::string look() = 0;
};

/// The saved drawing and the state that saving omits: blocks and the blocks that insert them, table
/// sizes, use counts, the selection and the extents.
std::string lookOf(const CData& data);

/// Samples with every kind of entity, hatches, blocks and references.
inline constexpr const char* kSamples[] = {"every_kind_r12.dxf", "hatches_ac1015.dxf",
                                           "room_ac1015.dxf", "site.dxf"};
Drawing loadedSample(const std::string& name);

/// A call that reads a drawing and must not change it.
class DrawingTrial : public Trial {
 public:
  explicit DrawingTrial(Drawing data) : m_data(std::move(data)) {}
  std::string look() override { return lookOf(*m_data); }

 protected:
  Drawing m_data;
};

using TrialMaker = std::function<std::unique_ptr<Trial>()>;

/// Makes allocations of the call fail, alone and together with all later ones: a selection spread
/// evenly, or every one if VEK0_EVERY_ALLOCATION is set. A failed call must leave everything
/// unchanged, succeed when repeated, and leak nothing.
void failEachAllocation(const std::string& name, const TrialMaker& make);

}  // namespace vek0::test
