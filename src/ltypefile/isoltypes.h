#pragma once

namespace vek0::detail {

/// The exact bytes of the definition file samples/iso.lin; a test compares them.
inline constexpr char kIsoLtypes[] =
    R"lin(;; The line types of ISO 128 for lines 1 mm wide. The standard gives lengths as
;; multiples of the line width: long dash 24, dash 12, short dash 6, gap 3, space 18.
;; Its dots, at most half a width long, stand here as points.
*ACAD_ISO02W100,dashed line
A,12.0,-3.0
*ACAD_ISO03W100,dashed space line
A,12.0,-18.0
*ACAD_ISO04W100,long dashed dotted line
A,24.0,-3.0,0.0,-3.0
*ACAD_ISO05W100,long dashed double-dotted line
A,24.0,-3.0,0.0,-3.0,0.0,-3.0
*ACAD_ISO06W100,long dashed triplicate-dotted line
A,24.0,-3.0,0.0,-3.0,0.0,-3.0,0.0,-3.0
*ACAD_ISO07W100,dotted line
A,0.0,-3.0
*ACAD_ISO08W100,long dashed short dashed line
A,24.0,-3.0,6.0,-3.0
*ACAD_ISO09W100,long dashed double-short-dashed line
A,24.0,-3.0,6.0,-3.0,6.0,-3.0
*ACAD_ISO10W100,dashed dotted line
A,12.0,-3.0,0.0,-3.0
*ACAD_ISO11W100,double-dashed dotted line
A,12.0,-3.0,12.0,-3.0,0.0,-3.0
*ACAD_ISO12W100,dashed double-dotted line
A,12.0,-3.0,0.0,-3.0,0.0,-3.0
*ACAD_ISO13W100,double-dashed double-dotted line
A,12.0,-3.0,12.0,-3.0,0.0,-3.0,0.0,-3.0
*ACAD_ISO14W100,dashed triplicate-dotted line
A,12.0,-3.0,0.0,-3.0,0.0,-3.0,0.0,-3.0
*ACAD_ISO15W100,double-dashed triplicate-dotted line
A,12.0,-3.0,12.0,-3.0,0.0,-3.0,0.0,-3.0,0.0,-3.0
)lin";

}  // namespace vek0::detail
