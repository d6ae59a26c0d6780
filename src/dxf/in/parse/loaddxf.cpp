// The entry points of reading. If memory runs out, a drawing that was new is emptied again; one
// that had content keeps what was imported until then.
#include "vek0core/dxf/in/parse/loaddxf.h"

#include <new>
#include <optional>

#include "vek0core/drawing/data.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/dxf/in/parse/filedxfiimportdatasemantor.h"
#include "vek0core/dxf/in/parse/filedxfiloaddatasemantor.h"
#include "vek0core/dxf/in/parse/filedxfiparser.h"
#include "vek0core/entities/enttable.h"

namespace {

// The state of a drawing before reading. Only a drawing without content can be restored.
class DrawingBefore {
 public:
  explicit DrawingBefore(CData& data)
      : m_data(data),
        m_isNew(isNew(data)),
        m_vars(data.getVars()),
        m_layer0(data.getLayer0()),
        m_standard(m_isNew ? std::optional<CStyleMemento>(*getStyleStandard(data)) : std::nullopt) {
  }

  // Needs no memory.
  void restore() const {
    if (!m_isNew) return;
    m_data.clearAll();
    m_data.getVars() = m_vars;
    m_data.getLayer0().setMemento(m_layer0);
    getStyleStandard(m_data)->setMemento(*m_standard);
  }

 private:
  static bool isNew(CData& data) {
    return data.getEntTable().getEntityTbl().empty() && data.getBlockTable().size() == 0 &&
           data.getBlockXRefTable().size() == 0 && data.getLayerTable().size() == 0 &&
           data.getLtypeTable().size() == 0 && data.getStyleTable().size() == 1 &&
           getStyleStandard(data) != nullptr;
  }

  CData& m_data;
  bool m_isNew;
  CDataVariables m_vars;
  CLayerMemento m_layer0;
  std::optional<CStyleMemento> m_standard;
};

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
  std::optional<DrawingBefore> before;
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
