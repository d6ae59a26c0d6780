#pragma once

#include <vector>

#include "dxf/in/recordreader.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/tables/handle.h"

namespace vek0::detail {

/// Reads POLYLINE, with the records that follow it up to SEQEND, and LWPOLYLINE.
///
/// A POLYLINE record is a plain chain of vertices, a curve with its frame, a polygon mesh or a
/// polyface. The last two become 3D faces: as a chain they would be a tangle.
/// Buffers are reused from polyline to polyline.
class PolylineReader {
 public:
  explicit PolylineReader(RecordReader& in) : m_in(in) {}

  EntPtr readPolyline();
  EntPtr readLwPolyline();

 private:
  /// The part of the POLYLINE record common to all vertices.
  struct Head {
    EntProperties properties;
    long flags;    // code 70
    long surface;  // code 75
    double z, widthStart, widthEnd;
    long m, n;        // codes 71 and 72: size of a mesh
    long fitM, fitN;  // codes 73 and 74: size of the mesh smoothed from it
  };
  /// A face record of a polyface with its corner indexes: 1 to n, negative if the edge that begins
  /// there is invisible, 0 for none.
  struct Face {
    long corner[4];
    EntProperties properties;
  };

  bool readHead();
  void placeInWorld();
  bool readVertexes();
  bool spareVertex();
  bool readVertex();
  void keepFace();
  void keepVertex();
  bool curve(short& type, short& degree) const;

  std::unique_ptr<CEntPolyline> create(short flags, short degree) const;
  EntPtr buildPlain();
  EntPtr buildCurve(short type, short degree);
  void splitCurve(short type, std::vector<BULGED_VERTEX>& controls,
                  std::vector<BULGED_VERTEX>& fitted) const;
  void addFitted(CEntPolyline& polyline, const std::vector<BULGED_VERTEX>& fitted);
  EntPtr buildMesh();
  EntPtr buildPolyface();
  void addPolyfaceFace(const Face& face);
  void addFace(const EntProperties& properties, const PNT_3D (&corners)[4], long hiddenEdges);
  EntPtr firstFace();
  PNT_3D at(std::size_t i) const;

  void takeLwVertexPair(long code);
  void takeWidth(double& width) const;
  bool finishLwPolyline();

  RecordReader& m_in;
  Head m_head = {};
  std::vector<BULGED_VERTEX> m_vertexes;
  std::vector<long> m_flags;  // code 70 of each
  std::vector<Face> m_faces;
  std::vector<EntPtr> m_built;  // faces made from this record
  // Remaining number of vertices for arcs of fitted curves: each is an object, and a few bytes in a
  // file can request 223 of them.
  std::size_t m_fittedLeft = 2'000'000;
};

}  // namespace vek0::detail
