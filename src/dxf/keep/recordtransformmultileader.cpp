#include <vector>

#include "dxf/keep/inlineheights.h"
#include "dxf/keep/recordkinds.h"

namespace vek0::detail {
namespace {

// A multileader nests parts in braces, in which the codes have different meanings. Outside them it
// repeats sizes of its content; the placement of a block counts only if it has one.
constexpr CodeRole kOuterRoles[] = {{41, Role::Length}, {42, Role::Length}, {45, Role::Length}};
constexpr CodeRole kOuterBlockRoles[] = {
    {41, Role::Length}, {42, Role::Length}, {43, Role::Radians}, {45, Role::Length}};
constexpr CodeRole kContentRoles[] = {
    {10, Role::Point},      {12, Role::Point},   {13, Role::Direction}, {15, Role::Point},
    {40, Role::Length},     {41, Role::Length},  {42, Role::Radians},   {43, Role::Length},
    {44, Role::Length},     {46, Role::Radians}, {110, Role::Point},    {111, Role::Direction},
    {112, Role::Direction}, {140, Role::Length}, {142, Role::Length},   {143, Role::Length},
    {144, Role::Length},    {145, Role::Length}};
constexpr CodeRole kLeaderRoles[] = {{10, Role::Point},
                                     {11, Role::Direction},
                                     {12, Role::Point},
                                     {13, Role::Point},
                                     {40, Role::Length}};
constexpr CodeRole kLeaderLineRoles[] = {{10, Role::Point}, {11, Role::Point}, {12, Role::Point}};

class MultileaderMapper {
 public:
  MultileaderMapper(SourceRecord& record, const MeasuredMap& map)
      : m_map(map),
        m_mapper(record, map, planeOf(record, map)),
        m_hasBlock(record.integerOf(HasBlock) != 0) {}

  bool apply();

 private:
  enum Code : long {
    BlockFactors = 10,
    TextNormal = 11,
    BlockNormal = 14,
    ContentFactors = 16,
    Matrix = 47,
    HasBlock = 296,
    PlaneReversed = 297,
    Begin = 300,
    End = 301,
    Leader = 302,
    LeaderEnd = 303,
    TextOrLine = 304,
    LineEnd = 305
  };
  enum class Part { Outside, Content, Leader, Line };

  static MeasuredPlane planeOf(const SourceRecord& record, const MeasuredMap& map);
  void enter(long code);
  Roles roles() const;
  std::size_t applyAt(std::size_t index);
  std::size_t applyToContent(std::size_t index);
  std::size_t multiplyPoint(std::size_t index, double factor);
  void applyToMatrix();

  const MeasuredMap& m_map;
  RecordMapper m_mapper;
  const bool m_hasBlock;
  Part m_part = Part::Outside;
  std::vector<std::size_t> m_matrix;
};

// The content lies in a plane of its own, given by its axes.
MeasuredPlane MultileaderMapper::planeOf(const SourceRecord& record, const MeasuredMap& map) {
  const std::size_t x = record.find(111), y = record.find(112);
  PNT_3D normal(0, 0, 1);
  if (x != SourceRecord::kNone && y != SourceRecord::kNone)
    normal = cross(record.pointAt(x), record.pointAt(y));
  return MeasuredPlane(map, normal);
}

bool MultileaderMapper::apply() {
  m_mapper.require(m_map.isSimilar());
  const std::size_t end = m_mapper.record().extendedData();
  for (std::size_t i = 1; i < end && m_mapper.isOk();) {
    enter(m_mapper.record().pairs[i].code);
    i = applyAt(i);
  }
  applyToMatrix();
  if (m_mapper.isOk()) scaleInlineHeights(m_mapper, TextOrLine, TextOrLine);
  return m_mapper.commit();
}

void MultileaderMapper::enter(long code) {
  switch (code) {
    case Begin:
    case LeaderEnd:
      m_part = Part::Content;
      break;
    case End:
      m_part = Part::Outside;
      break;
    case Leader:
    case LineEnd:
      m_part = Part::Leader;
      break;
    case TextOrLine:
      if (m_part == Part::Leader) m_part = Part::Line;
      break;
  }
}

Roles MultileaderMapper::roles() const {
  switch (m_part) {
    case Part::Content:
      return kContentRoles;
    case Part::Leader:
      return kLeaderRoles;
    case Part::Line:
      return kLeaderLineRoles;
    default:
      return m_hasBlock ? Roles(kOuterBlockRoles) : kOuterRoles;
  }
}

std::size_t MultileaderMapper::applyAt(std::size_t index) {
  const long code = m_mapper.record().pairs[index].code;
  if (m_part == Part::Outside && code == BlockFactors)
    return multiplyPoint(index, m_hasBlock ? m_map.scale() : 1);
  if (m_part == Part::Content) return applyToContent(index);
  return m_mapper.apply(index, roles());
}

std::size_t MultileaderMapper::applyToContent(std::size_t index) {
  SourceRecord& record = m_mapper.record();
  switch (record.pairs[index].code) {
    case TextNormal:
    case BlockNormal: {
      const PNT_3D normal = m_mapper.pointAt(index);
      const MeasuredPlane plane(m_map, normal);
      return m_mapper.setPoint(index, plane.keepsNormal() ? normal : plane.normal());
    }
    case ContentFactors:
      return multiplyPoint(index, m_map.scale());
    case Matrix:
      m_matrix.push_back(index);
      break;
    case PlaneReversed:
      if (m_map.isMirroring()) record.setInteger(index, record.integer(index) == 0 ? 1 : 0);
      break;
  }
  return m_mapper.apply(index, kContentRoles);
}

std::size_t MultileaderMapper::multiplyPoint(std::size_t index, double factor) {
  return m_mapper.setPoint(index, scaled(m_mapper.pointAt(index), factor));
}

// The map of the block, as rows of a matrix of four columns.
void MultileaderMapper::applyToMatrix() {
  constexpr std::size_t columns = 4, size = columns * columns;
  if (m_matrix.size() != size || !m_mapper.isOk()) return;
  for (std::size_t i = 0; i < columns; ++i) {
    const std::size_t x = m_matrix[i], y = m_matrix[i + columns], z = m_matrix[i + 2 * columns];
    const PNT_3D column(m_mapper.real(x), m_mapper.real(y), m_mapper.real(z));
    const PNT_3D image = i + 1 < columns ? m_map.vector(column) : m_map.point(column);
    m_mapper.setReal(x, image.x);
    m_mapper.setReal(y, image.y);
    m_mapper.setReal(z, image.z);
  }
}

}  // namespace

bool transformMultileader(SourceRecord& record, const MeasuredMap& map) {
  return MultileaderMapper(record, map).apply();
}

}  // namespace vek0::detail
