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

/// A font with a name and the default metrics: for hosts that draw no texts, and in place of fonts
/// that the process does not have.
class VEK0_API CNamedFont final : public ICADFont {
 public:
  explicit CNamedFont(const zim::WString& name) : ICADFont(name) {}
};

/// The default metrics of `ICADFont`, for a style without a font.
VEK0_API const ICADFont& defaultFontMetrics();

/// The fonts of the process. The table owns them; drawings and styles borrow them, so call
/// `shutdown` after the last drawing is destroyed. Not for concurrent use.
class VEK0_API CFontTable {
 public:
  static CFontTable& getInstance();
  /// Deletes every font and the table; the next `getInstance` creates a new one.
  static void shutdown();

  /// Appends the font and takes ownership; null and fonts already in the table are ignored.
  void add(ICADFont* font);
  /// First font added with exactly this name, case-sensitive; otherwise the default font if
  /// `orDefault`, else null.
  const ICADFont* get(const zim::WString& name, bool orDefault) const;
  int size() const { return static_cast<int>(m_fonts.size()); }
  /// Font `i` in order of addition; unchecked.
  const ICADFont* operator[](int i) const { return m_fonts[static_cast<std::size_t>(i)].get(); }

  /// The font of the "STANDARD" style of new drawings; null until a host sets one. Borrowed.
  const ICADFont* getDefault() const { return m_default; }
  void setDefault(const ICADFont* font) { m_default = font; }
  /// For hosts without fonts, before they load or create a drawing: registers a default font with
  /// the default metrics, unless there is a default already.
  void addPlainDefault();

 private:
  CFontTable() = default;

  std::vector<std::unique_ptr<ICADFont>> m_fonts;
  std::unordered_map<zim::WString, const ICADFont*> m_byName;
  const ICADFont* m_default = nullptr;
};
