#pragma once

#include "zim0lang/wstring.h"

namespace zim {

/// Source of message texts by id. English texts are built in; a host installs a loader to replace
/// them with its own language.
class ZIM0LANG_API CStringLoader {
 public:
  virtual ~CStringLoader() = default;

  /// Writes the text of message `id` to `text` and returns true, or returns false for an unknown
  /// id; the built-in text is then used.
  virtual bool load(long id, WString& text) = 0;

  /// Installs `loader` (borrowed; null for the built-in texts alone) process-wide and returns the
  /// previous one. Texts loaded earlier do not change.
  static CStringLoader* setLoader(CStringLoader* loader);

  /// The text of message `id` from the installed loader, else the built-in one. If neither has the
  /// id, clears `text` and returns false.
  static bool find(long id, WString& text);
};

}  // namespace zim
