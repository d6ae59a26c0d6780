// Writes a drawing section by section. Handles are collected before anything is written
// (`SaveHandles`): each must be unique in the file, and the header of the exchange form states the
// next free one. Blocks are written in the order of the block graph, so that each precedes the
// blocks that insert it.
#include "vek0core/dxf/out/filedxfosaver.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "dxf/out/blockrecord.h"
#include "dxf/out/exactnumbers.h"
#include "dxf/out/itemlists.h"
#include "dxf/out/savedcolor.h"
#include "dxf/out/savedsheet.h"
#include "dxf/out/savefilter.h"
#include "dxf/out/savehandles.h"
#include "files/threads.h"
#include "vek0core/drawing/data.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/dxf/out/filedxfoblockwriter.h"
#include "vek0core/dxf/out/savedxf.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/files/file.h"
#include "vek0core/files/report.h"
#include "vek0core/tables/font.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/style.h"

namespace {

constexpr long kLayerFrozen = 1, kLayerOff = 128;
constexpr long kShapeStyle = 1;
// The bits of a layer's code 70; off is stored as a negative color, and the other bits are
// internal.
constexpr long kFlagBits = 0x7F;
// The letter A: the pattern is fitted to the ends of a line.
constexpr long kAlignment = 65;

bool isWritten(const CEnt& ent, unsigned flags) {
  if ((flags & kSaveVisibleOnly) == 0 || !ent.getLayer()) return true;
  return (ent.getLayer()->getFlags() & (kLayerFrozen | kLayerOff)) == 0;
}

// The layout whose sheet is written with the model; null if there is none. The classic form has no
// sheets.
const CLayout* writtenSheet(const CData& data, unsigned flags) {
  const bool isWhole = (flags & kSaveExchange) != 0 && (flags & kSaveSelectedOnly) == 0;
  return isWhole ? vek0::detail::savedSheet(data) : nullptr;
}

// Calls `each` with every entity of model space selected by the flags, until it returns false.
template <class Each>
void forEachInModel(const CData& data, unsigned flags, const Each& each) {
  const CEntTable& table = data.getEntTable();
  const bool selected = (flags & kSaveSelectedOnly) != 0;
  for (CEnt* ent : selected ? table.getSelectedEntityTbl() : table.getEntityTbl())
    if (isWritten(*ent, flags) && !each(*ent)) return;
}

// The same for the entities of the sheet that is written.
template <class Each>
void forEachOnSheet(const CData& data, unsigned flags, const Each& each) {
  const CLayout* layout = writtenSheet(data, flags);
  if (!layout) return;
  CBlock& sheet = layout->getBlock();
  for (unsigned i = 0; i < sheet.size(); ++i)
    if (isWritten(*sheet[i], flags) && !each(*sheet[i])) return;
}

/// Passes the blocks to be written to another operation: all except sheets, and those of hatches
/// that were deleted or are not written, which are useless to readers.
class WrittenBlocks final : public IBlockOperation {
 public:
  WrittenBlocks(const CData& data, unsigned flags, IBlockOperation& op)
      : m_hatchBlocks(hatchBlocksOf(data)), m_op(op) {
    // The search for uses is skipped for drawings without hatches.
    if (!m_hatchBlocks.empty()) noteUses(data, flags);
  }

  int doOperation(CBlock& block) override {
    if (block.isSheet()) return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
    const bool lost = isHatchName(block.getName()) && !m_used.contains(&block);
    return lost ? ZORA_BLOCK_VISIT_RESULT_SUCCESS : m_op.doOperation(block);
  }

 private:
  static std::vector<const CBlock*> hatchBlocksOf(const CData& data) {
    std::vector<const CBlock*> blocks = vek0::detail::blocksOf(data);
    const auto isOther = [](const CBlock* block) { return !isHatchName(block->getName()); };
    blocks.erase(std::remove_if(blocks.begin(), blocks.end(), isOther), blocks.end());
    return blocks;
  }

  void noteUses(const CData& data, unsigned flags) {
    vek0::detail::PointerSet all;
    for (const CBlock* block : m_hatchBlocks) all.insert(block);
    const auto note = [&](const CEntInsertBase& insert) {
      const bool isWritten = insert.getTraits().isVisible;
      if (isWritten && all.contains(insert.getBlock())) m_used.insert(insert.getBlock());
    };
    for (const CBlock* block : vek0::detail::blocksOf(data))
      for (CBlock::CInsertIterator insert(*block); *insert; ++insert) note(**insert);
    const auto look = [&](const CEnt& ent) {
      if (const CEntInsertBase* insert = ent.getEntInsert()) note(*insert);
      return true;
    };
    forEachInModel(data, flags, look);
    forEachOnSheet(data, flags, look);
  }

  std::vector<const CBlock*> m_hatchBlocks;
  vek0::detail::PointerSet m_used;
  IBlockOperation& m_op;
};

/// Passes every entity of a block to a visitor.
class BlockVisit final : public IBlockOperation {
 public:
  explicit BlockVisit(IEntVisitor& visitor) : m_visitor(visitor) {}

  int doOperation(CBlock& block) override {
    for (unsigned i = 0; i < block.size(); ++i) block[i]->accept(m_visitor);
    return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
  }

 private:
  IEntVisitor& m_visitor;
};

// With six decimals, the length must be the sum that readers compute.
double patternLength(const CLtype& ltype, bool exact) {
  if (exact || !std::isfinite(ltype.getPatternLen())) return ltype.getPatternLen();
  double sum = 0;
  for (int i = 0; i < ltype.getNoDashes(); ++i)
    sum += std::fabs(vek0::detail::sixDecimals(ltype[i]->GetValue()));
  return sum;
}

long countOfDashes(const CLtype& ltype) {
  const CLtypeComplexDashSeq& dashes = ltype.GetLtypeComplexDashSeq();
  long count = 0;
  for (int i = 0; i < dashes.GetNoDashes(); ++i) count += dashes.Get(i)->IsDoubleDash();
  return count;
}

CNameAcadConverter::Form nameForm(unsigned flags) {
  using Form = CNameAcadConverter::Form;
  if ((flags & kSaveExchange) == 0) return Form::Classic;
  return (flags & kSaveKeepNames) == 0 ? Form::Unique : Form::Kept;
}

}  // namespace

CFileDXFOSaver::CFileDXFOSaver(const CData& data, IFile& file, unsigned flags, CFileReport* report)
    : m_data(data),
      m_file(file),
      m_writer(file),
      m_visitor(data, m_writer, (flags & kSaveFlatten) != 0),
      m_converter(data, nameForm(flags), report),
      m_flags(flags),
      m_report(report),
      m_handles(std::make_unique<vek0::detail::SaveHandles>()) {
  m_writer.setBuffered(true);
  m_writer.setExact(isExchange());
  m_writer.setReport(report);
  m_visitor.SetACADNameConverter(&m_converter);
  m_visitor.setExchange(isExchange());
  m_visitor.setReport(report);
  m_visitor.setHandles(m_handles.get());
}

CFileDXFOSaver::~CFileDXFOSaver() = default;

void CFileDXFOSaver::setThreads(int threads) {
  m_writer.setThreads(vek0::detail::allowsThread(threads));
}

bool CFileDXFOSaver::save() {
  if (!m_file.open()) return false;
  // A lack of memory leaves an incomplete file, which counts as a failure.
  bool saved = false;
  try {
    saved = dosave();
  } catch (const std::bad_alloc&) {
    saved = false;
  }
  m_file.close();
  return saved;
}

bool CFileDXFOSaver::dosave() {
  collectHandles();
  if ((m_flags & kSaveNoTables) == 0) {
    writeHeaders();
    if (!sectionDone()) return false;
    writeTables();
    if (!sectionDone()) return false;
  }
  if (!writeBlocks() || !sectionDone()) return false;
  writeEntities();
  if (!sectionDone()) return false;
  write(0, u"EOF");
  return sectionDone();
}

// Each section ends with a check, so that a full medium is noticed early.
bool CFileDXFOSaver::sectionDone() { return m_writer.flush() && !m_file.fail(); }

void CFileDXFOSaver::collectHandles() {
  const vek0::detail::SaveFilter filter(m_data);
  vek0::detail::HandleCollector collector(*m_handles, filter, (m_flags & kSaveFlatten) != 0,
                                          isExchange());
  BlockVisit visit(collector);
  WrittenBlocks written(m_data, m_flags, visit);
  // A cycle is detected again when the blocks are written.
  m_data.getBlockTable().getBlockGraph().VisitUndep(written);
  visitEntities(collector);
  if (const CLayout* layout = writtenSheet(m_data, m_flags))
    vek0::detail::SavedViewports::collect(*layout, *m_handles);
  m_handles->settle();
}

void CFileDXFOSaver::writeHeaders() {
  const CDataVariables& vars = m_data.getVars();
  beginSection(u"HEADER");
  write(9, u"$ACADVER");
  write(1, u"AC1009");
  if (isExchange() && vars.getInsertionBase() != PNT_3D(0, 0, 0)) writeInsertionBase();
  writeLimit(u"$LIMMIN", vars.getLimMin(), PNT_2D(0, 0));
  writeLimit(u"$LIMMAX", vars.getLimMax(), PNT_2D(420, 297));
  writeVariable(u"$LTSCALE", 40, vars.getLtypeScale(), 1);
  writeCurrentItems();
  write(9, u"$ORTHOMODE");
  write(70, vars.isOrtho());
  write(9, u"$PLINEGEN");
  write(70, vars.isPLineGen());
  writeVariable(u"$PLINEWID", 40, vars.getPLineWid(), 0);
  write(9, u"$AUNITS");
  write(70, static_cast<long>(vars.getAngFormat()));
  writeVariable(u"$ANGBASE", 50, degrees(vars.getAngDir()), 0);
  write(9, u"$ANGDIR");
  write(70, vars.isAngClockWise());
  if (const CLayout* layout = writtenSheet(m_data, m_flags)) writeSheetVariables(*layout);
  if (isExchange()) {
    write(9, u"$PDMODE");
    write(70, static_cast<long>(vars.getPointMode()));
    writeVariable(u"$PDSIZE", 40, vars.getPointSize(), 0);
    write(9, u"$HANDSEED");
    writeHex(5, m_handles->seed());
  }
  reportVariables();
  write(0, u"ENDSEC");
}

// Variables that this version does not have.
void CFileDXFOSaver::reportVariables() {
  const CDataVariables& vars = m_data.getVars();
  if (vars.getUnits() != 0) report(ReportCode::UnitDropped, u"$INSUNITS");
  if (!isExchange() && vars.getInsertionBase() != PNT_3D(0, 0, 0))
    report(ReportCode::SettingDropped, u"$INSBASE");
  if (vars.getCurLtypeScale() != 1) report(ReportCode::SettingDropped, u"$CELTSCALE");
  if (vars.getDefaultLineweight() != CDataVariables::kUsualLineweight)
    report(ReportCode::SettingDropped, u"$LWDEFAULT");
  if (vars.isLineweightShown()) report(ReportCode::SettingDropped, u"$LWDISPLAY");
}

void CFileDXFOSaver::writeCurrentItems() {
  const CDataVariables& vars = m_data.getVars();
  write(9, u"$TEXTSTYLE");
  m_writer.writeText(7, m_converter.GetName(vars.getCurStyle()));
  write(9, u"$CLAYER");
  m_writer.writeText(8, m_converter.GetName(vars.getCurLayer()));
  write(9, u"$CELTYPE");
  m_writer.writeText(6, m_converter.GetName(vars.getCurLtype()));
  if (!isExchange()) return;
  const short color = vars.getCurColor();
  const bool known = vek0::detail::isEntityColor(color);
  if (!known) report(ReportCode::ColorOutOfRange, u"$CECOLOR");
  write(9, u"$CECOLOR");
  // BYLAYER, the default of every drawing.
  write(62, static_cast<long>(known ? color : kColorByLayer));
}

void CFileDXFOSaver::writeVariable(const zim::Char* name, long code, double value,
                                   double fallback) {
  write(9, name);
  write(code, finite(value, fallback, name));
}

// The classic form has no place for it, and the usual one is not worth a line.
void CFileDXFOSaver::writeInsertionBase() {
  const PNT_3D& base = m_data.getVars().getInsertionBase();
  constexpr const zim::Char* name = u"$INSBASE";
  writeLimit(name, PNT_2D(base.x, base.y), PNT_2D(0, 0));
  write(30, finite(base.z, 0, name));
}

void CFileDXFOSaver::writeLimit(const zim::Char* name, const PNT_2D& limit,
                                const PNT_2D& fallback) {
  write(9, name);
  write(10, finite(limit.x, fallback.x, name));
  write(20, finite(limit.y, fallback.y, name));
}

void CFileDXFOSaver::writeSheetVariables(const CLayout& layout) {
  write(9, u"$PSLTSCALE");
  write(70, m_data.getVars().isPaperLtypeScale());
  const RECT_2D limits = vek0::detail::sheetLimits(layout);
  if (!limits.validRegion()) return;
  writeLimit(u"$PLIMMIN", limits.min, limits.min);
  writeLimit(u"$PLIMMAX", limits.max, limits.max);
}

void CFileDXFOSaver::writeTables() {
  beginSection(u"TABLES");
  writeLtypes();
  writeLayers();
  writeStyles();
  write(0, u"ENDSEC");
}

void CFileDXFOSaver::writeLtypes() {
  const auto ltypes = vek0::detail::ltypesOf(m_data, false);
  beginTable(u"LTYPE", ltypes.size());
  for (const CLtype* ltype : ltypes) writeLtype(*ltype);
  write(0, u"ENDTAB");
}

void CFileDXFOSaver::writeLtype(const CLtype& ltype) {
  const zim::WString name = m_converter.GetName(&ltype);
  const CLtypeComplexDashSeq& dashes = ltype.GetLtypeComplexDashSeq();
  const long flags = dependentFlags(ltype.getFlags(), name);
  write(0, u"LTYPE");
  m_writer.writeText(2, name);
  write(70, isExchange() ? flags & kFlagBits : flags);
  m_writer.writeText(3, ltype.getDesc());
  write(72, kAlignment);
  // This version has no representation for elements other than dashes. The classic form counts them
  // nevertheless.
  write(73, isExchange() ? countOfDashes(ltype) : static_cast<long>(dashes.GetNoDashes()));
  write(40, finite(patternLength(ltype, isExchange()), 0, name));
  for (int i = 0; i < dashes.GetNoDashes(); ++i) {
    if (dashes.Get(i)->IsDoubleDash())
      write(49, finite(dashes.Get(i)->GetValue(), 0, name));
    else
      report(ReportCode::LinetypeTextDropped, ltype.getName());
  }
}

void CFileDXFOSaver::writeLayers() {
  const auto layers = vek0::detail::layersOf(m_data);
  beginTable(u"LAYER", layers.size());
  for (const CLayer* layer : layers) writeLayer(*layer);
  write(0, u"ENDTAB");
}

void CFileDXFOSaver::writeLayer(const CLayer& layer) {
  const zim::WString name = m_converter.GetName(&layer);
  short color = colorOf(layer);
  if (!vek0::detail::isLayerColor(color)) {
    report(ReportCode::ColorOutOfRange, name);
    color = vek0::detail::kColorDefault;
  }
  if (layer.getLineWidth() != lineWidthDefault) report(ReportCode::LineweightDropped, name);
  reportTraits(layer);
  write(0, u"LAYER");
  m_writer.writeText(2, name);
  write(70, dependentFlags(layer.getFlags(), name) & kFlagBits);
  // A layer that is off is written with a negative color.
  write(62, static_cast<long>(layer.isOff() ? -color : color));
  m_writer.writeText(6, m_converter.GetName(layer.getLtype()));
}

// The color number nearest to a true color.
short CFileDXFOSaver::colorOf(const CLayer& layer) {
  const std::uint32_t trueColor = layer.getTraits().trueColor;
  if (trueColor == ENT_TRAITS::kNoTrueColor) return layer.getColor();
  const vek0::detail::SavedColor color = vek0::detail::savedColor(trueColor);
  if (color.isApproximated) report(ReportCode::ColorApproximated, u"LAYER");
  return color.number;
}

void CFileDXFOSaver::reportTraits(const CLayer& layer) {
  const LAYER_TRAITS &traits = layer.getTraits(), none;
  const auto drop = [this](bool isLoss, const zim::Char* code) {
    if (isLoss) report(ReportCode::CodeDropped, code);
  };
  drop(traits.lineweight != none.lineweight, u"LAYER 370");
  drop(traits.opacity != none.opacity, u"LAYER 1071");
  // Definition points are never plotted.
  drop(!traits.isPlotted && !layer.getName().EqualsIgnoreCase(u"Defpoints"), u"LAYER 290");
}

void CFileDXFOSaver::writeStyles() {
  std::vector<vek0::detail::ListedStyle> styles = vek0::detail::stylesOf(m_data);
  // Shape files are not text styles.
  std::erase_if(styles, [](const auto& listed) { return (listed.flags & kShapeStyle) != 0; });
  beginTable(u"STYLE", styles.size());
  for (const auto& [style, name, flags] : styles) writeStyle(*style, flags);
  write(0, u"ENDTAB");
}

void CFileDXFOSaver::writeStyle(const CStyle& style, long flags) {
  const zim::WString name = m_converter.GetName(&style);
  write(0, u"STYLE");
  m_writer.writeText(2, name);
  write(70, flags);
  write(40, finite(style.getFixedHeight(), 0, name));
  write(41, finite(style.getWidthScale(), 1, name));
  write(50, finite(degrees(style.getOblique()), 0, name));
  write(71, 0L);
  write(42, finite(style.getLastHeight(), 0.2, name));
  m_writer.writeText(3, style.getFont() ? style.getFont()->getName() : zim::WString(u"txt"));
}

bool CFileDXFOSaver::writeBlocks() {
  beginSection(u"BLOCKS");
  for (const CBlockXRef* xref : vek0::detail::xrefsOf(m_data)) writeXRef(*xref);
  CFileDXFOBlockWriter writer(m_writer, m_visitor, m_converter);
  writer.setExchange(isExchange());
  WrittenBlocks written(m_data, m_flags, writer);
  // Not an assertion: a host can make a block insert itself by changing the graph directly.
  const int iResult = m_data.getBlockTable().getBlockGraph().VisitUndep(written);
  write(0, u"ENDSEC");
  if (iResult != ZORA_BLOCK_VISIT_RESULT_SUCCESS)
    report(ReportCode::BlocksInACircle, zim::WString());
  return iResult == ZORA_BLOCK_VISIT_RESULT_SUCCESS;
}

void CFileDXFOSaver::writeXRef(const CBlockXRef& xref) {
  // Its content is not shifted by the base point, so other programs need the real one.
  PNT_3D base(0, 0, 0);
  if (isExchange() && vek0::detail::isFinite(xref.getPnt())) base = xref.getPnt();
  vek0::detail::beginBlock(m_writer, m_converter.GetName(&xref),
                           xref.getFlags() | vek0::detail::kExternal, base, xref.getPath());
  vek0::detail::endBlock(m_writer, isExchange());
}

void CFileDXFOSaver::writeEntities() {
  const CLayout* layout = writtenSheet(m_data, m_flags);
  beginSection(u"ENTITIES");
  visitEntities(m_visitor);
  if (layout) m_visitor.viewports_visit(*layout);
  write(0, u"ENDSEC");
  if (m_report && (m_flags & kSaveSelectedOnly) == 0)
    vek0::detail::reportLayouts(m_data, layout, *m_report);
}

void CFileDXFOSaver::visitEntities(IEntVisitor& visitor) {
  const auto visit = [&](CEnt& ent) {
    if (m_writer.fail()) return false;
    ent.accept(visitor);
    return true;
  };
  forEachInModel(m_data, m_flags, visit);
  m_visitor.setOnSheet(true);
  forEachOnSheet(m_data, m_flags, visit);
  m_visitor.setOnSheet(false);
}

void CFileDXFOSaver::beginSection(const zim::Char* name) {
  write(0, u"SECTION");
  write(2, name);
}

void CFileDXFOSaver::beginTable(const zim::Char* name, std::size_t entries) {
  write(0, u"TABLE");
  write(2, name);
  write(70, static_cast<long>(entries));
}

bool CFileDXFOSaver::isExchange() const { return (m_flags & kSaveExchange) != 0; }

double CFileDXFOSaver::degrees(double angleRad) const {
  return isExchange() ? vek0::detail::exactDegrees(angleRad)
                      : vek0::detail::classicDegrees(angleRad);
}

double CFileDXFOSaver::finite(double value, double fallback, const zim::WString& where) {
  if (std::isfinite(value)) return value;
  report(ReportCode::NumberNotFinite, where);
  return fallback;
}

// Readers split the name of an item with that flag and fail if it cannot be split.
long CFileDXFOSaver::dependentFlags(long flags, const zim::WString& name) {
  zim::WString xref, item;
  if ((flags & vek0::detail::kDependent) == 0 || scomposeName(name, xref, item)) return flags;
  report(ReportCode::NameNotDependent, name);
  return flags & ~(vek0::detail::kDependent | vek0::detail::kResolved);
}

void CFileDXFOSaver::report(ReportCode code, const zim::WString& sample) {
  if (m_report) m_report->add(code, 0, sample);
}
