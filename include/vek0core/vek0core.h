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






