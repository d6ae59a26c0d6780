#include "dxf/in/parse/filedxfiversionloader.h"

namespace vek0::detail {

std::unique_ptr<CFileDXFIVersionLoader> createVersionLoader(short version,
                                                            const ReadContext& context) {
  if (context.options.policy.tolerant)
    return std::make_unique<CFileDXFIVersionLoaderTolerant>(context);
  switch (version) {
    case 0:
    case 1:
      return std::make_unique<CFileDXFIVersionLoaderR12>(context);
    case 2:
      return std::make_unique<CFileDXFIVersionLoaderAC1012>(context);
    case 3:
      return std::make_unique<CFileDXFIVersionLoaderAC1014>(context);
    case 4:
      return std::make_unique<CFileDXFIVersionLoaderAC1015>(context);
    default:
      return nullptr;
  }
}

}  // namespace vek0::detail
