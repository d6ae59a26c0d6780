// A drawing saved as its source: unedited, it must be the same bytes; with random edits, it must
// load again with as many entities; and with the edits undone, it must be the same bytes again.
#include <algorithm>
#include <random>
#include <vector>

#include "input.h"
#include "support.h"

namespace {

using vek0::fuzz::require;

struct Kept {
  explicit Kept(const std::string& bytes)
      : source(std::make_unique<CFileMemory>(u"fuzz.dxf", IFile::kRead, bytes)) {
    CFontTable::getInstance().addPlainDefault();
    data.reset(CDataFactory().createData(std::make_unique<CHandleManager>()));
    CFileDXFIOptions options{nullptr, CFileDXFIPolicy::forAnyFile()};
    options.policy.wholeRecords = true;
    isLoaded = source.load(*data, nullptr, options).status == CFileDXFIResult::Done;
  }
  std::string saved(CFileReport* report = nullptr,
                    CDXFSource::Damage damage = CDXFSource::Damage::Kept) const {
    CFileMemory out(u"out.dxf", IFile::kWrite);
    require(source.save(*data, out, report, damage) == CDXFSource::Outcome::Saved);
    return out.bytes();
  }

  CDataPtr data;
  CDXFSource source;
  bool isLoaded = false;
};

std::vector<CEnt*> entitiesOf(const CData& data) {
  std::vector<CEnt*> all(data.getEntTable().getEntityTbl().begin(),
                         data.getEntTable().getEntityTbl().end());
  for (int i = 0; i < data.getBlockTable().size(); ++i) {
    CBlock& block = *data.getBlockTable()[i];
    if (block.isOfRecord() || isHatchName(block.getName())) continue;
    for (unsigned k = 0; k < block.size(); ++k) all.push_back(block[k]);
  }
  return all;
}

// Blocks without names of their own go with their last insert.
std::size_t countOf(const CData& data) {
  const std::vector<CEnt*> all = entitiesOf(data);
  return static_cast<std::size_t>(std::count_if(all.begin(), all.end(), [](const CEnt* ent) {
    const CBlock* owner = ent->getOwnerBlock();
    return !owner || owner->isSheet() || owner->getName()[0] != u'*';
  }));
}

// Edits through an undo stack, chosen by a number.
class Editor {
 public:
  Editor(CData& data, CUndoStack& undo, unsigned seed)
      : m_data(data), m_undo(undo), m_random(seed) {}

  void edit() {
    m_undo.begin(u"edit");
    for (CEnt* ent : entitiesOf(m_data)) editOne(*ent);
    if (number(3) == 0) addLine();
    if (m_data.getLayerTable().size() > 0 && number(3) == 0) rename();
    m_undo.commit();
  }

 private:
  int number(unsigned below) { return static_cast<int>(m_random() % below); }

  void editOne(CEnt& ent) {
    const int kind = number(16);
    if (kind > 4 || !m_undo.keep(ent)) return;
    if (kind == 0) ent.setColor(static_cast<short>(number(256)));
    CEntMoveVisitor move(PNT_3D(number(50) - 25, 2.5, number(2)));
    if (kind == 1) ent.accept(move);
    CEntRotateXYVisitor turn = CEntRotateXYVisitor::byDegrees(PNT_3D(1, 2, 0), 15 * number(24));
    if (kind == 2) ent.accept(turn);
    CEntScaleVisitor scale(PNT_3D(3, 1, 0), (1 + number(8)) / 4.0);
    if (kind == 3) ent.accept(scale);
    if (kind == 4 && ent.getOwnerBlock() == nullptr) m_undo.remove(&ent);
  }
  void addLine() {
    CLayer* layer = m_data.getLayerTable().size() > 0 ? m_data.getLayerTable()[0] : nullptr;
    m_undo.add(createEntLine(m_data, layer ? layer : &m_data.getLayer0(), &m_data.getLtypeByLayer(),
                             3, LINE_3D(PNT_3D(0, 0, 0), PNT_3D(10, 5, 0)), 0));
  }
  void rename() {
    CLayer& layer = *m_data.getLayerTable()[0];
    if (m_undo.keep(layer)) layer.setName(u"NEW \u00C4");
  }

  CData& m_data;
  CUndoStack& m_undo;
  std::minstd_rand m_random;
};

// Bytes behind the end mark do not change the drawing, but the edits.
unsigned seedOf(const std::string& bytes) {
  unsigned seed = 1;
  for (const char byte : bytes) seed = 31 * seed + static_cast<unsigned char>(byte);
  return seed;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes = vek0::fuzz::bytes(data, size);
  const Kept kept(bytes);
  if (!kept.isLoaded) return 0;
  require(kept.saved() == bytes);

  CUndoStack undo(*kept.data, ~std::size_t{0});
  Editor(*kept.data, undo, seedOf(bytes)).edit();
  CFileReport report;
  const Kept again(kept.saved(&report));
  require(again.isLoaded);
  require(countOf(*again.data) == countOf(*kept.data) || !report.empty());
  require(Kept(kept.saved(nullptr, CDXFSource::Damage::Repaired)).isLoaded);

  while (undo.undo()) {
  }
  require(kept.saved() == bytes);
  return 0;
}
