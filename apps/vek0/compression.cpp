#include "compression.h"

#ifdef VEK0_RENDER
#include <libdeflate.h>

#include <memory>
#endif

namespace vek0::tool {

#ifdef VEK0_RENDER
std::optional<std::string> gzipped(std::string_view bytes) {
  constexpr int best = 12;
  const std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> compressor(
      libdeflate_alloc_compressor(best), libdeflate_free_compressor);
  if (!compressor) return {};
  std::string packed(libdeflate_gzip_compress_bound(compressor.get(), bytes.size()), '\0');
  packed.resize(libdeflate_gzip_compress(compressor.get(), bytes.data(), bytes.size(),
                                         packed.data(), packed.size()));
  return packed.empty() ? std::nullopt : std::optional(std::move(packed));
}
#else
std::optional<std::string> gzipped(std::string_view) { return {}; }
#endif

}  // namespace vek0::tool
