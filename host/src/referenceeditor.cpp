#include "vek0host/referenceeditor.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <unordered_set>

#include "vek0core/vek0core.h"
#include "vek0host/layerchoice.h"
#include "vek0host/paths.h"
#include "vek0host/reports.h"
#include "zim0lang/casefold.h"

namespace vek0::host {
namespace {

// Compares paths like users do: either slash, ignoring case.
bool beginsWith(std::u16string_view path, std::u16string_view prefix) {
  const auto unit = [](zim::Char c) { return c == u'\\' ? u'/' : zim::foldCase(c); };
  return path.size() >= prefix.size() &&
         std::equal(prefix.begin(), prefix.end(), path.begin(),
                    [&](zim::Char a, zim::Char b) { return unit(a) == unit(b); });
}

std::string stemOf(std::string path) {
  std::replace(path.begin(), path.end(), '\\', '/');
  const std::u8string stem = toPath(path).stem().u8string();
  return std::string(stem.begin(), stem.end());
}

}  // namespace

ReferenceEditor::ReferenceEditor(CData& data, const std::string& path,
                                 const ReferenceOptions& options, Session& session)
    : m_data(data),
      m_undo(data, 0),  // nothing is undone
      m_reader(path, options, session),
      m_session(session) {}

bool ReferenceEditor::fail(const std::string& message) {
  m_session.fail(kDrawingFailed, message);
  return false;
}

bool ReferenceEditor::bind(const ReferenceChoice& choice) {
  resolve("lost or changed when bound");
  const auto chosen = choose(choice);
  // With --all, a missing reference is an error; chosen ones are checked individually.
  if (!chosen || (choice.all && !isAllLoaded())) return false;
  for (const CBlockXRef* xref : *chosen) {
    if (xref->getStatus() != CBlockXRef::Status::loaded)
      return fail(toText(*xref) + " is " + nameOf(xref->getStatus()) + " and cannot be bound");
  }
  return edit(*chosen, "bound", bindXRefs);
}

// Resolved first, so that references shown only by these are removed with them.
bool ReferenceEditor::detach(const ReferenceChoice& choice) {
  m_reader.resolve(m_data);
  const auto chosen = choose(choice);
  return chosen && edit(*chosen, "detached", detachXRefs);
}

bool ReferenceEditor::attach(const NewReference& reference) {
  const std::string stem = reference.name.empty() ? stemOf(reference.path) : reference.name;
  const zim::WString name = zim::WString::fromUtf8(stem);
  CBlockXRef* xref = attachXRef(m_data, m_undo, name, zim::WString::fromUtf8(reference.path),
                                reference.base, reference.overlay);
  if (xref == nullptr)
    return fail("'" + stem +
                "' cannot be the name of the reference: it is already used, contains a vertical "
                "bar, or begins with an asterisk");
  if (!insert(*xref, reference)) return fail("out of memory");
  if (m_reader.resolve(m_data, *xref)) m_session.notify(toText(*xref) + ": attached");
  warnOfFailures();
  return true;
}

void ReferenceEditor::warnOfFailures() const {
  if (m_reader.failures() > 0)
    m_session.notify("some references are not shown:", m_reader.failuresToText());
}

void ReferenceEditor::resolve(const char* what) {
  m_reader.resolve(m_data);
  warnOfFailures();
  for (const auto& [name, report] : m_reader.readings()) {
    const std::string losses = lossesToText(report);
    if (!losses.empty()) m_session.notify(name + ": " + what + ":", losses);
  }
}

bool ReferenceEditor::isAllLoaded() {
  for (const CBlockXRef* xref : References(m_data).all) {
    if (xref->getStatus() != CBlockXRef::Status::loaded)
      return fail(toText(*xref) + " is " + nameOf(xref->getStatus()) +
                  "; name the references to bind, or fix its path first");
  }
  return true;
}

// The references of exactly that name; otherwise those that match it as a pattern.
std::vector<CBlockXRef*> ReferenceEditor::matching(const References& references,
                                                   const std::string& name) const {
  const zim::WString wanted = zim::WString::fromUtf8(name);
  if (CBlockXRef* exact = m_data.getBlockXRefTable().get(wanted)) return {exact};
  std::vector<CBlockXRef*> found;
  for (CBlockXRef* xref : references.all)
    if (xref->getShows() == 0 && matchesPattern(xref->getName(), wanted)) found.push_back(xref);
  return found;
}

// Each once, and none of them nested: nested ones are added and removed with those that show
// them.
std::optional<std::vector<CBlockXRef*>> ReferenceEditor::choose(const ReferenceChoice& choice) {
  const References references(m_data);
  if (choice.all) return matching(references, "*");
  std::vector<CBlockXRef*> chosen;
  std::unordered_set<const CBlockXRef*> seen;
  bool isGood = true;
  for (const std::string& name : choice.names) {
    const std::vector<CBlockXRef*> found = matching(references, name);
    if (found.empty()) isGood = fail("there is no reference " + name);
    for (CBlockXRef* xref : found) {
      if (xref->getShows() > 0)
        isGood = fail(toText(*xref) +
                      " is nested in another reference, and is added and removed with it");
      if (seen.insert(xref).second) chosen.push_back(xref);
    }
  }
  if (!isGood) return std::nullopt;
  return chosen;
}

bool ReferenceEditor::edit(const std::vector<CBlockXRef*>& chosen, const char* done, Edit work) {
  // The names are collected first, because the references may be deleted.
  std::vector<std::string> names;
  for (const CBlockXRef* xref : chosen) names.push_back(toText(*xref));
  if (!work(m_data, m_undo, chosen)) return fail("out of memory");
  for (const std::string& name : names) m_session.notify(name + ": " + done);
  if (names.empty()) m_session.notify("there are no references");
  return true;
}

bool ReferenceEditor::setPath(CBlockXRef& xref, const std::string& path) {
  const std::string before = toText(xref);
  if (!setXRefPath(m_undo, xref, zim::WString::fromUtf8(path))) return fail("out of memory");
  m_session.notify(before + ": now " + path);
  return true;
}

bool ReferenceEditor::repath(const std::vector<ReferencePath>& changes) {
  for (const auto& [name, path] : changes) {
    CBlockXRef* xref = m_data.getBlockXRefTable().get(zim::WString::fromUtf8(name));
    if (xref == nullptr) return fail("there is no reference " + name);
    if (!setPath(*xref, path)) return false;
  }
  return true;
}

bool ReferenceEditor::repath(const std::string& from, const std::string& to) {
  bool found = false;
  for (CBlockXRef* xref : References(m_data).all) {
    const std::u16string_view path = xref->getPath();
    const std::size_t length = zim::WString::fromUtf8(from).Length();
    if (!beginsWith(path, zim::WString::fromUtf8(from))) continue;
    found = true;
    if (!setPath(*xref, to + zim::WString(path.substr(length)).toUtf8())) return false;
  }
  return found || fail("no path begins with '" + from + "'");
}

bool ReferenceEditor::insert(CBlockXRef& xref, const NewReference& reference) {
  std::unique_ptr<CEntInsertXRef> made(createEntInsertXRef(
      m_data, getCurLayer(m_data), getCurLtype(m_data), getCurColor(m_data), xref, reference.at,
      reference.sx, reference.sy, reference.sz, reference.rotationRad, 1, 1, 0, 0, 0));
  if (!made || !m_undo.add(made.get())) return false;
  made.release();
  return true;
}

}  // namespace vek0::host
