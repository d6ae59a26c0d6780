#pragma once

#include <map>

#include "vek0core/export.h"

class CData;
class CEnt;
class CLayer;
class CLtype;
class CStyle;
class CUndoStack;

/// Replaces layers, linetypes and text styles by others wherever a drawing names them: in
/// layers, in the texts of linetypes, in the entities of model space and of every block,
/// in the attributes of inserts, and among the current items.
///
/// The replaced items stay where they are; nothing names them afterwards, so the caller
/// may remove and delete them. Counts move along. A replacement is not replaced in turn.
/// The drawing must outlive the remapper; a copy works on the same drawing.
class VEK0_API CTableRemapper {
 public:
  /// `withXRefs`: the layers, linetypes and entities of external references too.
  CTableRemapper(CData& data, bool withXRefs);

  /// Records that `to` is to stand for `from`; the last one recorded for `from` holds.
  /// Null as replacement means none.
  void ChangeInto(CLayer* from, CLayer* to) { m_layers[from] = to; }
  void ChangeInto(CLtype* from, CLtype* to) { m_ltypes[from] = to; }  ///< likewise
  void ChangeInto(CStyle* from, CStyle* to) { m_styles[from] = to; }  ///< likewise

  /// Makes all recorded replacements. Linear in the drawing.
  void Remap();
  /// The same, and `undo`, which is of the same drawing, can take it back: in the step that
  /// is open, or as a step of its own. False when memory runs out: a step of its own is
  /// then taken back, in an open one what was done until then stays.
  bool Remap(CUndoStack& undo);

 private:
  bool remapLtypes(CUndoStack* undo);
  bool remapLayers(CUndoStack* undo);
  bool remapEntities(CUndoStack* undo);
  bool remapCurrent(CUndoStack* undo);
  bool remapAll(CUndoStack* undo);
  bool remapTexts(CLtype& ltype, CUndoStack* undo);
  bool remapEnt(CEnt& ent, CUndoStack* undo);
  void replace(CEnt& ent);

  CData& m_data;
  std::map<CLayer*, CLayer*> m_layers;
  std::map<CLtype*, CLtype*> m_ltypes;
  std::map<CStyle*, CStyle*> m_styles;
  bool m_withXRefs;
};
