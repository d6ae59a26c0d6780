#pragma once

#include <cstdint>
#include <vector>

#include "compare/entshape.h"
#include "files/mixer.h"
#include "vek0core/entities/blocks/insertmatrix.h"

class CBlock;

namespace vek0::detail {

/// How closely numbers have to agree.
struct Closeness {
  double tolerance = 0;  ///< in drawing units
  double size = 1;       ///< of the drawings, in drawing units: turns ratios into lengths
};

/// The shape of an entity as values that can be compared one by one.
///
/// Pieces of records and the content of dimensions belong to it, as they are placed, since files
/// may place them by the insert or by their own coordinates.
class EntFigure final : public IShapeSink {
 public:
  explicit EntFigure(const Closeness& closeness) : m_size(closeness.size) {}

  /// Replaces the values, reusing their memory.
  void read(const CEnt& ent);

  std::vector<PNT_3D> points;
  std::vector<double> lengths;   ///< also angles and ratios, which are multiplied by the size
  Mixer words;                   ///< class, flags and counts
  Mixer texts;                   ///< the strings
  Mixer family;                  ///< name and counts of a hatch pattern
  std::vector<double> families;  ///< its numbers
  std::vector<const CStyle*> styles;
  std::vector<const CBlock*> blocks;  ///< of inserts, where the content belongs to the block
  std::vector<const CEntAttrib*> attribs;

  void point(const PNT_3D& p) override;
  void direction(const PNT_3D& d) override;
  void length(double length) override { lengths.push_back(length); }
  void ratio(double ratio) override { lengths.push_back(ratio * m_size); }
  void angle(double angleRad) override;
  void word(long word) override { words.addInteger(word); }
  void text(std::u16string_view text) override { texts.add(text); }
  void style(const CStyle* style) override { styles.push_back(style); }
  void pattern(const HATCH_TYPE& type, double scale, double angleRad) override;
  void block(const CEntInsertBase& insert) override;
  void attrib(const CEntAttrib& attrib) override { attribs.push_back(&attrib); }

 private:
  void clear();
  void addPieces(const CEntInsertBase& insert, const CBlock& pieces);
  bool isPlaced() const { return m_depth > 0; }

  double m_size;
  CEntInsertMatrix m_place;  // of pieces
  int m_depth = 0;
};

/// Whether the block is private to what shows it: it has no name of its own.
bool isPrivate(const CBlock& block);

}  // namespace vek0::detail
