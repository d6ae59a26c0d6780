#include "dxf/out/blockrecord.h"

#include "vek0core/dxf/out/filedxfowriter.h"

namespace vek0::detail {

void beginBlock(CFileDXFOWriter& writer, const zim::WString& name, long flags, const PNT_3D& base,
                const zim::WString& path) {
  writer.writeEncoded(0, "BLOCK");
  writer.writeEncoded(8, "0");
  writer.writeText(2, name);
  writer.write(70, flags);
  writer.write(10, base.x);
  writer.write(20, base.y);
  writer.write(30, base.z);
  writer.writeText(3, name);
  writer.writeText(1, path);
}

void endBlock(CFileDXFOWriter& writer, bool withLayer) {
  writer.writeEncoded(0, "ENDBLK");
  if (withLayer) writer.writeEncoded(8, "0");
}

}  // namespace vek0::detail
