#pragma once

#include "support/test.h"

namespace vek0::test {

struct DrawingDeleter {
  void operator()(CData* data) const { deleteData(data); }
};
using Drawing = std::unique_ptr<CData, DrawingDeleter>;

inline Drawing newDrawing() { return Drawing(CDataFactory().createData()); }

inline CLayer* addedLayer(CData& data, const zim::WString& name, short color = 7, long flags = 0) {
  addLayer(data, data.getLayerFactory().create(name, &data.getLtypeContinuous(), color, flags));
  return getLayer(data, name);
}

inline CLtype* addedLtype(CData& data, const zim::WString& name) {
  double values[] = {2, -1};
  addLtype(data, data.getLtypeFactory().create(name, u"_ _", values, 2, 0));
  return getLtype(data, name);
}

inline CStyle* addedStyle(CData& data, const zim::WString& name) {
  addStyle(data, data.getStyleFactory().create(name, nullptr, 2, 1, 0, 0.2, 0));
  return getStyle(data, name);
}

/// Adds a block that contains one line.
inline CBlock* addedBlock(CData& data, const zim::WString& name) {
  CBlock* block = data.getBlockFactory().create(name, PNT_3D(1, 2, 0), 0);
  block->add(createEntLine(data, LINE_3D(0, 0, 0, 10, 5, 0), 0));
  data.getBlockTable().add(block);
  return block;
}

inline CBlockXRef* addedXRef(CData& data, const zim::WString& name) {
  CBlockXRef* xref = data.getBlockFactory().createXRef(
      data.getLtypeContinuous(), data.getLtypeByLayer(), data.getLtypeByBlock(), data.getLayer0(),
      name, u"other.dxf", PNT_3D(0, 0, 0), 4);
  data.getBlockXRefTable().add(xref);
  return xref;
}

inline CEntInsert* insertOf(CData& data, CBlock& block, double x, vek0::Handle handle = 0) {
  return createEntInsert(data, block, PNT_3D(x, 0, 0), 2, 3, 1, 0.5, 2, 3, 20, 30, handle);
}

inline TEXT_3D dashText(CStyle* style) { return TEXT_3D(u"GAS", style, 0, 0, 0, 1, 0, 1, 0, 0); }

inline CLtype* addedDependentLtype(CData& data, CBlockXRef& xref, const zim::WString& name) {
  CLtype* ltype = data.getLtypeFactory().createXRef(xref, name, u"", {}, 0);
  xref.getLtypeTable().add(ltype);
  return ltype;
}

inline void addDependentLayer(CData& data, CBlockXRef& xref, const zim::WString& name,
                              CLtype* ltype) {
  xref.getLayerTable().add(data.getLayerFactory().createXRef(xref, name, ltype, 1, 0));
}

/// Lets the drawing and its references "X" and "Y" name linetypes and styles of each other, in
/// every possible direction.
inline void addCrossNames(CData& data) {
  CBlockXRef& x = *addedXRef(data, u"X");
  CBlockXRef& y = *addedXRef(data, u"Y");
  CLtype* own = addedLtype(data, u"OWN");
  CLtype* ofX = addedDependentLtype(data, x, u"XT");
  CLtype* ofY = addedDependentLtype(data, y, u"YT");
  data.getLtypeContinuous().AddDashText(dashText(y.getStyleTable()[0]));
  own->AddDashText(dashText(y.getStyleTable()[0]));
  ofX->AddDashText(dashText(addedStyle(data, u"S")));
  ofY->AddDashText(dashText(x.getStyleTable()[0]));
  addedLayer(data, u"L")->setLtype(ofX);
  addDependentLayer(data, x, u"XL", own);
  addDependentLayer(data, x, u"XL2", ofY);
  addDependentLayer(data, y, u"YL", ofX);
}

/// The drawing in exchange form.
inline std::string saved(const CData& data) {
  CFileMemory file(u"out.dxf", IFile::kWrite);
  return SaveDXF(data, file, kSaveExchange) ? file.bytes() : std::string();
}

/// The traits of an entity and its attributes; nothing for default ones.
inline std::string traitsOf(const CEnt& ent) {
  const ENT_TRAITS& t = ent.getTraits();
  std::ostringstream out;
  if (t != ENT_TRAITS())
    out << ent.getType() << ':' << t.trueColor << ',' << t.lineweight << ',' << t.opacity << ','
        << t.isVisible << ',' << t.ltypeScale << ',' << t.thickness << ' ';
  const CEntInsertBase* insert = ent.getEntInsert();
  for (unsigned i = 0; insert && i < insert->GetNoAttribs(); ++i)
    out << traitsOf(*insert->GetAttrib(i));
  return out.str();
}

/// What saving does not show: every use count, by table and position, and traits.
inline std::string countsOf(const CData& data) {
  std::string out;
  for (const CEnt* ent : data.getEntTable().getEntityTbl()) out += traitsOf(*ent);
  for (int i = 0; i < data.getBlockTable().size(); ++i) {
    const CBlock& block = *data.getBlockTable()[i];
    for (unsigned j = 0; j < block.size(); ++j) out += traitsOf(*block[j]);
  }
  const auto write = [&out](const char* kind, long first, long second) {
    out += std::string(kind) + std::to_string(first) + "/" + std::to_string(second) + " ";
  };
  for (CData::CLayerIterator i(data, true); *i != nullptr; ++i) {
    const LAYER_TRAITS& t = (*i)->getTraits();
    write("layer", (*i)->getEntities(), t.trueColor);
    write(t.isPlotted ? "plotted" : "", t.lineweight, t.opacity);
  }
  for (CData::CLtypeIterator i(data, true, true); *i != nullptr; ++i)
    write("ltype", (*i)->getEntities(), (*i)->getLayers());
  for (CData::CStyleIterator i(data, true); *i != nullptr; ++i)
    write("style", (*i)->getEntities(), (*i)->getDashes());
  for (int i = 0; i < data.getBlockTable().size(); ++i)
    write("block", data.getBlockTable()[i]->getEntities(), 0);
  return out;
}

/// Exact counts: copying a drawing recounts everything.
inline std::string recountOf(const CData& data) {
  const CDataPtr copy(cloneData(data));
  return countsOf(*copy);
}

}  // namespace vek0::test
