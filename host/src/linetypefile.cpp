#include "vek0host/linetypefile.h"

#include "vek0host/drawingfile.h"
#include "vek0host/losslog.h"
#include "vek0host/outputfile.h"
#include "vek0host/reports.h"

namespace vek0::host {
namespace {

constexpr double kUpright = 0, kNormalWidth = 1, kFirstHeight = 1;

}  // namespace

CStyle* StyleMaker::Notify(const zim::WString& styleName) {
  const ICADFont* const font = CFontTable::getInstance().getDefault();
  CStyle* const style =
      m_factory.create(styleName, font, 0, kNormalWidth, kUpright, kFirstHeight, 0);
  if (!style) return nullptr;
  m_styles.add(style);
  m_made.push_back(styleName.toUtf8());
  return style;
}

InputFault loadLinetypes(CLtypeLoader& loader, const std::string& path) {
  const InputFault fault = inputFault(path);
  if (fault.kind) return fault;
  Session quiet;
  quiet.quiet = true;
  loader.Load(*openForReading(path, quiet));
  switch (loader.GetStatus()) {
    case CLtypeLoader::Done:
      return {};
    case CLtypeLoader::NoMemory:
      return {"general error", "Out of memory."};
    default:
      return {"file unreadable", "The file cannot be read to the end."};
  }
}

void logLinetypes(const CLtypeLoader& loader, const InputFault& fault, const Session& session) {
  if (!session.log) return;
  session.log->add(LossLog::Read, loader.GetReport());
  if (fault.kind) session.log->addFailure(LossLog::Read, fault.kind, fault.message);
}

bool addLinetypes(CData& data, const std::string& path, Session& session) {
  StyleMaker maker(data.getStyleTable(), data.getStyleFactory());
  CLtypeLoader loader(data.getStyleTable(), data.getLtypeFactory());
  loader.SetNotifier(&maker);
  const InputFault fault = loadLinetypes(loader, path);
  logLinetypes(loader, fault, session);
  if (fault.kind) {
    session.fail(kDrawingFailed, path + ": " + fault.message);
    return false;
  }
  addLtypes(data, loader);
  if (session.quiet) return true;
  for (const std::string& style : maker.made()) {
    session.complain(path + ": the style '" + style + "' was created with the default font");
  }
  if (!loader.GetReport().empty()) {
    session.complain(path + ": not everything could be read unchanged:",
                     reportToText(loader.GetReport()));
  }
  return true;
}

void saveLinetypes(CLtypeLoader& loader, const std::string& path, bool force, Session& session) {
  OutputFile output(path, force);
  if (!output.error().empty()) return session.fail(kOutputFailed, output.error());
  loader.Save(output.file());
  if (session.log) session.log->add(LossLog::Write, loader.GetReport());
  if (loader.GetStatus() != CLtypeLoader::Done)
    return session.fail(kOutputFailed, "'" + output.path() + "' cannot be written");
  if (!output.commit()) return session.fail(kOutputFailed, output.error());
  if (!loader.GetReport().empty())
    session.notify("not everything could be written unchanged:", reportToText(loader.GetReport()));
}

}  // namespace vek0::host
