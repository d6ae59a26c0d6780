#include <cmath>

#include "dxf/out/exactnumbers.h"
#include "dxf/out/modern/filesections.h"
#include "dxf/out/modern/fixedpairs.h"
#include "dxf/out/savedcolor.h"
#include "vek0core/geometry/finite.h"

namespace vek0::detail {
namespace {

constexpr double kNowhereMin = 1e20;  // the lower corner of extents that are empty

class HeaderWriter {
 public:
  HeaderWriter(FilePlan& plan, CFileDXFOWriter& out)
      : m_plan(plan), m_out(out), m_vars(plan.data.getVars()) {}

  void write() {
    name("$ACADVER", 1, m_plan.rules.name);
    name("$DWGCODEPAGE", 3, m_plan.encoder.getName());
    writeAreas();
    writeCurrentItems();
    writeSettings();
    m_out.writeEncoded(9, "$HANDSEED");
    m_out.writeHex(5, m_plan.handles.seed());
  }

 private:
  void name(const char* variable, long code, std::string_view value) {
    m_out.writeEncoded(9, variable);
    m_out.writeEncoded(code, value);
  }
  void integer(const char* variable, long code, long value) {
    m_out.writeEncoded(9, variable);
    m_out.write(code, value);
  }
  void real(const char* variable, long code, double value, double fallback) {
    m_out.writeEncoded(9, variable);
    m_out.write(code, finite(value, fallback, variable));
  }
  void point(const char* variable, const PNT_3D& p) {
    m_out.writeEncoded(9, variable);
    writePoint(m_out, 10, p.x, p.y, p.z);
  }
  void point(const char* variable, const PNT_2D& p, const PNT_2D& fallback) {
    m_out.writeEncoded(9, variable);
    writePoint(m_out, 10, finite(p.x, fallback.x, variable), finite(p.y, fallback.y, variable));
  }
  double finite(double value, double fallback, const char* where) const {
    return std::isfinite(value) ? value
                                : m_plan.finite(value, fallback, zim::WString::fromUtf8(where));
  }

  void writeAreas() {
    const ShownArea shown(m_plan);
    const PNT_3D none(kNowhereMin, kNowhereMin, kNowhereMin);
    const PNT_3D base = m_vars.getInsertionBase();
    point("$INSBASE", PNT_3D(finite(base.x, 0, "$INSBASE"), finite(base.y, 0, "$INSBASE"),
                             finite(base.z, 0, "$INSBASE")));
    point("$EXTMIN", shown.isEmpty ? none : shown.extents.min);
    point("$EXTMAX", shown.isEmpty ? -none : shown.extents.max);
    point("$LIMMIN", m_vars.getLimMin(), PNT_2D(0, 0));
    point("$LIMMAX", m_vars.getLimMax(), PNT_2D(420, 297));
  }

  void writeCurrentItems() {
    name("$TEXTSTYLE", 7, m_plan.styles[m_vars.getCurStyle()].name);
    name("$CLAYER", 8, m_plan.layers[m_vars.getCurLayer()].name);
    const CLtype* ltype = m_vars.getCurLtype();
    name("$CELTYPE", 6, m_plan.ltypes[ltype ? ltype : &m_plan.data.getLtypeByLayer()].name);
    const short color = m_vars.getCurColor();
    const bool known = isEntityColor(color);
    if (!known) m_plan.note(ReportCode::ColorOutOfRange, u"$CECOLOR");
    integer("$CECOLOR", 62, known ? color : kColorByLayer);
    real("$CELTSCALE", 40, m_vars.getCurLtypeScale(), 1);
    integer("$CELWEIGHT", 370, ENT_TRAITS::kWeightByLayer);
    name("$DIMSTYLE", 2, "Standard");
  }

  void writeSettings() {
    integer("$ORTHOMODE", 70, m_vars.isOrtho());
    real("$LTSCALE", 40, m_vars.getLtypeScale(), 1);
    integer("$AUNITS", 70, m_vars.getAngFormat());
    real("$ANGBASE", 50, exactDegrees(m_vars.getAngDir()), 0);
    integer("$ANGDIR", 70, m_vars.isAngClockWise());
    integer("$PDMODE", 70, m_vars.getPointMode());
    real("$PDSIZE", 40, m_vars.getPointSize(), 0);
    integer("$PLINEGEN", 70, m_vars.isPLineGen());
    real("$PLINEWID", 40, m_vars.getPLineWid(), 0);
    integer("$TILEMODE", 70, 1);
    integer("$PSLTSCALE", 70, m_vars.isPaperLtypeScale());
    integer("$INSUNITS", 70, m_vars.getUnits());
    integer("$LWDISPLAY", 290, m_vars.isLineweightShown());
    // Not every program knows this variable, so only files that need it contain it.
    if (m_vars.getDefaultLineweight() != 25)
      integer("$LWDEFAULT", 370, m_vars.getDefaultLineweight());
    integer("$PSTYLEMODE", 290, 1);  // colors determine how entities are plotted
  }

  FilePlan& m_plan;
  CFileDXFOWriter& m_out;
  const CDataVariables& m_vars;
};

struct ObjectClass {
  const char* record;
  const char* name;
  std::size_t count;
};

}  // namespace

ShownArea::ShownArea(const FilePlan& plan) {
  RECT_3D box = plan.modelExtents();
  isEmpty = !box.validRegion() || !isFinite(box) || !isFinite(box.max - box.min);
  if (isEmpty) return;
  // Extents of arcs differ in the last bits after reading and writing.
  for (double* value : {&box.min.x, &box.min.y, &box.min.z, &box.max.x, &box.max.y, &box.max.z})
    *value = steady(*value);
  extents = box;
  const PNT_3D size = box.max - box.min;
  center = PNT_2D(box.min.x + size.x / 2, box.min.y + size.y / 2);
  if (size.x > 0) width = size.x;
  height = size.y > 0 ? size.y : width;
}

void writeHeaderSection(FilePlan& plan, CFileDXFOWriter& out) {
  beginSection(out, "HEADER");
  HeaderWriter(plan, out).write();
  endSection(out);
}

// Kinds of objects that the format itself does not define.
void writeClassesSection(const FilePlan& plan, CFileDXFOWriter& out) {
  const ObjectClass classes[] = {
      {"ACDBDICTIONARYWDFLT", "AcDbDictionaryWithDefault", 1},
      {"ACDBPLACEHOLDER", "AcDbPlaceHolder", 1},
      {"LAYOUT", "AcDbLayout", plan.spaces.size()},
      {"SPATIAL_FILTER", "AcDbSpatialFilter", plan.noClips},
  };
  beginSection(out, "CLASSES");
  for (const ObjectClass& object : classes) {
    if (object.count == 0) continue;
    out.writeEncoded(0, "CLASS");
    out.writeEncoded(1, object.record);
    out.writeEncoded(2, object.name);
    out.writeEncoded(3, "ObjectDBX Classes");
    out.write(90, 0L);
    if (plan.rules.classCounts) out.write(91, static_cast<long>(object.count));
    out.write(280, 0L);  // not a proxy
    out.write(281, 0L);  // not an entity
  }
  endSection(out);
}

}  // namespace vek0::detail
