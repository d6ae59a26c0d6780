#pragma once

class CBlockFactory;
class CBlockTable;
class CData;
class CEntFactory;
class CLayer;
class CLtype;
class IHandleGestor;

namespace vek0::detail {

/// What entities use of the drawing they belong to when they restore a state or create hatch
/// lines. The rooms of entities come before the one of drawings, so they cannot ask `CData` itself.
struct EntServices {
  IHandleGestor& gestor;
  CEntFactory& entFactory;
  CBlockFactory& blockFactory;
  CBlockTable& blockTable;
  CLayer& layer0;
  CLtype& continuous;
  double hatchLimit;  ///< most lines that a hatch may have
};

/// Implemented by the drawing room.
EntServices servicesOf(CData& data);

}  // namespace vek0::detail
