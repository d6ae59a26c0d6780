#include "drawing.h"

#include <algorithm>
#include <filesystem>
#include <unordered_set>

#include "vek0host/inputfault.h"

namespace vek0::python {
namespace {

constexpr std::size_t kUndoLimit = std::size_t{1} << 30;           // bytes
constexpr std::uintmax_t kMostReserved = std::uintmax_t{1} << 30;  // bytes; larger files grow

bool isInDrawing(const CEnt& ent) {
  if (!ent.isHeld()) return false;
  const CBlock* block = ent.getOwnerBlock();
  return !block || block->isHeld() || block->isSheet();
}

std::string bytesOf(const std::string& path) {
  if (const host::InputFault fault = host::inputFault(path); fault.kind)
    throw Fault(fault.kind, fault.message, 0, path);
  CFileStdLib file(zim::WString::fromUtf8(path), IFile::kRead);
  if (!file.open()) throw Fault("file unreadable", "'" + path + "' cannot be opened", 0, path);
  std::string bytes;
  std::error_code unknown;
  const std::uintmax_t size = std::filesystem::file_size(std::filesystem::u8path(path), unknown);
  if (!unknown && size < kMostReserved) bytes.reserve(static_cast<std::size_t>(size));
  char piece[1 << 16];
  for (long n; (n = file.readBytes(piece, sizeof piece)) > 0;)
    bytes.append(piece, static_cast<std::size_t>(n));
  file.close();
  return bytes;
}

}  // namespace

// --- EntityRef

EntityRef::EntityRef(std::shared_ptr<Drawing> drawing, CEnt& ent)
    : m_drawing(std::move(drawing)), m_ent(&ent), m_handle(ent.GetHandle()) {}

EntityRef::~EntityRef() {
  const std::lock_guard lock(m_drawing->m_refsLock);
  const auto at = m_drawing->m_refs.find(m_ent);
  if (at != m_drawing->m_refs.end() && at->second == this) m_drawing->m_refs.erase(at);
}

bool EntityRef::isAlive() const {
  return m_isAlive && !m_drawing->isClosed() && isInDrawing(*m_ent);
}

CEnt& EntityRef::get() const {
  m_drawing->data();
  if (!m_isAlive || !isInDrawing(*m_ent))
    throw Fault("deleted", "the entity is not in the drawing any more; undo may bring it back");
  return *m_ent;
}

// --- Drawing

Drawing::Drawing() : m_data(host::newDrawing()) {
  host::startHandles(*m_data);
  m_undo = std::make_unique<CUndoStack>(*m_data, kUndoLimit);
  m_undo->setListener(this);
}

Drawing::Drawing(Source source, bool isStrict, int codePage)
    : m_path(source.path), m_data(host::newDrawing()) {
  load(std::move(source), isStrict, codePage);
  m_undo = std::make_unique<CUndoStack>(*m_data, kUndoLimit);
  m_undo->setListener(this);
}

Drawing::~Drawing() { close(); }

void Drawing::load(Source source, bool isStrict, int codePage) {
  host::Session session;
  session.reading.strict = isStrict;
  session.reading.wholeRecords = true;
  session.reading.codePage = codePage;
  std::string bytes = source.hasBytes ? std::move(source.bytes) : bytesOf(m_path);
  m_source = std::make_unique<CDXFSource>(std::make_unique<CFileMemory>(
      zim::WString::fromUtf8(m_path), IFile::kRead, std::move(bytes)));
  host::ReadResult result;
  CFileDXFIOptions options = host::readingOptions(session);
  options.report = &m_report;
  result.outcome = m_source->load(*m_data, &result.error, options);
  if (result.ok()) return;
  std::string kind = result.kind();
  std::replace(kind.begin(), kind.end(), '_', ' ');
  throw Fault(kind, m_path + ": " + result.message(), result.error.GetErrorLine(), m_path);
}

CData& Drawing::data() const {
  if (!m_data) throw Fault("closed", "the drawing is closed");
  if (m_isBusy && m_busyThread != std::this_thread::get_id())
    throw Fault("busy", "another thread loads, saves or draws this drawing; wait until it is done");
  return *m_data;
}

void Drawing::close() {
  if (!m_data) return;
  if (m_isBusy) throw Fault("busy", "another thread uses this drawing; wait until it is done");
  {
    const std::lock_guard lock(m_refsLock);
    for (const auto& [ent, ref] : m_refs) ref->m_isAlive = false;
    m_refs.clear();
  }
  m_selected.clear();
  m_undo->setListener(nullptr);
  m_undo.reset();
  m_source.reset();
  m_data.reset();
}

Drawing::Busy::Busy(Drawing& drawing) : m_drawing(drawing) {
  drawing.data();
  if (drawing.m_isBusy) throw Fault("busy", "the drawing is in use");
  drawing.m_busyThread = std::this_thread::get_id();
  drawing.m_isBusy = true;
}

Entity Drawing::refer(CEnt& ent) {
  const std::lock_guard lock(m_refsLock);
  for (EntityCursor* cursor : m_cursors)
    for (EntityRef* reused : cursor->m_reused)
      if (reused && reused->m_ent == &ent) cursor->keep(*reused);
  EntityRef*& ref = m_refs[&ent];
  // An object of a deleted entity may have had the same address.
  if (ref && ref->m_handle == ent.GetHandle())
    if (Entity known = ref->weak_from_this().lock()) return known;
  auto made = std::make_shared<EntityRef>(shared_from_this(), ent);
  m_refs[&ent] = made.get();
  return made;
}

void Drawing::settleCursors() {
  const std::lock_guard lock(m_refsLock);
  for (EntityCursor* cursor : m_cursors) cursor->settle();
  m_cursors.clear();
}

std::vector<Entity> Drawing::refer(const std::vector<CEnt*>& ents) {
  std::vector<Entity> refs;
  refs.reserve(ents.size());
  for (CEnt* ent : ents) refs.push_back(refer(*ent));
  return refs;
}

CEnt* Drawing::find(Handle handle) const {
  if (handle <= 0) return nullptr;
  if (CEnt* ent = data().getEntTable().get(handle)) return ent;
  CEnt* found = nullptr;
  CBlockTable& blocks = data().getBlockTable();
  for (int i = 0; i < blocks.size() && !found; ++i)
    for (unsigned k = 0; k < blocks[i]->size() && !found; ++k)
      if ((*blocks[i])[k]->GetHandle() == handle) found = (*blocks[i])[k];
  return found;
}

std::vector<CEnt*> Drawing::entitiesOf(const std::vector<Entity>& refs) const {
  std::vector<CEnt*> ents;
  std::unordered_set<CEnt*> known;
  for (const Entity& ref : refs) {
    if (!ref) throw std::invalid_argument("None is no entity");
    CEnt& ent = ref->get();
    if (&ref->drawing() != this)
      throw std::invalid_argument("entity " + std::to_string(ref->handle()) +
                                  " belongs to another drawing");
    if (known.insert(&ent).second) ents.push_back(&ent);
  }
  return ents;
}

}  // namespace vek0::python
