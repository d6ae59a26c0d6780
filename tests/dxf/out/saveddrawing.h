#pragma once

#include "support/r12lint.h"
#include "support/test.h"

namespace vek0::test {

using Drawing = CDataPtr;

/// An empty drawing whose STANDARD style has no font.
inline Drawing newDrawing() {
  CDataFactory factory;
  return Drawing(factory.createData());
}

/// The drawing as DXF without any check of the file; empty if saving fails.
inline std::string savedAnyhow(const CData& data, unsigned flags, CFileReport* report = nullptr) {
  CFileMemory file(u"out.dxf", IFile::kWrite);
  return SaveDXF(data, file, flags, report) ? file.bytes() : std::string();
}

/// The drawing as DXF; the test fails if saving does, or if a strict reader could reject the file.
inline std::string saved(const CData& data, unsigned flags, CFileReport* report = nullptr) {
  const std::string bytes = savedAnyhow(data, flags, report);
  EXPECT_FALSE(bytes.empty());
  if (bytes.empty()) return bytes;
  for (const std::string& complaint : lintR12(bytes, (flags & kSaveExchange) != 0))
    ADD_FAILURE() << complaint;
  return bytes;
}

/// DXF text of pairs written as "code value", separated by semicolons: "0 LINE; 8 0".
inline std::string savedPairs(std::string_view list) {
  std::string text;
  for (std::size_t end = 0; end != std::string_view::npos; list.remove_prefix(end + 2)) {
    end = list.find("; ");
    const std::string_view pair = list.substr(0, end);
    const std::size_t blank = pair.find(' ');
    const std::string code(pair.substr(0, blank));
    text += std::string(code.size() < 3 ? 3 - code.size() : 0, ' ') + code + '\n';
    text += std::string(pair.substr(blank + 1)) + '\n';
    if (end == std::string_view::npos) break;
  }
  return text;
}

/// Content of the section between its name and its ENDSEC.
inline std::string section(const std::string& bytes, const std::string& name) {
  const std::string head = "  2\n" + name + "\n", tail = "  0\nENDSEC\n";
  const std::size_t at = bytes.find("  0\nSECTION\n" + head);
  if (at == std::string::npos) return "no section " + name;
  const std::size_t from = at + 12 + head.size();
  return bytes.substr(from, bytes.find(tail, from) - from);
}

/// The lines around the first difference of two files; empty if they are equal.
inline std::string firstDifference(const std::string& a, const std::string& b) {
  if (a == b) return {};
  std::size_t at = 0;
  while (at < a.size() && at < b.size() && a[at] == b[at]) ++at;
  const std::size_t from = at > 80 ? at - 80 : 0;
  return "..." + a.substr(from, 120) + "\n--- against\n..." + b.substr(from, 120);
}

inline bool contains(const std::string& bytes, const std::string& part) {
  return bytes.find(part) != std::string::npos;
}

/// Adds a line from the origin to (1, 2, 3) with the given handle.
inline CEntLine* addLine(CData& data, CLayer* layer, vek0::Handle handle) {
  CEntLine* line =
      createEntLine(data, layer, getLtypeByLayer(data), 256, LINE_3D(0, 0, 0, 1, 2, 3), handle);
  data.getEntTable().add(line);
  return line;
}

inline CLayer* addNewLayer(CData& data, const zim::WString& name, long flags = 0) {
  CLayer* layer = data.getLayerFactory().create(name, &data.getLtypeContinuous(), 7, flags);
  addLayer(data, layer);
  return layer;
}

inline CBlock* addNewBlock(CData& data, const zim::WString& name, long flags = 0) {
  CBlock* block = data.getBlockFactory().create(name, PNT_3D(0, 0, 0), flags);
  data.getBlockTable().add(block);
  return block;
}

inline CBlockXRef* addNewXRef(CData& data, const zim::WString& name) {
  CBlockXRef* xref = data.getBlockFactory().createXRef(
      data.getLtypeContinuous(), data.getLtypeByLayer(), data.getLtypeByBlock(), data.getLayer0(),
      name, u"C:\\plans\\site.dxf", PNT_3D(1, 2, 3), 4);
  data.getBlockXRefTable().add(xref);
  return xref;
}

/// Creates an insert at (5, 6, 0) without an owner.
inline CEntInsert* newInsert(CData& data, CBlock& block, vek0::Handle handle) {
  return createEntInsert(data, getLayer0(data), getLtypeByLayer(data), 256, block, PNT_3D(5, 6, 0),
                         1, 1, 1, 0, 1, 1, 0, 0, handle);
}

inline CTextContext textContext(const zim::WString& string, double height, double rotationRad) {
  CTextContext context;
  context.setHeight(height);
  context.setOblique(0);
  context.setWidthScale(1);
  context.setRotate(rotationRad);
  context.setString(string);
  return context;
}

/// Loads a drawing and expects no error.
inline Drawing loaded(const std::string& bytes, const CFileDXFIPolicy& policy = {}) {
  Drawing d = newDrawing();
  CFileMemory file(u"in.dxf", IFile::kRead, bytes);
  CFileDXFIError error;
  CFileDXFIOptions options;
  options.policy = policy;
  loadDXF(*d, file, &error, options);
  EXPECT_FALSE(error.HasAnError())
      << "kind " << error.GetErrorType() << ", line " << error.GetErrorLine();
  return d;
}

}  // namespace vek0::test
