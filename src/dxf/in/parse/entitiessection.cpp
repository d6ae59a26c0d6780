#include "dxf/in/parse/entitiessection.h"

#include <utility>

namespace vek0::detail {

void EntitiesSection::read() {
  m_in.read();
  while (m_in.atRecord() && !m_in.atSectionEnd()) addOne();
}

void EntitiesSection::addOne() {
  add(readOne());
  for (EntPtr& ent : m_in.loader->getFurther()) add(std::move(ent));
  m_in.loader->getFurther().clear();
  for (ReadViewport& viewport : m_in.loader->getViewports()) m_sheets.add(std::move(viewport));
  m_in.loader->getViewports().clear();
}

void EntitiesSection::add(EntPtr ent) {
  if (!ent) return;
  m_hasAdded = true;
  if (m_in.loader->isOnSheet()) return m_sheets.add(std::move(ent), m_in.loader->getLayout());
  m_in.semantor.add(ent.get());
  static_cast<void>(ent.release());
}

void EntitiesSection::endPassing() {
  if (!m_options.onPassing || !m_hasAdded) return;
  m_isOutdated = m_isCancelled = true;
  m_in.lexer.stop();
}

// Calls the progress callback every thousand entities.
bool EntitiesSection::isTimeToStop() {
  constexpr long between = 1000;
  ++m_count;
  m_isCancelled = m_isCancelled || (m_count % between == 0 && m_options.progress &&
                                    !m_options.progress(m_in.lexer.getLine()));
  const bool tooMany = m_options.maxEntities > 0 && m_count > m_options.maxEntities;
  if (!m_isCancelled && !tooMany) return false;
  if (tooMany && !m_isCancelled) m_in.note(ReportCode::LimitReached);
  m_in.lexer.stop();
  m_in.skipRecord();
  return true;
}

void EntitiesSection::note(const CEnt& ent, long line) {
  m_order.note(ent, m_in.loader->getHandle());
  if (m_options.onEntity) m_options.onEntity(ent, line);
}

// Neither section nor file may end inside a block or before its ENDSEC.
EntPtr EntitiesSection::readOne() {
  if (isTimeToStop()) return nullptr;
  if (m_in.isKeyword("ENDSEC") || m_in.isKeyword("EOF")) {
    m_in.fail(CFileDXFIError::WrongStructure);
    return nullptr;
  }
  m_kind = m_in.lexer.getBytes();
  const long line = m_in.lexer.getLine() - 1;
  EntPtr ent(m_in.loader->readEntity());
  if (m_in.failed() && m_in.recover(ReportCode::EntityDropped, zim::WString::fromUtf8(m_kind)))
    m_in.loader->getFurther().clear();
  if (ent) note(*ent, line);
  for (const EntPtr& more : m_in.loader->getFurther()) note(*more, line);
  return ent;
}

}  // namespace vek0::detail
