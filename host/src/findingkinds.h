#pragma once

#include <cstdint>

#include "vek0host/inspection.h"

namespace vek0::host {

/// What can be found in a drawing. The curve faults come first, in the order of `CurveFault`.
enum class FindingKind : std::uint8_t {
  OpenContour,
  Duplicate,
  Overlap,
  SelfIntersection,
  ZeroLength,
  Tiny,
  UnclosedRing,
  Text,
  UnsupportedKind,
  NoUnits,
  TooLarge,
  BadName,
  MissingFont,
  OffSheet,
  DoesNotPlot,
};

enum class FindingLevel : std::uint8_t { None, Warning, Error };

/// A word such as "open_contour".
const char* nameOf(FindingKind kind);

/// How bad that is for the purpose.
FindingLevel levelOf(FindingKind kind, Purpose purpose);

/// Whether the entity is a text, of one line or of several.
bool isTextEntity(const CEnt& ent);

/// Whether the purpose has no use for a kind of entity, apart from texts; of what `placeContent`
/// does not list as curves.
bool isUnsupportedFor(const CEnt& ent, Purpose purpose);

}  // namespace vek0::host
