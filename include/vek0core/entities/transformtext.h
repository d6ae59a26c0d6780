#pragma once

#include "vek0core/export.h"
#include "vek0core/tables/text.h"

class CEntInsertMatrix;

/// Places a text as the matrix places what it stands on: the start of its baseline, the
/// direction of it and its upright go through the matrix. Height, width factor, rotation and
/// obliquing angle are read back from them, and the insertion point is where the
/// justification has it then, which under a shear is beside the image of the old one.
///
/// A mirroring matrix makes the width factor change its sign. The rotation is brought into
/// [0, 2*pi). Where nothing of the text is left, or not a number, its proportions stay as
/// they are.
VEK0_API void transform_text(const CEntInsertMatrix& matrix, TEXT_3D& text);
