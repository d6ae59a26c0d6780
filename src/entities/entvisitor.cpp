#include "vek0core/entities/entvisitor.h"

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
