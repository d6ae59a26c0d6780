#pragma once

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

class CBlock;
class CBlockXRef;
class CLayer0;
class CLtypeByBlock;
class CLtypeByLayer;
class CLtypeContinuous;
class PNT_3D;

/// Creates the blocks of a drawing; a host with its own block classes derives from it.
///
/// Every creator returns a new block in no table, which the caller owns, or null when out of
/// memory.
class VEK0_API CBlockFactory {
 public:
  CBlockFactory() = default;
  CBlockFactory(const CBlockFactory&) = default;
  CBlockFactory& operator=(const CBlockFactory&) = default;
  virtual ~CBlockFactory();

  virtual CBlock* create(const zim::WString& name, const PNT_3D& base, long flags);
  /// With the base point at the origin.
  virtual CBlock* create(const zim::WString& name, long flags);

  /// An unresolved external reference; no file is opened. The fixed items are those of the drawing,
  /// returned by the reference's tables as their own, and must outlive it.
  virtual CBlockXRef* createXRef(CLtypeContinuous& continuous, CLtypeByLayer& byLayer,
                                 CLtypeByBlock& byBlock, CLayer0& layer0, const zim::WString& name,
                                 const zim::WString& path, const PNT_3D& base, long flags);
  /// Fills in the declared data of a reference that was announced by its dependent layers or
  /// linetypes.
  virtual void initXRef(CBlockXRef& xref, const zim::WString& path, const PNT_3D& base, long flags);
};
