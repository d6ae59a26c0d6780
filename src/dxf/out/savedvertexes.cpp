// Determines how a polyline is written before its first pair is: whether it is flat, of constant
// width or a curve depends on all its vertices. Values count as equal if they are written equally,
// so that saving what was read gives the same form.
#include "dxf/out/savedvertexes.h"

#include <cmath>

#include "dxf/out/exactnumbers.h"
#include "dxf/out/savefilter.h"

namespace vek0::detail {
namespace {

// Code 70 of VERTEX.
constexpr long kFromFit = 1, kFromSpline = 8, kControl = 16, kVertex3D = 32;

// Whether a reader gets two equal numbers.
struct Sameness {
  bool exact;

  bool operator()(double a, double b) const {
    constexpr double near = 2e-6;  // numbers further apart differ within six decimals
    if (a == b || exact || !(std::fabs(a - b) < near)) return a == b;
    return sixDecimals(a) == sixDecimals(b);
  }
  bool operator()(const PNT_3D& a, const PNT_3D& b) const {
    return (*this)(a.x, b.x) && (*this)(a.y, b.y) && (*this)(a.z, b.z);
  }
};

void takeVertex(const PNT_3D& pnt, double widthStart, double widthEnd, Sameness same,
                PolylineForm& form) {
  form.finite = form.finite && isFinite(pnt) && isFinite(widthStart, widthEnd);
  if (form.empty) form.width = widthStart;
  form.empty = false;
  form.widthConstant =
      form.widthConstant && same(widthStart, form.width) && same(widthEnd, form.width);
}

void takeVisible(const CEntPolyline& ent, Sameness same, PolylineForm& form) {
  struct {
    Sameness same;
    PolylineForm& form;
    bool first = true;
    bool wide = false, sloping = false, finiteBulges = true;
  } seen{same, form};
  ent.forEachBulged([&seen](const PNT_3D& pnt, double ws, double we, double bulge, long) {
    if (seen.first) seen.form.elevation = pnt.z;
    seen.first = false;
    ++seen.form.noBulged;
    seen.wide = seen.wide || !seen.same(ws, 0) || !seen.same(we, 0);
    seen.sloping = seen.sloping || !seen.same(pnt.z, seen.form.elevation);
    seen.finiteBulges = seen.finiteBulges && isFinite(bulge, 0);
    takeVertex(pnt, ws, we, seen.same, seen.form);
  });
  form.sloping = seen.sloping;
  form.solid = seen.sloping && !seen.wide;
  form.finite = form.finite && seen.finiteBulges;
}

void takeControls(const CEntPolyline& ent, Sameness same, PolylineForm& form) {
  for (int i = 0; i < ent.getFirstVisibleVertex(); ++i) {
    const CVertex& vertex = ent.GetVertex(i);
    takeVertex(vertex.getPnt(), vertex.GetWidthStart(), vertex.GetWidthEnd(), same, form);
  }
}

// Steps through the control points of a fitted curve, which occur in its chain in order.
struct ControlCursor {
  const CEntPolyline& ent;
  Sameness same;
  long next = 0;

  bool meets(const PNT_3D& pnt) {
    if (next >= ent.getFirstVisibleVertex()) return false;
    if (!same(ent.GetVertex(static_cast<int>(next)).getPnt(), pnt)) return false;
    ++next;
    return true;
  }
};

// Whether a reader finds the control points among the visible vertices.
bool controlsInChain(const CEntPolyline& ent, Sameness same) {
  ControlCursor cursor{ent, same};
  ent.forEachVisible(
      [&cursor](const PNT_3D& pnt, double, double, double, long) { cursor.meets(pnt); });
  return cursor.next == ent.getFirstVisibleVertex();
}

}  // namespace

PolylineForm polylineForm(const CEntPolyline& ent, bool flatten, bool exchange) {
  PolylineForm form;
  form.exact = exchange;
  const Sameness same{exchange};
  const short curve = ent.getCurve();
  if (curve == CEntPolyline::kFit || curve == CEntPolyline::kSpline) form.curve = curve;
  form.inChain = form.curve == CEntPolyline::kFit && controlsInChain(ent, same);
  form.framed = form.curve != 0 && !form.inChain;
  if (form.framed) takeControls(ent, same, form);
  takeVisible(ent, same, form);
  form.solid = form.solid && !flatten;
  form.bulges = exchange && !form.solid && form.curve == 0;
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
  } run{form, sink, always, {ent, {form.exact}}};
  if (form.curve != 0) run.flags |= form.curve == CEntPolyline::kFit ? kFromFit : kFromSpline;
  const auto each = [&run](const PNT_3D& pnt, double ws, double we, double bulge,
                           vek0::Handle handle) {
    const bool control = run.form.inChain && run.controls.meets(pnt);
    run.sink({pnt, ws, we, bulge, handle, control ? run.flags & ~kFromFit : run.flags});
  };
  form.bulges ? ent.forEachBulged(each) : ent.forEachVisible(each);
}

}  // namespace vek0::detail
