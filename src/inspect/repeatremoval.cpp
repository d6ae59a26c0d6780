#include "vek0core/inspect/repeatremoval.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <tuple>

#include "inspect/chains.h"
#include "inspect/repeats.h"

namespace {

using vek0::detail::CoveredPart;

// Cuts covered parts, given in order, out of a path.
class Cutter {
 public:
  Cutter(const PATH_3D& path, double tiny) : m_path(path), m_tiny(tiny) {}

  std::vector<PATH_3D> run(const std::vector<CoveredPart>& parts) {
    auto part = parts.begin();
    for (std::size_t edge = 0; edge < m_path.edges.size(); ++edge) {
      double at = 0;
      for (; part != parts.end() && part->edge == edge; ++part) {
        keep(edge, at, part->from);
        at = std::max(at, part->to);
        m_isContinued = false;
      }
      keep(edge, at, 1);
    }
    // The beginning of a closed path is no end.
    if (m_path.closed && m_startsWhole && m_isContinued && m_pieces.size() > 1) joinEnds();
    return std::move(m_pieces);
  }

 private:
  void joinEnds() {
    PATH_3D &last = m_pieces.back(), &first = m_pieces.front();
    if (m_path.edges.size() == 1)  // a circle
      last = PATH_3D(m_path.edges[0].part(m_lastFrom, 1 + m_firstTo));
    else
      last.edges.insert(last.edges.end(), first.edges.begin(), first.edges.end());
    first = std::move(last);
    m_pieces.pop_back();
  }

  void keep(std::size_t edge, double from, double to) {
    const EDGE_3D& whole = m_path.edges[edge];
    const bool isWhole = from <= 0 && to >= 1;
    if (!isWhole && (to - from) * whole.length() <= m_tiny) return;
    if (edge == 0 && from <= 0) {
      m_startsWhole = true;
      m_firstTo = to;
    }
    m_lastFrom = from;
    if (!m_isContinued) m_pieces.emplace_back();
    m_pieces.back().edges.push_back(isWhole ? whole : whole.part(from, to));
    m_isContinued = to >= 1;
  }

  const PATH_3D& m_path;
  const double m_tiny;
  std::vector<PATH_3D> m_pieces;
  bool m_startsWhole = false, m_isContinued = false;
  double m_firstTo = 0, m_lastFrom = 0;  // parameters of pieces of an edge
};

}  // namespace

std::vector<TRIMMED_CURVE> trimRepeats(const std::vector<PLACED_CURVE>& curves,
                                       const CURVE_LIMITS& limits) {
  const std::vector<std::uint32_t> firsts = vek0::detail::firstOfSame(curves, limits.same);
  std::vector<bool> isFirst(curves.size());
  std::vector<TRIMMED_CURVE> trimmed;
  for (std::size_t i = 0; i < curves.size(); ++i) {
    isFirst[i] = firsts[i] == i;
    if (!isFirst[i]) trimmed.push_back({i, true, curves[i].path.length(), {}});
  }
  std::map<std::size_t, std::vector<CoveredPart>> covered;
  for (const CoveredPart& part : vek0::detail::coveredParts(curves, limits, isFirst))
    covered[part.curve].push_back(part);
  for (auto& [curve, parts] : covered) {
    std::sort(parts.begin(), parts.end(), [](const CoveredPart& a, const CoveredPart& b) {
      return std::tie(a.edge, a.from) < std::tie(b.edge, b.from);
    });
    TRIMMED_CURVE one{curve, false, 0, Cutter(curves[curve].path, limits.tiny).run(parts)};
    one.covered = curves[curve].path.length();
    for (const PATH_3D& piece : one.remains) one.covered -= piece.length();
    trimmed.push_back(std::move(one));
  }
  std::sort(trimmed.begin(), trimmed.end(),
            [](const TRIMMED_CURVE& a, const TRIMMED_CURVE& b) { return a.curve < b.curve; });
  return trimmed;
}

std::vector<END_SHIFT> gatherEnds(const std::vector<PLACED_CURVE>& curves,
                                  const CURVE_LIMITS& limits) {
  const std::vector<std::uint32_t> groups(curves.size(), 1);
  const vek0::detail::Chains chains(curves, limits, groups);
  std::vector<END_SHIFT> shifts;
  for (const vek0::detail::Chains::Gap& gap : chains.gaps())
    if (!chains.isFree(gap.other))
      shifts.push_back({gap.end / 2, gap.end % 2 == 0, chains.pointOf(gap.other)});
  return shifts;
}
