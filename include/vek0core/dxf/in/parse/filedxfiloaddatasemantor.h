#pragma once

#include "vek0core/dxf/in/parse/filedxfidatasemantor.h"

/// Loading: the file becomes the drawing. Variables, handles, layer "0", the style "STANDARD" and
/// all definitions come from the file.
class VEK0_API CFileDXFILoadDataSemantor : public IFileDXFIDataSemantor {
 public:
  using IFileDXFIDataSemantor::IFileDXFIDataSemantor;

  void transition() override;
  bool shouldReadHeaders() override { return true; }
  bool shouldRespectHandles() override { return true; }
  bool keepsLayouts() const override { return true; }
  /// A taken or empty block name is replaced by a free one.
  CLayout* createLayout(const zim::WString& name, const zim::WString& block, bool isActive,
                        std::list<CEnt*>& entities) override;
  void createLayer0(CLtype* ltype, short colour, long flags) override;
  void createStyleStandard(const ICADFont* font, double fixedHeight, double widthScale,
                           double oblique, double lastHeight, long flags) override;
  /// If the file defines a block twice, the second definition wins.
  void createBlock(const zim::WString& name, const PNT_3D& base, long flags,
                   std::list<CEnt*>& entities) override;

 private:
  long m_lastSheet = 0;  // last number tried for the name of a sheet's block
};
