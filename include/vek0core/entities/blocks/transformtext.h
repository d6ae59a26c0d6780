#pragma once

#include "vek0core/export.h"
#include "vek0core/tables/text.h"

class CEntInsertMatrix;

/// Transforms a text by the matrix: the start and direction of its baseline and its vertical
/// direction are mapped. Height, width factor, rotation and obliquing angle are derived from them,
/// and the insertion point from the justification, which under a shear differs from the image of
/// the old one.
///
/// A mirroring matrix changes the sign of the width factor. The rotation is reduced to [0, 2*pi).
/// If the text collapses, or a result is NaN, its proportions are unchanged.
VEK0_API void transform_text(const CEntInsertMatrix& matrix, TEXT_3D& text);
