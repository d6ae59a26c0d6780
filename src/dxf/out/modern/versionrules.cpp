#include "dxf/out/modern/versionrules.h"

#include <iterator>

namespace vek0::detail {
namespace {

// What a version has, all later ones have too.
constexpr VersionRules rulesSince(const char* name, DxfVersion version) {
  const bool since2004 = version >= DxfVersion::R2004;
  const bool since2007 = version >= DxfVersion::R2007;
  VersionRules rules{name};
  rules.utf8 = rules.blockUnits = since2007;
  rules.trueColors = rules.transparency = rules.classCounts = rules.shadePlots = since2004;
  rules.attribVersions = version >= DxfVersion::R2010;
  return rules;
}

// In the order of the enumeration, without R12.
constexpr VersionRules kVersionRules[] = {
    rulesSince("AC1015", DxfVersion::R2000), rulesSince("AC1018", DxfVersion::R2004),
    rulesSince("AC1021", DxfVersion::R2007), rulesSince("AC1024", DxfVersion::R2010),
    rulesSince("AC1027", DxfVersion::R2013), rulesSince("AC1032", DxfVersion::R2018),
};
static_assert(std::size(kVersionRules) + 1 == kDxfVersions);

}  // namespace

const VersionRules* rulesOf(DxfVersion version) {
  return version == DxfVersion::R12 ? nullptr : &kVersionRules[static_cast<int>(version) - 1];
}

}  // namespace vek0::detail

const char* nameOf(DxfVersion version) {
  const vek0::detail::VersionRules* rules = vek0::detail::rulesOf(version);
  return rules ? rules->name : "AC1009";
}
