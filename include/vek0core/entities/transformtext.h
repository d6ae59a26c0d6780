#pragma once

#include "vek0core/export.h"
#include "vek0core/tables/text.h"

class CEntInsertMatrix;

/// Places a text as the matrix places what it stands on: its point goes through it, its
/// baseline and its upright too, and height, width factor, rotation and obliquing angle
/// are read back from them.
///
/// A mirroring matrix makes the width factor change its sign. The rotation is brought into
/// [0, 2*pi). Where nothing of the text is left, or not a number, its proportions stay as
/// they are.
VEK0_API void transform_text(const CEntInsertMatrix& matrix, TEXT_3D& text);
