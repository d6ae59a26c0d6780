#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "vek0core/export.h"

/// What reading or saving repaired, changed or lost.
///
/// Hosts show a code by its text (`textOf`), which never changes; the numbers of the enumerators
/// may. docs/report-codes.md lists texts and severities for users. To add a code, add it here, to
/// the table in src/files/reportcode.cpp and to that page.
enum class ReportCode : std::uint8_t {
  // Reading, strict or tolerant.
  LineCut,            ///< the end of a line that exceeds the maximum length of a text
  CodeDropped,        ///< a group code that a drawing cannot store
  ExtrusionIgnored,   ///< an entity in a plane other than X, Y
  ClipIgnored,        ///< the clip of an insert does not apply; the sample "depth" stands for its
                      ///< clipping planes
  KindSkipped,        ///< an unsupported entity kind was skipped
  KindReplaced,       ///< an unsupported entity kind was approximated by supported ones
  LayerUndeclared,    ///< a layer that no table declared was created
  LinetypeUnknown,    ///< an entity's linetype became BYLAYER
  StyleUnknown,       ///< a text's style became STANDARD
  FontUnknown,        ///< a font created in the drawing was substituted
  TextFitted,         ///< aligned or fitted text became left text
  MeshAsFaces,        ///< a polygon mesh or polyface became 3D faces
  MeshIncomplete,     ///< faces whose vertices are not in the file were dropped
  ArcsStraightened,   ///< arcs of fitted curves became chords because there were too many
  CurveWithoutFrame,  ///< a curve without control points became a plain polyline
  CurveAsFrame,       ///< a curve without usable knots became its control polygon
  CurveCoarse,        ///< a curve got fewer chords because there were too many
  WeightsIgnored,     ///< the weights of a curve's control points are invalid
  ArrowDropped,       ///< the arrow head of a leader with many lines
  TextEmpty,          ///< a formatted text that shows nothing
  TextCut,  ///< the end of a formatted text that was too long, or a text saved up to the longest
            ///< line
  TextCodeDropped,        ///< a font, spacing or color within a formatted text
  TextBackgroundDropped,  ///< the background mask of a formatted text
  DimensionDrawn,         ///< a dimension without a block was drawn according to its style
  ContentDropped,         ///< the block at the end of a leader
  HatchEmpty,             ///< a hatch's lines could not be generated; its boundary is kept
  HatchAsOutline,         ///< a patterned hatch became its boundary, as the policy says
  HatchCoarse,            ///< curves of a boundary got fewer chords because there were too many
  HatchOpen,              ///< a loop of a hatch was closed by a straight line
  HatchIslands,           ///< too many loops: some inner loops may be included wrongly
  HatchDropped,           ///< a hatch without a loop that encloses an area
  GradientDropped,        ///< a gradient fill became a fill of a single color
  ShapeDropped,           ///< a shape element of a linetype was reduced to its gap
  BlockUndefined,         ///< a block that is inserted but never defined is empty
  BlockKept,              ///< the drawing's block won over the file's of that name
  BlockRenamed,           ///< a block of the file took a free name; a named one: "old -> new"
  LayerKept,              ///< likewise; the file's layer differs
  LinetypeKept,           ///< likewise
  StyleKept,              ///< likewise
  LayerReplaced,          ///< the file's layer replaced the drawing's, which differs
  LinetypeReplaced,       ///< likewise
  StyleReplaced,          ///< likewise
  BlockReplaced,          ///< likewise
  LayerRenamed,           ///< a layer of the file took another name: "old -> new"
  LinetypeRenamed,        ///< likewise
  StyleRenamed,           ///< likewise

  // Tolerant reading.
  VersionUnknown,     ///< a nonexistent version; read by the newest rules
  EncodingDiffers,    ///< texts contradict the code page that the header declares
  SectionSkipped,     ///< a section that a drawing cannot store
  SectionUnknown,     ///< a section with a name that the format does not define was skipped
  FileCut,            ///< the file ends before its end mark
  SectionCut,         ///< a section ends before its end mark; the sample is empty
  TableCut,           ///< a table ends before its end mark
  BlockCut,           ///< a block ends before its end mark
  SequenceCut,        ///< vertices or attributes without an end mark
  RecordSkipped,      ///< a misplaced record
  StrayLine,          ///< a line where a group code was expected
  BlankLine,          ///< an empty line where a group code was expected
  NumberRepaired,     ///< a number such as "1,5", "1D2" or "12abc"
  NumberDropped,      ///< text or a non-finite number where a number was expected
  LoopDropped,        ///< the same in a loop of a hatch, which was dropped
  NumberReplaced,     ///< a value out of range was replaced by the nearest meaningful one
  ColorApproximated,  ///< the nearest color number stands for a true color
  ColorReplaced,      ///< a color out of range: 7 of a layer, BYLAYER of an entity
  FlagsReplaced,      ///< flags that contradict the rest were read as 0
  LayerMissing,       ///< an entity without a layer name was put on layer 0
  CodeMissing,        ///< a record lacks a required code whose absence can be tolerated
  VariableDropped,    ///< a header variable with an invalid value
  EntryDropped,       ///< an unreadable table entry
  EntityDropped,      ///< an unreadable entity
  BlockDropped,       ///< an unreadable block
  EntityInvisible,    ///< an entity marked invisible was omitted
  InsertDropped,      ///< an insert that would make a block contain itself
  CurveAsPolyline,    ///< an arc or circle in a plane other than X, Y
  OnPaper,  ///< an entity of the space not being read; the sample names the sheet unless it is the
            ///< active one
  LayoutDropped,   ///< a layout: of any name but "Model" and "Layout1" and so on, or with something
                   ///< on its sheet
  ViewSimplified,  ///< a viewport whose view is not from above, in perspective, limited in depth,
                   ///< hides lines or has no height; the sample says which. Views that are not from
                   ///< above, in perspective or without a height are not drawn
  DrawOrderDropped,  ///< a sort table of an unknown block (sample 330), or entries of one that are
                     ///< incomplete (331) or contradict others (5)
  GroupDropped,      ///< a group of entities
  DimensionStyleDropped,  ///< any style other than STANDARD with the format's default values
  NamedViewDropped,       ///< a named view or coordinate system; "VIEW name" or "UCS name"
  UnitDropped,            ///< a unit stated by the header; for the drawing's see `CFileDXFIResult`
  SettingDropped,         ///< another variable that is not at its default, such as $FILLMODE
  BinaryFile,             ///< the file is binary DXF, which only tolerant reading reads
  DwgFile,                ///< the file is DWG, not DXF
  EmptyFile,              ///< the file is empty
  LimitReached,           ///< more entities than `maxEntities`

  // Audits (`auditDXF`).
  HandleRepeated,   ///< several objects have the handle
  OwnerMissing,     ///< objects of the kind have no owner, or one that is not in the file
  PointerDangling,  ///< a pointer to an object that is not in the file: group code and handle
  NameUndeclared,   ///< a name that neither a table nor a block declares

  // Saving.
  NameChanged,         ///< a name was made valid for the format, or unique: "old -> new"
  NamesCoincide,       ///< two items of a table became one (classic form only)
  NameNotDependent,    ///< an item flagged as part of an external reference, but not named so, lost
                       ///< the flag
  EntityNotFinite,     ///< an entity with a NaN or infinite number was omitted
  NumberNotFinite,     ///< a NaN or infinite number elsewhere was replaced
  ColorOutOfRange,     ///< a color that the format does not support was replaced
  InsertWithoutBlock,  ///< an insert of a block that is not in the drawing was omitted
  FillAsOutline,   ///< a filled face became one that shows its visible edges: in the classic form,
                   ///< or with corners that are not in one plane
  EndlessLineCut,  ///< a ray or infinite line became a line as long as the extents of the drawing
                   ///< or block, grown a little; in later versions, one without a direction
  ClipLost,        ///< a clipped insert shows all of its block
  FixedInsert,     ///< an insert of fixed pixel size became an ordinary one
  HatchAsInsert,   ///< a hatch without the data of its boundary became an insert of its lines
  PlotSettingsDropped,  ///< name, paper and plot settings of the layout whose sheet was saved; of
                        ///< a layout that was read, the plotted area "display" or "view", which
                        ///< became the layout's, or the named table of plot styles
  LinetypeTextDropped,  ///< elements of a linetype other than dashes were omitted
  LineweightDropped,    ///< the line width of a layer was omitted
  LineweightRounded,    ///< a lineweight became the nearest one that the format has
  RecordLeft,  ///< an entity of an unsupported kind was moved or copied, but its record stays as it
               ///< was
  NotInVersion,     ///< what the version of the file lacks was left out: a section, a kind, a kind
                    ///< with a group code, or a variable
  BlocksInACircle,  ///< blocks insert each other in a cycle, so saving failed

  // External references; the sample is "name: path".
  ReferenceMissing,    ///< the file does not exist
  ReferenceForbidden,  ///< the file is outside the folders that the host allows
  ReferenceNoFile,     ///< the path names a folder or a device
  ReferenceBroken,     ///< the file is not a drawing, or is damaged
  ReferenceChanging,   ///< the file was written while it was read
  ReferenceCircular,   ///< a drawing refers to itself, directly or through others
  ReferenceTooDeep,    ///< more than `kMaxXRefDepth` drawings refer to one another
  ReferenceRepeated,   ///< so many names lead to one file that memory would run out
  ReferenceOverlaid,   ///< an overlay of a referenced drawing, shown only by that drawing
  ReferenceRenamed,    ///< one name refers to two drawings, or to two base points of one

  // Linetype files.
  ShapeLeftOut,       ///< a pattern element other than text; the sample is its name
  UnknownStyle,       ///< a text got no style; the sample is the style's name
  NumberExpected,     ///< text where a number was expected was read as 0
  NumberRange,        ///< a number that is not finite was read or written as 0
  EmptyField,         ///< nothing between two commas: no element
  UnclosedElement,    ///< a ']' or a closing quote is missing
  MissingPattern,     ///< the line after a header is missing, or is a header itself
  ReplacedQuote,      ///< a '"' inside a text was written as two single quotes
  ReplacedSeparator,  ///< a ',' or ']' inside a name was written as '_'
  RoundedNumber,      ///< a number of a text has more than six decimals
};

/// Number of report codes.
inline constexpr std::size_t kReportCodes = static_cast<std::size_t>(ReportCode::RoundedNumber) + 1;

/// Severity of a report entry.
enum class ReportSeverity {
  Fault,   ///< of the file, found by an audit; the drawing may not depend on it
  Note,    ///< the drawing matches the file
  Repair,  ///< the file violates the rules, but its meaning was clear
  Change,  ///< nearly the same appearance, but a different object: a curve became a chain
  Loss,    ///< something in the file is not in the drawing, nor in what is saved from it
};

/// The code as a fixed phrase, such as "layer undeclared"; a string literal.
VEK0_API const char* textOf(ReportCode code);

/// The code with that text, none if there is no such code. Linear in the number of codes.
VEK0_API std::optional<ReportCode> findReportCode(std::string_view text);

VEK0_API ReportSeverity severityOf(ReportCode code);

/// "fault", "note", "repair", "change" or "loss".
VEK0_API const char* nameOf(ReportSeverity severity);
