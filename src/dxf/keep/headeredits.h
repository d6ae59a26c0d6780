#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "dxf/keep/editcontext.h"

namespace vek0::detail {

/// Compares the variables of two drawings and plans the edits of the header.
class HeaderEdits {
 public:
  /// Lets the edits begin with the handle that the header names as the next. Borrows the context.
  explicit HeaderEdits(EditContext& context);

  /// Changes the variables that differ.
  void planVariables();
  /// Changes the extents and the next handle. `reserved` is the number of handles that are still to
  /// be taken.
  void planCounters(Handle reserved);

 private:
  using Values = std::vector<SourcePair>;
  using Variables = std::map<std::string, Values>;

  static Variables variablesOf(const SourceRecord& header);
  void planExtents();
  void set(const std::string& name, const Values& values, bool isNeeded);

  EditContext& m_on;
  std::size_t m_entry = SourceIndex::kNone;  // of the section
};

}  // namespace vek0::detail
