// Hatches a room and draws the inner face of its walls. usage: hatch_and_offset OUT.dxf
#include <vek0core/vek0core.h>
#include <cstdio>
#include <memory>
#include <vector>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const CDataPtr drawing(CDataFactory().createData());
  if (!drawing) return 1;
  // Adding ignores null, which the create functions return on failure.
  CEntTable& model = drawing->getEntTable();

  // An L-shaped room; a wall of 0.3 runs along the inside of its outline.
  const std::vector<PNT_3D> corners = {{0, 0, 0}, {6, 0, 0}, {6, 3, 0},
                                       {4, 3, 0}, {4, 5, 0}, {0, 5, 0}};
  const PATH_3D outline(corners, {}, true);
  const std::unique_ptr<CEntLine> likeThis(createEntLine(*drawing, LINE_3D(0, 0, 0, 1, 0, 0), 0));

  std::vector<PATH_3D> inner;
  OFFSET_OPTIONS options;
  options.join = OFFSET_JOIN::mitre;
  // Positive distances are to the right of the direction of travel, negative ones to the left.
  if (!offsetPath(outline, -0.3, options, inner)) return 1;
  for (const PATH_3D& path : {outline, inner.at(0)})
    model.add(
        createEntFromPath(drawing->getHandleGestor(), drawing->getEntFactory(), path, *likeThis));

  std::vector<PNT_3D> floor;
  for (const EDGE_3D& edge : inner[0].edges) floor.push_back(edge.p1);
  model.add(createEntHatch(*drawing, *getHatch(u"ANSI31"), 2, 0, floor, 0));
  std::printf("the floor measures %g\n", inner[0].area());
  return saveDrawing(*drawing, argv[1]) ? 0 : 1;
}
