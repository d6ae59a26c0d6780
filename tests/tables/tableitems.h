#pragma once

#include "support/test.h"

namespace vek0::test {

// The fixed items, which otherwise only a drawing creates.
struct Continuous : CLtypeContinuous {};
struct ByLayer : CLtypeByLayer {};
struct ByBlock : CLtypeByBlock {};
struct Layer0 : CLayer0 {
  explicit Layer0(CLtype* ltype) : CLayer0(ltype, 7, 0) {}
};

/// The fixed items and their tables.
struct Tables {
  Continuous continuous;
  ByLayer byLayer;
  ByBlock byBlock;
  Layer0 layer0{&continuous};
  CLtypeTable ltypes{continuous, byLayer, byBlock};
  CLayerTable layers{layer0};
};

inline std::unique_ptr<CLtype> ltype(const zim::WString& name, const zim::WString& desc = u"",
                                     const CLtypeComplexDashSeq& dashes = {}, long flags = 0) {
  return std::unique_ptr<CLtype>(CLtypeFactory().create(name, desc, dashes, flags));
}

inline std::unique_ptr<CLayer> layer(const zim::WString& name, CLtype* ltype, short color = 7,
                                     long flags = 0) {
  return std::unique_ptr<CLayer>(CLayerFactory().create(name, ltype, color, flags));
}

inline std::unique_ptr<CStyle> style(const ICADFont* font = nullptr,
                                     const zim::WString& name = u"S", long flags = 0) {
  return std::unique_ptr<CStyle>(CStyleFactory().create(name, font, 0, 1, 0, 0.2, flags));
}

inline TEXT_3D text(const zim::WString& string, CStyle* style, long justification = 0) {
  return TEXT_3D(string, style, 0, 0, 0, 1, 0, 1, 0, justification);
}

}  // namespace vek0::test
