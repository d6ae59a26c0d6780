#pragma once

#include <functional>

#include "vek0core/export.h"
#include "vek0core/files/textcodec.h"

class CEnt;
class CFileReport;

/// How the reader handles files that deviate from the rules. The defaults are strict; every
/// behavior that can vary is controlled here.
struct CFileDXFIPolicy {
  /// Create a font in the drawing for every font file unknown to the process, so that its name
  /// survives saving. Strict: the font table's default font is substituted, and without one the
  /// file is rejected (error 18).
  bool keepFontNames = false;
  /// Accept violations of the rules wherever the meaning is clear, approximate unsupported entity
  /// kinds by supported ones, and skip only the damaged record or section. Every such case is
  /// reported.
  bool tolerant = false;
  /// Maximum deviation of chords from a curve of an unsupported kind, as a fraction of the curve's
  /// size (see `arcChords`).
  double chordError = 1e-4;

  /// Read the entities of paper space instead of those of model space (tolerant only).
  bool paperSpace = false;

  /// Read the layouts with their sheets (loading under the tolerant policy only, and not together
  /// with `paperSpace`). Otherwise their contents are skipped and reported.
  bool layouts = true;

  /// Convert each ring of a patterned hatch to a closed polyline instead of generating lines, of
  /// which a few bytes in a file can request thousands. Solid hatches are not affected.
  bool hatchOutlines = false;

  /// Make one entity of each record (tolerant only). A record that becomes several entities is an
  /// insert at (0, 0, 0) of a block that holds them, `CBlock::isOfRecord`; it has the properties of
  /// the record, and the pieces inherit those that they share with it. A record of an unsupported
  /// kind is an insert of an empty block, `EntRecord::Opaque`: it has layer, linetype, color,
  /// traits and handle, but shows nothing. The report is the same.
  bool wholeRecords = false;

  /// The policy for hosts that open files of unknown origin.
  static CFileDXFIPolicy forAnyFile() {
    CFileDXFIPolicy policy;
    policy.keepFontNames = policy.tolerant = true;
    return policy;
  }
};

/// Options for reading a file.
///
/// `report` is borrowed, may be null, and receives what the reader skipped, replaced or
/// approximated (see `ReportCode`). The sample is the offending name, kind or code; the line is the
/// last one read at that time, 0 for problems found only in the finished drawing.
struct CFileDXFIOptions {
  CFileReport* report = nullptr;
  CFileDXFIPolicy policy = {};
  /// Code page for decoding, overriding the file; `kCodePageAuto` follows the file.
  int codePage = kCodePageAuto;
  /// Called every thousand entities with the number of lines read; returning false stops the
  /// reading and keeps what was read until then.
  std::function<bool(long)> progress = {};
  /// Called with each entity, before it joins the drawing, and the line at which its record begins;
  /// with every entity of a record that yields several. It may still be dropped.
  std::function<void(const CEnt& ent, long line)> onEntity = {};
  /// For hosts that count or measure a drawing which need not fit into memory: called with each
  /// entity of model space, which is then deleted instead of joining the drawing. Hatches, and
  /// inserts whose content is not complete yet, join it without a call. If definitions follow such
  /// entities, reading stops: `CFileDXFIResult::isOutdated`. Loading only.
  std::function<void(CEnt& ent)> onPassing = {};
  /// Maximum number of entities to read, those of blocks included; 0 for no limit. Further ones are
  /// skipped and reported.
  long maxEntities = 0;
  /// Threads that reading may use; 0 for as many as help. Two read files beyond a megabyte faster
  /// than one, more do not; the result is the same. `IFile` and the functions above are called by
  /// the calling thread alone.
  int threads = 0;
};
