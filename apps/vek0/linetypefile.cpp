#include "linetypefile.h"

#include "drawingfile.h"
#include "summary.h"

namespace vek0::tool {
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

std::string statusToText(const CLtypeLoader& loader) {
  switch (loader.GetStatus()) {
    case CLtypeLoader::NotOpened:
      return "The file cannot be opened.";
    case CLtypeLoader::ReadFailed:
      return "The file cannot be read.";
    case CLtypeLoader::WriteFailed:
      return "The file cannot be written.";
    case CLtypeLoader::NoMemory:
      return "There is not enough memory.";
    case CLtypeLoader::Idle:
    case CLtypeLoader::Done:
      break;
  }
  return {};
}

bool addLinetypes(CData& data, const std::string& path, Session& session) {
  StyleMaker maker(data.getStyleTable(), data.getStyleFactory());
  CLtypeLoader loader(data.getStyleTable(), data.getLtypeFactory());
  loader.SetNotifier(&maker);
  loader.Load(*openForReading(path, true));
  if (loader.GetStatus() != CLtypeLoader::Done) {
    Session::complain(path + ": " + statusToText(loader));
    session.failed(kDrawingFailed);
    return false;
  }
  addLtypes(data, loader);
  if (session.quiet) return true;
  for (const std::string& style : maker.made()) {
    Session::complain(path + ": the style '" + style + "' was made with the default font");
  }
  if (!loader.GetReport().empty()) {
    Session::complain(path + ": not everything could be read as it was:\n" +
                      reportToText(loader.GetReport()));
  }
  return true;
}

}  // namespace vek0::tool
