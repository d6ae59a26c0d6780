#include <memory>
#include <string>
#include <string_view>

#include "commands.h"
#include "compression.h"
#include "options.h"
#include "pagefiles.h"
#include "vek0host/drawingfile.h"
#include "vek0host/outputfile.h"
#include "vek0host/paths.h"

namespace vek0::tool {
namespace {

struct ViewOptions {
  std::string in, out, page;
  bool force = false;
};

std::string base64(std::string_view bytes) {
  constexpr std::string_view digits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    unsigned long bits = 0;
    for (std::size_t k = 0; k < 3; ++k)
      bits = bits << 8 | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0u);
    for (std::size_t k = 0; k < 4; ++k)
      text += k <= count ? digits[bits >> (18 - 6 * k) & 63] : '=';
  }
  return text;
}

std::string escaped(std::string_view text) {
  std::string safe;
  for (const char c : text) {
    const bool isPlain = std::string_view("<>&\"'").find(c) == std::string_view::npos;
    safe += isPlain ? std::string(1, c) : "&#" + std::to_string(static_cast<int>(c)) + ";";
  }
  return safe;
}

// The drawing as a block of data, which browsers do not execute.
std::string blockOf(const std::string& name, const std::string& drawing) {
  const std::optional<std::string> packed = gzipped(drawing);
  return "<script type=\"application/octet-stream\" id=\"drawing\" data-name=\"" + escaped(name) +
         "\"" + (packed ? " data-encoding=\"gzip\"" : "") + ">" +
         base64(packed ? *packed : drawing) + "</script>";
}

void writePage(const ViewOptions& options, std::string page, OutputFile& output, Session& session) {
  constexpr std::string_view place = "<!--DRAWING-->";
  const std::size_t at = page.find(place);
  const std::optional<std::string> drawing = bytesOfFile(toPath(options.in));
  if (at == std::string::npos || !drawing)
    return session.fail(kOutputFailed, drawing ? "the page has no place for a drawing"
                                               : "'" + options.in + "' cannot be read");
  page.replace(at, place.size(), blockOf(toUtf8(toPath(options.in).filename()), *drawing));
  const bool isWritten =
      output.file().open() && output.file().writeBytes(page.data(), static_cast<long>(page.size()));
  output.file().close();
  if (!isWritten) return session.fail(kOutputFailed, "'" + output.path() + "' cannot be written");
  if (!output.commit()) session.fail(kOutputFailed, output.error());
}

void run(const ViewOptions& options, Session& session) {
  std::string error;
  const auto folder = findPage(options.page, error);
  if (!folder) return session.fail(kOutputFailed, error);
  std::optional<std::string> page = bytesOfFile(*folder / "single.html");
  if (!page) return session.fail(kOutputFailed, "the page lacks its file single.html");
  if (options.in == "-")
    return session.fail(kWrongUsage, "the standard input cannot be viewed; name a file");
  OutputFile output(options.out, options.force);
  if (!output.error().empty()) return session.fail(kOutputFailed, output.error());
  // What cannot be read here could not be read there either.
  const Drawing data = newDrawing();
  const ReadResult result = loadFile(*data, options.in, session);
  if (!result.ok()) return session.fail(kDrawingFailed, options.in + ": " + result.message());
  writePage(options, std::move(*page), output, session);
}

}  // namespace

void addViewCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<ViewOptions>();
  CLI::App* verb = app.add_subcommand(
      "view", "Write a web page that shows a drawing, in one file that needs no network");
  verb->add_option("IN", options->in, "DXF file")->required()->type_name("");
  verb->add_option("-o,--output", options->out, "File to write; - is the standard output")
      ->required()
      ->type_name("FILE");
  verb->add_option("--page", options->page, "Folder of the page, if it is not installed")
      ->type_name("FOLDER");
  verb->add_flag("-f,--force", options->force, "Replace the output file if it exists");
  verb->footer(
      "Examples:\n"
      "  vek0 view plan.dxf -o plan.html\n\n"
      "The page holds the whole drawing: whoever opens it can look at it, measure, edit and save "
      "it again.");
  verb->callback([options, &session] { run(*options, session); });
}

}  // namespace vek0::tool
