#include "vek0paint/pdfpainter.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "pdfcontent.h"
#include "pdffile.h"
#include "pdffonts.h"
#include "pdftext.h"
#include "zim0lang/wstring.h"

namespace vek0::paint {
namespace {

// The time requested by package builders, otherwise none: equal drawings yield equal bytes.
std::string creationDate() {
  const char* const text = std::getenv("SOURCE_DATE_EPOCH");
  constexpr long long kBeyond = 253402300800;  // year 10000
  long long count = -1;
  if (text) std::from_chars(text, text + std::strlen(text), count);
  // Invalid times are ignored, like a missing one.
  if (count < 0 || count >= kBeyond) return {};
  const std::chrono::sys_seconds moment{std::chrono::seconds(count)};
  const auto day = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(moment - day);
  char result[32];
  std::snprintf(result, sizeof result, "D:%04d%02u%02u%02d%02d%02dZ", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()));
  return result;
}

// Contours as operators.
class ContentSink final : public IOutlineSink {
 public:
  explicit ContentSink(PdfContent& content) : m_content(content) {}
  void move(const PNT_2D& to) override { m_content.moveTo(to); }
  void line(const PNT_2D& to) override { m_content.lineTo(to); }
  void quad(const PNT_2D& from, const PNT_2D& control, const PNT_2D& to) override {
    // Degree elevation: the inner controls are two thirds of the way to the quadratic's control.
    const auto towards = [&](const PNT_2D& end) {
      return PNT_2D(end.x + (control.x - end.x) * 2 / 3, end.y + (control.y - end.y) * 2 / 3);
    };
    m_content.curveTo(towards(from), towards(to), to);
  }
  void cubic(const PNT_2D& c1, const PNT_2D& c2, const PNT_2D& to) override {
    m_content.curveTo(c1, c2, to);
  }

 private:
  PdfContent& m_content;
};

std::string pointsText(double units, const SHEET& sheet) {
  constexpr double kPointsPerInch = 72;
  std::string text;
  appendReal(text, units * sheet.unitMm / kMmPerInch * kPointsPerInch);
  return text;
}

}  // namespace

struct PdfPainter::Document {
  explicit Document(IFile& output) : file(output) {}

  PdfFile file;
  // Fonts, layers and opacities are shared by all pages.
  const int pageTree = file.reserve(), resources = file.reserve();
  std::vector<int> pages, layers;
  std::vector<int> blocks;  // of the current page
  std::u16string title;
  PdfFonts fonts;
  PdfContent content{
      [this](std::string_view block) { blocks.push_back(file.addCompressed(block)); }};
};

PdfPainter::PdfPainter(IFile& file, const SHEET& sheet, IOutlineFonts& fonts)
    : SheetPainter(sheet, fonts), m_sheet(sheet), m_document(std::make_unique<Document>(file)) {
  m_document->title = zim::WString::fromUtf8(sheet.title).view();
  m_document->content.startPage(sheet);
}

PdfPainter::~PdfPainter() = default;

// -- pages ---------------------------------------------------------------------------

bool PdfPainter::nextPage(const SHEET& sheet) {
  endPage();
  m_sheet = sheet;
  setSheet(sheet);
  m_document->content.startPage(sheet);
  return true;
}

void PdfPainter::endPage() {
  Document& document = *m_document;
  document.content.endPage();
  std::string page = "<< /Type /Page /Parent " + pdfReference(document.pageTree) +
                     " /MediaBox [ 0 0 " + pointsText(static_cast<double>(m_sheet.width), m_sheet) +
                     " " + pointsText(static_cast<double>(m_sheet.height), m_sheet) +
                     " ] /Resources " + pdfReference(document.resources) + " /Contents " +
                     pdfReferences(document.blocks);
  // Transparent content is blended in the color space of the page's group.
  if (!document.content.alphas().empty())
    page += " /Group << /Type /Group /S /Transparency /CS /DeviceRGB >>";
  document.pages.push_back(document.file.add(page + " >>"));
  document.blocks.clear();
}

// Returns the entry of the catalog. Readers list the layers in this order, by name.
std::string PdfPainter::addLayers() {
  std::vector<int>& groups = m_document->layers;
  for (const auto& [name, number] : m_document->content.layers())
    groups.push_back(m_document->file.add("<< /Type /OCG /Name " + pdfText(name) + " >>"));
  if (groups.empty()) return {};
  const std::string list = pdfReferences(groups);
  return "/OCProperties << /OCGs " + list + " /D << /BaseState /ON /Order " + list + " >> >> ";
}

void PdfPainter::writeResources() {
  Document& document = *m_document;
  std::string text = "<< /Font " + document.fonts.embed(document.file) + " /Properties << ";
  auto layer = document.layers.begin();
  for (const auto& [name, number] : document.content.layers())
    text += "/L" + std::to_string(number) + " " + pdfReference(*layer++) + " ";
  text += ">> /ExtGState << ";
  for (const std::uint8_t alpha : document.content.alphas()) {
    std::string opacity;
    appendReal(opacity, alpha / 255.0);
    text += "/A" + std::to_string(alpha) + " << /CA " + opacity + " /ca " + opacity + " >> ";
  }
  document.file.write(document.resources, text + ">> >>");
}

bool PdfPainter::finish() {
  endPage();
  PdfFile& file = m_document->file;
  const std::string layers = addLayers();
  writeResources();
  file.write(m_document->pageTree, "<< /Type /Pages /Count " +
                                       std::to_string(m_document->pages.size()) + " /Kids " +
                                       pdfReferences(m_document->pages) + " >>");
  const int catalog = file.add("<< /Type /Catalog /Pages " + pdfReference(m_document->pageTree) +
                               " " + layers + ">>");
  std::string info = "<< /Producer (vek0)";
  if (!m_document->title.empty()) info += " /Title " + pdfText(m_document->title);
  if (const std::string date = creationDate(); !date.empty())
    info += " /CreationDate (" + date + ")";
  return file.finish(catalog, file.add(info + " >>"));
}

// -- content -------------------------------------------------------------------------

void PdfPainter::begin(const DrawItem& item) { m_document->content.begin(item); }

void PdfPainter::plainStroke(const PNT_2D* points, std::size_t count, bool closed) {
  m_document->content.stroke(points, count, closed);
}

void PdfPainter::dashedStroke(const PNT_2D* points, std::size_t count, const DrawDashes& dashes,
                              double distance) {
  m_document->content.dashedStroke(points, count, dashes, distance);
}

void PdfPainter::plainArc(const PNT_2D& center, double radius, double startRad, double sweepRad) {
  m_document->content.arc(center, radius, startRad, sweepRad);
}

void PdfPainter::plainFill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
                           FillRule rule) {
  m_document->content.fill(points, ends, rings, rule);
}

void PdfPainter::plainDot(const PNT_2D& at) {
  m_document->content.stroke(std::array{at, at}.data(), 2, false);
}

void PdfPainter::plainDisc(const PNT_2D& center, double diameter) {
  m_document->content.disc(center, diameter);
}

bool PdfPainter::plainClip(const PNT_2D* points, std::size_t count) {
  m_document->content.clip(points, count);
  return true;
}

void PdfPainter::plainPopClip() { m_document->content.popClip(); }

void PdfPainter::plainText(const DrawText& text, const OutlineFont& font,
                           const RECT_2D& /*bounds*/) {
  PdfContent& content = m_document->content;
  const std::vector<PDF_RUN> runs = layOutRuns(text, font, m_document->fonts);
  for (const PDF_RUN& run : runs) content.text(run);
  if (!runs.empty()) return;
  ContentSink sink(content);
  content.beginOutline();
  font.outline(text, sink);
  content.endOutline();
}

}  // namespace vek0::paint
