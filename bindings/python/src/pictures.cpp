// Pictures of a drawing.
#include "pictures.h"

#include "vek0host/units.h"
#include "vek0paint/rendering.h"

namespace vek0::python {
namespace {

using paint::RenderOptions;

std::string textOf(const py::object& value, const std::string& name) {
  if (!py::isinstance<py::str>(value)) throw py::type_error(name + " must be a text");
  return value.cast<std::string>();
}

template <class Parse>
auto parsed(const py::object& value, const std::string& name, Parse parse) {
  const std::string text = textOf(value, name);
  auto result = parse(text);
  if (!result) throw std::invalid_argument(name + ": '" + text + "' is not understood");
  return result;
}

std::vector<std::string> namesOf(const py::object& value) {
  if (py::isinstance<py::str>(value)) return {value.cast<std::string>()};
  return value.cast<std::vector<std::string>>();
}

template <class Value>
Value oneOf(const py::object& value, const std::string& name,
            const std::map<std::string, Value>& values) {
  const auto at = values.find(textOf(value, name));
  if (at != values.end()) return at->second;
  std::string all;
  for (const auto& each : values) all += (all.empty() ? "" : ", ") + each.first;
  throw std::invalid_argument(name + " is one of " + all);
}

using Reader = void (*)(RenderOptions& options, const py::object& value, const std::string& name);

const std::map<std::string, Reader>& readers() {
  static const std::map<std::string, Reader> all = {
      {"size", [](RenderOptions& o, const py::object& v,
                  const std::string& n) { o.picture.size = parsed(v, n, paint::parseSize); }},
      {"paper",
       [](RenderOptions& o, const py::object& v, const std::string& n) {
         o.picture.size = parsed(v, n, paint::parsePaper);
         o.picture.turnable = true;
       }},
      {"landscape", [](RenderOptions& o, const py::object& v,
                       const std::string&) { o.picture.landscape = v.cast<bool>(); }},
      {"scale", [](RenderOptions& o, const py::object& v,
                   const std::string& n) { o.picture.scale = parsed(v, n, paint::parseScale); }},
      {"unit",
       [](RenderOptions& o, const py::object& v, const std::string& n) {
         parsed(v, n, host::unitInMeters);
         o.unit = v.cast<std::string>();
       }},
      {"margin",
       [](RenderOptions& o, const py::object& v, const std::string&) {
         o.picture.margin = positive(v.cast<double>() + 1e-300, "margin");
       }},
      {"dpi",
       [](RenderOptions& o, const py::object& v, const std::string&) {
         const double dpi = finite(v.cast<double>(), "dpi");
         if (dpi < 1 || dpi > 10000) throw std::invalid_argument("dpi is from 1 to 10000");
         o.picture.dpi = dpi;
       }},
      {"window",
       [](RenderOptions& o, const py::object& v, const std::string&) {
         if (py::len(v) != 2) throw std::invalid_argument("window must be two corners");
         const PNT_3D a = toPoint(v[py::int_(0)], "window"), b = toPoint(v[py::int_(1)], "window");
         if (a.x == b.x || a.y == b.y) throw std::invalid_argument("window must not be empty");
         o.picture.window = RECT_2D(std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x),
                                    std::max(a.y, b.y));
       }},
      {"layout", [](RenderOptions& o, const py::object& v,
                    const std::string& n) { o.layout = textOf(v, n); }},
      {"view",
       [](RenderOptions& o, const py::object& v, const std::string& n) {
         parsed(v, n, paint::makeProjector);
         o.view = v.cast<std::string>();
       }},
      {"layers",
       [](RenderOptions& o, const py::object& v, const std::string&) { o.layers = namesOf(v); }},
      {"hide_layers", [](RenderOptions& o, const py::object& v,
                         const std::string&) { o.hiddenLayers = namesOf(v); }},
      {"background",
       [](RenderOptions& o, const py::object& v, const std::string& n) {
         o.background.reset();
         if (!v.is_none() && textOf(v, n) != "none") o.background = parsed(v, n, paint::parseColor);
       }},
      {"color",
       [](RenderOptions& o, const py::object& v, const std::string& n) {
         o.colors = oneOf<DrawColors>(
             v, n,
             {{"keep", DrawColors::Keep}, {"mono", DrawColors::Mono}, {"gray", DrawColors::Gray}});
       }},
      {"text",
       [](RenderOptions& o, const py::object& v, const std::string& n) {
         o.textsAsOutlines = oneOf<bool>(v, n, {{"text", false}, {"outlines", true}});
       }},
      {"lineweight",
       [](RenderOptions& o, const py::object& v, const std::string&) {
         o.picture.lineWidth = positive(v.cast<double>(), "lineweight");
       }},
  };
  return all;
}

}  // namespace

std::vector<std::string> renderPicture(Drawing& drawing, const std::string& path,
                                       const std::map<std::string, py::object>& given) {
  RenderOptions options;
  options.force = true;
  options.withReferences = false;
  std::string format = path;
  for (const auto& [name, value] : given) {
    if (name == "format") {
      format = textOf(value, name);
      continue;
    }
    const auto reader = readers().find(name);
    if (reader == readers().end()) {
      std::string all = "format";
      for (const auto& each : readers()) all += ", " + each.first;
      throw py::type_error("render has no option '" + name + "'; there are " + all);
    }
    reader->second(options, value, name);
  }
  const std::optional<paint::Format> found = paint::formatOf(format);
  if (!found) throw std::invalid_argument("a picture is .svg, .png or .pdf");
  if (!paint::isWritable(*found))
    throw std::invalid_argument("this build writes only SVG; it has no libraries for others");
  options.picture.format = *found;
  std::vector<std::string> messages;
  host::Session session;
  session.onMessage = [&](const std::string& message, const std::string&) {
    messages.push_back(message);
  };
  {
    const Drawing::Busy busy(drawing);
    const py::gil_scoped_release release;
    paint::renderOpened({busy.data(), drawing.path().empty() ? "drawing" : drawing.path()}, path,
                        options, session);
  }
  if (session.worst == host::kNoFailure) return messages;
  throw Fault("not drawn", messages.empty() ? "the picture cannot be drawn" : messages.back(), 0,
              path);
}

}  // namespace vek0::python
