// The entry points of reading. A drawing that had content keeps what was imported until memory ran
// out.
#include "vek0core/dxf/in/parse/loaddxf.h"

#include <new>
#include <optional>

#include "dxf/in/parse/drawingbefore.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/dxf/in/parse/filedxfiimportdatasemantor.h"
#include "vek0core/dxf/in/parse/filedxfiloaddatasemantor.h"
#include "vek0core/dxf/in/parse/filedxfiparser.h"
#include "vek0core/entities/enttable.h"

namespace {

template <class Semantor, class... Plan>
CFileDXFIResult parse(CData& data, IFile& file, CFileDXFIError& record,
                      const CFileDXFIOptions& options, const Plan&... plan) {
  CFileDXFIResult result;
  Semantor semantor(data, &record, options, plan...);
  CFileDXFIParser parser(file, semantor, data.getEntFactory(), &record, options);
  // The extents of a million entities are then computed once, on demand.
  data.getEntTable().invalidateBdry();
  const bool done = parser.load();
  result.version = parser.getVersionName();
  result.encoding = parser.getEncodingName();
  result.units = parser.getUnits();
  result.measurement = parser.getMeasurement();
  result.insertionBase = parser.getInsertionBase();
  result.handleSeed = parser.getHandleSeed();
  result.isOutdated = parser.isOutdated();
  if (parser.isCancelled())
    result.status = CFileDXFIResult::Cancelled;
  else if (done)
    result.status = CFileDXFIResult::Done;
  else if (record.HasAnError())
    result.status = CFileDXFIResult::Failed;
  return result;
}

template <class Semantor, class... Plan>
CFileDXFIResult readDXF(CData& data, IFile& file, CFileDXFIError* err,
                        const CFileDXFIOptions& options, const Plan&... plan) {
  CFileDXFIError ownErr;
  CFileDXFIError& record = err ? *err : ownErr;
  CFileDXFIResult result;
  std::optional<vek0::detail::DrawingBefore> before;
  try {
    before.emplace(data);
    result = parse<Semantor>(data, file, record, options, plan...);
  } catch (const std::bad_alloc&) {
    if (file.isOpened()) file.close();
    record.SetError(CFileDXFIError::GeneralError);
    result.status = CFileDXFIResult::Failed;
  }
  if (before && record.GetErrorType() == CFileDXFIError::GeneralError) before->restore();
  return result;
}

}  // namespace

void loadDXF(CData& data, IFile& file, CFileDXFIError* err) {
  readDXF<CFileDXFILoadDataSemantor>(data, file, err, {});
}

void importDXF(CData& data, IFile& file, CFileDXFIError* err) {
  readDXF<CFileDXFIImportDataSemantor>(data, file, err, {});
}

CFileDXFIResult loadDXF(CData& data, IFile& file, CFileDXFIError* err,
                        const CFileDXFIOptions& options) {
  return readDXF<CFileDXFILoadDataSemantor>(data, file, err, options);
}

CFileDXFIResult importDXF(CData& data, IFile& file, CFileDXFIError* err,
                          const CFileDXFIOptions& options) {
  return readDXF<CFileDXFIImportDataSemantor>(data, file, err, options);
}

CFileDXFIResult importDXF(CData& data, IFile& file, CFileDXFIError* err,
                          const CFileDXFIOptions& options, const CImportPlan& plan) {
  return readDXF<CFileDXFIImportDataSemantor>(data, file, err, options, plan);
}
