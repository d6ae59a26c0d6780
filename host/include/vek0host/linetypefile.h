#pragma once

#include <memory>
#include <string>
#include <vector>

#include "vek0core/vek0core.h"
#include "vek0host/inputfault.h"
#include "vek0host/session.h"

namespace vek0::host {

/// Creates the styles that a definition file names and the table lacks, with the default font, so
/// that no linetype text loses its style name.
class StyleMaker : public CLtypeLoader::IErrorNotifier {
 public:
  StyleMaker(CStyleTable& styles, CStyleFactory& factory) : m_styles(styles), m_factory(factory) {}
  CStyle* Notify(const zim::WString& styleName) override;

  /// The names of the created styles, in order of first use.
  const std::vector<std::string>& made() const { return m_made; }

 private:
  CStyleTable& m_styles;
  CStyleFactory& m_factory;
  std::vector<std::string> m_made;
};

/// Loads a definition file ("-": standard input). Returns the reason if it could not be read
/// completely; what was read until then stays in the loader.
InputFault loadLinetypes(CLtypeLoader& loader, const std::string& path);

/// Adds what was lost in loading to the list of the current drawing, if there is a log.
void logLinetypes(const CLtypeLoader& loader, const InputFault& fault, const Session& session);

/// Adds the linetypes of a definition file to the drawing, and the styles of their texts. Reports
/// what was skipped. Returns false, with an error message and the failure recorded, if the file
/// cannot be read.
bool addLinetypes(CData& data, const std::string& path, Session& session);

/// Writes all linetypes of the loader as a definition file ("-": standard output), replacing an
/// existing one if `force`. Reports failures and losses to the session.
void saveLinetypes(CLtypeLoader& loader, const std::string& path, bool force, Session& session);

}  // namespace vek0::host
