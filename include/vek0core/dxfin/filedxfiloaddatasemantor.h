#pragma once

#include "vek0core/dxfin/filedxfidatasemantor.h"

/// Loading: the file becomes the drawing. Variables, handles, layer "0", the
/// style "STANDARD" and every definition are the file's.
class VEK0_API CFileDXFILoadDataSemantor : public IFileDXFIDataSemantor {
 public:
  using IFileDXFIDataSemantor::IFileDXFIDataSemantor;

  void transition() override;
  bool shouldReadHeaders() override { return true; }
  bool shouldRespectHandles() override { return true; }
  void createLayer0(CLtype* ltype, short colour, long flags) override;
  void createStyleStandard(const ICADFont* font, double fixedHeight, double widthScale,
                           double oblique, double lastHeight, long flags) override;
  /// A block that the file defines twice ends with the second definition.
  void createBlock(const zim::WString& name, const PNT_3D& base, long flags,
                   std::list<CEnt*>& entities) override;
};
