#pragma once

#include "zim0lang/wstring.h"

namespace zim {

/// Source of message texts by id: English ones are built in, and a host replaces
/// them with its own language by installing a loader.
class ZIM0LANG_API CStringLoader {
 public:
  virtual ~CStringLoader() = default;

  /// Writes the text of message `id` to `text` and returns true, or returns
  /// false for an id it does not know; the built-in text is used then.
  virtual bool load(long id, WString& text) = 0;

  /// Installs `loader` (borrowed; null for the built-in texts alone) for the whole
  /// process and returns the one before it. Texts loaded earlier stay as they are.
  static CStringLoader* setLoader(CStringLoader* loader);

  /// The text of message `id` from the installed loader, else the built-in one.
  /// Returns false, and empties `text`, when neither knows the id.
  static bool find(long id, WString& text);
};

}  // namespace zim
