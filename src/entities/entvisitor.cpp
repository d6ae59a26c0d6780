#include "vek0core/entities/entvisitor.h"

#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/enthatch.h"
#include "vek0core/entities/entinsert.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"

void IEntVisitor::visit(CVertex&) {}

void IEntFooVisitor::visit(CEntPnt&) {}
void IEntFooVisitor::visit(CEntLine&) {}
void IEntFooVisitor::visit(CEntCircle&) {}
void IEntFooVisitor::visit(CEntArc&) {}
void IEntFooVisitor::visit(CEntPolyline&) {}
void IEntFooVisitor::visit(CEntText&) {}
void IEntFooVisitor::visit(CEntAttdef&) {}
void IEntFooVisitor::visit(CEntInsert&) {}
void IEntFooVisitor::visit(CEntFixedInsert&) {}
void IEntFooVisitor::visit(CEntInsertXRef&) {}
void IEntFooVisitor::visit(CEntAttrib&) {}
void IEntFooVisitor::visit(CEntHatch&) {}
void IEntFooVisitor::visit(CEnt3DFace&) {}
void IEntFooVisitor::visit(CVertex&) {}

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
