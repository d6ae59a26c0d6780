#include "vek0core/drawing/datafactory.h"

#include <memory>
#include <new>
#include <utility>

#include "vek0core/drawing/data.h"
#include "vek0core/entities/blocks/blockfactory.h"
#include "vek0core/entities/entfactory.h"

CData* CDataFactory::createData() {
  return createData(std::unique_ptr<IHandleGestor>(doCreateHandleGestor()));
}

CData* CDataFactory::createData(std::unique_ptr<IHandleGestor> gestor) {
  std::unique_ptr<CLtypeFactory> ltypes(doCreateLtypeFactory());
  std::unique_ptr<CLayerFactory> layers(doCreateLayerFactory());
  std::unique_ptr<CStyleFactory> styles(doCreateStyleFactory());
  std::unique_ptr<CBlockFactory> blocks(doCreateBlockFactory());
  std::unique_ptr<CEntFactory> entities(doCreateEntFactory());
  if (!gestor || !ltypes || !layers || !styles || !blocks || !entities) return nullptr;
  try {
    return new CData(std::move(gestor), std::move(ltypes), std::move(layers), std::move(styles),
                     std::move(blocks), std::move(entities));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

IHandleGestor* CDataFactory::doCreateHandleGestor() { return new (std::nothrow) CHandleGestorFoo; }
CLtypeFactory* CDataFactory::doCreateLtypeFactory() { return new (std::nothrow) CLtypeFactory; }
CLayerFactory* CDataFactory::doCreateLayerFactory() { return new (std::nothrow) CLayerFactory; }
CStyleFactory* CDataFactory::doCreateStyleFactory() { return new (std::nothrow) CStyleFactory; }
CBlockFactory* CDataFactory::doCreateBlockFactory() { return new (std::nothrow) CBlockFactory; }
CEntFactory* CDataFactory::doCreateEntFactory() { return new (std::nothrow) CEntFactory; }
