#include "vek0core/entities/ent3dface.h"

#include <algorithm>
#include <new>

#include "vek0core/assert.h"
#include "vek0core/entities/entvisitor.h"

namespace {

std::size_t corner(long i) {
  ZORA_ASSERT(i >= 0 && i < 4);
  return static_cast<std::size_t>(std::clamp(i, 0L, 3L));
}

// 0 if the index is not a bit of a 32-bit word.
unsigned long edgeBit(long i) { return i >= 0 && i < 32 ? 1UL << i : 0; }

}  // namespace

CEnt3DFace::CEnt3DFace(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                       const PNT_3D& p0, const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3,
                       long flags)
    : CEnt(handle, layer, ltype, color), m_vertexes{p0, p1, p2, p3}, m_flags(flags) {
  setTriangFlag();
  CEnt3DFace::calcBdry();
}

CEnt3DFace::CEnt3DFace(const CEnt3DFace& src, vek0::Handle handle)
    : CEnt(src, handle), m_vertexes(src.m_vertexes), m_flags(src.m_flags), m_fill(src.m_fill) {}

void CEnt3DFace::accept(IEntVisitor& visitor) { visitor.visit(*this); }

void CEnt3DFace::setMemento(CData&, const IEntDerivedMemento* memento) {
  const auto* face = vek0::detail::mementoOf<CEnt3DFace, CEnt3DFaceMemento>(memento);
  if (face == nullptr) return;
  m_vertexes = face->m_vertexes;
  m_flags = face->m_flags;
  m_fill = face->m_fill;
  calcBdry();
}

void CEnt3DFace::calcBdry() {
  RECT_3D box;
  box.initRegion();
  for (const PNT_3D& pnt : m_vertexes) box.updateRegion(pnt);
  setBdry(box);
}

IEntDerivedMemento* CEnt3DFace::createDerivedMemento() const {
  return new (std::nothrow) CEnt3DFaceMemento(*this);
}

const PNT_3D& CEnt3DFace::getVertex(long i) const { return m_vertexes[corner(i)]; }

PNT_3D& CEnt3DFace::getVertex(long i) { return m_vertexes[corner(i)]; }

void CEnt3DFace::getPoints(long i, PNT_3D& a, PNT_3D& b) const {
  const std::size_t from = corner(i);
  a = m_vertexes[from];
  b = m_vertexes[(from + 1) % 4];
}

void CEnt3DFace::getLine(long i, LINE_3D& edge) const {
  PNT_3D a(0, 0, 0);
  PNT_3D b(0, 0, 0);
  getPoints(i, a, b);
  edge.set(a, b);
}

void CEnt3DFace::setVertex(long i, const PNT_3D& pnt) {
  const std::size_t at = corner(i);
  m_vertexes[at] = pnt;
  if (at >= 2) setTriangFlag();
  calcBdry();
}

void CEnt3DFace::setVertexes(const PNT_3D& p0, const PNT_3D& p1, const PNT_3D& p2,
                             const PNT_3D& p3) {
  m_vertexes = {p0, p1, p2, p3};
  setTriangFlag();
  calcBdry();
}

void CEnt3DFace::setVertexes(const PNT_3D* pnts) {
  setVertexes(pnts[0], pnts[1], pnts[2], pnts[3]);
}

void CEnt3DFace::setFlags(long flags) { m_flags = (flags & kEdgeBits) | (m_flags & kTriangleBit); }

bool CEnt3DFace::isEdgeVisib(long i) const {
  return (static_cast<unsigned long>(m_flags) & edgeBit(i)) == 0;
}

void CEnt3DFace::setEdgeVisib(long i, bool visible) {
  const auto flags = static_cast<unsigned long>(m_flags);
  m_flags = static_cast<long>(visible ? flags & ~edgeBit(i) : flags | edgeBit(i));
}

void CEnt3DFace::setTriangular() {
  m_flags |= kTriangleBit;
  m_vertexes[3] = m_vertexes[2];
}

// Exact, like every flag that is derived from geometry.
void CEnt3DFace::setTriangFlag() {
  m_flags = m_vertexes[3] == m_vertexes[2] ? m_flags | kTriangleBit : m_flags & ~kTriangleBit;
}

CEnt* CEnt3DFace::clone(IHandleGestor&, CEntFactory&, CBlockFactory&, CBlockTable&,
                        vek0::Handle handle) const {
  return new (std::nothrow) CEnt3DFace(*this, handle);
}

CEnt3DFaceMemento::CEnt3DFaceMemento(const CEnt3DFace& face)
    : m_vertexes(face.m_vertexes), m_flags(face.m_flags), m_fill(face.m_fill) {}

bool CEnt3DFaceMemento::operator==(const CEnt& ent) const {
  if (ent.getType() != CEnt3DFace::kType) return false;
  const auto& face = static_cast<const CEnt3DFace&>(ent);
  return face.m_flags == m_flags && face.m_fill == m_fill && face.m_vertexes == m_vertexes;
}
