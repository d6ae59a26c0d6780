#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace vek0::host {

/// Keeps the order of its keys.
using Json = nlohmann::ordered_json;

/// The value on one line, without a line feed. Invalid UTF-8 is replaced.
inline std::string toLine(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace vek0::host
