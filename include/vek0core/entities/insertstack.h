#pragma once

#include <vector>

#include "vek0core/entities/insertmatrix.h"
#include "vek0core/export.h"

class CEnt;
class CEntInsertBase;
class CLayer;
class CLtype;

/// Where a walk through nested inserts stands: the inserts entered, the placement of
/// the innermost block, and what its entities take over from the inserts around.
///
/// An entity on layer "0" inside a block shows on the layer of the insert; BYBLOCK
/// colors and linetypes are those of the insert, BYLAYER ones those of the layer
/// found this way. Outside all inserts BYBLOCK is color 7 and Continuous. A null
/// linetype stands for Continuous here, and so does a layer's linetype that refers to
/// a layer or block itself.
class VEK0_API CEntInsertStackState {
 public:
  int GetNoInsert() const { return static_cast<int>(m_inserts.size()); }
  /// Insert number `i` from outside; null for a number outside.
  const CEntInsertBase* GetInsert(int i) const;
  /// The outermost insert, null when none was entered.
  const CEntInsertBase* GetBaseInsert() const { return GetInsert(0); }
  /// The innermost insert, likewise.
  const CEntInsertBase* GetTopMostInsert() const { return GetInsert(GetNoInsert() - 1); }

  /// From the innermost block's coordinates to the drawing's.
  const CEntInsertMatrix& GetCurMatrix() const { return m_matrix; }
  /// Layer on which entities of layer "0" show; null outside all inserts.
  CLayer* GetCurLayer() const { return m_layer; }
  /// What BYBLOCK colors are here.
  short GetCurColor() const { return m_color; }
  /// What BYBLOCK linetypes are here; null is Continuous.
  CLtype* GetCurLtype() const { return m_ltype; }

  /// Layer on which an entity of the innermost block shows; null only for an entity
  /// without a layer outside all inserts.
  CLayer* ResolveLayer(const CEnt& ent) const;
  /// Color index in which it shows; 7 where there is no layer to ask.
  short ResolveColor(const CEnt& ent) const;
  /// Linetype in which it shows; null is Continuous.
  CLtype* ResolveLtype(const CEnt& ent) const;

 protected:
  friend class CEntInsertStack;
  CEntInsertStackState() = default;

 private:
  std::vector<const CEntInsertBase*> m_inserts;
  CEntInsertMatrix m_matrix;
  CLayer* m_layer = nullptr;
  short m_color = 7;
  CLtype* m_ltype = nullptr;
};

/// Stack on which a walk through nested inserts keeps its state. The walker bounds
/// the depth: inserts that contain themselves are met as often as they are pushed.
class VEK0_API CEntInsertStack : public CEntInsertStackState {
 public:
  /// `pixelSize` is that of the display, in drawing units; inserts of fixed pixel size
  /// are placed by it.
  explicit CEntInsertStack(double pixelSize);

  /// Enters one cell of an insert, which must stand in the innermost block.
  void Push(const CEntInsertBase* insert, int row, int col);
  /// Leaves the innermost insert; does nothing when none was entered.
  void Pop();

  const CEntInsertStackState& GetState() const { return *this; }

 private:
  struct Saved {
    CEntInsertMatrix matrix;
    CLayer* layer;
    short color;
    CLtype* ltype;
  };

  double m_pixelSize;
  std::vector<Saved> m_saved;
};
