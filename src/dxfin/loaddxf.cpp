#include "vek0core/dxfin/loaddxf.h"

#include <new>

#include "vek0core/drawing/data.h"
#include "vek0core/dxfin/filedxfiimportdatasemantor.h"
#include "vek0core/dxfin/filedxfiloaddatasemantor.h"
#include "vek0core/dxfin/filedxfiparser.h"
#include "vek0core/entities/enttable.h"

namespace {

template <class Semantor>
CFileDXFIResult readDXF(CData& data, IFile& file, CFileDXFIError* err,
                        const CFileDXFIOptions& options) {
  CFileDXFIError ownErr;
  CFileDXFIError& record = err ? *err : ownErr;
  CFileDXFIResult result;
  try {
    Semantor semantor(data, &record, options);
    CFileDXFIParser parser(file, semantor, data.getEntFactory(), &record, options);
    // The extents of a million entities are looked at once, when somebody asks.
    data.getEntTable().invalidateBdry();
    const bool done = parser.load();
    result.version = parser.getVersionName();
    result.encoding = parser.getEncodingName();
    result.units = parser.getUnits();
    result.measurement = parser.getMeasurement();
    result.insertionBase = parser.getInsertionBase();
    if (parser.isCancelled())
      result.status = CFileDXFIResult::Cancelled;
    else if (done)
      result.status = CFileDXFIResult::Done;
    else if (record.HasAnError())
      result.status = CFileDXFIResult::Failed;
  } catch (const std::bad_alloc&) {
    record.SetError(CFileDXFIError::GeneralError);
    record.SetFileName(file.getName());
    result.status = CFileDXFIResult::Failed;
  }
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
