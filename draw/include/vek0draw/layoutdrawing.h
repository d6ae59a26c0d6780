#pragma once

#include "vek0core/drawing/layout.h"
#include "vek0draw/draw.h"

/// Emits the part of a sheet visible in the window, which is in drawing units of the sheet: its
/// entities, the frames of its viewports, and through those that are on the model, clipped to their
/// boundaries and without the layers frozen in them. `DRAW_RESULT::blank` counts views that cannot
/// be shown.
///
/// Each viewport costs as much as `drawData` for its part of the window; the limits of the options
/// apply to all of them together. Points and lineweights have the same size in
/// viewports as on the sheet, and so do dashes unless the drawing says otherwise (`$PSLTSCALE`).
DRAW_RESULT drawLayout(const CData& data, const CLayout& layout, const CWndVpt& window,
                       IPainter& painter, const DRAW_OPTIONS& options = {});
