// Linetype definition files: for any content, saving what was read and reading it again must yield
// the same linetypes, and saving those the same bytes.
#include <cstdlib>

#include "support.h"

namespace {

constexpr long kRead = 1, kWrite = 2;

class StyleMaker : public CLtypeLoader::IErrorNotifier {
 public:
  explicit StyleMaker(CStyleTable& styles) : m_styles(styles) {}
  CStyle* Notify(const zim::WString& name) override {
    CStyle* const style = CStyleFactory().create(name, nullptr, 0, 1, 0, 1, 0);
    m_styles.add(style);
    return style;
  }

 private:
  CStyleTable& m_styles;
};

void load(CLtypeLoader& loader, const std::string& bytes) {
  CFileMemory file(u"fuzz.lin", kRead, bytes);
  loader.Load(file);
  if (loader.GetStatus() != CLtypeLoader::Done) std::abort();
}

std::string saved(CLtypeLoader& loader) {
  CFileMemory file(u"out.lin", kWrite);
  loader.Save(file);
  if (loader.GetStatus() != CLtypeLoader::Done) std::abort();
  return file.bytes();
}

// Compares dashes exactly; texts have six decimals, so only their kind is compared.
void compare(const CLtype& a, const CLtype& b) {
  if (a.getNoDashes() != b.getNoDashes()) std::abort();
  for (int i = 0; i < a.getNoDashes(); ++i) {
    if (a[i]->IsText() != b[i]->IsText() || a[i]->GetValue() != b[i]->GetValue()) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CStyleTable styles;
  StyleMaker maker(styles);
  CLtypeFactory factory;
  CLtypeLoader first(styles, factory), second(styles, factory);
  first.SetNotifier(&maker);
  second.SetNotifier(&maker);
  load(first, vek0::fuzz::bytes(data, size));
  const std::string bytes = saved(first);
  load(second, bytes);
  if (first.GetNoLtype() != second.GetNoLtype()) std::abort();
  for (int i = 0; i < first.GetNoLtype(); ++i) compare(*first.GetLtypeNo(i), *second.GetLtypeNo(i));
  if (saved(second) != bytes) std::abort();
  const vek0::fuzz::Drawing drawing = vek0::fuzz::newDrawing();
  addLtypes(*drawing, second);
  return 0;
}
