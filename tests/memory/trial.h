#pragma once

#include "drawing/drawings.h"
#include "support/test.h"

namespace vek0::test {

/// A call to be tried, with what it works on.
class Trial {
 public:
  virtual ~Trial() = default;
  /// The call; answers whether it says that it has succeeded. May throw `std::bad_alloc`.
  virtual bool run() = 0;
  /// All that a failed call must leave as it was.
  virtual std::string look() = 0;
};

/// What a drawing saves, and what saving does not show: blocks and who inserts them, table sizes,
/// use counts, the selection and the extents.
std::string lookOf(const CData& data);

/// Samples with every kind of entity, hatches, blocks and references.
inline constexpr const char* kSamples[] = {"every_kind_r12.dxf", "hatches_ac1015.dxf",
                                           "room_ac1015.dxf", "site.dxf"};
Drawing loadedSample(const std::string& name);

/// A call on a drawing that it must not change.
class DrawingTrial : public Trial {
 public:
  explicit DrawingTrial(Drawing data) : m_data(std::move(data)) {}
  std::string look() override { return lookOf(*m_data); }

 protected:
  Drawing m_data;
};

using TrialMaker = std::function<std::unique_ptr<Trial>()>;

/// Makes allocations of the call fail, alone and together with all that follow: some, evenly
/// spread, or each one if VEK0_EVERY_ALLOCATION is set. A call that fails leaves everything as it
/// was, and succeeds the next time; nothing is leaked.
void failEachAllocation(const std::string& name, const TrialMaker& make);

}  // namespace vek0::test
