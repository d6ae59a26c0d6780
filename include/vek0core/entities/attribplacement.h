#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

class CEntAttrib;
class CEntInsertBase;
class TEXT_3D;

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
