#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "vek0core/vek0core.h"

namespace vek0::host {

/// State of a drawing between the steps of an edit.
struct Editing {
  CData& data;
  CUndoStack& undo;           ///< records every change
  std::vector<CEnt*> chosen;  ///< entities that the next step works on, in drawing order
  /// Leave entities unchanged that a step cannot transform or explode (`EntRecord::Opaque`);
  /// otherwise the step fails.
  bool leaveUnsupported = false;
  PNT_3D last = {};  ///< the last point that a command stated; relative points start from it
};

/// Result of a step: what it has done, or why it failed. A failed step may have made changes, which
/// `takeStep` reverts, but leaves `Editing::chosen` as it was.
struct StepOutcome {
  /// A change that is worth an entry of the report.
  struct Change {
    const char* code;
    zim::WString handle;  ///< of the entity, as text
    std::string message;
  };

  bool ok;
  std::string text;
  std::vector<Change> changes = {};

  static StepOutcome done(std::string text) { return {true, std::move(text), {}}; }
  static StepOutcome failed(std::string text) { return {false, std::move(text), {}}; }
  static StepOutcome noMemory() { return failed("out of memory"); }
};

/// An operation on the drawing, with its values bound.
using EditStep = std::function<StepOutcome(Editing&)>;

/// "1 line", "3 lines".
std::string counted(std::size_t count, const char* one, const char* many);
inline std::string countedEntities(std::size_t count) {
  return counted(count, "entity", "entities");
}

}  // namespace vek0::host
