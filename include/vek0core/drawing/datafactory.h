#pragma once

#include <memory>

#include "vek0core/export.h"

class CBlockFactory;
class CData;
class CEntFactory;
class CLayerFactory;
class CLtypeFactory;
class CStyleFactory;
class IHandleGestor;

/// Creates drawings.
class VEK0_API CDataFactory {
 public:
  /// Kept for hosts that manage handles; has no effect on created drawings.
  void setHandling(bool handling) { m_handling = handling; }
  bool isHandling() const { return m_handling; }

  /// A new drawing: linetypes Continuous, BYLAYER and BYBLOCK, layer "0", style "STANDARD" with the
  /// font table's default font, and the default variables. Destroy it with `deleteData`. Returns
  /// null, leaking nothing, when out of memory.
  CData* createData();
  /// The same with this handle manager. Null, deleting it, also for a null manager.
  CData* createData(std::unique_ptr<IHandleGestor> gestor);

 protected:
  // Each creates one object, or returns null when out of memory.
  IHandleGestor* doCreateHandleGestor();
  CLtypeFactory* doCreateLtypeFactory();
  CLayerFactory* doCreateLayerFactory();
  CStyleFactory* doCreateStyleFactory();
  CBlockFactory* doCreateBlockFactory();
  CEntFactory* doCreateEntFactory();

 private:
  bool m_handling = false;
};
