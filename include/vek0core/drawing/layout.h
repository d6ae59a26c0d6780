#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/tables/enttraits.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

class CBlock;
class CEntFactory;
class CEntPolyline;
class CLayer;
class CLtype;

/// A window of a sheet through which the model is seen. Lengths are drawing units of the sheet, or
/// of the model where it says so.
struct VEK0_API VIEWPORT {
  PNT_2D center{0, 0};
  double width = 0, height = 0;
  /// The point of the view's plane that is shown at the center. The origin of that plane is the
  /// target, and its axes are those of the model rotated clockwise by the twist.
  PNT_2D viewCenter{0, 0};
  double viewHeight = 0;  ///< shown by `height`, in units of the model
  PNT_2D target{0, 0};    ///< in the model
  double twistRad = 0;    ///< by which the model appears rotated counterclockwise
  bool isOn = true;       ///< otherwise it shows only its frame
  bool isPlan = true;     ///< the model is seen from above; other views are not drawn
  /// The corners of the polygon that limits the view; empty: the rectangle of width and height.
  std::vector<PNT_2D> boundary;
  /// Layers that are hidden in this viewport; borrowed, and never null.
  std::vector<CLayer*> frozen;

  // Of the frame. The items are borrowed.
  CLayer* layer = nullptr;  ///< null: layer "0"
  CLtype* ltype = nullptr;  ///< null: BYLAYER
  short color = 256;        ///< as of entities
  ENT_TRAITS traits;
  vek0::Handle handle = 0;  ///< 0 for none

  /// Units of the sheet per unit of the model; 0 if a height is not positive.
  double scale() const { return height > 0 && viewHeight > 0 ? height / viewHeight : 0; }
  /// Maps a point of the model to the sheet; meaningless if the scale is 0.
  PNT_2D toSheet(const PNT_2D& model) const;
  /// The corners of the visible part of the sheet: those of the boundary, or the rectangle's.
  std::vector<PNT_2D> outline() const;
  bool operator==(const VIEWPORT&) const = default;
};

/// The frame of a viewport as a closed polyline, whose record is `EntRecord::Viewport`. It is in no
/// table and books no handle. Throws `std::bad_alloc`.
VEK0_API std::unique_ptr<CEntPolyline> createFrame(const VIEWPORT& viewport, CEntFactory& factory);

/// What a layout plots. Only `Extents`, `Window` and `Layout` differ: the others count as `Layout`.
enum class PlotArea { Display, Extents, Limits, View, Window, Layout };

/// How a sheet is plotted. Lengths on paper are millimeters as plotted: width and height are those
/// after any rotation of the paper.
struct VEK0_API PLOT_SETTINGS {
  double width = 0, height = 0;                     ///< of the paper; 0 if unknown
  double left = 0, bottom = 0, right = 0, top = 0;  ///< unprintable margins
  PNT_2D origin{0, 0};  ///< of the plotted area, from the corner of the margins
  double scale = 1;     ///< millimeters of paper per drawing unit of the sheet
  PlotArea area = PlotArea::Layout;
  RECT_2D window{0, 0, 0, 0};   ///< in drawing units, for `PlotArea::Window`
  bool isCentered = false;      ///< the area is centered instead of placed at the origin
  bool viewportsFirst = false;  ///< the sheet's entities are drawn over the viewports
  bool hasLineweights = true;   ///< otherwise all lines are plotted as thin as possible

  /// Whether the size of the paper is known and the scale positive.
  bool hasPaper() const;
  /// Whether the paper is exactly the plotted window.
  bool isWhole() const;
  bool operator==(const PLOT_SETTINGS&) const = default;
};

/// A sheet of a drawing: its entities, the viewports that show the model, and how it is plotted.
///
/// The entities are in a block of the drawing's block table (`CBlock::isSheet`), so that they are
/// walked, edited and undone like those of other blocks; no insert shows it. While a layout exists,
/// it counts as a user of the block and of the items of its viewports: none of them can be removed.
class VEK0_API CLayout {
 public:
  /// Marks the block, which is borrowed, as a sheet.
  CLayout(const zim::WString& name, CBlock& block);
  CLayout(const CLayout&) = delete;
  CLayout& operator=(const CLayout&) = delete;
  ~CLayout();

  const zim::WString& getName() const { return m_name; }
  const PLOT_SETTINGS& getPlot() const { return m_plot; }
  void setPlot(const PLOT_SETTINGS& plot) { m_plot = plot; }
  CBlock& getBlock() const { return m_block; }
  /// In drawing order, without the one that files have for the sheet itself.
  const std::vector<VIEWPORT>& getViewports() const { return m_viewports; }
  /// Replaces the viewports and returns the previous ones. Updates the use counts.
  std::vector<VIEWPORT> setViewports(std::vector<VIEWPORT> viewports);

  /// Extents of the entities and viewports in drawing units of the sheet; empty if there are none.
  RECT_2D getBdry() const;
  /// The paper in drawing units of the sheet: what a plot shows. Empty without a known paper size.
  RECT_2D getPaper() const;
  /// The part of the paper outside which nothing is plotted; empty if the paper itself is the
  /// limit.
  RECT_2D getPlottedArea() const;

 private:
  void count(bool isAdded) const;

  zim::WString m_name;
  PLOT_SETTINGS m_plot;
  CBlock& m_block;
  std::vector<VIEWPORT> m_viewports;
};

/// The layouts of a drawing in the order of their tabs, without model space.
class VEK0_API CLayoutTable {
 public:
  int size() const { return static_cast<int>(m_layouts.size()); }
  /// Unchecked.
  CLayout& operator[](int i) const { return *m_layouts[static_cast<std::size_t>(i)]; }
  /// The first layout of that name, ignoring case; null if there is none.
  CLayout* get(std::u16string_view name) const;
  /// The layout whose sheet was current when the drawing was saved; null without layouts.
  CLayout* getActive() const;
  void setActive(const CLayout& layout) { m_active = &layout; }

  /// Appends the layout. Throws `std::bad_alloc`; the layout is deleted then.
  CLayout& add(std::unique_ptr<CLayout> layout);
  /// Deletes every layout; the blocks stay.
  void clearAll();

 private:
  std::vector<std::unique_ptr<CLayout>> m_layouts;
  const CLayout* m_active = nullptr;
};
