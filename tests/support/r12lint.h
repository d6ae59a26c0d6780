#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vek0::test {

/// Lists what a strict reader of version "AC1009" could reject in a file that we wrote, one
/// sentence per problem with its line; empty for a valid file.
///
/// Checks: pairs and their padding, codes of that version, numbers, line length and control
/// characters, order of sections, counts of tables, spelling of names, declared layers, linetypes,
/// styles and blocks, blocks before their inserts, sequences and their ends, handles (uppercase,
/// not 0, unique). With `exchange`, also the guarantees of that form: names used once in a table,
/// an LTYPE's dashes counted, a layer on ENDBLK, 16-bit integers, and `$HANDSEED` above every
/// handle.
std::vector<std::string> lintR12(std::string_view file, bool exchange);

}  // namespace vek0::test
