#pragma once

#include "files/number.h"
#include "support/test.h"

/// Creates the requested styles and counts the requests.
class StyleMaker : public CLtypeLoader::IErrorNotifier {
 public:
  explicit StyleMaker(CStyleTable& styles) : m_styles(styles) {}
  CStyle* Notify(const zim::WString& name) override {
    ++calls;
    CStyle* const style = CStyleFactory().create(name, nullptr, 0, 1, 0, 1, 0);
    m_styles.add(style);
    return style;
  }

  int calls = 0;

 private:
  CStyleTable& m_styles;
};

/// A loader with its own style table, in which every style is found.
struct Loading {
  CStyleTable styles;
  CLtypeFactory factory;
  StyleMaker maker{styles};
  CLtypeLoader loader{styles, factory};

  explicit Loading(const std::string& bytes = {}) {
    loader.SetNotifier(&maker);
    load(bytes);
  }
  void load(const std::string& bytes) {
    CFileMemory file(u"in.lin", IFile::kRead, bytes);
    EXPECT_EQ(loader.Load(file), 0);
  }
  std::string save() {
    CFileMemory file(u"out.lin", IFile::kWrite);
    loader.Save(file);
    return file.bytes();
  }
  const CLtype& operator[](int i) const { return *loader.GetLtypeNo(i); }
};

/// Elements of a linetype as "1.0 -0.5 HW/LineType/0.1/90.0/0.0/-1.0"; a text has string, style,
/// scale, rotation in degrees and offset.
inline std::string pattern(const CLtype& ltype) {
  const auto number = [](double value) {
    char digits[vek0::detail::kShortestRoom];
    char* const end = vek0::detail::formatShortest(digits, value);
    return std::string(digits, static_cast<std::size_t>(end - digits));
  };
  std::string out;
  for (int i = 0; i < ltype.getNoDashes(); ++i) {
    if (!out.empty()) out += ' ';
    const TEXT_3D* const text = ltype[i]->GetText();
    if (!text) {
      out += number(ltype[i]->GetValue());
      continue;
    }
    const CTextContext& context = text->getContext();
    const CStyle* const style = text->getStyle();
    const double degrees = std::round(context.getRotate() * 57.295779513082321 * 1e6) / 1e6;
    out += context.getString().toUtf8() + '/' + (style ? style->getName().toUtf8() : "none") + '/' +
           number(context.getHeight()) + '/' + number(degrees) + '/' + number(text->x) + '/' +
           number(text->y);
  }
  return out;
}
