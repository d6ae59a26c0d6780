#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

class CEntAttrib;
class CEntInsertBase;
class TEXT_3D;
struct ATTRIB_PLACE;

/// Computes the placement of an insert's attribute in drawing coordinates ("logic" is the placement
/// in the block, "phisic" that in the drawing; files store the latter).
///
/// Transforms the baseline and the vertical direction of the text by the scale and rotation of the
/// insert's first cell, and derives height, width factor, rotation and obliquing angle (radians)
/// from them. A mirroring insert changes the sign of the width factor. The rotation is reduced to
/// [0, 2*pi) by at most one turn. A scale of 0, which would collapse the text, counts as 1.
VEK0_API void transform_attrib_logic_2_phisic(double pixelSize, const CEntInsertBase& insert,
                                              const CEntAttrib& attrib, PNT_3D& position,
                                              double& height, double& widthScale, double& rotation,
                                              double& oblique);

/// The inverse: transforms a text from drawing coordinates to those of the insert's block, up to
/// rounding.
VEK0_API void transform_attrib_phisic_2_logic(double pixelSize, const CEntInsertBase& insert,
                                              TEXT_3D& text);

/// Places an attribute of the insert at `text`, given in drawing coordinates, and makes it remember
/// that placement.
VEK0_API void placeAttrib(const CEntInsertBase& insert, const TEXT_3D& text, CEntAttrib& attrib);

/// The exact placement in drawing coordinates that an attribute was read with. Recomputing it loses
/// digits: half of them under scales of 10^4:1. Null if the attribute was not read from a file, or
/// if it or its insert has changed since.
VEK0_API const ATTRIB_PLACE* rememberedPlace(const CEntInsertBase& insert,
                                             const CEntAttrib& attrib);
