#pragma once

#include "vek0core/export.h"

class CFileReport;

/// What the reader does where a file and the rules part. The values here are the
/// strict ones; every question that is answered in more than one way asks here.
struct CFileDXFIPolicy {
  /// Keep a font of the drawing's own for every font file that the process does
  /// not know, so that its name survives saving. Strict: the font table's default
  /// font stands in, and without one the file is refused (error 18).
  bool keepFontNames = false;
};

/// How a file is to be read, beyond what file and drawing say.
///
/// `report` is borrowed, may be null, and receives what the reader skipped,
/// replaced or approximated, under these codes. The sample is the name, kind or code
/// at fault; the line is the last one read by then, 0 for what only the drawing tells.
///
///   code dropped          a group code that a drawing has no place for
///   extrusion ignored     an entity drawn in a plane other than X, Y
///   kind skipped          an entity kind that is not read
///   layer undeclared      a layer that no table declared was created
///   linetype unknown      an entity's linetype became BYLAYER
///   style unknown         a text's style became STANDARD
///   font unknown          a font of the drawing's own stands in
///   text fitted           aligned or fitted text became left text
///   mesh as faces         a polygon mesh or polyface became 3D faces
///   mesh incomplete       faces whose vertices the file does not hold are missing
///   arcs straightened     arcs of fitted curves became chords, there were too many
///   curve without frame   a curve without control points became a plain polyline
///   hatch empty           a hatch's lines could not be generated; its boundary is kept
///   hatch coarse          curves of a boundary have few chords, there were too many
///   hatch open            a loop of a hatch was closed by a straight line
///   hatch islands         too many loops: some inner ones count that should not
///   hatch dropped         a hatch without a loop that bounds an area
///   shape dropped         a linetype element of a shape left its gap only
///   block undefined       a block that is inserted and never defined is empty
///   block kept            the drawing's block won over the file's
///   block renamed         an anonymous block of the file took a free name
struct CFileDXFIOptions {
  CFileReport* report = nullptr;
  CFileDXFIPolicy policy;
};
