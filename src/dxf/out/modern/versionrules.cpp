#include "dxf/out/modern/versionrules.h"

#include <iterator>

namespace vek0::detail {
namespace {

constexpr bool kYes = true, kNo = false;

// In the order of the enumeration, without R12.
constexpr VersionRules kVersionRules[] = {
    {"AC1015", kNo, kNo, kNo, kNo, kNo, kNo, kNo},
    {"AC1018", kNo, kYes, kYes, kYes, kYes, kNo, kNo},
    {"AC1021", kYes, kYes, kYes, kYes, kYes, kYes, kNo},
    {"AC1024", kYes, kYes, kYes, kYes, kYes, kYes, kYes},
    {"AC1027", kYes, kYes, kYes, kYes, kYes, kYes, kYes},
    {"AC1032", kYes, kYes, kYes, kYes, kYes, kYes, kYes},
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
