#include "progressfile.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "vek0host/visibletext.h"

namespace vek0::tool {
namespace {

constexpr int kBarWidth = 40;

}  // namespace

ProgressFile::ProgressFile(std::unique_ptr<IFile> inner, long long totalBytes, std::string label)
    : IFile(inner->getName(), 1),
      m_inner(std::move(inner)),
      m_total(std::max(1LL, totalBytes)),
      m_label(std::move(label)) {}

ProgressFile::~ProgressFile() { wipe(); }

bool ProgressFile::open() {
  m_start = Clock::now();
  return m_inner->open();
}

void ProgressFile::close() {
  wipe();
  m_inner->close();
}

long ProgressFile::readBytes(char* buf, long n) {
  const long got = m_inner->readBytes(buf, n);
  if (got > 0) m_done += got;
  if (Clock::now() - m_start > std::chrono::seconds(1)) draw();
  return got;
}

void ProgressFile::draw() {
  const int percent = static_cast<int>(std::min(100LL, m_done * 100 / m_total));
  if (percent == m_drawnPercent) return;
  m_drawnPercent = percent;
  const int filled = percent * kBarWidth / 100;
  std::string bar(static_cast<std::size_t>(filled), '#');
  bar.resize(kBarWidth, '.');
  std::fprintf(stderr, "\r[%s] %3d%% %s", bar.c_str(), percent, host::visible(m_label).c_str());
}

void ProgressFile::wipe() {
  if (m_drawnPercent < 0) return;
  std::fprintf(stderr, "\r\033[K");
  m_drawnPercent = -1;
}

}  // namespace vek0::tool
