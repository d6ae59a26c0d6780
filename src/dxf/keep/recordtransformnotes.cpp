#include <algorithm>

#include "dxf/keep/inlineheights.h"
#include "dxf/keep/recordkinds.h"

// Texts, dimensions and what else carries a text.
namespace vek0::detail {
namespace {

constexpr CodeRole kTextRoles[] = {{10, Role::PlanePoint}, {11, Role::PlanePoint},
                                   {38, Role::Rise},       {39, Role::Rise},
                                   {40, Role::Length},     {50, Role::Angle}};
constexpr CodeRole kShapeRoles[] = {
    {10, Role::Point}, {39, Role::Rise}, {40, Role::Length}, {50, Role::Angle}};
constexpr CodeRole kMTextRoles[] = {{10, Role::Point},  {11, Role::Vector}, {40, Role::Length},
                                    {41, Role::Length}, {42, Role::Length}, {43, Role::Length},
                                    {46, Role::Length}, {50, Role::Angle}};
// An embedded object of an MTEXT describes its columns.
constexpr CodeRole kColumnRoles[] = {{10, Role::Vector}, {11, Role::Point},  {40, Role::Length},
                                     {41, Role::Length}, {42, Role::Length}, {43, Role::Length},
                                     {44, Role::Length}, {45, Role::Length}, {46, Role::Length}};
// The insertion point of a dimension's block (12) is relative to where the block shows it.
constexpr CodeRole kDimensionRoles[] = {
    {10, Role::Point}, {11, Role::PlanePoint}, {12, Role::PlaneVector}, {13, Role::Point},
    {14, Role::Point}, {15, Role::Point},      {16, Role::PlanePoint},  {50, Role::Angle},
    {51, Role::Angle}, {53, Role::Angle}};
constexpr CodeRole kArcDimensionRoles[] = {
    {10, Role::Point}, {11, Role::PlanePoint}, {12, Role::PlaneVector}, {13, Role::Point},
    {14, Role::Point}, {15, Role::Point},      {16, Role::Point},       {17, Role::Point},
    {51, Role::Angle}, {53, Role::Angle}};
constexpr CodeRole kNoteLeaderRoles[] = {{10, Role::Point},   {40, Role::Length},
                                         {41, Role::Length},  {211, Role::Vector},
                                         {212, Role::Vector}, {213, Role::Vector}};
constexpr CodeRole kToleranceRoles[] = {{10, Role::Point}, {11, Role::Vector}};
constexpr CodeRole kMlineRoles[] = {
    {10, Role::Point},  {11, Role::Point},  {12, Role::Direction}, {13, Role::Direction},
    {40, Role::Length}, {41, Role::Length}, {42, Role::Length}};

constexpr long kBeforeTextAngle[] = {10, 20, 30, 40, 1};
constexpr long kBeforeTextNormal[] = {10, 20, 30, 40, 1, 50, 41, 51, 7, 71, 72, 11, 21, 31, 39};
constexpr long kBeforeShapeAngle[] = {10, 20, 30, 40, 2};
constexpr long kBeforeShapeNormal[] = {10, 20, 30, 40, 2, 50, 41, 51, 39};
constexpr long kBeforeMTextNormal[] = {10, 20, 30, 40, 41, 46, 71, 72, 1, 3, 7};
constexpr long kBeforeMTextAngle[] = {10, 20, 30, 40,  41,  46,  71, 72,
                                      1,  3,  7,  210, 220, 230, 42, 43};
constexpr long kBeforeDimensionAngle[] = {13, 23, 33, 14, 24, 34};
constexpr long kBeforeDimensionNormal[] = {1,  2,  3,  10, 20, 30, 11, 21, 31, 12, 22, 32,
                                           70, 71, 72, 41, 42, 73, 74, 75, 51, 53, 280};
constexpr long kBeforeLeaderNormal[] = {10, 20, 30, 76, 77, 340};
constexpr long kBeforeLeaderDirection[] = {10, 20, 30, 76, 77, 340, 210, 220, 230};
constexpr long kBeforeToleranceNormal[] = {1, 3, 10, 20, 30};
constexpr long kBeforeToleranceDirection[] = {1, 3, 10, 20, 30, 210, 220, 230};
constexpr long kBeforeMlineNormal[] = {10, 20, 30};

void applyEmbedded(RecordMapper& mapper, Roles roles) {
  const auto& pairs = mapper.record().pairs;
  std::size_t i = 0;
  const std::size_t end = mapper.record().extendedData();
  while (i < end && pairs[i].code != kEmbeddedCode) ++i;
  while (i < end && mapper.isOk()) i = mapper.apply(i, roles);
}

void finishText(RecordMapper& mapper) {
  mapper.require(mapper.plane().isSimilar());
  mapper.turnMissing(50, kBeforeTextAngle);
}

// Attributes with several lines embed an MTEXT.
void finishAttribute(RecordMapper& mapper) {
  finishText(mapper);
  applyEmbedded(mapper, kMTextRoles);
}

void finishShape(RecordMapper& mapper) { mapper.turnMissing(50, kBeforeShapeAngle); }

// Columns before AC1032: parts of the extended data whose numbers are widths and heights.
void scaleColumns(RecordMapper& mapper) {
  constexpr long text = 1000, number = 1040;
  const SourceRecord& record = mapper.record();
  bool isColumn = false;
  for (std::size_t i = record.extendedData(); i < record.pairs.size(); ++i) {
    const SourcePair& pair = record.pairs[i];
    if (pair.code == text && pair.value.starts_with("ACAD_MTEXT_"))
      isColumn = pair.value.ends_with("_BEGIN");
    if (isColumn && pair.code == number) mapper.multiply(i, mapper.plane().scale());
  }
}

void finishMText(RecordMapper& mapper) {
  mapper.require(mapper.plane().isSimilar());
  const bool hasDirection = mapper.record().find(11) != SourceRecord::kNone;
  if (!hasDirection) mapper.turnMissing(50, kBeforeMTextAngle);
  applyEmbedded(mapper, kColumnRoles);
  scaleColumns(mapper);
  scaleInlineHeights(mapper, 3, 1);
}

void finishDimension(RecordMapper& mapper) {
  constexpr long type = 70, typeBits = 7;
  mapper.require(mapper.plane().isSimilar());
  const bool isTurned = (mapper.record().integerOf(type) & typeBits) == 0;
  if (isTurned) mapper.turnMissing(50, kBeforeDimensionAngle);
}

void requireSimilar(RecordMapper& mapper) { mapper.require(mapper.map().isSimilar()); }

void finishLeader(RecordMapper& mapper) {
  mapper.turnMissingDirection(211, kBeforeLeaderDirection);
}

void finishTolerance(RecordMapper& mapper) {
  mapper.require(mapper.plane().isSimilar());
  mapper.turnMissingDirection(11, kBeforeToleranceDirection);
}

// Those of a dimension are in its block.
void keepLetters(SourceRecord&, const MeasuredPlane&) {}

constexpr KindRule kNoteRules[] = {
    {"TEXT", kTextRoles, NormalRule::Plane, kBeforeTextNormal, finishText, turnText},
    {"ATTRIB", kTextRoles, NormalRule::Plane, kBeforeTextNormal, finishAttribute, turnText},
    {"ATTDEF", kTextRoles, NormalRule::Plane, kBeforeTextNormal, finishAttribute, turnText},
    {"SHAPE", kShapeRoles, NormalRule::Plane, kBeforeShapeNormal, finishShape},
    {"MTEXT", kMTextRoles, NormalRule::Plane, kBeforeMTextNormal, finishMText, turnMText},
    {"DIMENSION", kDimensionRoles, NormalRule::Plane, kBeforeDimensionNormal, finishDimension,
     keepLetters},
    {"ARC_DIMENSION", kArcDimensionRoles, NormalRule::Plane, kBeforeDimensionNormal, requireSimilar,
     keepLetters},
    {"LARGE_RADIAL_DIMENSION", kDimensionRoles, NormalRule::Plane, kBeforeDimensionNormal,
     requireSimilar, keepLetters},
    {"LEADER", kNoteLeaderRoles, NormalRule::Plane, kBeforeLeaderNormal, finishLeader},
    {"TOLERANCE", kToleranceRoles, NormalRule::Plane, kBeforeToleranceNormal, finishTolerance},
    {"MLINE", kMlineRoles, NormalRule::Plane, kBeforeMlineNormal, requireSimilar},
};

}  // namespace

const KindRule* noteRule(std::string_view kind) {
  const auto found = std::find_if(std::begin(kNoteRules), std::end(kNoteRules),
                                  [&](const KindRule& rule) { return rule.kind == kind; });
  return found == std::end(kNoteRules) ? nullptr : found;
}

}  // namespace vek0::detail
