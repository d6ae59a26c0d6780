#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

class CEntAttrib;
class CEntInsertBase;
class TEXT_3D;
struct ATTRIB_PLACE;

/// Where an attribute of an insert shows, in drawing coordinates ("logical" placement
/// is that in the block, "phisic" that in the drawing; files hold the latter).
///
/// The baseline and the upright of the text go through scale and rotation of the
/// insert, its first cell; height, width factor, rotation and obliquing angle
/// (radians) are read back from them. A mirroring insert makes the width factor
/// change its sign. The rotation is brought into [0, 2*pi) by one turn. A scale of 0,
/// which would leave no text to read back, counts as 1.
VEK0_API void transform_attrib_logic_2_phisic(double pixelSize, const CEntInsertBase& insert,
                                              const CEntAttrib& attrib, PNT_3D& position,
                                              double& height, double& widthScale, double& rotation,
                                              double& oblique);

/// The inverse: turns a text given in drawing coordinates into the coordinates of the
/// insert's block, up to rounding.
VEK0_API void transform_attrib_phisic_2_logic(double pixelSize, const CEntInsertBase& insert,
                                              TEXT_3D& text);

/// Puts an attribute of the insert where `text` stands in drawing coordinates, and lets it
/// remember that place.
VEK0_API void placeAttrib(const CEntInsertBase& insert, const TEXT_3D& text, CEntAttrib& attrib);

/// The place in drawing coordinates that an attribute was read at, to the last digit, which
/// computing it loses: half of all digits under scales of 10^4:1. Null for an attribute that was
/// not read, or that has changed since, or whose insert has.
VEK0_API const ATTRIB_PLACE* rememberedPlace(const CEntInsertBase& insert,
                                             const CEntAttrib& attrib);
