#include "compare/entshape.h"

#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/entvisitor.h"
#include "vek0core/entities/vertex.h"

namespace vek0::detail {
namespace {

class Describer final : public IEntVisitor {
 public:
  explicit Describer(IShapeSink& sink) : m_to(sink) {}

  using IEntVisitor::visit;
  void visit(CEntPnt& ent) override { m_to.point(ent.getPnt()); }
  void visit(CEntLine& ent) override {
    const LINE_3D& line = ent.getLine();
    m_to.point(line.p1);
    if (ent.getReach() == LineReach::Segment)
      m_to.point(line.p2);
    else
      m_to.direction(line.p2 - line.p1);
    m_to.word(static_cast<long>(ent.getReach()));
  }
  void visit(CEntCircle& ent) override {
    m_to.point(ent.getCircle());
    m_to.length(ent.getCircle().radius);
  }
  void visit(CEntArc& ent) override {
    const ARC_3D& arc = ent.getArc();
    m_to.point(arc);
    m_to.length(arc.radius);
    m_to.angle(arc.startAngle);
    m_to.angle(arc.endAngle);
  }
  void visit(CEntPolyline& ent) override {
    m_to.word(ent.getFlags());
    m_to.word(ent.getDegree());
    for (int i = 0; ent.isCurve() && i < ent.getFirstVisibleVertex(); ++i) {
      const CVertex& v = ent.GetVertex(i);
      addVertex(v.getPnt(), v.GetWidthStart(), v.GetWidthEnd(), 0);
    }
    ent.forEachBulged([this](const PNT_3D& p, double ws, double we, double bulge, Handle) {
      addVertex(p, ws, we, bulge);
    });
  }
  void visit(CEntText& ent) override { describeText(ent.getText(), m_to); }
  void visit(CEntAttdef& ent) override {
    describeText(ent.getText(), m_to);
    m_to.text(ent.getValue().view());
    m_to.text(ent.getPrompt().view());
    m_to.word(ent.getFlags());
  }
  void visit(CEntAttrib& ent) override {
    describeText(ent.getText(), m_to);
    m_to.text(ent.getTag().view());
    m_to.word(ent.getFlags());
  }
  void visit(CEntInsert& ent) override {
    double sx, sy, sz, columnSpacing, rowSpacing;
    long columns, rows;
    ent.getScale(sx, sy, sz);
    ent.getArray(columns, rows, columnSpacing, rowSpacing);
    m_to.point(ent.getPnt());
    for (const double scale : {sx, sy, sz}) m_to.ratio(scale);
    m_to.angle(ent.getRotate());
    m_to.length(columnSpacing);
    m_to.length(rowSpacing);
    m_to.word(columns);
    m_to.word(rows);
    if (ent.isClipped()) addClip(*ent.getClip());
    addContent(ent);
  }
  void visit(CEntInsertXRef& ent) override { visit(static_cast<CEntInsert&>(ent)); }
  void visit(CEntFixedInsert& ent) override {
    m_to.point(ent.getPnt());
    m_to.length(ent.GetDefArea());
    m_to.ratio(ent.GetNoPixel());
    m_to.angle(ent.getRotate());
    addContent(ent);
  }
  void visit(CEntHatch& ent) override {
    m_to.pattern(ent.getHatchType(), ent.getHatchScale(), ent.getHatchRotate());
    for (const PNT_3D& p : ent.getBoundary()) m_to.point(p);
    addAttribs(ent);
  }
  void visit(CEnt3DFace& ent) override {
    for (long i = 0; i < 4; ++i) m_to.point(ent.getVertex(i));
    m_to.word(ent.getFlags());
    m_to.word(static_cast<long>(ent.getFill()));
  }

 private:
  void addVertex(const PNT_3D& p, double widthStart, double widthEnd, double bulge) {
    m_to.point(p);
    m_to.length(widthStart);
    m_to.length(widthEnd);
    m_to.ratio(bulge);
  }
  // The boundary is in the coordinates of the block.
  void addClip(const INSERT_CLIP& clip) {
    m_to.word(static_cast<long>(clip.boundary.size()));
    for (const PNT_2D& p : clip.boundary) {
      m_to.length(p.x);
      m_to.length(p.y);
    }
  }
  void addContent(const CEntInsertBase& ent) {
    m_to.block(ent);
    addAttribs(ent);
  }
  void addAttribs(const CEntInsertBase& ent) {
    for (unsigned i = 0; i < ent.GetNoAttribs(); ++i) m_to.attrib(*ent.GetAttrib(i));
  }

  IShapeSink& m_to;
};

}  // namespace

void describeText(const TEXT_3D& text, IShapeSink& sink) {
  const CTextContext& context = text.getContext();
  sink.point(text);
  sink.length(context.getHeight());
  sink.length(text.getFitLength());
  sink.ratio(context.getWidthScale());
  sink.angle(context.getOblique());
  sink.angle(context.getRotate());
  sink.text(context.getString().view());
  sink.style(text.getStyle());
  sink.word(text.getAlign());
  sink.word(static_cast<long>(text.getFit()));
}

void describeShape(const CEnt& ent, IShapeSink& sink) {
  sink.word(ent.getType());
  Describer describer(sink);
  const_cast<CEnt&>(ent).accept(
      describer);  // visitors take non-const entities; this one only reads
}

}  // namespace vek0::detail
