#include "vek0paint/svgclips.h"

#include <utility>

namespace vek0::paint {

void SvgClips::push(std::string data) { m_clips.push_back({++m_count, std::move(data)}); }

std::string SvgClips::definitions() {
  std::string text;
  for (Clip& clip : m_clips) {
    if (clip.isDefined) continue;
    clip.isDefined = true;
    text += "<clipPath id=\"clip-" + std::to_string(clip.number) +
            "\"><path clip-rule=\"evenodd\" d=\"" + clip.data + "\"/></clipPath>\n";
  }
  return text;
}

std::string SvgClips::openingTags() const {
  std::string text;
  for (const Clip& clip : m_clips)
    text += "<g clip-path=\"url(#clip-" + std::to_string(clip.number) + ")\">\n";
  return text;
}

std::string SvgClips::closingTags() const {
  std::string text;
  for (std::size_t i = 0; i < m_clips.size(); ++i) text += "</g>\n";
  return text;
}

}  // namespace vek0::paint
