// Loads FILE into a drawing and, with OUT, saves it in exchange form; prints one line of figures:
//
//   load_ms=… [save_ms=…] rss_kib=… peak_kib=… layers=… blocks=… points=… lines=… …
//
// rss_kib is the growth of the resident set over the load, peak_kib the largest one.
// --source keeps the source, and saves it; that includes managed handles, for which --handles alone
// prepares the drawing. Counts the entities of model space and of every block.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "vek0core/vek0core.h"

namespace {

double nowMs() {
  using namespace std::chrono;
  return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

// A line of /proc/self/status: VmRSS is the resident set, VmHWM its peak. 0 if the system has no
// such file.
long statusKib(const char* key) {
  char line[256];
  long kib = 0;
  if (std::FILE* f = std::fopen("/proc/self/status", "r")) {
    while (std::fgets(line, sizeof line, f)) {
      if (std::strncmp(line, key, std::strlen(key)) == 0) {
        kib = std::strtol(line + std::strlen(key) + 1, nullptr, 10);
      }
    }
    std::fclose(f);
  }
  return kib;
}

class Counter final : public IEntVisitor {
 public:
  using IEntVisitor::visit;
  void visit(CEntPnt&) override { ++points; }
  void visit(CEntLine&) override { ++lines; }
  void visit(CEntCircle&) override { ++circles; }
  void visit(CEntArc&) override { ++arcs; }
  // Counts the vertices in the file; chords of arcs are generated.
  void visit(CEntPolyline& polyline) override {
    ++polylines;
    polyline.forEachBulged([this](const PNT_3D&, double, double, double, long) { ++vertices; });
  }
  void visit(CEntText&) override { ++texts; }
  void visit(CEntAttdef&) override { ++attdefs; }
  void visit(CEntInsert& insert) override { addInsert(insert); }
  void visit(CEntFixedInsert& insert) override { addInsert(insert); }
  void visit(CEntInsertXRef& insert) override { addInsert(insert); }
  void visit(CEntAttrib&) override { ++attribs; }
  void visit(CEntHatch&) override { ++hatches; }
  void visit(CEnt3DFace&) override { ++faces; }

  void addAll(CData& data) {
    for (CEnt* entity : data.getEntTable().getEntityTbl()) entity->accept(*this);
    CBlockTable& table = data.getBlockTable();
    blocks = static_cast<long>(table.size());
    for (int i = 0; i < static_cast<int>(table.size()); ++i) {
      for (unsigned e = 0; e < table[i]->size(); ++e) (*table[i])[e]->accept(*this);
    }
  }

  void print() const {
    std::printf(
        "blocks=%ld points=%ld lines=%ld circles=%ld arcs=%ld texts=%ld attdefs=%ld "
        "attribs=%ld inserts=%ld polylines=%ld vertices=%ld faces=%ld hatches=%ld\n",
        blocks, points, lines, circles, arcs, texts, attdefs, attribs, inserts, polylines, vertices,
        faces, hatches);
  }

 private:
  void addInsert(CEntInsertBase& insert) {
    ++inserts;
    attribs += static_cast<long>(insert.GetNoAttribs());
  }

  long blocks = 0, points = 0, lines = 0, circles = 0, arcs = 0, texts = 0, attdefs = 0,
       attribs = 0, inserts = 0, polylines = 0, vertices = 0, faces = 0, hatches = 0;
};

}  // namespace

int main(int argc, char** argv) {
  const bool isKept = argc > 1 && std::strcmp(argv[1], "--source") == 0;
  const bool isManaged = argc > 1 && std::strcmp(argv[1], "--handles") == 0;
  argc -= isKept || isManaged;
  argv += isKept || isManaged;
  if (argc < 2) return std::fputs("usage: vek0driver [--handles|--source] FILE [OUT]\n", stderr), 2;
  CFontTable::getInstance().addPlainDefault();
  auto owned = std::make_unique<CHandleManager>();
  CHandleManager& manager = *owned;
  CData* data = CDataFactory().createData(std::move(owned));

  const long before = statusKib("VmRSS");
  double start = nowMs();
  auto in = std::make_unique<CFileStdLib>(zim::WString::fromUtf8(argv[1]), 1);
  CFileDXFIError error;
  std::unique_ptr<CDXFSource> source;
  if (isKept) {
    source = std::make_unique<CDXFSource>(std::move(in));
    source->load(*data, &error, {});
  } else {
    const CFileDXFIResult result = loadDXF(*data, *in, &error, {});
    if (isManaged) manager.start(*data, result.handleSeed);
  }
  std::printf("load_ms=%.1f ", nowMs() - start);
  const long rss = statusKib("VmRSS") - before;
  const long peak = statusKib("VmHWM");
  if (error.HasAnError()) {
    std::fprintf(stderr, "%s\n", error.GetFullMessage().toUtf8().c_str());
    return 1;
  }
  if (argc > 2) {
    start = nowMs();
    CFileStdLib out(zim::WString::fromUtf8(argv[2]), 2);
    if (source ? source->save(*data, out) != CDXFSource::Outcome::Saved
               : !SaveDXF(*data, out, kSaveExchange))
      return std::fputs("cannot write\n", stderr), 1;
    std::printf("save_ms=%.1f ", nowMs() - start);
  }

  CData::CLayerIterator layers(*data, true);
  std::printf("rss_kib=%ld peak_kib=%ld layers=%d ", rss, peak, static_cast<int>(layers.size()));
  Counter counter;
  counter.addAll(*data);
  counter.print();
  // Exits without destroying the drawing: the process ends anyway.
  std::fflush(stdout);
  std::_Exit(0);
}
