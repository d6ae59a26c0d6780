#pragma once

#include <map>
#include <set>

#include "vek0core/export.h"

class CData;
class CEnt;
class CLayer;
class CLtype;
class CStyle;
class CUndoStack;
struct VIEWPORT;

/// Replaces layers, linetypes and text styles by others wherever a drawing refers to them: in
/// layers, in the texts of linetypes, in the entities of model space and of every block, in the
/// attributes of inserts, in the viewports of layouts, and among the current items. Layers that a
/// viewport hides are replaced only by layers without entities, else they are removed from its
/// list: it goes on showing those entities.
///
/// The replaced items remain in their tables; nothing refers to them afterwards, so the caller may
/// remove and delete them. Use counts are updated. A replacement is not replaced in turn. The
/// drawing must outlive the remapper; a copy works on the same drawing.
class VEK0_API CTableRemapper {
 public:
  /// `withXRefs` includes the layers, linetypes and entities of external references.
  CTableRemapper(CData& data, bool withXRefs);

  /// Records `to` as the replacement for `from`; the last one recorded wins. A null `to` means no
  /// replacement.
  void ChangeInto(CLayer* from, CLayer* to) { m_layers[from] = to; }
  void ChangeInto(CLtype* from, CLtype* to) { m_ltypes[from] = to; }  ///< likewise
  void ChangeInto(CStyle* from, CStyle* to) { m_styles[from] = to; }  ///< likewise

  /// Applies all recorded replacements. Linear in the drawing.
  void Remap();
  /// The same, recorded in `undo`, the undo stack of the same drawing: in the open step, or as a
  /// separate step. False when memory runs out: a separate step is then rolled back, while an open
  /// one keeps the changes made until then.
  bool Remap(CUndoStack& undo);

 private:
  bool remapLtypes(CUndoStack* undo);
  bool remapLayers(CUndoStack* undo);
  bool remapEntities(CUndoStack* undo);
  bool isAffected(const VIEWPORT& viewport) const;
  void replaceItems(VIEWPORT& viewport);
  bool remapViewports(CUndoStack* undo);
  bool remapCurrent(CUndoStack* undo);
  bool remapAll(CUndoStack* undo);
  bool remapTexts(CLtype& ltype, CUndoStack* undo);
  bool remapEnt(CEnt& ent, CUndoStack* undo);
  void replace(CEnt& ent);
  CLayer* layerFor(const CEnt& ent) const;
  CLtype* ltypeFor(const CEnt& ent) const;

  CData& m_data;
  std::map<CLayer*, CLayer*> m_layers;
  std::map<CLtype*, CLtype*> m_ltypes;
  std::map<CStyle*, CStyle*> m_styles;
  std::set<CLayer*> m_unused;  // replacements without entities before they replace anything
  bool m_withXRefs;
};
