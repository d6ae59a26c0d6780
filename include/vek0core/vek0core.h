#pragma once

/// Everything the library offers, for programs that do not count compile time.

#include "vek0core/assert.h"
#include "vek0core/export.h"

#include "vek0core/geometry/arc.h"
#include "vek0core/geometry/circle.h"
#include "vek0core/geometry/line.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"

#include "vek0core/files/file.h"
#include "vek0core/files/filememory.h"
#include "vek0core/files/filestdlib.h"
#include "vek0core/files/report.h"
#include "vek0core/files/smartstring.h"
#include "vek0core/files/textcodec.h"

#include "vek0core/tables/colors.h"
#include "vek0core/tables/font.h"
#include "vek0core/tables/handle.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/layertable.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/ltypedash.h"
#include "vek0core/tables/ltypetable.h"
#include "vek0core/tables/nameditem.h"
#include "vek0core/tables/style.h"
#include "vek0core/tables/styletable.h"
#include "vek0core/tables/text.h"
#include "vek0core/tables/textcontext.h"

#include "vek0core/polyline/curve.h"
#include "vek0core/polyline/silhouette.h"




