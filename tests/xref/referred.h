#pragma once

#include "drawing/drawings.h"
#include "support/test.h"

namespace vek0::test {

/// Drawings in memory by path. "secret" is unreadable, "folder" is not a file.
class ReferredDrawings final : public IXRefResolver {
 public:
  std::map<std::string, std::string> files;
  int changes = 0;  ///< number of further calls of `getState` that report a change

  Found find(const zim::WString& path, const zim::WString&, zim::WString& file) override {
    if (path == u"secret.dxf") return Found::Forbidden;
    if (path == u"folder") return Found::NotAFile;
    if (files.count(path.toUtf8()) == 0) return Found::Missing;
    file = path;
    return Found::Yes;
  }
  std::unique_ptr<IFile> open(const zim::WString& file) override {
    return std::make_unique<CFileMemory>(file, IFile::kRead, files[file.toUtf8()]);
  }
  zim::WString getState(const zim::WString&) override {
    if (changes > 0) --changes;
    return zim::WString::fromUtf8(std::to_string(changes));
  }
};

/// A BLOCK record of a reference.
inline std::string referenceTo(const std::string& name, const std::string& path, long flags = 4) {
  return pairs("0 BLOCK", "8 0") + pairText("2 " + name) + pairText("70 " + std::to_string(flags)) +
         pairs("10 0", "20 0", "30 0") + pairText("1 " + path) + pairs("0 ENDBLK");
}

inline std::string insertAt(const std::string& block, double x, const std::string& layer = "0",
                            const std::string& more = "") {
  return pairs("0 INSERT") + pairText("8 " + layer) + pairText("2 " + block) +
         pairText("10 " + std::to_string(x)) + pairs("20 0") + pairsOf(more);
}

inline std::string lineTo(double x, double y, const std::string& layer = "0",
                          const std::string& more = "") {
  return pairs("0 LINE") + pairText("8 " + layer) + pairs("10 0", "20 0") +
         pairText("11 " + std::to_string(x)) + pairText("21 " + std::to_string(y)) + pairsOf(more);
}

inline std::string layerEntry(const std::string& name, int color,
                              const std::string& ltype = "CONTINUOUS", int flags = 0) {
  return pairs("0 LAYER") + pairText("2 " + name) + pairText("70 " + std::to_string(flags)) +
         pairText("62 " + std::to_string(color)) + pairText("6 " + ltype);
}

inline std::string drawingOf(const std::string& layers, const std::string& blocks,
                             const std::string& entities) {
  return section("TABLES", table("LAYER", layers)) + section("BLOCKS", blocks) +
         section("ENTITIES", entities) + dxf();
}

/// Every line that the drawing shows, with its place and color, sorted. Blocks, references and
/// arrays are expanded.
class LinesShown {
 public:
  explicit LinesShown(const CData& data) : m_stack(1) {
    for (CEnt* ent : data.getEntTable().getEntityTbl()) show(*ent);
    std::sort(m_lines.begin(), m_lines.end());
  }
  const std::vector<std::string>& lines() const { return m_lines; }

 private:
  void show(CEnt& ent) {
    if (const CEntLine* line = castLine(&ent)) return note(*line);
    CEntInsertBase* insert = ent.getEntInsert();
    if (insert == nullptr || insert->getBlock() == nullptr || m_stack.GetNoInsert() > 300) return;
    long columns, rows;
    double dx, dy;
    insert->getArray(columns, rows, dx, dy);
    for (int row = 0; row < std::max(rows, 1L); ++row)
      for (int column = 0; column < std::max(columns, 1L); ++column) {
        m_stack.Push(insert, row, column);
        for (unsigned i = 0; i < insert->getBlock()->size(); ++i) show(*(*insert->getBlock())[i]);
        m_stack.Pop();
      }
  }
  void note(const CEntLine& line) {
    PNT_3D ends[2];
    m_stack.GetCurMatrix().transform(line.getLine().p1, ends[0]);
    m_stack.GetCurMatrix().transform(line.getLine().p2, ends[1]);
    std::string text;
    for (const PNT_3D& p : ends)
      for (const double v : {p.x, p.y}) text += std::to_string(v + 0.0) + " ";
    const CLtype* ltype = m_stack.ResolveLtype(line);
    text += "color " + std::to_string(m_stack.ResolveColor(line));
    m_lines.push_back(text + " dashes " +
                      std::to_string(ltype != nullptr ? ltype->getNoDashes() : 0));
  }

  CEntInsertStack m_stack;
  std::vector<std::string> m_lines;
};

inline std::vector<std::string> linesShown(const CData& data) { return LinesShown(data).lines(); }

/// A drawing and the drawings that it refers to.
struct Sheet {
  ReferredDrawings drawings;
  Loaded loaded;
  CFileReport report;

  /// Loads "sheet.dxf" from `drawings`.
  void load() {
    loaded = loadText(drawings.files["sheet.dxf"], CFileDXFIPolicy::forAnyFile());
    ASSERT_EQ(loaded.result.status, CFileDXFIResult::Done);
  }
  int resolve() {
    report = {};
    return resolveXRefs(data(), drawings, options());
  }
  CXRefOptions options() {
    CXRefOptions options;
    options.reading.policy = CFileDXFIPolicy::forAnyFile();
    options.drawing = u"sheet.dxf";
    options.report = &report;
    return options;
  }
  CData& data() const { return *loaded.data; }
  CBlockXRef* xref(std::u16string_view name) const { return data().getBlockXRefTable().get(name); }
  std::string reported() const {
    std::string text;
    for (const CFileReport::Entry& entry : report.entries())
      text +=
          std::string(text.empty() ? "" : "; ") + textOf(entry.code) + " " + entry.sample.toUtf8();
    return text;
  }
};

/// A site with two inserts of a house, whose drawing has a door and refers to the furniture.
inline Sheet siteSheet() {
  Sheet sheet;
  sheet.drawings.files["furniture.dxf"] =
      drawingOf(layerEntry("WOOD", 3), "", lineTo(1, 1, "WOOD") + lineTo(2, 0));
  sheet.drawings.files["house.dxf"] = drawingOf(
      layerEntry("WALL", 5) + layerEntry("FURN", 4),
      pairs("0 BLOCK", "8 0", "2 DOOR", "70 0", "10 0", "20 0") + lineTo(0, 3, "WALL") +
          lineTo(0, 4, "0", "62 0") + pairs("0 ENDBLK") + referenceTo("FURNITURE", "furniture.dxf"),
      lineTo(10, 0, "WALL") + lineTo(0, 10) + insertAt("DOOR", 5, "WALL", "62 1") +
          insertAt("FURNITURE", 2, "FURN"));
  sheet.drawings.files["sheet.dxf"] =
      drawingOf(layerEntry("SITE", 2) + layerEntry("HOUSE|WALL", 6, "CONTINUOUS", 16),
                referenceTo("HOUSE", "house.dxf"),
                insertAt("HOUSE", 100, "SITE") + insertAt("HOUSE", 200, "SITE", "50 90") +
                    lineTo(300, 0, "SITE"));
  sheet.load();
  return sheet;
}

}  // namespace vek0::test
