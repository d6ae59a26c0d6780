#include <httplib.h>

#include <cctype>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "commands.h"
#include "pagefiles.h"
#include "terminal.h"
#include "vek0host/json.h"
#include "vek0host/paths.h"
#include "vek0host/visibletext.h"

namespace vek0::tool {
namespace {

namespace fs = std::filesystem;

struct ServeOptions {
  std::vector<std::string> files;
  std::string page;
  int port = 0;
};

// Nobody else on this machine can guess the address.
std::string makeToken() {
  std::random_device random;
  std::string token;
  for (int i = 0; i < 4; ++i) {
    char part[16];
    std::snprintf(part, sizeof part, "%08x", random());
    token += part;
  }
  return token;
}

std::string encoded(const std::string& name) {
  std::string text;
  for (const char c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) || c == '.' || c == '-' || c == '_') {
      text += c;
      continue;
    }
    char hex[8];
    std::snprintf(hex, sizeof hex, "%%%02X", static_cast<unsigned char>(c));
    text += hex;
  }
  return text;
}

const char* typeOf(const fs::path& file) {
  const fs::path extension = file.extension();
  if (extension == ".html") return "text/html; charset=utf-8";
  if (extension == ".js") return "text/javascript; charset=utf-8";
  if (extension == ".css") return "text/css; charset=utf-8";
  return extension == ".wasm" ? "application/wasm" : "application/octet-stream";
}

void answer(const fs::path& file, httplib::Response& response) {
  std::error_code ignored;
  std::optional<std::string> content;
  if (fs::is_regular_file(file, ignored)) content = bytesOfFile(file);
  if (!content) {
    response.status = 404;
    return;
  }
  response.set_header("Cache-Control", "no-store");
  response.set_header("X-Content-Type-Options", "nosniff");
  response.set_header("Referrer-Policy", "no-referrer");
  response.set_content(*content, typeOf(file));
}

// The drawing of that name among those to be served: nothing else on the disk can be asked for.
const std::string* fileNamed(const ServeOptions& options, const std::string& name) {
  for (const std::string& file : options.files)
    if (toUtf8(toPath(file).filename()) == name) return &file;
  return nullptr;
}

std::string namesOf(const ServeOptions& options) {
  host::Json names = host::Json::array();
  for (const std::string& file : options.files) names.push_back(toUtf8(toPath(file).filename()));
  return names.dump(-1, ' ', false, host::Json::error_handler_t::replace);
}

void serveAt(const std::string& root, const fs::path& folder, const ServeOptions& options,
             httplib::Server& server) {
  server.Get(root + "files/(.*)",
             [&options](const httplib::Request& request, httplib::Response& response) {
               const std::string name = request.matches[1];
               const std::string* file = fileNamed(options, name);
               if (name.empty())
                 response.set_content(namesOf(options), "application/json");
               else if (file)
                 answer(toPath(*file), response);
               else
                 response.status = 404;
             });
  server.Get(root + "(samples/)?([A-Za-z0-9_.-]*)", [folder](const httplib::Request& request,
                                                             httplib::Response& response) {
    const std::string name = request.matches[2];
    answer(folder / std::string(request.matches[1]) / (name.empty() ? "index.html" : name),
           response);
  });
}

void run(const ServeOptions& options, Session& session) {
  std::string error;
  const auto folder = findPage(options.page, error);
  if (!folder) return session.fail(kOutputFailed, error);
  for (const std::string& file : options.files) {
    std::error_code ignored;
    if (!fs::is_regular_file(toPath(file), ignored))
      return session.fail(kDrawingFailed, file + ": the file does not exist");
    const std::string name = toUtf8(toPath(file).filename());
    if (fileNamed(options, name) != &file)
      return session.fail(kWrongUsage, "two drawings are named " + name);
  }
  httplib::Server server;
  const std::string root = "/" + makeToken() + "/";
  serveAt(root, *folder, options, server);
  int port = options.port;
  const bool isBound = port > 0 ? server.bind_to_port("127.0.0.1", port)
                                : (port = server.bind_to_any_port("127.0.0.1")) > 0;
  if (!isBound) return session.fail(kOutputFailed, "the port cannot be opened");
  const std::string address = "http://127.0.0.1:" + std::to_string(port) + root;
  print(options.files.empty() ? address + "\n" : "");
  for (const std::string& file : options.files)
    print(address + "?file=" + encoded(toUtf8(toPath(file).filename())) + "\n");
  std::fflush(stdout);
  if (!server.listen_after_bind()) session.fail(kOutputFailed, "the server has failed");
}

}  // namespace

void addServeCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<ServeOptions>();
  CLI::App* verb = app.add_subcommand(
      "serve", "Show drawings in the browser of this machine, until interrupted");
  verb->add_option("FILE", options->files, "DXF files")->type_name("");
  verb->add_option("--port", options->port, "Port; by default any that is free")
      ->check(CLI::Range(1, 65535))
      ->type_name("NUMBER");
  verb->add_option("--page", options->page, "Folder of the page, if it is not installed")
      ->type_name("FOLDER");
  verb->footer(
      "Examples:\n"
      "  vek0 serve plan.dxf\n"
      "  vek0 serve\n\n"
      "It prints an address for each file. Only this machine can reach it, and only with the whole "
      "address; nothing leaves the machine, and nothing is written.");
  verb->callback([options, &session] { run(*options, session); });
}

}  // namespace vek0::tool
