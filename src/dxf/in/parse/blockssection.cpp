// The blocks of layouts have names like any other block, but their contents are sheets: the model,
// or the paper space of one layout. They are read even if the drawing has no layouts: whether a
// sheet holds anything decides what the report says about its layout.
#include "dxf/in/parse/blockssection.h"

#include <list>
#include <utility>

#include "dxf/layoutname.h"
#include "files/number.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blocktable.h"

namespace vek0::detail {
namespace {

constexpr long kXRefBlock = 4;  // of a block's flags

}  // namespace

// Owns entities between reading and their block: deletes them unless they are taken.
class BlocksSection::OwnedEntities {
 public:
  OwnedEntities() = default;
  OwnedEntities(const OwnedEntities&) = delete;
  OwnedEntities& operator=(const OwnedEntities&) = delete;
  ~OwnedEntities() {
    for (CEnt* ent : m_list) delete ent;
  }
  void take(EntPtr ent) {
    m_list.push_back(nullptr);  // may throw, so before the entity is released
    m_list.back() = ent.release();
  }
  std::list<CEnt*>& list() { return m_list; }

 private:
  std::list<CEnt*> m_list;
};

struct BlocksSection::Header {
  zim::WString name, path;
  double base[3] = {0, 0, 0};
  long flags = 0;
  std::uint64_t owner = 0;  // handle of its record
};

void BlocksSection::read() {
  m_in.read();
  while (m_in.atRecord() && !m_in.atSectionEnd()) readBlock();
  m_in.loader->endBlocks();
  // An insert may precede the definition of its block. Once is enough: extents from further BLOCKS
  // sections are computed at the end, and a file may have thousands of them.
  if (m_in.failed() || m_isMeasured || !m_in.loader->hasReadInsert()) return;
  m_isMeasured = true;
  m_in.semantor.getBlockTable().recalcBdry();
}

void BlocksSection::readBlock() {
  if (!m_in.isKeyword("BLOCK") && m_in.passRecord()) return;
  Header block;
  OwnedEntities entities;
  readHeader(block);
  const bool isSheet = isLayoutName(block.name) && isLayoutBlock(block.name, kPaperBlock);
  m_in.loader->enterBlock(m_in.semantor.findBlock(block.name),
                          isSheet ? block.name : zim::WString());
  readContent(entities);
  if (m_in.loader->leaveBlock()) m_dropped.addSheet(block.owner);
  // The names of further sheets have a number.
  if (isSheet && block.name.Length() == 1 + kPaperBlock.size()) m_activeSheet = block.owner;
  if (!m_in.failed()) create(block, entities);
  m_in.recover(ReportCode::BlockDropped, block.name);
}

void BlocksSection::readHeader(Header& block) {
  while (!m_in.failed()) {
    const long code = m_in.read();
    if (code == 0) return;
    takePair(code, block);
    if (m_in.failed()) m_in.spareNumber();
  }
}

void BlocksSection::takePair(long code, Header& block) {
  switch (code) {
    case 1:
      block.path = m_in.lexer.getText();
      break;
    case 2:
      block.name = m_in.lexer.getText();
      break;
    case 10:
      block.base[0] = m_in.lexer.getDouble();
      break;
    case 20:
      block.base[1] = m_in.lexer.getDouble();
      break;
    case 30:
      block.base[2] = m_in.lexer.getDouble();
      break;
    case 70:
      block.flags = m_in.flags() & ~CBlock::kOfRecord;
      break;
    case 330:
      if (block.owner == 0) block.owner = parseHex(m_in.lexer.getBytes());
      break;
    default:
      m_in.passPair();
  }
}

void BlocksSection::readContent(OwnedEntities& entities) {
  while (!m_in.failed() && !m_in.isKeyword("ENDBLK") && !isBlockCut()) {
    if (EntPtr ent = m_entities.readOne()) entities.take(std::move(ent));
    for (EntPtr& ent : m_in.loader->getFurther()) entities.take(std::move(ent));
    m_in.loader->getFurther().clear();
  }
  if (!m_in.failed() && m_in.isKeyword("ENDBLK")) m_in.skipRecord();
}

bool BlocksSection::isBlockCut() {
  if (m_in.lexer.isStopped()) return true;
  const bool isCut = m_in.isCutAt("BLOCK");
  if (isCut) m_in.note(ReportCode::BlockCut);
  return isCut;
}

// The strict rule ignores the first letter, and so also skips ordinary blocks of such names.
bool BlocksSection::isLayoutName(const zim::WString& name) const {
  if (!isLayoutBlock(name, kModelBlock) && !isLayoutBlock(name, kPaperBlock)) return false;
  return !m_in.isTolerant() || name[0] == u'*' || name[0] == u'$';
}

void BlocksSection::create(const Header& block, OwnedEntities& entities) {
  if (block.name.empty()) return m_in.fail(CFileDXFIError::WrongStructure);
  if (isLayoutName(block.name)) {
    if (m_in.loader->keepsSheets() && isLayoutBlock(block.name, kPaperBlock))
      return m_sheets.addBlock(block.name, block.owner, entities.list(),
                               std::exchange(m_in.loader->getViewports(), {}));
    if (m_in.isTolerant() && !entities.list().empty())
      m_in.note(ReportCode::BlockDropped, block.name);
    return;
  }
  const bool anonymous = block.name[0] == u'*';
  if (anonymous && entities.list().empty() && (block.flags & CBlock::kAnonymous) == 0) return;
  const PNT_3D base(block.base[0], block.base[1], block.base[2]);
  if ((block.flags & kXRefBlock) != 0)
    m_in.semantor.createBlockXRef(block.name, block.path, base, block.flags);
  else
    m_in.semantor.createBlock(block.name, base, block.flags, entities.list());
}

}  // namespace vek0::detail
