#pragma once

#include <vector>

#include "vek0core/entities/blocks/insertmatrix.h"
#include "vek0core/export.h"
#include "vek0core/tables/enttraits.h"

class CEnt;
class CEntInsertBase;
class CLayer;
class CLtype;

/// State of a traversal of nested inserts: the inserts entered, the placement of the innermost
/// block, and the properties that its entities inherit from the surrounding inserts.
///
/// An entity on layer "0" inside a block appears on the layer of the insert; BYBLOCK colors and
/// linetypes are those of the insert, BYLAYER ones those of the layer found this way. Outside all
/// inserts BYBLOCK is color 7 and Continuous. A null linetype means Continuous here, and so does
/// BYLAYER or BYBLOCK as the linetype of a layer.
///
/// True color, lineweight and opacity are inherited likewise. Outside all inserts the lineweight
/// BYBLOCK is the default, the opacity BYBLOCK full. The lines of a hatch take both from the hatch.
/// An invisible insert hides its block.
class VEK0_API CEntInsertStackState {
 public:
  int GetNoInsert() const { return static_cast<int>(m_inserts.size()); }
  /// Insert number `i`, counted from the outermost; null if out of range.
  const CEntInsertBase* GetInsert(int i) const;
  /// The outermost insert; null if none was entered.
  const CEntInsertBase* GetBaseInsert() const { return GetInsert(0); }
  /// The innermost insert, likewise.
  const CEntInsertBase* GetTopMostInsert() const { return GetInsert(GetNoInsert() - 1); }

  /// From the innermost block's coordinates to the drawing's.
  const CEntInsertMatrix& GetCurMatrix() const { return m_matrix; }
  /// Layer on which entities of layer "0" appear; null outside all inserts.
  CLayer* GetCurLayer() const { return m_layer; }
  /// The current meaning of color BYBLOCK.
  short GetCurColor() const { return m_color; }
  /// The current meaning of linetype BYBLOCK; null is Continuous.
  CLtype* GetCurLtype() const { return m_ltype; }
  /// The current meaning of BYBLOCK in traits.
  const ENT_TRAITS& GetCurTraits() const { return m_traits; }

  /// Effective layer of an entity of the innermost block; null only for an entity without a layer
  /// outside all inserts.
  CLayer* ResolveLayer(const CEnt& ent) const;
  /// Whether that layer is neither frozen nor off. Turning off the layer of an insert does not hide
  /// its content, which is on layers of its own; that of a dimension is hidden.
  bool IsOnShownLayer(const CEnt& ent) const;
  /// Its effective color index; 7 if there is no layer.
  short ResolveColor(const CEnt& ent) const;
  /// Its effective linetype; null is Continuous.
  CLtype* ResolveLtype(const CEnt& ent) const;
  /// Its effective traits: nothing is BYLAYER or BYBLOCK. The true color is that of the entity, its
  /// layer or an insert, wherever `ResolveColor` finds the color number.
  ENT_TRAITS ResolveTraits(const CEnt& ent) const;

 protected:
  friend class CEntInsertStack;
  CEntInsertStackState() = default;

 private:
  static ENT_TRAITS plainTraits();

  std::vector<const CEntInsertBase*> m_inserts;
  CEntInsertMatrix m_matrix;
  CLayer* m_layer = nullptr;
  short m_color = 7;
  CLtype* m_ltype = nullptr;
  ENT_TRAITS m_traits = plainTraits();  // the current meaning of BYBLOCK
  bool m_isHatch = false;               // the innermost insert is one
};

/// Stack for the state of a traversal of nested inserts. The caller must bound the depth: recursive
/// inserts are not detected.
class VEK0_API CEntInsertStack : public CEntInsertStackState {
 public:
  /// `pixelSize` is that of the display, in drawing units; inserts of fixed pixel size
  /// are placed by it.
  explicit CEntInsertStack(double pixelSize);

  /// Enters one cell of an insert, which must be in the innermost block.
  void Push(const CEntInsertBase* insert, int row, int col);
  /// Leaves the innermost insert; has no effect if none was entered.
  void Pop();

  const CEntInsertStackState& GetState() const { return *this; }

 private:
  struct Saved {
    CEntInsertMatrix matrix;
    CLayer* layer;
    short color;
    CLtype* ltype;
    ENT_TRAITS traits;
    bool isHatch;
  };

  double m_pixelSize;
  std::vector<Saved> m_saved;
};
