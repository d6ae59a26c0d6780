#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vek0::test {

/// What a strict reader of the "AC1009" version could refuse in a file that we
/// wrote, one sentence a complaint with its line; empty for a sound file.
///
/// Looks at: pairs and their padding, codes of that version, numbers, line length
/// and control characters, order of sections, counts of tables, spelling of names,
/// declared layers, linetypes, styles and blocks, blocks before their inserts,
/// sequences and their ends, handles (upper-case, not 0, each once). With
/// `exchange` also what only that form promises: names used once in a table,
/// an LTYPE's dashes counted, a layer on ENDBLK, 16-bit integers, and `$HANDSEED`
/// above every handle.
std::vector<std::string> lintR12(std::string_view file, bool exchange);

}  // namespace vek0::test
