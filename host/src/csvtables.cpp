#include "vek0host/csvtables.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "degrees.h"
#include "vek0host/entitylist.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

constexpr std::size_t kMostCells = 100'000'000;

using Cells = std::vector<std::string>;
using Sink = std::function<void(std::string_view)>;

std::string numberCell(double value) {
  return std::isfinite(value) ? shortestText(value) : std::string();
}

void putRow(const Cells& cells, const Sink& put) {
  std::string row;
  for (const std::string& cell : cells) {
    if (&cell != &cells.front()) row += ',';
    if (cell.find_first_of(",\"\r\n") == std::string::npos) {
      row += cell;
      continue;
    }
    row += '"';
    for (const char c : cell) row.append(c == '"' ? 2 : 1, c);
    row += '"';
  }
  put(row + "\r\n");
}

std::string nameCell(const zim::WString* name) { return name ? name->toUtf8() : std::string(); }

std::string layerCell(const CEnt& ent) {
  return nameCell(ent.getLayer() ? &ent.getLayer()->getFullName() : nullptr);
}

std::string cellOf(const Json& value) {
  if (value.is_null()) return {};
  if (value.is_string()) return value.get<std::string>();
  return value.is_number_float() ? numberCell(value.get<double>()) : value.dump();
}

void putEntities(const CData& data, bool onlyTexts, const Sink& put) {
  putRow({"handle", "of",         "kind",     "layer",          "layout",       "block",   "color",
          "rgb",    "lineweight", "linetype", "linetype_scale", "transparency", "visible", "min_x",
          "min_y",  "min_z",      "max_x",    "max_y",          "max_z",        "text"},
         put);
  listEntities(data, "", Selection(), [&](const ListedEntity& entity) {
    const Json json = toJson(entity);
    if (onlyTexts && json["text"].is_null()) return;
    Cells cells;
    for (const char* key : {"handle", "of", "kind", "layer", "layout", "block", "color", "rgb",
                            "lineweight", "linetype", "linetype_scale", "transparency", "visible"})
      cells.push_back(json.contains(key) ? cellOf(json[key]) : std::string());
    const Json& box = json["extents"];
    for (const char* corner : {"min", "max"})
      for (std::size_t i = 0; i < 3; ++i)
        cells.push_back(box.is_null() ? std::string() : cellOf(box[corner][i]));
    cells.push_back(cellOf(json["text"]));
    putRow(cells, put);
  });
}

// The insert of a block with a name of its own; null for all else.
const CEntInsertBase* partOf(const ListedEntity& entity) {
  const CEntInsertBase* insert = entity.ent->getEntInsert();
  const CBlock* block = insert ? insert->getBlock() : nullptr;
  const bool isPart = block && insert->getType() != CEntHatch::kType && !block->isOfRecord() &&
                      !block->isOfDimension();
  return isPart ? insert : nullptr;
}

Cells cellsOf(const ListedEntity& entity, const CEntInsertBase& insert,
              const std::map<std::string, std::size_t>& columns) {
  PNT_3D at;
  double sx, sy, sz, rotation, columnSpacing, rowSpacing;
  long noColumns = 1, noRows = 1;
  insert.getInsertParams(1, at, sx, sy, sz, rotation);
  insert.getArray(noColumns, noRows, columnSpacing, rowSpacing);
  const double count =
      static_cast<double>(std::max(1L, noColumns)) * static_cast<double>(std::max(1L, noRows));
  Cells cells{hexText(insert.GetHandle()),
              insert.getBlock()->getName().toUtf8(),
              layerCell(insert),
              nameCell(entity.layout),
              numberCell(count),
              numberCell(at.x),
              numberCell(at.y),
              numberCell(at.z),
              numberCell(degreesOf(rotation)),
              numberCell(sx),
              numberCell(sy),
              numberCell(sz)};
  const std::size_t fixed = cells.size();
  cells.resize(fixed + columns.size());
  for (unsigned i = 0; i < insert.GetNoAttribs(); ++i) {
    const CEntAttrib& attrib = *insert.GetAttrib(i);
    std::string& cell = cells[fixed + columns.at(attrib.getTag().toUtf8())];
    cell += (cell.empty() ? "" : "; ") + attrib.getValue().toUtf8();
  }
  return cells;
}

std::string putAttributes(const CData& data, const Sink& put) {
  Cells head{"handle", "block", "layer",    "layout",  "count",   "x",
             "y",      "z",     "rotation", "scale_x", "scale_y", "scale_z"};
  std::map<std::string, std::size_t> columns;
  std::size_t rows = 0;
  listEntities(data, "", Selection(), [&](const ListedEntity& entity) {
    const CEntInsertBase* insert = partOf(entity);
    if (!insert) return;
    ++rows;
    for (unsigned i = 0; i < insert->GetNoAttribs(); ++i) {
      const std::string tag = insert->GetAttrib(i)->getTag().toUtf8();
      if (columns.emplace(tag, columns.size()).second) head.push_back(tag);
    }
  });
  if (rows * columns.size() > kMostCells)
    return std::to_string(rows) + " inserts with " + std::to_string(columns.size()) +
           " different tags are too many for a table";
  putRow(head, put);
  listEntities(data, "", Selection(), [&](const ListedEntity& entity) {
    if (const CEntInsertBase* insert = partOf(entity))
      putRow(cellsOf(entity, *insert, columns), put);
  });
  return {};
}

}  // namespace

std::string writeCsv(const CData& data, CsvTable table, const Sink& put) {
  if (table == CsvTable::Attributes) return putAttributes(data, put);
  putEntities(data, table == CsvTable::Texts, put);
  return {};
}

}  // namespace vek0::host
