#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

#include "dxf/keep/recordwriter.h"
#include "dxf/keep/renames.h"
#include "dxf/keep/sourceedits.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/files/report.h"
#include "vek0core/files/textcodec.h"

namespace vek0::detail {

/// What the steps of saving an edited source share: both drawings, the source and its edits.
struct EditContext {
  EditContext(const CData& edited, std::string source, CFileReport* to)
      : data(edited),
        report(to),
        text(std::move(source)),
        index(text),
        edits(text, index, renames) {}

  const CData& data;  ///< as it is now
  CDataPtr pristine;  ///< as it was loaded
  CFileReport* report;
  SourceText text;
  SourceIndex index;
  Renames renames{};
  SourceEdits edits;
  SourceVersion version;
  CTextDecoder decoder{};                                ///< of the texts of the source
  std::unique_ptr<RecordWriter> before, after;           ///< of the pristine drawing; of the other
  std::unordered_map<const CEnt*, std::size_t> entries;  ///< of the pristine entities

  /// The handle of a new entity: its own, unless something in the file has that.
  Handle handleFor(const CEnt& ent) {
    const Handle own = ent.GetHandle();
    const bool isFree = own > 0 && index.withHandle(own) == SourceIndex::kNone;
    return isFree ? edits.useHandle(own) : edits.takeHandle();
  }
  void note(ReportCode code, std::u16string_view sample) const {
    if (report) report->add(code, 0, sample);
  }
};

}  // namespace vek0::detail
