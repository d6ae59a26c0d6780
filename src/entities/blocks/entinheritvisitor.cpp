#include "vek0core/entities/blocks/entinheritvisitor.h"

#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"

// The call must reach the overload of exactly the base class, hence the casts.
void IEntInheritVisitor::visit(CEntPnt& ent) { visit(static_cast<CEnt&>(ent)); }
void IEntInheritVisitor::visit(CEntLine& ent) { visit(static_cast<CEnt&>(ent)); }
void IEntInheritVisitor::visit(CEntCircle& ent) { visit(static_cast<CEnt&>(ent)); }
void IEntInheritVisitor::visit(CEntArc& ent) { visit(static_cast<CEnt&>(ent)); }
void IEntInheritVisitor::visit(CEntPolyline& ent) { visit(static_cast<CEnt&>(ent)); }
void IEntInheritVisitor::visit(CEntText& ent) { visit(static_cast<CEnt&>(ent)); }
void IEntInheritVisitor::visit(CEntAttdef& ent) { visit(static_cast<CEntText&>(ent)); }
void IEntInheritVisitor::visit(CEntInsert& ent) { visit(static_cast<CEntInsertBase&>(ent)); }
void IEntInheritVisitor::visit(CEntFixedInsert& ent) { visit(static_cast<CEntInsertBase&>(ent)); }
void IEntInheritVisitor::visit(CEntInsertXRef& ent) { visit(static_cast<CEntInsert&>(ent)); }
void IEntInheritVisitor::visit(CEntAttrib& ent) { visit(static_cast<CEntText&>(ent)); }
void IEntInheritVisitor::visit(CEntHatch& ent) { visit(static_cast<CEntInsertBase&>(ent)); }
void IEntInheritVisitor::visit(CEnt3DFace& ent) { visit(static_cast<CEnt&>(ent)); }
void IEntInheritVisitor::visit(CVertex&) {}
void IEntInheritVisitor::visit(CEntInsertBase& ent) { visit(static_cast<CEnt&>(ent)); }
void IEntInheritVisitor::visit(CEnt&) {}
