#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "dxf/in/entbuilder.h"
#include "dxf/in/namecache.h"
#include "dxf/in/record.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/dxf/in/filedxfilexer.h"
#include "vek0core/dxf/in/filedxfioptions.h"
#include "vek0core/dxf/in/filedxfisemantor.h"
#include "vek0core/entities/blocks/insertclip.h"
#include "vek0core/entities/ent.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/files/reportcode.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {

class DimStyles;

/// Context that the parser lends to all record readers.
struct ReadContext {
  CFileDXFILexer& lexer;
  IFileDXFISemantor& semantor;
  CEntFactory& factory;
  CFileDXFIError& err;
  const CFileDXFIOptions& options;
  const DimStyles& dimStyles;

  /// Adds an entry to the report, if there is one, with the lexer's current line.
  void note(ReportCode code, const zim::WString& sample) const;
  /// Downgrades an error in the current value, which is not a number, to a report entry: `code`
  /// states what is lost, by default only the pair. False if reading is strict or the error is a
  /// different one.
  bool spareNumber(ReportCode code = ReportCode::NumberDropped) const;
};

/// The codes that a kind of record reads, and those it requires. The common properties (5, 6, 8,
/// 62) are always read. Real numbers define position and size; tolerant reading can do without
/// invalid ones only if they are `optional`, but always without integers.
struct RecordKind {
  constexpr RecordKind(const CodeSet& wantedCodes, const CodeSet& requiredCodes,
                       const CodeSet& optionalCodes = {})
      : wanted(wantedCodes), required(requiredCodes), optional(optionalCodes) {}

  CodeSet wanted;
  CodeSet required;
  CodeSet optional;
};

/// Reads one record at a time into a `Record` and resolves the names in it.
class RecordReader {
 public:
  explicit RecordReader(const ReadContext& context)
      : m_context(context), m_keepsSheets(isKeepingSheets(context)) {}

  /// Reads the pairs up to the next group 0 and leaves the lexer there. False if an error is
  /// recorded: of a value, 16 if a required code is missing (`missingParam` is its first
  /// parameter), 13 if there is no layer.
  bool read(const RecordKind& kind, long missingParam = 2) {
    return read(kind, CodeSet(), missingParam, [](long) {});
  }
  /// The same; pairs whose code is in `own` (a `CodeSet` or any type with the same `has`) are
  /// passed to `takeOwn` instead, which reads the lexer's value, and further pairs if they belong
  /// to it.
  template <class Own = CodeSet, class TakeOwn>
  bool read(const RecordKind& kind, const Own& own, long missingParam, const TakeOwn& takeOwn) {
    m_record.start(m_byLayer ? m_byLayer : findByLayer());
    const CodeSet wanted = kind.wanted | (isTolerant() ? kCommonTolerant : kCommon);
    for (;;) {
      const long code = next();
      if (failed()) return false;
      if (code == 0) return check(kind, missingParam);
      if (own.has(code)) {
        if (code < CodeSet::kEnd) m_record.seen.add(code);
        takeOwn(code);
      } else if (wanted.has(code)) {
        takeWanted(code);
      } else if (!leaveOut(code)) {
        return check(kind, missingParam);
      }
      if (failed() && !(isSpare(code, wanted, kind.optional) && spareNumber())) return false;
    }
  }
  /// The code of the next pair, or again that of the current one after `putBack`.
  long next() {
    if (!m_putBack) return m_context.lexer.read();
    m_putBack = false;
    return m_context.lexer.getGroupValue();
  }
  void putBack() { m_putBack = true; }
  /// Data that applies to an entity as a whole, from its first record.
  struct Frame {
    PNT_3D normal = PNT_3D(0, 0, 1);  ///< of its plane
    bool onPaper = false;
    EntProperties properties = {};
  };
  /// Begins an entity; tolerant reading uses its frame afterwards.
  void begin() {
    m_putBack = false;
    m_frameTaken = false;
    m_frame = {};
    m_handle = 0;
    if (!m_layout.empty()) m_layout = zim::WString();
  }
  const Frame& frame() const { return m_frame; }
  /// Whether the drawing has layouts, so that the contents of sheets are read.
  bool keepsSheets() const { return m_keepsSheets; }
  /// Name of the layout on whose sheet the entity is, if the file states it; otherwise empty.
  const zim::WString& layout() const { return m_layout; }
  /// Handle of the current entity in the file, even if the drawing numbers its entities itself; 0
  /// if it has none, and under the strict policy.
  vek0::Handle handle() const { return m_handle; }
  /// Declares that the entities of the current record are already in world coordinates.
  void setPlaced() { m_frame.normal = PNT_3D(0, 0, 1); }

  /// Skips the current record.
  void skip();
  /// Reads the common properties of a record whose kind is not supported, and passes all its pairs
  /// to `look`. False if an error is recorded.
  template <class Look>
  bool readCommon(const Look& look) {
    constexpr long subclass = 100;
    m_record.start(m_byLayer ? m_byLayer : findByLayer());
    bool isCommon = true;
    for (long code = next(); code != 0 && !failed(); code = next()) {
      look(code);
      // The codes of subclasses have other meanings.
      if (code == subclass) isCommon = isCommon && lexer().getBytes() == "AcDbEntity";
      if (isCommon) takeCommon(code);
      if (failed() && !spareNumber()) return false;
    }
    if (!failed()) supply();
    return !failed();
  }
  /// Downgrades an error in a dispensable record of that `kind` to a report entry and continues
  /// with the next record. False if reading is strict or the error is fatal.
  bool recover(const zim::WString& kind);
  /// For an ignored pair: an invalid number only drops the pair.
  void passOver() {
    lexer().checkNumber();
    spareNumber();
  }
  /// As that of the context; also clears the pair's code.
  bool spareNumber(ReportCode cost = ReportCode::NumberDropped);

  const Record& record() const { return m_record; }
  /// Changes the color of entities built from now on.
  void setColor(short color, std::uint32_t trueColor = ENT_TRAITS::kNoTrueColor) {
    m_record.color = color;
    m_record.traits.trueColor = trueColor;
  }
  /// Takes the current value as the entity's linetype scale.
  void takeLtypeScale();
  bool isTolerant() const { return m_context.options.policy.tolerant; }
  const ReadContext& context() const { return m_context; }
  CFileDXFILexer& lexer() const { return m_context.lexer; }
  CEntFactory& factory() const { return m_context.factory; }
  IHandleGestor& gestor() const { return m_context.semantor.getHandleGestor(); }
  bool failed() const { return m_context.err.HasAnError(); }
  void fail(CFileDXFIError::TDXFErrors kind) const { m_context.err.SetError(kind); }
  void note(ReportCode code, const zim::WString& sample = {}) const {
    m_context.note(code, sample);
  }

  /// The same for an earlier record.
  void noteAt(long line, ReportCode code, const zim::WString& sample) const;

  /// The current value as a width; error 15 if it is negative.
  double width();
  void takeWidth(long code) { m_record.setReal(code, width()); }
  /// Stores the current value as a count of at least one.
  void takeCount(long code);
  /// A radius of the current record. Tolerant reading takes the magnitude of a negative one, and
  /// rejects 0, an invisible entity.
  double radius(double value);

  /// The block or reference of that name; null if there is none yet.
  CBlock* findBlock(std::string_view bytes);

  /// Creates entities, usually with the properties of the record.
  EntBuilder make() const { return {factory(), gestor(), m_context.err}; }

  /// Entities of the current record beyond the first.
  std::vector<std::unique_ptr<CEnt>> further;
  /// Maximum number of points per file for curves of unsupported kinds: a few lines can request a
  /// thousand. Curves beyond that get few chords.
  static constexpr std::size_t kCurvePoints = 10'000'000;
  std::size_t curveRoom = kCurvePoints;
  /// Reserves points for a curve; returns false, and reports it, if not enough remain.
  bool takeCurveRoom(std::size_t points);
  /// Whether any insert was read.
  bool insertRead = false;
  /// Whether a block definition is being read, and the block, if one of that name exists yet.
  bool inBlock = false;
  const CBlock* owner = nullptr;
  /// Name of the block if it holds a sheet.
  zim::WString sheet;
  /// Whether the sheet whose entities are not in a block has content, and whether that of the
  /// current block has.
  bool sheetUsed[2] = {false, false};
  /// Whether the blocks of the file have been read: definitions still missing are unlikely to
  /// follow.
  bool blocksRead = false;
  /// The clips of the inserts read, by the dictionary that each refers to; empty until the end of
  /// the file. The line is that of an insert.
  struct PromisedClip {
    std::shared_ptr<INSERT_CLIP> clip;
    long line = 0;
  };
  std::unordered_map<std::uint64_t, PromisedClip> clips;
  /// The blocks claimed by hatches stored as inserts.
  std::unordered_set<const CBlock*> hatchBlocks;

 private:
  static constexpr CodeSet kCommon{5, 6, 8, 62}, kCommonTolerant{5, 6, 8, 39, 48, 60, 62, 67};

  static bool isKeepingSheets(const ReadContext& context);
  CLtype* findByLayer();
  void takeWanted(long code);
  void take(long code);
  void takeCommon(long code);
  void takeInteger(long code);
  void takeHandle();
  void takeLayer();
  void takeLtype();
  void takeStyle();
  void takeColor();
  bool leaveOut(long code);
  bool takeTrait(long code);
  void takeTrueColor();
  void takeLineweight();
  void takeTransparency();
  void takeThickness();
  void placeThickness();
  static bool isSpare(long code, const CodeSet& wanted, const CodeSet& optional);
  bool check(const RecordKind& kind, long missingParam);
  void supply();

  ReadContext m_context;
  Record m_record;
  const bool m_keepsSheets;
  zim::WString m_layout;
  vek0::Handle m_handle = 0;
  bool m_putBack = false;
  bool m_frameTaken = false;
  Frame m_frame;
  CLtype* m_byLayer = nullptr;
  NameCache<CLayer> m_layers;
  NameCache<CLtype> m_ltypes;
  NameCache<CStyle> m_styles;
  NameCache<CBlock> m_blocks;
};

using EntPtr = std::unique_ptr<CEnt>;

}  // namespace vek0::detail
