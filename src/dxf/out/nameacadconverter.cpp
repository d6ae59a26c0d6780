// Converts names to those of R12: at most 31 characters of a small set. Names that are valid stay,
// and so do not depend on the others; the rest is transliterated in the exchange form, corrected
// character by character and numbered until it differs from every name in the drawing. The numbers
// tried for a base are remembered, or a table of similar names would take quadratic time.
#include "vek0core/dxf/out/nameacadconverter.h"

#include <algorithm>
#include <deque>
#include <string>
#include <utility>

#include "dxf/out/foldednames.h"
#include "dxf/out/itemlists.h"
#include "dxf/out/transliteration.h"
#include "vek0core/drawing/data.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/files/report.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/style.h"

namespace {

constexpr std::size_t kLongestName = 31;
// Length that overlong names are cut to, with or without a numeric suffix.
constexpr std::size_t kCutLength = 30;

bool isLetter(zim::Char unit) {
  return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
}
bool isDigit(zim::Char unit) { return unit >= u'0' && unit <= u'9'; }
bool isAscii(zim::Char unit) { return unit < 0x80; }

// Whether a converted name still says something: digits alone do if nothing else was lost.
bool isTelling(std::u16string_view name, std::u16string_view converted) {
  return std::any_of(converted.begin(), converted.end(), isLetter) ||
         (std::any_of(converted.begin(), converted.end(), isDigit) &&
          std::all_of(name.begin(), name.end(), isAscii));
}

zim::WString decimal(int value) { return zim::WString::fromUtf8(std::to_string(value)); }

zim::WString part(const zim::WString& name, std::size_t length) {
  return zim::WString(name.view().substr(0, length));
}

template <class Item>
zim::WString nameIn(const std::unordered_map<const Item*, zim::WString>& names, const Item& item,
                    const zim::WString& own) {
  const auto found = names.find(&item);
  return found == names.end() ? own : found->second;
}

}  // namespace

/// The names of one table while they are converted. Readers look up names ignoring case.
class CNameAcadConverter::Table {
 public:
  /// `word` and a number stand for names without a letter or digit that R12 has, if unique.
  Table(const std::vector<Entry>& entries, Form form, std::u16string_view word)
      : m_form(form), m_word(word) {
    for (const Entry& entry : entries) m_taken.insert(entry.own);
  }

  /// Whether the item keeps its name. Call once per item, in table order.
  bool keeps(const Entry& entry);
  /// The new name of an item that does not keep its own.
  zim::WString convert(const Entry& entry);

 private:
  zim::WString freeName(const zim::WString& prefix, const zim::WString& corrected);
  zim::WString uniqueName(const Entry& entry);
  bool isUnique() const { return m_form != Form::Classic; }
  int& tried(const zim::WString& prefix, zim::WString& base, int counter);
  void skipTried(const zim::WString& prefix, zim::WString& base, int& counter);

  Form m_form;
  std::u16string_view m_word;
  int m_numbered = 0;                 // the last number with the word
  vek0::detail::FoldedNames m_taken;  // the drawing's own names, plus the generated ones when
                                      // unique
  vek0::detail::FoldedNames m_given;
  std::deque<zim::WString> m_made;
  std::unordered_map<zim::WString, zim::WString> m_converted;  // by corrected name, not unique
  std::unordered_map<zim::WString, int, vek0::detail::FoldedHash, vek0::detail::FoldedEqual>
      m_tried;  // see `tried`
};

// A generated name differs from all names in the drawing.
bool CNameAcadConverter::Table::keeps(const Entry& entry) {
  const std::u16string_view name = entry.name();
  const bool isKept = m_form == Form::Kept ||
                      (isValid(name) && entry.prefix == entry.own.view().substr(0, entry.nameAt));
  return !name.empty() && isKept && (!isUnique() || m_given.insert(entry.own));
}

zim::WString CNameAcadConverter::Table::convert(const Entry& entry) {
  if (isUnique()) {
    m_made.push_back(uniqueName(entry));
    m_taken.insert(m_made.back());
    return m_made.back();
  }
  zim::WString corrected;
  IsValidName(zim::WString(entry.name()), corrected);
  if (corrected.empty()) corrected = u"_";
  // The set of taken names never changes, so equal corrected names get equal results.
  const auto [known, isNew] = m_converted.try_emplace(entry.prefix + corrected.view());
  if (isNew) known->second = freeName(entry.prefix, corrected);
  return known->second;
}

zim::WString CNameAcadConverter::Table::uniqueName(const Entry& entry) {
  zim::WString corrected;
  IsValidName(zim::WString(vek0::detail::transliterated(entry.name())), corrected);
  if (isTelling(entry.name(), corrected.view())) return freeName(entry.prefix, corrected);
  for (;;) {
    zim::WString candidate = entry.prefix + m_word + decimal(++m_numbered).view();
    if (!m_taken.has(candidate)) return candidate;
  }
}

zim::WString CNameAcadConverter::Table::freeName(const zim::WString& prefix,
                                                 const zim::WString& corrected) {
  zim::WString base = corrected, candidate = prefix + corrected.view();
  for (int counter = 0; m_taken.has(candidate);) {
    if (counter > 0) tried(prefix, base, counter - 1) = counter;
    skipTried(prefix, base, counter);
    candidate = prefix + GenerateValidName(base, counter).view();
  }
  return candidate;
}

// All smaller numbers with as many digits as `counter` are known to yield taken names with this
// base, which is cut as by `GenerateValidName`. Otherwise a thousand names with one prefix would
// need half a million attempts.
int& CNameAcadConverter::Table::tried(const zim::WString& prefix, zim::WString& base, int counter) {
  const std::size_t length = GenerateValidName(base, counter).Length();
  const zim::Char digits[] = {u'|', static_cast<zim::Char>(length - base.Length()), 0};
  return m_tried[prefix + base.view() + digits];
}

// Long bases are cut further when the number gains a digit, so the memory is valid only up to
// there.
void CNameAcadConverter::Table::skipTried(const zim::WString& prefix, zim::WString& base,
                                          int& counter) {
  for (int next = tried(prefix, base, counter); next > counter;
       next = tried(prefix, base, counter)) {
    counter = next;
  }
}

CNameAcadConverter::CNameAcadConverter(const CData& data)
    : CNameAcadConverter(data, Form::Classic, nullptr) {}

CNameAcadConverter::CNameAcadConverter(const CData& data, Form form, CFileReport* report)
    : m_data(data), m_form(form), m_report(report) {
  Convert();
}

zim::WString CNameAcadConverter::GetName(const CLayer* layer) const {
  return layer ? nameIn(m_layers, *layer, layer->getFullName()) : zim::WString(u"0");
}

zim::WString CNameAcadConverter::GetName(const CLtype* ltype) const {
  return ltype ? nameIn(m_ltypes, *ltype, ltype->getFullName()) : zim::WString(u"CONTINUOUS");
}

zim::WString CNameAcadConverter::GetName(const CStyle* style) const {
  return style ? nameIn(m_styles, *style, style->getName()) : zim::WString(u"STANDARD");
}

zim::WString CNameAcadConverter::GetName(const CBlock* block) const {
  return block ? nameIn(m_blocks, *block, block->getName()) : zim::WString();
}

void CNameAcadConverter::Convert() {
  ConvertLayers();
  ConvertLtypes();
  ConvertStyles();
  ConvertBlocks();
}

void CNameAcadConverter::ConvertLayers() {
  const auto layers = vek0::detail::layersOf(m_data);
  std::vector<Entry> entries;
  entries.reserve(layers.size());
  for (const CLayer* layer : layers)
    entries.push_back(entry(layer->getFullName(), vek0::detail::isDependent(*layer)));
  convertTable(layers, entries, u"LAYER", m_layers);
}

void CNameAcadConverter::ConvertLtypes() {
  const auto ltypes = vek0::detail::ltypesOf(m_data, true);
  std::vector<Entry> entries;
  entries.reserve(ltypes.size());
  for (const CLtype* ltype : ltypes)
    entries.push_back(entry(ltype->getFullName(), vek0::detail::isDependent(*ltype)));
  convertTable(ltypes, entries, u"LTYPE", m_ltypes);
}

void CNameAcadConverter::ConvertStyles() {
  std::vector<const CStyle*> styles;
  std::vector<Entry> entries;
  for (const vek0::detail::ListedStyle& listed : vek0::detail::stylesOf(m_data)) {
    styles.push_back(listed.style);
    entries.push_back(entry(listed.name, (listed.flags & vek0::detail::kDependent) != 0));
  }
  convertTable(styles, entries, u"STYLE", m_styles);
  for (std::size_t i = 0; i < styles.size(); ++i)
    if (styles[i]->getName() != entries[i].own) m_styles.try_emplace(styles[i], entries[i].own);
}

void CNameAcadConverter::ConvertBlocks() {
  if (std::exchange(m_hasBlocks, true)) return;
  std::vector<const CBlock*> blocks;
  std::vector<Entry> entries;
  const auto add = [&](const CBlock& block, bool dependent) {
    blocks.push_back(&block);
    entries.push_back(entry(block.getName(), dependent));
  };
  for (const CBlockXRef* xref : vek0::detail::xrefsOf(m_data)) add(*xref, false);
  for (const CBlock* block : vek0::detail::blocksOf(m_data))
    add(*block, vek0::detail::isDependent(*block));
  convertTable(blocks, entries, u"BLOCK", m_blocks);
}

bool CNameAcadConverter::isValid(std::u16string_view name) {
  const std::u16string_view rest = name.substr(!name.empty() && name[0] == u'*' ? 1 : 0);
  return name.size() <= kLongestName && std::all_of(rest.begin(), rest.end(), IsValidChar);
}

bool CNameAcadConverter::IsValidName(const zim::WString& name, zim::WString& corrected) {
  std::u16string units(name.view());
  bool valid = true;
  for (std::size_t i = 0; i < units.size(); ++i) {
    if (IsValidChar(units[i]) || (i == 0 && units[i] == u'*')) continue;
    units[i] = u'_';
    valid = false;
  }
  if (units.size() > kLongestName) {
    units.resize(kCutLength);
    valid = false;
  }
  corrected = zim::WString(units);
  return valid;
}

zim::WString CNameAcadConverter::GenerateValidName(zim::WString& base, int& counter) {
  const zim::WString digits = decimal(counter++);
  if (base.Length() + digits.Length() > kLongestName)
    base = part(base, kCutLength - digits.Length());
  return base + digits.view();
}

bool CNameAcadConverter::IsValidChar(zim::Char unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
         (unit >= u'0' && unit <= u'9') || unit == u'_' || unit == u'-' || unit == u'$';
}

CNameAcadConverter::Entry CNameAcadConverter::entry(const zim::WString& own, bool dependent) {
  zim::WString xref, item;
  if (!dependent || !scomposeName(own, xref, item)) return {own, zim::WString(), 0};
  ConvertBlocks();  // already, as the name begins with that of one
  zim::WString prefix;
  if (const CBlock* block = m_data.getBlockXRefTable().get(xref))
    prefix = GetName(block);
  else if (m_form == Form::Kept)
    prefix = xref;
  else
    IsValidName(xref, prefix);
  return {own, prefix + u"|", xref.Length() + 1};
}

template <class Item>
void CNameAcadConverter::convertTable(const std::vector<const Item*>& items,
                                      const std::vector<Entry>& entries, std::u16string_view word,
                                      Names<Item>& names) const {
  Table table(entries, m_form, word);
  vek0::detail::FoldedNames written;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const zim::WString* name = &entries[i].own;
    if (!table.keeps(entries[i])) {
      name = &names.emplace(items[i], table.convert(entries[i])).first->second;
      if (*name != entries[i].own)
        report(ReportCode::NameChanged, entries[i].own + u" -> " + *name);
    }
    if (m_form == Form::Classic && !written.insert(*name)) report(ReportCode::NamesCoincide, *name);
  }
}

void CNameAcadConverter::report(ReportCode code, const zim::WString& sample) const {
  if (m_report) m_report->add(code, 0, sample);
}
