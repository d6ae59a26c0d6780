// What contradicts itself within a file.
#include "support/test.h"

namespace {

std::string auditOf(const std::string& text) {
  CFileMemory file(u"test.dxf", IFile::kRead, text);
  CFileReport report;
  EXPECT_TRUE(auditDXF(file, report));
  std::string list;
  for (const CFileReport::Entry& entry : report.entries())
    list += (list.empty() ? "" : "; ") + std::string(textOf(entry.code)) + " " +
            entry.sample.toUtf8() + " x" + std::to_string(entry.count);
  return list;
}

}  // namespace

// The cells are the pairs of the sections TABLES, BLOCKS, ENTITIES and OBJECTS.
TEST(Audit, FindsWhatContradictsItself) {
  for (const Row& t : rows()) {
    std::string text = version(t.text("version"));
    for (const char* name : {"TABLES", "BLOCKS", "ENTITIES", "OBJECTS"})
      text += section(name, pairsOf(t.text(name)));
    EXPECT_EQ(auditOf(text + dxf()), t.text("findings"));
  }
}
