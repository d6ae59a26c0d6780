#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// A font of the host. The library identifies it by name and queries its metrics; every metric has
/// a default, so a font with only a name works.
///
/// Metrics are in font units; a text's height corresponds to `getHeightUnit`.
class VEK0_API ICADFont {
 public:
  virtual ~ICADFont() = default;

  const zim::WString& getName() const { return m_name; }

  /// Height of capitals. Default 1.0.
  virtual double getHeightUnit() const;
  /// Height whose half is the middle for middle justification. Default: the height unit.
  virtual double getFullHeight() const;
  /// Extent of glyphs below the baseline, positive downward. Default 1/3.
  virtual double getDescent() const;
  /// Width of a string. Default: 0.9 per character, twice that for wide East Asian characters, and
  /// 10 % more in bold.
  virtual double getStringWidth(const zim::WString& text, bool horiz, bool bold, bool italic) const;

 protected:
  explicit ICADFont(const zim::WString& name) : m_name(name) {}
  ICADFont(const ICADFont&) = default;
  ICADFont& operator=(const ICADFont&) = delete;

 private:
  zim::WString m_name;
};

/// A font that is a name and the default measures: what a host needs that draws no
/// texts, and what stands for a font that the process does not have.
class VEK0_API CNamedFont final : public ICADFont {
 public:
  explicit CNamedFont(const zim::WString& name) : ICADFont(name) {}
};

/// The measures of `ICADFont`'s defaults, for a style that has no font.
VEK0_API const ICADFont& defaultFontMetrics();

/// The fonts of the process. It owns them; drawings and styles borrow them, so
/// `shutdown` comes after the last drawing is gone. Not for concurrent use.
class VEK0_API CFontTable {
 public:
  static CFontTable& getInstance();
  /// Deletes every font and the table; the next `getInstance` makes a new one.
  static void shutdown();

  /// Appends and takes over; null is ignored, and so is a font that is there already.
  void add(ICADFont* font);
  /// First font added of exactly this name, case-sensitive; otherwise the default font when
  /// `orDefault`, else null.
  const ICADFont* get(const zim::WString& name, bool orDefault) const;
  int size() const { return static_cast<int>(m_fonts.size()); }
  /// Font `i` in order of addition; unchecked.
  const ICADFont* operator[](int i) const { return m_fonts[static_cast<std::size_t>(i)].get(); }

  /// The font of new drawings' "STANDARD" style; null until a host sets one. Borrowed.
  const ICADFont* getDefault() const { return m_default; }
  void setDefault(const ICADFont* font) { m_default = font; }
  /// For hosts without fonts of their own, before they load or make a drawing: a
  /// default font that has the default measures, unless there is a default already.
  void addPlainDefault();

 private:
  CFontTable() = default;

  std::vector<std::unique_ptr<ICADFont>> m_fonts;
  std::unordered_map<zim::WString, const ICADFont*> m_byName;
  const ICADFont* m_default = nullptr;
};
