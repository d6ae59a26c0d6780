#pragma once

#include <cairo.h>
#include <expat.h>

#include "support/test.h"
#include "tooltest.h"

// Drawings for pictures, and what the tests read back from pictures.

namespace vek0::test {

struct XmlElement {
  std::string name;
  std::map<std::string, std::string> attributes;
  std::string parentId;
};

/// The elements of a document in order; `error` says why it is malformed.
class XmlReader {
 public:
  explicit XmlReader(const std::string& text) {
    const XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, &XmlReader::begin, &XmlReader::end);
    if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) != XML_STATUS_OK) {
      error = XML_ErrorString(XML_GetErrorCode(parser));
      error += " in line " + std::to_string(XML_GetCurrentLineNumber(parser));
    }
    XML_ParserFree(parser);
  }

  std::vector<XmlElement> elements;
  std::string error;

  long count(const std::string& name) const {
    return std::count_if(elements.begin(), elements.end(),
                         [&](const XmlElement& e) { return e.name == name; });
  }
  const XmlElement* byId(const std::string& id) const {
    for (const XmlElement& e : elements)
      if (const auto at = e.attributes.find("id"); at != e.attributes.end() && at->second == id)
        return &e;
    return nullptr;
  }
  /// The ids of the groups that represent layers.
  std::string groups() const {
    std::string result;
    for (const XmlElement& e : elements)
      if (e.attributes.count("inkscape:groupmode")) result += e.attributes.at("id") + " ";
    return result;
  }

 private:
  static void XMLCALL begin(void* self, const char* name, const char** attributes) {
    auto* reader = static_cast<XmlReader*>(self);
    XmlElement element{name, {}, reader->m_ids.empty() ? "" : reader->m_ids.back()};
    for (; *attributes; attributes += 2) element.attributes.emplace(attributes[0], attributes[1]);
    reader->m_ids.push_back(element.attributes["id"]);
    if (reader->m_ids.back().empty()) element.attributes.erase("id");
    reader->elements.push_back(std::move(element));
  }
  static void XMLCALL end(void* self, const char*) {
    static_cast<XmlReader*>(self)->m_ids.pop_back();
  }

  std::vector<std::string> m_ids;  // of the open elements
};

/// An image's size and how often each color occurs in it.
struct Image {
  explicit Image(const fs::path& path) {
    cairo_surface_t* png = cairo_image_surface_create_from_png(path.c_str());
    width = cairo_image_surface_get_width(png);
    height = cairo_image_surface_get_height(png);
    const unsigned char* row = cairo_image_surface_get_data(png);
    for (int y = 0; y < height; ++y, row += cairo_image_surface_get_stride(png)) {
      const auto* pixels = reinterpret_cast<const std::uint32_t*>(row);
      for (int x = 0; x < width; ++x) ++colors[pixels[x]];
      all.insert(all.end(), pixels, pixels + width);
    }
    cairo_surface_destroy(png);
  }

  int count(std::uint32_t color) const {
    const auto at = colors.find(color);
    return at == colors.end() ? 0 : at->second;
  }
  /// Number of pixels that are not gray.
  int hues() const {
    int result = 0;
    for (const auto& [color, number] : colors) {
      const std::uint32_t red = color >> 16 & 255, green = color >> 8 & 255;
      if (red != green || green != (color & 255)) result += number;
    }
    return result;
  }

  /// Area in pixels covered by black on white, counting partial coverage.
  double ink() const {
    double result = 0;
    for (const auto& [color, number] : colors)
      result += number * (255 - static_cast<int>(color & 255)) / 255.0;
    return result;
  }

  int width = 0, height = 0;
  std::map<std::uint32_t, int> colors;  // 0xAARRGGBB
  std::vector<std::uint32_t> all;       // row by row
};

inline std::string line(const std::string& layer, double x1, double y1, double x2, double y2,
                        const char* handle = "0") {
  std::ostringstream out;
  out.precision(12);
  out << "0\nLINE\n5\n"
      << handle << "\n8\n"
      << layer << "\n10\n"
      << x1 << "\n20\n"
      << y1 << "\n11\n"
      << x2 << "\n21\n"
      << y2 << "\n";
  return out.str();
}

/// An entity with an explicit color.
inline std::string colored(int color, std::string entity) {
  return entity + "62\n" + std::to_string(color) + "\n";
}

inline std::string drawingWith(const std::string& entities) {
  return "0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
}

/// Nested blocks, the outermost in a square array.
inline std::string nested(int levels, int cells) {
  std::string blocks = "0\nBLOCK\n2\nB0\n" + line("A", 0, 0, 1, 1) + "0\nENDBLK\n", insert;
  for (int i = 0; i <= levels; ++i) {
    insert = "0\nINSERT\n8\n0\n2\nB" + std::to_string(i) + "\n10\n0\n20\n0\n";
    blocks += "0\nBLOCK\n2\nB" + std::to_string(i + 1) + "\n" + insert + "0\nENDBLK\n";
  }
  const std::string count = std::to_string(cells) + "\n";
  return "0\nSECTION\n2\nBLOCKS\n" + blocks + "0\nENDSEC\n" +
         drawingWith(insert + "70\n" + count + "71\n" + count + "44\n2\n45\n2\n");
}

inline const std::string kCircle = "0\nCIRCLE\n5\nC1\n8\nB\n10\n50\n20\n50\n40\n25\n";
inline const std::string kText =
    "0\nTEXT\n5\nA7\n8\nB\n10\n0\n20\n0\n40\n5\n1\na <b> & \"c\"\x01\n";

using Render = Tool;

}  // namespace vek0::test
