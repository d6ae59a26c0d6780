#pragma once

#include <memory>
#include <utility>

#include "dxf/in/record.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entpolyline.h"

namespace vek0::detail {

/// Creates the entities of records with the host's factory. The arguments are those of the
/// factory's functions between color and handle. Null is error 1, out of memory.
class EntBuilder {
 public:
  EntBuilder(CEntFactory& factory, IHandleGestor& gestor, CFileDXFIError& err)
      : m_factory(factory), m_gestor(gestor), m_err(err) {}

  template <class... Args>
  auto point(const EntProperties& p, Args&&... args) const {
    return dressed(m_factory.createEntPnt(m_gestor, p.layer, p.ltype, p.color,
                                          std::forward<Args>(args)..., p.handle),
                   p);
  }
  template <class... Args>
  auto line(const EntProperties& p, Args&&... args) const {
    return dressed(m_factory.createEntLine(m_gestor, p.layer, p.ltype, p.color,
                                           std::forward<Args>(args)..., p.handle),
                   p);
  }
  template <class... Args>
  auto circle(const EntProperties& p, Args&&... args) const {
    return dressed(m_factory.createEntCircle(m_gestor, p.layer, p.ltype, p.color,
                                             std::forward<Args>(args)..., p.handle),
                   p);
  }
  template <class... Args>
  auto arc(const EntProperties& p, Args&&... args) const {
    return dressed(m_factory.createEntArc(m_gestor, p.layer, p.ltype, p.color,
                                          std::forward<Args>(args)..., p.handle),
                   p);
  }
  std::unique_ptr<CEntPolyline> polyline(const EntProperties& p, short flags, short degree) const {
    return dressed(
        m_factory.createEntPolyline(m_gestor, p.layer, p.ltype, p.color, flags, degree, p.handle),
        p);
  }
  template <class... Args>
  auto text(const EntProperties& p, Args&&... args) const {
    return dressed(m_factory.createEntText(m_gestor, p.layer, p.ltype, p.color,
                                           std::forward<Args>(args)..., p.handle),
                   p);
  }
  template <class... Args>
  auto attdef(const EntProperties& p, Args&&... args) const {
    return dressed(m_factory.createEntAttdef(m_gestor, p.layer, p.ltype, p.color,
                                             std::forward<Args>(args)..., p.handle),
                   p);
  }
  template <class... Args>
  auto attrib(const EntProperties& p, Args&&... args) const {
    return dressed(m_factory.createEntAttrib(m_gestor, p.layer, p.ltype, p.color,
                                             std::forward<Args>(args)..., p.handle),
                   p);
  }
  template <class... Args>
  auto insert(const EntProperties& p, Args&&... args) const {
    return dressed(m_factory.createEntInsert(m_gestor, p.layer, p.ltype, p.color,
                                             std::forward<Args>(args)..., p.handle),
                   p);
  }
  template <class... Args>
  auto xrefInsert(const EntProperties& p, Args&&... args) const {
    return dressed(m_factory.createEntInsertXRef(m_gestor, p.layer, p.ltype, p.color,
                                                 std::forward<Args>(args)..., p.handle),
                   p);
  }
  template <class... Args>
  auto hatch(const EntProperties& p, Args&&... args) const {
    return dressed(m_factory.createEntHatch(m_gestor, p.layer, p.ltype, p.color,
                                            std::forward<Args>(args)..., p.handle),
                   p);
  }
  template <class... Args>
  auto face(const EntProperties& p, Args&&... args) const {
    return dressed(m_factory.createEnt3DFace(m_gestor, p.layer, p.ltype, p.color,
                                             std::forward<Args>(args)..., p.handle),
                   p);
  }
  template <class... Args>
  auto filledFace(const EntProperties& p, Args&&... args) const {
    return dressed(m_factory.createEntSolid(m_gestor, p.layer, p.ltype, p.color,
                                            std::forward<Args>(args)..., p.handle),
                   p);
  }
  /// Wraps an object that the factory made; null is the same error.
  template <class Ent>
  std::unique_ptr<Ent> owned(Ent* ent) const {
    if (!ent) m_err.SetError(CFileDXFIError::GeneralError);
    return std::unique_ptr<Ent>(ent);
  }

 private:
  template <class Ent>
  std::unique_ptr<Ent> dressed(Ent* ent, const EntProperties& p) const {
    std::unique_ptr<Ent> made = owned(ent);
    if (made && p.traits != ENT_TRAITS()) made->setTraits(p.traits);
    return made;
  }

  CEntFactory& m_factory;
  IHandleGestor& m_gestor;
  CFileDXFIError& m_err;
};

}  // namespace vek0::detail
