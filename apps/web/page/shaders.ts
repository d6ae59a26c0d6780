// The shaders: one vertex shader for each kind of shape, around parts that all share.

// A shape finds its order and flags by its slot and its look by its style. Positions are pixels
// (device pixels, y up, from the canvas' center).
const kShared = `#version 300 es
precision highp float;
precision highp int;
precision highp usampler2D;
precision highp sampler2D;
uniform usampler2D slots;    // order in the low 30 bits; hidden, selected
uniform usampler2D styles;   // color, weight, dash, flags
uniform vec2 offset;         // of the batch from the view's center, in drawing units
uniform float scale;         // device pixels per unit
uniform vec2 halfSize;       // of the canvas, in device pixels
uniform float pixelRatio;
uniform vec3 foreground;
uniform vec3 highlight;
uniform bool showsHidden;
layout(location = 6) in uint slot;
layout(location = 7) in uint style;
out vec4 color;
out vec3 along;              // x: distance from the start in units; y, z: position in a wide line
flat out uint dash;
flat out vec2 extent;        // length and half width, in pixels

vec2 placed(vec2 p) { return (p + offset) * scale; }

float widthOf(uvec4 look) {
  // 0.25 mm are a pixel of 1/96 inch.
  return max(uintBitsToFloat(look.y) * 4.0, 1.0) * pixelRatio;
}

bool isShown(out uvec4 look) {
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

void put(vec2 pixel) { gl_Position.xy = pixel / halfSize; }
`;

const kSegments = `${kShared}
layout(location = 0) in vec4 ends;
layout(location = 1) in float from;
void main() {
  uvec4 look;
  if (!isShown(look)) return;
  dash = look.z;
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

const kArcs = `${kShared}
layout(location = 0) in vec3 circle;
layout(location = 1) in vec3 turn;   // start, sweep, from
uniform int most;                    // pieces
void main() {
  uvec4 look;
  if (!isShown(look)) return;
  dash = look.z;
  float width = widthOf(look), r = circle.z;
  // Pieces that deviate a tenth of a pixel at most.
  float needed = ceil(abs(turn.y) / max(2.0 * acos(1.0 - min(0.1 / max(r * scale, 0.2), 1.0)), 1e-4));
  float pieces = clamp(needed, 3.0, float(most));
  float i = min(float(gl_VertexID >> 1), pieces);
  float side = (gl_VertexID & 1) == 0 ? -1.0 : 1.0;
  float angle = turn.x + turn.y * i / pieces;
  vec2 u = vec2(cos(angle), sin(angle));
  along.x = turn.z + abs(turn.y) * r * i / pieces;
  put(placed(circle.xy + r * u) + u * side * width / 2.0);
}`;

const kTriangles = `${kShared}
layout(location = 0) in vec4 first;
layout(location = 1) in vec2 last;
void main() {
  uvec4 look;
  if (!isShown(look)) return;
  put(placed(gl_VertexID == 0 ? first.xy : gl_VertexID == 1 ? first.zw : last));
}`;

const kGlyphs = `${kShared}
layout(location = 0) in vec2 at;
layout(location = 1) in vec4 axes;
layout(location = 2) in vec2 corner;
void main() {
  uvec4 look;
  if (!isShown(look)) return;
  put(placed(at) + mat2(axes.xy, axes.zw) * corner * scale);
}`;

const kPoints = `${kShared}
layout(location = 0) in vec2 at;
layout(location = 1) in int mark;
uniform float pointSize;             // in device pixels
flat out int markOf;
void main() {
  uvec4 look;
  markOf = mark;
  if (!isShown(look)) return;
  float width = widthOf(look);
  vec2 c = vec2((gl_VertexID & 1) == 0 ? -0.5 : 0.5, (gl_VertexID & 2) == 0 ? -0.5 : 0.5);
  extent = vec2(pointSize / 2.0, width / 2.0);
  along = vec3(0.0, c * (mark <= 0 ? width : 2.0 * (pointSize + width)));
  put(placed(at) + along.yz);
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
  // Where a pattern is as small as two pixels, its line is shown continuous.
  if (pattern.y < 2.0 || pattern.z * scale < 2.0) return false;
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
