#include "vek0core/drawing/datavariables.h"

#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"

CDataVariables::CDataVariables(CLayer0& layer0, CLtypeByLayer& byLayer)
    : m_curLayer(&layer0), m_curLtype(&byLayer) {}
