#include "vek0core/files/reportcode.h"

#include <algorithm>
#include <iterator>

namespace {

struct Row {
  ReportCode code;
  const char* text;
  ReportSeverity severity;
};

constexpr auto kNote = ReportSeverity::Note, kRepair = ReportSeverity::Repair,
               kChange = ReportSeverity::Change, kLoss = ReportSeverity::Loss,
               kFault = ReportSeverity::Fault;

// In the order of the enumeration, so that a code is the index of its row.
constexpr Row kRows[] = {
    {ReportCode::LineCut, "line cut", kLoss},
    {ReportCode::CodeDropped, "code dropped", kLoss},
    {ReportCode::ExtrusionIgnored, "extrusion ignored", kLoss},
    {ReportCode::ClipIgnored, "clip ignored", kLoss},
    {ReportCode::KindSkipped, "kind skipped", kLoss},
    {ReportCode::KindReplaced, "kind replaced", kChange},
    {ReportCode::LayerUndeclared, "layer undeclared", kRepair},
    {ReportCode::LinetypeUnknown, "linetype unknown", kLoss},
    {ReportCode::StyleUnknown, "style unknown", kRepair},
    {ReportCode::FontUnknown, "font unknown", kNote},
    {ReportCode::TextFitted, "text fitted", kChange},
    {ReportCode::MeshAsFaces, "mesh as faces", kChange},
    {ReportCode::MeshIncomplete, "mesh incomplete", kLoss},
    {ReportCode::ArcsStraightened, "arcs straightened", kLoss},
    {ReportCode::CurveWithoutFrame, "curve without frame", kRepair},
    {ReportCode::CurveAsFrame, "curve as frame", kLoss},
    {ReportCode::CurveCoarse, "curve coarse", kLoss},
    {ReportCode::WeightsIgnored, "weights ignored", kLoss},
    {ReportCode::ArrowDropped, "arrow dropped", kLoss},
    {ReportCode::TextEmpty, "text empty", kNote},
    {ReportCode::TextCut, "text cut", kLoss},
    {ReportCode::TextCodeDropped, "text code dropped", kLoss},
    {ReportCode::TextBackgroundDropped, "text background dropped", kLoss},
    {ReportCode::DimensionDrawn, "dimension drawn", kChange},
    {ReportCode::ContentDropped, "content dropped", kLoss},
    {ReportCode::HatchEmpty, "hatch empty", kLoss},
    {ReportCode::HatchAsOutline, "hatch as outline", kLoss},
    {ReportCode::HatchCoarse, "hatch coarse", kLoss},
    {ReportCode::HatchOpen, "hatch open", kRepair},
    {ReportCode::HatchIslands, "hatch islands", kLoss},
    {ReportCode::HatchDropped, "hatch dropped", kLoss},
    {ReportCode::GradientDropped, "gradient dropped", kLoss},
    {ReportCode::ShapeDropped, "shape dropped", kLoss},
    {ReportCode::BlockUndefined, "block undefined", kRepair},
    {ReportCode::BlockKept, "block kept", kLoss},
    {ReportCode::BlockRenamed, "block renamed", kNote},
    {ReportCode::LayerKept, "layer kept", kLoss},
    {ReportCode::LinetypeKept, "linetype kept", kLoss},
    {ReportCode::StyleKept, "style kept", kLoss},
    {ReportCode::LayerReplaced, "layer replaced", kChange},
    {ReportCode::LinetypeReplaced, "linetype replaced", kChange},
    {ReportCode::StyleReplaced, "style replaced", kChange},
    {ReportCode::BlockReplaced, "block replaced", kChange},
    {ReportCode::LayerRenamed, "layer renamed", kNote},
    {ReportCode::LinetypeRenamed, "linetype renamed", kNote},
    {ReportCode::StyleRenamed, "style renamed", kNote},
    {ReportCode::VersionUnknown, "version unknown", kNote},
    {ReportCode::EncodingDiffers, "encoding differs", kRepair},
    {ReportCode::SectionSkipped, "section skipped", kNote},
    {ReportCode::SectionUnknown, "section unknown", kLoss},
    {ReportCode::FileCut, "file cut", kLoss},
    {ReportCode::SectionCut, "section cut", kLoss},
    {ReportCode::TableCut, "table cut", kLoss},
    {ReportCode::BlockCut, "block cut", kLoss},
    {ReportCode::SequenceCut, "sequence cut", kRepair},
    {ReportCode::RecordSkipped, "record skipped", kLoss},
    {ReportCode::StrayLine, "stray line", kRepair},
    {ReportCode::BlankLine, "blank line", kRepair},
    {ReportCode::NumberRepaired, "number repaired", kRepair},
    {ReportCode::NumberDropped, "number dropped", kLoss},
    {ReportCode::LoopDropped, "loop dropped", kLoss},
    {ReportCode::NumberReplaced, "number replaced", kRepair},
    {ReportCode::ColorApproximated, "color approximated", kChange},
    {ReportCode::ColorReplaced, "color replaced", kRepair},
    {ReportCode::FlagsReplaced, "flags replaced", kRepair},
    {ReportCode::LayerMissing, "layer missing", kRepair},
    {ReportCode::CodeMissing, "code missing", kRepair},
    {ReportCode::VariableDropped, "variable dropped", kLoss},
    {ReportCode::EntryDropped, "entry dropped", kLoss},
    {ReportCode::EntityDropped, "entity dropped", kLoss},
    {ReportCode::BlockDropped, "block dropped", kLoss},
    {ReportCode::EntityInvisible, "entity invisible", kLoss},
    {ReportCode::InsertDropped, "insert dropped", kLoss},
    {ReportCode::CurveAsPolyline, "curve as polyline", kChange},
    {ReportCode::OnPaper, "on paper", kLoss},
    {ReportCode::LayoutDropped, "layout dropped", kLoss},
    {ReportCode::ViewSimplified, "view simplified", kLoss},
    {ReportCode::DrawOrderDropped, "draw order dropped", kLoss},
    {ReportCode::GroupDropped, "group dropped", kLoss},
    {ReportCode::DimensionStyleDropped, "dimension style dropped", kLoss},
    {ReportCode::NamedViewDropped, "named view dropped", kLoss},
    {ReportCode::UnitDropped, "unit dropped", kLoss},
    {ReportCode::SettingDropped, "setting dropped", kLoss},
    {ReportCode::BinaryFile, "binary file", kLoss},
    {ReportCode::DwgFile, "dwg file", kLoss},
    {ReportCode::EmptyFile, "empty file", kLoss},
    {ReportCode::LimitReached, "limit reached", kLoss},
    {ReportCode::HandleRepeated, "handle repeated", kFault},
    {ReportCode::OwnerMissing, "owner missing", kFault},
    {ReportCode::PointerDangling, "pointer dangling", kFault},
    {ReportCode::NameUndeclared, "name undeclared", kFault},
    {ReportCode::NameChanged, "name changed", kChange},
    {ReportCode::NamesCoincide, "names coincide", kLoss},
    {ReportCode::NameNotDependent, "name not dependent", kLoss},
    {ReportCode::EntityNotFinite, "entity not finite", kLoss},
    {ReportCode::NumberNotFinite, "number not finite", kLoss},
    {ReportCode::ColorOutOfRange, "color out of range", kLoss},
    {ReportCode::InsertWithoutBlock, "insert without block", kLoss},
    {ReportCode::FillAsOutline, "fill as outline", kLoss},
    {ReportCode::EndlessLineCut, "endless line cut", kChange},
    {ReportCode::ClipLost, "clip lost", kLoss},
    {ReportCode::FixedInsert, "fixed insert", kLoss},
    {ReportCode::HatchAsInsert, "hatch as insert", kLoss},
    {ReportCode::PlotSettingsDropped, "plot settings dropped", kLoss},
    {ReportCode::LinetypeTextDropped, "linetype text dropped", kLoss},
    {ReportCode::LineweightDropped, "lineweight dropped", kLoss},
    {ReportCode::LineweightRounded, "lineweight rounded", kChange},
    {ReportCode::RecordLeft, "record left", kLoss},
    {ReportCode::NotInVersion, "not in version", kLoss},
    {ReportCode::BlocksInACircle, "blocks in a circle", kLoss},
    {ReportCode::ReferenceMissing, "reference missing", kLoss},
    {ReportCode::ReferenceForbidden, "reference forbidden", kLoss},
    {ReportCode::ReferenceNoFile, "reference no file", kLoss},
    {ReportCode::ReferenceBroken, "reference broken", kLoss},
    {ReportCode::ReferenceChanging, "reference changing", kLoss},
    {ReportCode::ReferenceCircular, "reference circular", kLoss},
    {ReportCode::ReferenceTooDeep, "reference too deep", kLoss},
    {ReportCode::ReferenceRepeated, "reference repeated", kLoss},
    {ReportCode::ReferenceOverlaid, "reference overlaid", kNote},
    {ReportCode::ReferenceRenamed, "reference renamed", kNote},
    {ReportCode::ShapeLeftOut, "shape-left-out", kLoss},
    {ReportCode::UnknownStyle, "unknown-style", kLoss},
    {ReportCode::NumberExpected, "number-expected", kLoss},
    {ReportCode::NumberRange, "number-range", kLoss},
    {ReportCode::EmptyField, "empty-field", kRepair},
    {ReportCode::UnclosedElement, "unclosed-element", kRepair},
    {ReportCode::MissingPattern, "missing-pattern", kLoss},
    {ReportCode::ReplacedQuote, "replaced-quote", kChange},
    {ReportCode::ReplacedSeparator, "replaced-separator", kChange},
    {ReportCode::RoundedNumber, "rounded-number", kChange},
};

constexpr bool isInOrder() {
  for (std::size_t i = 0; i < std::size(kRows); ++i)
    if (kRows[i].code != static_cast<ReportCode>(i)) return false;
  return std::size(kRows) == kReportCodes;
}
static_assert(isInOrder(), "one row per code, in the order of the enumeration");

const Row& rowOf(ReportCode code) { return kRows[static_cast<std::size_t>(code)]; }

}  // namespace

const char* textOf(ReportCode code) { return rowOf(code).text; }

std::optional<ReportCode> findReportCode(std::string_view text) {
  const auto row = std::find_if(std::begin(kRows), std::end(kRows),
                                [text](const Row& candidate) { return text == candidate.text; });
  if (row == std::end(kRows)) return std::nullopt;
  return row->code;
}

ReportSeverity severityOf(ReportCode code) { return rowOf(code).severity; }

const char* nameOf(ReportSeverity severity) {
  switch (severity) {
    case ReportSeverity::Fault:
      return "fault";
    case ReportSeverity::Note:
      return "note";
    case ReportSeverity::Repair:
      return "repair";
    case ReportSeverity::Change:
      return "change";
    default:
      return "loss";
  }
}
