#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "dxfin/namecache.h"
#include "dxfin/record.h"
#include "vek0core/dxfin/filedxfierror.h"
#include "vek0core/dxfin/filedxfilexer.h"
#include "vek0core/dxfin/filedxfioptions.h"
#include "vek0core/dxfin/filedxfisemantor.h"
#include "vek0core/entities/ent.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/insertclip.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {

class DimStyles;

/// What the parser lends to everything that reads records.
struct ReadContext {
  CFileDXFILexer& lexer;
  IFileDXFISemantor& semantor;
  CEntFactory& factory;
  CFileDXFIError& err;
  const CFileDXFIOptions& options;
  const DimStyles& dimStyles;

  /// Adds to the report, if anyone wants one, at the line where the lexer stands.
  void note(const char* code, const zim::WString& sample) const;
  /// Turns the error of the current value, which is no number, into a note that says what it
  /// costs: the pair alone, unless `code` tells. False when the reading is strict or the error
  /// another one.
  bool spareNumber(const char* code = "number dropped") const;
};

/// Which codes a kind of record reads and which it cannot be built without. The
/// properties that every entity has (5, 6, 8, 62) are always read. Of the real numbers, which
/// are where and how large the entity is, tolerant reading does without those that are
/// `optional` when they are no numbers; without whole numbers it does anyway.
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
  explicit RecordReader(const ReadContext& context) : m_context(context) {}

  /// Reads the pairs up to the next group 0, on which it leaves the lexer. False
  /// when an error is recorded: of a value, 16 when a required code is missing
  /// (`missingParam` is its first parameter), 13 when there is no layer.
  bool read(const RecordKind& kind, long missingParam = 2) {
    return read(kind, CodeSet(), missingParam, [](long) {});
  }
  /// The same; pairs whose code is in `own` (a `CodeSet` or what answers `has` like one)
  /// go to `takeOwn` instead, which reads the lexer's value, and further pairs if they
  /// belong to it.
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
  /// The code of the next pair, or once more that of the current one after `putBack`.
  long next() {
    if (!m_putBack) return m_context.lexer.read();
    m_putBack = false;
    return m_context.lexer.getGroupValue();
  }
  void putBack() { m_putBack = true; }
  /// What holds for an entity as a whole: its first record tells.
  struct Frame {
    PNT_3D normal = PNT_3D(0, 0, 1);  ///< of the plane that it is drawn in
    bool onPaper = false, isInvisible = false;
  };
  /// Begins an entity; tolerant reading asks for its frame afterwards.
  void begin() {
    m_putBack = false;
    m_frameTaken = false;
    m_frame = {};
  }
  const Frame& frame() const { return m_frame; }
  /// Says that the entities of the current record stand in the world already.
  void setPlaced() { m_frame.normal = PNT_3D(0, 0, 1); }

  /// Skips the current record.
  void skip();
  /// Turns the error of a record that its entity can do without, a `kind`, into a note and
  /// goes on to the next record. False when the reading is strict or the error ends it.
  bool recover(const zim::WString& kind);
  /// For a pair that means nothing: what is no number costs the pair.
  void passOver() {
    lexer().checkNumber();
    spareNumber();
  }
  /// As the context's, and forgets that the pair was there.
  bool spareNumber(const char* cost = "number dropped");

  const Record& record() const { return m_record; }
  /// Changes the color of what is built from now on.
  void setColor(short color) { m_record.color = color; }
  bool isTolerant() const { return m_context.options.policy.tolerant; }
  const ReadContext& context() const { return m_context; }
  CFileDXFILexer& lexer() const { return m_context.lexer; }
  CEntFactory& factory() const { return m_context.factory; }
  IHandleGestor& gestor() const { return m_context.semantor.getHandleGestor(); }
  bool failed() const { return m_context.err.HasAnError(); }
  void fail(CFileDXFIError::TDXFErrors kind) const { m_context.err.SetError(kind); }
  void note(const char* code, const zim::WString& sample = {}) const {
    m_context.note(code, sample);
  }

  /// The same about a record that has been left behind.
  void noteAt(long line, const char* code, const zim::WString& sample) const;

  /// The current value as a width; error 15 when it is negative.
  double width();
  void takeWidth(long code) { m_record.setReal(code, width()); }
  /// Takes the current value as a count of at least one.
  void takeCount(long code);
  /// A radius of the current record: below 0 as its amount where reading is tolerant, which
  /// fails on 0, an entity that nobody sees.
  double radius(double value);

  /// What a block name shows; null when nothing bears the name yet.
  CBlock* findBlock(std::string_view bytes);

  /// Takes what the factory gave; null is error 1, out of memory.
  template <class Ent>
  std::unique_ptr<Ent> built(Ent* ent) const {
    if (!ent) fail(CFileDXFIError::GeneralError);
    return std::unique_ptr<Ent>(ent);
  }

  /// Entities beyond the first that the current record gave.
  std::vector<std::unique_ptr<CEnt>> further;
  /// How many points the curves of a file become at most that a drawing has no class for: a
  /// few lines of it can ask for a thousand. Those beyond have few chords.
  static constexpr std::size_t kCurvePoints = 10'000'000;
  std::size_t curveRoom = kCurvePoints;
  /// Takes room for the points of a curve; false, and noted, when there is not enough.
  bool takeCurveRoom(std::size_t points);
  /// Whether any insert was read.
  bool insertRead = false;
  /// Whether the definition of a block is being read, and the block, if anything bears its
  /// name yet.
  bool inBlock = false;
  const CBlock* owner = nullptr;
  /// Name of the block when it holds a sheet, which is not read.
  zim::WString sheet;
  /// Whether anything stands on the sheet whose entities are none of a block's; and on the
  /// one of the present block.
  bool sheetUsed[2] = {false, false};
  /// Whether the blocks of the file have been read: what is not defined by now hardly will be.
  bool blocksRead = false;
  /// The clips of the inserts read, by the dictionary that each names; empty up to the end of the
  /// file. The line is that of an insert.
  struct PromisedClip {
    std::shared_ptr<INSERT_CLIP> clip;
    long line = 0;
  };
  std::unordered_map<std::uint64_t, PromisedClip> clips;
  /// The blocks that hatches stored as inserts have claimed.
  std::unordered_set<const CBlock*> hatchBlocks;

 private:
  static constexpr CodeSet kCommon{5, 6, 8, 62}, kCommonTolerant{5, 6, 8, 60, 62, 67};

  CLtype* findByLayer();
  void takeWanted(long code);
  void take(long code);
  void takeInteger(long code);
  void takeHandle();
  void takeLayer();
  void takeLtype();
  void takeStyle();
  void takeColor();
  bool leaveOut(long code);
  void takeTrueColor();
  short nearestColor(long trueColor);
  static bool isSpare(long code, const CodeSet& wanted, const CodeSet& optional);
  bool check(const RecordKind& kind, long missingParam);
  void supply();

  ReadContext m_context;
  Record m_record;
  bool m_putBack = false;
  bool m_frameTaken = false;
  Frame m_frame;
  long m_lastTrueColor = Record::kNoTrueColor;  // most entities are of the color before
  short m_lastNearest = 0;
  CLtype* m_byLayer = nullptr;
  NameCache<CLayer> m_layers;
  NameCache<CLtype> m_ltypes;
  NameCache<CStyle> m_styles;
  NameCache<CBlock> m_blocks;
};

using EntPtr = std::unique_ptr<CEnt>;

}  // namespace vek0::detail
