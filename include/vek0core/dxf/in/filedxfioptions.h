#pragma once

#include <functional>

#include "vek0core/export.h"
#include "vek0core/files/textcodec.h"

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

  /// Convert each ring of a patterned hatch to a closed polyline instead of generating lines, of
  /// which a few bytes in a file can request thousands. Solid hatches are not affected.
  bool hatchOutlines = false;

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
/// approximated, under these codes. The sample is the offending name, kind or code; the line is the
/// last one read at that time, 0 for problems found only in the finished drawing.
///
///     line cut              the end of a line that exceeds the maximum length of a text
///     code dropped          a group code that a drawing cannot store
///     extrusion ignored     an entity in a plane other than X, Y
///     kind skipped          an unsupported entity kind was skipped
///     kind replaced         an unsupported entity kind was approximated by supported ones
///   layer undeclared      a layer that no table declared was created
///   linetype unknown      an entity's linetype became BYLAYER
///   style unknown         a text's style became STANDARD
///     font unknown          a font created in the drawing was substituted
///   text fitted           aligned or fitted text became left text
///   mesh as faces         a polygon mesh or polyface became 3D faces
///     mesh incomplete       faces whose vertices are not in the file were dropped
///     arcs straightened     arcs of fitted curves became chords because there were too many
///   curve without frame   a curve without control points became a plain polyline
///   curve as frame        a curve without usable knots became its control polygon
///     curve coarse          a curve got fewer chords because there were too many
///     weights ignored       the weights of a curve's control points are invalid
///   arrow dropped         the arrow head of a leader with many lines
///   text empty            a formatted text that shows nothing
///   text cut              the end of a formatted text that was too long
///   text code dropped     a font, spacing or color within a formatted text
///     text background dropped  the background mask of a formatted text
///     dimension drawn       a dimension without a block was drawn according to its style
///   content dropped       the block at the end of a leader
///   hatch empty           a hatch's lines could not be generated; its boundary is kept
///   hatch as outline      a patterned hatch became its boundary, as the policy says
///     hatch coarse          curves of a boundary got fewer chords because there were too many
///   hatch open            a loop of a hatch was closed by a straight line
///     hatch islands         too many loops: some inner loops may be included wrongly
///     hatch dropped         a hatch without a loop that encloses an area
///     gradient dropped      a gradient fill became a fill of a single color
///     shape dropped         a shape element of a linetype was reduced to its gap
///     block undefined       a block that is inserted but never defined is empty
///   block kept            the drawing's block won over the file's
///   block renamed         an anonymous block of the file took a free name
///
/// Tolerant reading adds these:
///
///     version unknown       a nonexistent version; read by the newest rules
///   encoding differs      texts contradict the code page that the header declares
///     section skipped       a section that a drawing cannot store
///     section unknown       likewise, a section with a name that the format does not define
///   file cut              the file ends before its end mark
///   section cut           likewise a section; the sample is empty
///   table cut             likewise a table
///   block cut             likewise a block
///     sequence cut          vertices or attributes without an end mark
///     record skipped        a misplaced record
///     stray line            a line where a group code was expected
///     blank line            likewise, an empty line
///   number repaired       "1,5", "1D2" or "12abc"
///     number dropped        text or a non-finite number where a number was expected
///     loop dropped          likewise in a loop of a hatch, which was dropped
///     number replaced       a value out of range was replaced by the nearest meaningful one
///   color approximated    a true color became the nearest of the palette
///   color replaced        a color out of range: 7 of a layer, BYLAYER of an entity
///     flags replaced        flags that contradict the rest were read as 0
///     layer missing         an entity without a layer name was put on layer 0
///     code missing          a record lacks a required code whose absence can be tolerated
///     variable dropped      a header variable with an invalid value
///     entry dropped         an unreadable table entry
///   entity dropped        likewise an entity
///   block dropped         likewise a block
///     entity invisible      an entity marked invisible was dropped
///     insert dropped        an insert that would make a block contain itself
///   curve as polyline     an arc or circle in a plane other than X, Y
///     on paper              an entity of the space not being read; the sample names the sheet
///                           unless it is the active one
///   layout dropped        a layout: of any name but "Model" and "Layout1" and so on, or with
///                         something on its sheet
///   group dropped         a group of entities
///     dimension style dropped  any style other than STANDARD with the format's default values
///     unit dropped          a unit stated by the header; for the drawing's see `CFileDXFIResult`
///     setting dropped       likewise another non-default variable: $INSBASE, $FILLMODE,
///                         $ATTMODE, $QTEXTMODE
///     binary file           the file is binary DXF, which is not supported
///     dwg file              the file is DWG, not DXF
///     empty file            the file is empty
///     limit reached         more entities than `maxEntities`
struct CFileDXFIOptions {
  CFileReport* report = nullptr;
  CFileDXFIPolicy policy = {};
  /// Code page for decoding, overriding the file; `kCodePageAuto` follows the file.
  int codePage = kCodePageAuto;
  /// Called every thousand entities with the number of lines read; returning false stops the
  /// reading and keeps what was read until then.
  std::function<bool(long)> progress = {};
  /// Maximum number of entities to read, those of blocks included; 0 for no limit. Further ones are
  /// skipped and reported.
  long maxEntities = 0;
};
