#include "dxf/keep/versiondifferences.h"

namespace vek0::detail {
namespace {

constexpr int kMostCodes = 18;

// Pairs of a subclass, or of a record without any, that came with a version; 0 ends the codes.
struct NewPairs {
  const char* part;
  DxfVersion since;
  short codes[kMostCodes];
};

constexpr NewPairs kNewPairs[] = {
    {"CLASS", DxfVersion::R2004, {91}},
    {"AcDbEntity", DxfVersion::R2004, {420, 430, 440}},
    {"AcDbEntity", DxfVersion::R2007, {284, 347, 348, 380}},
    {"AcDbLayerTableRecord", DxfVersion::R2004, {420, 430, 440}},
    {"AcDbLayerTableRecord", DxfVersion::R2007, {347, 348}},
    {"AcDbMlineStyle", DxfVersion::R2004, {420}},
    {"AcDbHatch", DxfVersion::R2004, {421, 450, 451, 452, 453, 460, 461, 462, 463, 470}},
    {"AcDbMText", DxfVersion::R2004, {45, 63, 90, 421, 431, 441}},
    {"AcDbMText", DxfVersion::R2007, {46}},
    {"AcDbPlotSettings", DxfVersion::R2004, {76, 77, 78}},
    {"AcDbPlotSettings", DxfVersion::R2007, {333}},
    {"AcDbBlockTableRecord", DxfVersion::R2007, {70, 280, 281}},
    {"AcDbDimStyleTableRecord", DxfVersion::R2007, {49, 50, 69, -70, 290, 345, 346, 347}},
    {"AcDbViewTableRecord", DxfVersion::R2007, {332, 334, 348, 361}},
    {"AcDbViewportTableRecord",
     DxfVersion::R2007,
     {1, 60, 61, 63, 141, 142, 170, 282, 292, 332, 333, 348, 361, 421, 431}},
    {"AcDbViewport", DxfVersion::R2004, {170}},
    {"AcDbViewport",
     DxfVersion::R2007,
     {61, 63, 91, 141, 142, 282, 292, 332, 333, 335, 343, 344, 348, 361, 421, 431}},
    {"AcDbAttribute", DxfVersion::R2007, {280}},
    {"AcDbAttributeDefinition", DxfVersion::R2007, {280}},
    {"AcDbDimension", DxfVersion::R2010, {280}},
    {"AcDbPolyline", DxfVersion::R2010, {91}},
    {"AcDbVertex", DxfVersion::R2010, {91}},
    {"AcDbRasterImage", DxfVersion::R2010, {290}},
    {"AcDbMLeader", DxfVersion::R2010, {271, 272, 273}},
    {"AcDbMLeader", DxfVersion::R2013, {295}},
    {"AcDbModelerGeometry", DxfVersion::R2013, {2, 290}},
};

struct NewVariable {
  const char* name;
  DxfVersion since;
};

constexpr NewVariable kNewVariables[] = {
    {"$CUSTOMPROPERTY", DxfVersion::R2004},
    {"$CUSTOMPROPERTYTAG", DxfVersion::R2004},
    {"$DIMASSOC", DxfVersion::R2004},
    {"$HALOGAP", DxfVersion::R2004},
    {"$HIDETEXT", DxfVersion::R2004},
    {"$INDEXCTL", DxfVersion::R2004},
    {"$INTERSECTIONCOLOR", DxfVersion::R2004},
    {"$INTERSECTIONDISPLAY", DxfVersion::R2004},
    {"$LASTSAVEDBY", DxfVersion::R2004},
    {"$OBSCOLOR", DxfVersion::R2004},
    {"$OBSLTYPE", DxfVersion::R2004},
    {"$PROJECTNAME", DxfVersion::R2004},
    {"$SORTENTS", DxfVersion::R2004},
    {"$XCLIPFRAME", DxfVersion::R2004},
    {"$3DDWFPREC", DxfVersion::R2007},
    {"$CAMERADISPLAY", DxfVersion::R2007},
    {"$CAMERAHEIGHT", DxfVersion::R2007},
    {"$CMATERIAL", DxfVersion::R2007},
    {"$CSHADOW", DxfVersion::R2007},
    {"$DGNFRAME", DxfVersion::R2007},
    {"$DIMARCSYM", DxfVersion::R2007},
    {"$DIMFXL", DxfVersion::R2007},
    {"$DIMFXLON", DxfVersion::R2007},
    {"$DIMJOGANG", DxfVersion::R2007},
    {"$DIMLTEX1", DxfVersion::R2007},
    {"$DIMLTEX2", DxfVersion::R2007},
    {"$DIMLTYPE", DxfVersion::R2007},
    {"$DIMTFILL", DxfVersion::R2007},
    {"$DIMTFILLCLR", DxfVersion::R2007},
    {"$DRAGVS", DxfVersion::R2007},
    {"$DWFFRAME", DxfVersion::R2007},
    {"$INTERFERECOLOR", DxfVersion::R2007},
    {"$INTERFEREOBJVS", DxfVersion::R2007},
    {"$INTERFEREVPVS", DxfVersion::R2007},
    {"$LATITUDE", DxfVersion::R2007},
    {"$LENSLENGTH", DxfVersion::R2007},
    {"$LIGHTGLYPHDISPLAY", DxfVersion::R2007},
    {"$LOFTANG1", DxfVersion::R2007},
    {"$LOFTANG2", DxfVersion::R2007},
    {"$LOFTMAG1", DxfVersion::R2007},
    {"$LOFTMAG2", DxfVersion::R2007},
    {"$LOFTNORMALS", DxfVersion::R2007},
    {"$LOFTPARAM", DxfVersion::R2007},
    {"$LONGITUDE", DxfVersion::R2007},
    {"$NORTHDIRECTION", DxfVersion::R2007},
    {"$PSOLHEIGHT", DxfVersion::R2007},
    {"$PSOLWIDTH", DxfVersion::R2007},
    {"$REALWORLDSCALE", DxfVersion::R2007},
    {"$SHADOWPLANELOCATION", DxfVersion::R2007},
    {"$SHOWHIST", DxfVersion::R2007},
    {"$SOLIDHIST", DxfVersion::R2007},
    {"$STEPSIZE", DxfVersion::R2007},
    {"$STEPSPERSEC", DxfVersion::R2007},
    {"$TILEMODELIGHTSYNCH", DxfVersion::R2007},
    {"$TIMEZONE", DxfVersion::R2007},
    {"$DIMTXTDIRECTION", DxfVersion::R2010},
    {"$REQUIREDVERSIONS", DxfVersion::R2013},
};

}  // namespace

VersionDifferences::VersionDifferences(DxfVersion version) : m_version(version) {
  for (const NewPairs& pairs : kNewPairs)
    for (const short code : pairs.codes)
      if (pairs.since > version && code != 0) m_codes[pairs.part].push_back(code);
  for (const NewVariable& variable : kNewVariables)
    if (variable.since > version) m_variables.insert(variable.name);
}

const std::vector<short>* VersionDifferences::codesIn(std::string_view part) const {
  const auto found = m_codes.find(part);
  return found == m_codes.end() ? nullptr : &found->second;
}

}  // namespace vek0::detail
