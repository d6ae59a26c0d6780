#pragma once

#include <functional>

#include "vek0core/export.h"
#include "vek0core/files/textcodec.h"

class CFileReport;

/// What the reader does where a file and the rules part. The values here are the
/// strict ones; every question that is answered in more than one way asks here.
struct CFileDXFIPolicy {
  /// Keep a font of the drawing's own for every font file that the process does
  /// not know, so that its name survives saving. Strict: the font table's default
  /// font stands in, and without one the file is refused (error 18).
  bool keepFontNames = false;
  /// Read what the rules refuse wherever its meaning is plain, turn entity kinds that a
  /// drawing has no class for into others that look the same, and let a fault cost no more
  /// than the record or section that it is in. Every such thing is reported.
  bool tolerant = false;
  /// How far chords may leave a curve that a drawing has no class for, as a share of the
  /// curve's size (see `arcChords`).
  double chordError = 1e-4;

  /// Read the entities of paper space instead of those of model space (tolerant only).
  bool paperSpace = false;

  /// Make each ring of a patterned hatch a closed polyline instead of generating lines, of
  /// which a few bytes of a file can ask for thousands. Solid hatches stay what they are.
  bool hatchOutlines = false;

  /// What a host that opens files of unknown origin wants.
  static CFileDXFIPolicy forAnyFile() {
    CFileDXFIPolicy policy;
    policy.keepFontNames = policy.tolerant = true;
    return policy;
  }
};

/// How a file is to be read, beyond what file and drawing say.
///
/// `report` is borrowed, may be null, and receives what the reader skipped,
/// replaced or approximated, under these codes. The sample is the name, kind or code
/// at fault; the line is the last one read by then, 0 for what only the drawing tells.
///
///   line cut              the end of a line that is longer than any text can be
///   code dropped          a group code that a drawing has no place for
///   extrusion ignored     an entity drawn in a plane other than X, Y
///   kind skipped          an entity kind that is not read
///   kind replaced         an entity kind without a class became others that look the same
///   layer undeclared      a layer that no table declared was created
///   linetype unknown      an entity's linetype became BYLAYER
///   style unknown         a text's style became STANDARD
///   font unknown          a font of the drawing's own stands in
///   text fitted           aligned or fitted text became left text
///   mesh as faces         a polygon mesh or polyface became 3D faces
///   mesh incomplete       faces whose vertices the file does not hold are missing
///   arcs straightened     arcs of fitted curves became chords, there were too many
///   curve without frame   a curve without control points became a plain polyline
///   curve as frame        a curve without usable knots became its control polygon
///   curve coarse          a curve has few chords, there were too many
///   weights ignored       the weights of a curve's control points are no good
///   arrow dropped         the arrow head of a leader with many lines
///   text empty            a formatted text that shows nothing
///   text cut              the end of a formatted text that was too long
///   text code dropped     a font, spacing or color within a formatted text
///   text background dropped  what hides the rest of the drawing behind a formatted text
///   dimension drawn       a dimension without a picture was drawn as its style says
///   content dropped       the block at the end of a leader
///   hatch empty           a hatch's lines could not be generated; its boundary is kept
///   hatch as outline      a patterned hatch became its boundary, as the policy says
///   hatch coarse          curves of a boundary have few chords, there were too many
///   hatch open            a loop of a hatch was closed by a straight line
///   hatch islands         too many loops: some inner ones count that should not
///   hatch dropped         a hatch without a loop that bounds an area
///   gradient dropped      a fill became one of a single color
///   shape dropped         a linetype element of a shape left its gap only
///   block undefined       a block that is inserted and never defined is empty
///   block kept            the drawing's block won over the file's
///   block renamed         an anonymous block of the file took a free name
///
/// Tolerant reading adds these:
///
///   version unknown       a version that the format never had; read by the newest rules
///   encoding differs      texts contradict the code page that the header declares
///   section skipped       a section that a drawing has no place for
///   section unknown       likewise a section of a name that the format does not have
///   file cut              the file ends before its end mark
///   section cut           likewise a section; the sample is empty
///   table cut             likewise a table
///   block cut             likewise a block
///   sequence cut          vertices or attributes that nothing ends
///   record skipped        a record where none of its kind belongs
///   stray line            a line where a group code was due
///   blank line            likewise, with nothing on it
///   number repaired       "1,5", "1D2" or "12abc"
///   number dropped        text or no finite number where a number was due: what it says is lost
///   loop dropped          likewise in a loop of a hatch, which is left out
///   number replaced       a value out of range; the nearest that makes sense stands in
///   color approximated    a true color became the nearest of the palette
///   color replaced        a color out of range: 7 of a layer, BYLAYER of an entity
///   flags replaced        flags that contradict the rest: read as if they were 0
///   layer missing         an entity that names no layer lies on layer 0
///   code missing          a record lacks a code that it should have and can do without
///   variable dropped      a header variable whose value is none
///   entry dropped         a table entry that cannot be understood
///   entity dropped        likewise an entity
///   block dropped         likewise a block
///   entity invisible      an entity that is not to be seen is left out
///   insert dropped        an insert that would make a block a part of itself
///   curve as polyline     an arc or circle in a plane other than X, Y
///   on paper              an entity of the space that is not read; the sample names the sheet
///                         when it is not the one that is shown
///   layout dropped        a layout: of any name but "Model" and "Layout1" and so on, or with
///                         something on its sheet
///   group dropped         a group of entities
///   dimension style dropped  any but STANDARD with the values of the format
///   unit dropped          a unit that the header states, see `CFileDXFIResult` for the drawing's
///   setting dropped       likewise another variable at an unusual value: $INSBASE, $FILLMODE,
///                         $ATTMODE, $QTEXTMODE
///   binary file           the file is of the binary form, which is not read
///   dwg file              the file is no DXF but a DWG file
///   empty file            there is nothing in the file
///   limit reached         more entities than were wanted
struct CFileDXFIOptions {
  CFileReport* report = nullptr;
  CFileDXFIPolicy policy = {};
  /// How bytes are taken for text whatever the file says; `kCodePageAuto`: as it says.
  int codePage = kCodePageAuto;
  /// Called every thousand entities with the number of lines read; false ends the reading,
  /// and what was read by then stays.
  std::function<bool(long)> progress = {};
  /// Entities, those of blocks included, that are read at most; 0 for all. What follows is
  /// left out and reported.
  long maxEntities = 0;
};
