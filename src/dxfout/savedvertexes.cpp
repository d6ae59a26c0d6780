#include "dxfout/savedvertexes.h"

#include "dxfout/savefilter.h"

namespace vek0::detail {
namespace {

// Code 70 of VERTEX.
constexpr long kFromFit = 1, kFromSpline = 8, kControl = 16, kVertex3D = 32;

void takeVertex(const PNT_3D& pnt, double widthStart, double widthEnd, PolylineForm& form) {
  form.finite = form.finite && isFinite(pnt) && isFinite(widthStart, widthEnd);
  if (form.empty) form.width = widthStart;
  form.empty = false;
  form.widthConstant = form.widthConstant && widthStart == form.width && widthEnd == form.width;
}

void takeVisible(const CEntPolyline& ent, PolylineForm& form) {
  struct {
    PolylineForm& form;
    bool first = true;
    bool wide = false, sloping = false, finiteBulges = true;
  } seen{form};
  ent.forEachBulged([&seen](const PNT_3D& pnt, double ws, double we, double bulge, long) {
    if (seen.first) seen.form.elevation = pnt.z;
    seen.first = false;
    seen.wide = seen.wide || ws != 0 || we != 0;
    seen.sloping = seen.sloping || pnt.z != seen.form.elevation;
    seen.finiteBulges = seen.finiteBulges && isFinite(bulge, 0);
    takeVertex(pnt, ws, we, seen.form);
  });
  form.solid = seen.sloping && !seen.wide;
  form.finite = form.finite && seen.finiteBulges;
}

void takeControls(const CEntPolyline& ent, PolylineForm& form) {
  for (int i = 0; i < ent.getFirstVisibleVertex(); ++i) {
    const CVertex& vertex = ent.GetVertex(i);
    takeVertex(vertex.getPnt(), vertex.GetWidthStart(), vertex.GetWidthEnd(), form);
  }
}

// Steps through the control points of a fitted curve, which its chain meets in order.
struct ControlCursor {
  const CEntPolyline& ent;
  long next = 0;

  bool meets(const PNT_3D& pnt) {
    if (next >= ent.getFirstVisibleVertex()) return false;
    if (ent.GetVertex(static_cast<int>(next)).getPnt() != pnt) return false;
    ++next;
    return true;
  }
};

// Whether a reader would find the control points among the visible vertices.
bool controlsInChain(const CEntPolyline& ent) {
  ControlCursor cursor{ent};
  ent.forEachVisible(
      [&cursor](const PNT_3D& pnt, double, double, double, long) { cursor.meets(pnt); });
  return cursor.next == ent.getFirstVisibleVertex();
}

}  // namespace

PolylineForm polylineForm(const CEntPolyline& ent, bool flatten, bool bulges) {
  PolylineForm form;
  const short curve = ent.getCurve();
  if (curve == CEntPolyline::kFit || curve == CEntPolyline::kSpline) form.curve = curve;
  form.inChain = form.curve == CEntPolyline::kFit && controlsInChain(ent);
  form.framed = form.curve != 0 && !form.inChain;
  if (form.framed) takeControls(ent, form);
  takeVisible(ent, form);
  form.solid = form.solid && !flatten;
  form.bulges = bulges && !form.solid && form.curve == 0;
  return form;
}

void forEachSaved(const CEntPolyline& ent, const PolylineForm& form,
                  const std::function<void(const SavedVertex&)>& sink) {
  const long always = form.solid ? kVertex3D : 0;
  for (int i = 0; form.framed && i < ent.getFirstVisibleVertex(); ++i) {
    const CVertex& v = ent.GetVertex(i);
    sink({v.getPnt(), v.GetWidthStart(), v.GetWidthEnd(), 0, v.GetHandle(), kControl | always});
  }
  struct {
    const PolylineForm& form;
    const std::function<void(const SavedVertex&)>& sink;
    long flags;
    ControlCursor controls;
  } run{form, sink, always, {ent}};
  if (form.curve != 0) run.flags |= form.curve == CEntPolyline::kFit ? kFromFit : kFromSpline;
  const auto each = [&run](const PNT_3D& pnt, double ws, double we, double bulge, long handle) {
    const bool control = run.form.inChain && run.controls.meets(pnt);
    run.sink({pnt, ws, we, bulge, handle, control ? run.flags & ~kFromFit : run.flags});
  };
  form.bulges ? ent.forEachBulged(each) : ent.forEachVisible(each);
}

}  // namespace vek0::detail
