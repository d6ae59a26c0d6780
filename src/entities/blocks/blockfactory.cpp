#include "vek0core/entities/blocks/blockfactory.h"

#include <new>

#include "vek0core/entities/blocks/blockxref.h"

CBlockFactory::~CBlockFactory() = default;

CBlock* CBlockFactory::create(const zim::WString& name, const PNT_3D& base, long flags) try {
  return new (std::nothrow) CBlock(name, base, flags);
} catch (const std::bad_alloc&) {
  return nullptr;
}

CBlock* CBlockFactory::create(const zim::WString& name, long flags) {
  return create(name, PNT_3D(0, 0, 0), flags);
}

CBlockXRef* CBlockFactory::createXRef(CLtypeContinuous& continuous, CLtypeByLayer& byLayer,
                                      CLtypeByBlock& byBlock, CLayer0& layer0,
                                      const zim::WString& name, const zim::WString& path,
                                      const PNT_3D& base, long flags) try {
  return new (std::nothrow)
      CBlockXRef(continuous, byLayer, byBlock, layer0, name, path, base, flags);
} catch (const std::bad_alloc&) {
  return nullptr;
}

void CBlockFactory::initXRef(CBlockXRef& xref, const zim::WString& path, const PNT_3D& base,
                             long flags) {
  xref.init(path, base, flags);
}
