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

template <class Semantor>
CFileDXFIResult parse(CData& data, IFile& file, CFileDXFIError& record,
                      const CFileDXFIOptions& options) {
  CFileDXFIResult result;
  Semantor semantor(data, &record, options);
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
  if (parser.isCancelled())
    result.status = CFileDXFIResult::Cancelled;
  else if (done)
    result.status = CFileDXFIResult::Done;
  else if (record.HasAnError())
    result.status = CFileDXFIResult::Failed;
  return result;
}

template <class Semantor>
CFileDXFIResult readDXF(CData& data, IFile& file, CFileDXFIError* err,
                        const CFileDXFIOptions& options) {
  CFileDXFIError ownErr;
  CFileDXFIError& record = err ? *err : ownErr;
  CFileDXFIResult result;
  std::optional<vek0::detail::DrawingBefore> before;
  try {
    before.emplace(data);
    result = parse<Semantor>(data, file, record, options);
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
