#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "vek0core/vek0core.h"

namespace vek0::host {

/// The tables that a drawing is exported as.
enum class CsvTable {
  Entities,    ///< one row per entity, as `vek0 list` shows it
  Texts,       ///< those of them that have a text
  Attributes,  ///< one row per insert of model space and layouts, one column per tag
};

/// Passes a table to `put`, row by row, as RFC 4180 says: one header line, cells in quotes where
/// necessary, lines that end with CR and LF. Empty cells stand for what an entity does not have.
///
/// Returns why there is no table, else an empty text: inserts times tags are limited to 100
/// million.
std::string writeCsv(const CData& data, CsvTable table,
                     const std::function<void(std::string_view)>& put);

}  // namespace vek0::host
