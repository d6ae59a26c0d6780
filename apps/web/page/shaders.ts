// The shaders: one vertex shader for each kind of shape, around parts that all share. They read
// shapes from a texture, by the number of the vertex. Instances would be simpler, but rasterizers
// in software start anew for each: 20,000 lines took them 10 seconds instead of 0.2.

// A shape finds its order and flags by its slot and its look by its style. Positions are pixels
// (device pixels, y up, from the canvas' center).
const kShared = `#version 300 es
precision highp float;
precision highp int;
precision highp usampler2D;
precision highp sampler2D;
uniform usampler2D shapes;   // two texels each
uniform usampler2D slots;    // order in the low 30 bits; hidden, selected
uniform usampler2D styles;   // color, weight, dash, flags
uniform sampler2D dashes;    // first, count, period, phase
uniform vec2 offset;         // of the batch from the view's center, in drawing units
uniform float scale;         // device pixels per unit
uniform vec2 halfSize;       // of the canvas, in device pixels
uniform float pixelRatio;
uniform vec3 foreground;
uniform vec3 highlight;
uniform bool showsHidden;
uniform int first;           // shape of a draw call
uniform int corners;         // vertices of a shape, where they are not 3 or 4
out vec4 color;
out vec3 along;              // x: distance from the start in units; y, z: position in a wide line
flat out uint dash;
flat out vec2 extent;        // length and half width, in pixels

uvec4 head, tail;            // of the shape; the tail ends with slot and style

void fetch(int shape) {
  ivec2 at = ivec2((2 * (first + shape)) & 2047, (2 * (first + shape)) >> 11);
  head = texelFetch(shapes, at, 0);
  tail = texelFetch(shapes, at + ivec2(1, 0), 0);
}

vec2 placed(vec2 p) { return (p + offset) * scale; }

float widthOf(uvec4 look) {
  // 0.25 mm are a pixel of 1/96 inch.
  return max(uintBitsToFloat(look.y) * 4.0, 1.0) * pixelRatio;
}

bool isShown(out uvec4 look) {
  uint slot = tail.z, style = tail.w;
  uint state = texelFetch(slots, ivec2(slot & 4095u, slot >> 12), 0).r;
  look = texelFetch(styles, ivec2(style & 1023u, style >> 10), 0);
  along = vec3(0.0);
  dash = 0u;
  extent = vec2(0.0);
  bool hidden = !showsHidden && (state >> 31) != 0u;
  if (hidden || (look.w & 1u) == 0u) {
    gl_Position = vec4(2.0, 2.0, 2.0, 1.0);
    color = vec4(0.0);
    return false;
  }
  color = vec4(look.x & 255u, (look.x >> 8) & 255u, (look.x >> 16) & 255u, look.x >> 24) / 255.0;
  if ((look.w & 2u) != 0u) color.rgb = foreground;
  if ((state & 0x40000000u) != 0u) color = vec4(highlight, 1.0);
  gl_Position.z = 1.0 - 2.0 * (float(state & 0x3fffffffu) + 1.0) / 16777216.0;
  gl_Position.w = 1.0;
  return true;
}

// The pattern of a shape; none where it is as small as two pixels, which shows a continuous line.
uint dashOf(uvec4 look) {
  if (look.z == 0u) return 0u;
  vec4 pattern = texelFetch(dashes, ivec2(look.z & 1023u, look.z >> 10), 0);
  return pattern.y < 2.0 || pattern.z * scale < 2.0 ? 0u : look.z;
}

void put(vec2 pixel) { gl_Position.xy = pixel / halfSize; }
`;

const kSegments = `${kShared}
void main() {
  fetch(gl_VertexID >> 2);
  uvec4 look;
  if (!isShown(look)) return;
  dash = dashOf(look);
  vec4 ends = uintBitsToFloat(head);
  float from = uintBitsToFloat(tail.x);
  vec2 a = placed(ends.xy), b = placed(ends.zw), d = b - a;
  float size = length(d), width = widthOf(look);
  vec2 u = size > 0.0 ? d / size : vec2(1.0, 0.0);
  float end = (gl_VertexID & 1) == 0 ? -1.0 : 1.0, side = (gl_VertexID & 2) == 0 ? -1.0 : 1.0;
  float over = width / 2.0;
  float t = end < 0.0 ? -over : size + over;
  along = vec3(from + t / scale, t, side * width / 2.0);
  extent = vec2(size, width / 2.0);
  put(a + u * t + vec2(-u.y, u.x) * side * width / 2.0);
}`;

// A strip of triangles through all arcs: the first and the last vertex of each are there twice.
const kArcs = `${kShared}
void main() {
  fetch(gl_VertexID / corners);
  uvec4 look;
  if (!isShown(look)) return;
  dash = dashOf(look);
  int corner = clamp(gl_VertexID % corners - 1, 0, corners - 3);
  vec3 circle = uintBitsToFloat(head.xyz);
  vec3 turn = uintBitsToFloat(uvec3(head.w, tail.xy));   // start, sweep, from
  float width = widthOf(look), r = circle.z;
  // Pieces that deviate a tenth of a pixel at most.
  float needed = ceil(abs(turn.y) / max(2.0 * acos(1.0 - min(0.1 / max(r * scale, 0.2), 1.0)), 1e-4));
  float pieces = clamp(needed, 3.0, float(corners / 2 - 2));
  float i = min(float(corner >> 1), pieces);
  float side = (corner & 1) == 0 ? -1.0 : 1.0;
  float angle = turn.x + turn.y * i / pieces;
  vec2 u = vec2(cos(angle), sin(angle));
  along.x = turn.z + abs(turn.y) * r * i / pieces;
  put(placed(circle.xy + r * u) + u * side * width / 2.0);
}`;

const kTriangles = `${kShared}
void main() {
  fetch(gl_VertexID / 3);
  uvec4 look;
  if (!isShown(look)) return;
  int corner = gl_VertexID % 3;
  put(placed(uintBitsToFloat(corner == 0 ? head.xy : corner == 1 ? head.zw : tail.xy)));
}`;

const kGlyphs = `${kShared}
uniform sampler2D outline;   // corners of the glyph's triangles
void main() {
  fetch(gl_VertexID / corners);
  uvec4 look;
  if (!isShown(look)) return;
  int i = gl_VertexID % corners;
  vec2 corner = texelFetch(outline, ivec2(i & 2047, i >> 11), 0).xy;
  vec2 at = uintBitsToFloat(head.xy);
  mat2 axes = mat2(uintBitsToFloat(head.zw), uintBitsToFloat(tail.xy));
  put(placed(at) + axes * corner * scale);
}`;

const kPoints = `${kShared}
uniform float pointSize;             // in device pixels
flat out int markOf;
void main() {
  fetch(gl_VertexID >> 2);
  uvec4 look;
  int mark = int(head.z);
  markOf = mark;
  if (!isShown(look)) return;
  float width = widthOf(look);
  vec2 c = vec2((gl_VertexID & 1) == 0 ? -0.5 : 0.5, (gl_VertexID & 2) == 0 ? -0.5 : 0.5);
  extent = vec2(pointSize / 2.0, width / 2.0);
  along = vec3(0.0, c * (mark <= 0 ? width : 2.0 * (pointSize + width)));
  put(placed(uintBitsToFloat(head.xy)) + along.yz);
}`;

const kPaint = `#version 300 es
precision highp float;
precision highp int;
precision highp sampler2D;
uniform sampler2D dashes;    // first, count, period, phase
uniform sampler2D lengths;
uniform float scale;
in vec4 color;
in vec3 along;
flat in uint dash;
flat in vec2 extent;
out vec4 painted;

bool isGap() {
  vec4 pattern = texelFetch(dashes, ivec2(dash & 1023u, dash >> 10), 0);
  float at = mod(along.x + pattern.w, pattern.z);
  int first = int(pattern.x), count = int(pattern.y);
  float dot = 0.5 / scale;
  for (int i = 0; i < count; ++i) {
    float piece = texelFetch(lengths, ivec2((first + i) & 1023, (first + i) >> 10), 0).r;
    bool gap = (i & 1) == 1;
    if (!gap && piece == 0.0 && abs(at) < dot) return false;
    if (at < piece) return gap && at > dot;
    at -= piece;
  }
  return true;
}
`;

const kLinePaint = `${kPaint}
void main() {
  if (dash != 0u && isGap()) discard;
  // Wide lines have round ends, which also join them.
  if (extent.y > 1.0) {
    float over = max(-along.y, along.y - extent.x);
    if (over > 0.0 && over * over + along.z * along.z > extent.y * extent.y) discard;
  }
  painted = color;
}`;

const kPlainPaint = `${kPaint}
void main() { painted = color; }`;

const kPointPaint = `${kPaint}
flat in int markOf;
void main() {
  if (markOf > 0) {
    vec2 p = along.yz;
    float r = extent.x, w = extent.y;
    bool ink = false;
    int shape = markOf & 31;
    if (shape == 2) ink = min(abs(p.x), abs(p.y)) <= w && max(abs(p.x), abs(p.y)) <= 2.0 * r;
    if (shape == 3) ink = abs(abs(p.x) - abs(p.y)) <= w * 1.414 && max(abs(p.x), abs(p.y)) <= 2.0 * r;
    if (shape == 4) ink = abs(p.x) <= w && p.y >= 0.0 && p.y <= r;
    if (shape == 0) ink = max(abs(p.x), abs(p.y)) <= w;
    if ((markOf & 32) != 0) ink = ink || abs(length(p) - r) <= w;
    if ((markOf & 64) != 0) ink = ink || abs(max(abs(p.x), abs(p.y)) - r) <= w;
    if (!ink) discard;
  }
  painted = color;
}`;

/** Vertex and fragment shader of each kind, in the order of `Kind`. */
export const kShaders: [string, string][] = [
  [kSegments, kLinePaint],
  [kArcs, kLinePaint],
  [kTriangles, kPlainPaint],
  [kGlyphs, kPlainPaint],
  [kPoints, kPointPaint],
];
