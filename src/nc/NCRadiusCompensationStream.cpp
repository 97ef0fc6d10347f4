#include "nc/NCRadiusCompensationStream.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <deque>
#include <limits>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "nc/NCUnit.h"
#include "util/utility/Basic.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Orvo {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;
// XY lengths up to this are no length, and points this close are one point.
constexpr double kLenEps = 1e-9;
// A point is clear of the contour at the tool radius less this.
constexpr double kClearTol = 1e-9;
// Crossings at a smaller sine of their angle are touches, not crossings.
constexpr double kCrossSine = 1e-10;
// Coordinates and radii beyond this are not compensated: the tolerances above
// hold for numbers of up to a kilometre in millimetres.
constexpr double kLimit = 1e6;
// An onCCWArc tells its sweep from its start and end; closer than this to no
// sweep or to a whole turn it might be read the other way, so such arcs go
// out as onCircular.
constexpr double kArcSafeSweep = 1e-6;
// Arcs of more turns than this are not compensated (their crossings would be
// too many to keep).
constexpr double kMaxSweep = 32.0 * kPi;
// Tool axes and arc normals further than this (as a sine) from Z are tilted.
constexpr double kAxisTol = 1e-9;
// The first pieces of a run are kept for the whole run, so that a closed
// contour that ends where it began is checked against its start.
constexpr std::size_t kHeadPieces = 16;
// Pieces are grouped for coarse box tests: chunks of 16, blocks of 128.
constexpr std::uint64_t kChunkShift = 4;
constexpr std::uint64_t kBlockShift = 7;

struct V2 {
  double x = 0.0;
  double y = 0.0;
};
inline V2 operator+(V2 a, V2 b) { return {a.x + b.x, a.y + b.y}; }
inline V2 operator-(V2 a, V2 b) { return {a.x - b.x, a.y - b.y}; }
inline V2 operator*(V2 a, double s) { return {a.x * s, a.y * s}; }
inline double dot(V2 a, V2 b) { return a.x * b.x + a.y * b.y; }
inline double cross(V2 a, V2 b) { return a.x * b.y - a.y * b.x; }
// A quarter turn counterclockwise: the left of a direction of travel.
inline V2 perp(V2 a) { return {-a.y, a.x}; }
inline double norm(V2 a) { return std::sqrt(a.x * a.x + a.y * a.y); }
inline V2 unitAt(double angle) { return {std::cos(angle), std::sin(angle)}; }
inline double angleOf(V2 a) { return std::atan2(a.y, a.x); }
inline V2 xy(Point3D const& p) { return {p.x, p.y}; }
inline double dist(V2 a, V2 b) { return norm(a - b); }
inline double lerp(double a, double b, double t) { return a + (b - a) * t; }
inline double clamp01(double t) { return t < 0.0 ? 0.0 : (t > 1.0 ? 1.0 : t); }

struct Box {
  double x0 = 0.0, y0 = 0.0, x1 = 0.0, y1 = 0.0;
  void add(V2 p) {
    x0 = std::min(x0, p.x);
    y0 = std::min(y0, p.y);
    x1 = std::max(x1, p.x);
    y1 = std::max(y1, p.y);
  }
  void add(Box const& b) {
    x0 = std::min(x0, b.x0);
    y0 = std::min(y0, b.y0);
    x1 = std::max(x1, b.x1);
    y1 = std::max(y1, b.y1);
  }
  Box grown(double d) const { return {x0 - d, y0 - d, x1 + d, y1 + d}; }
  bool overlaps(Box const& b) const { return x0 <= b.x1 && b.x0 <= x1 && y0 <= b.y1 && b.y0 <= y1; }
  bool contains(V2 p) const { return p.x >= x0 && p.x <= x1 && p.y >= y0 && p.y <= y1; }
};
inline Box boxOf(V2 p) { return {p.x, p.y, p.x, p.y}; }

// The boxes of a chunk's 16 pieces in single precision, rounded outwards, so
// that four are tested at once; a box that meets here is tested again in
// double precision.
struct ChunkBoxes {
  alignas(16) float x0[16];
  alignas(16) float y0[16];
  alignas(16) float x1[16];
  alignas(16) float y1[16];
};
// Rounding to single precision moves a number by at most half a unit in the
// last place; moving it on by four such units more than makes up for that.
inline float down(double v) {
  float const f = static_cast<float>(v);
  return f - (std::fabs(f) * 4.8e-7f + 1e-30f);
}
inline float up(double v) {
  float const f = static_cast<float>(v);
  return f + (std::fabs(f) * 4.8e-7f + 1e-30f);
}

// Bit k set when box k of `c` meets the box (x0, y0)-(x1, y1).
inline std::uint32_t meeting(ChunkBoxes const& c, float x0, float y0, float x1, float y1) {
#if defined(__SSE2__)
  __m128 const px0 = _mm_set1_ps(x0), py0 = _mm_set1_ps(y0), px1 = _mm_set1_ps(x1), py1 = _mm_set1_ps(y1);
  std::uint32_t met = 0;
  for (int k = 0; k < 16; k += 4) {
    __m128 m = _mm_and_ps(_mm_cmple_ps(_mm_load_ps(c.x0 + k), px1), _mm_cmple_ps(px0, _mm_load_ps(c.x1 + k)));
    m = _mm_and_ps(m, _mm_and_ps(_mm_cmple_ps(_mm_load_ps(c.y0 + k), py1), _mm_cmple_ps(py0, _mm_load_ps(c.y1 + k))));
    met |= static_cast<std::uint32_t>(_mm_movemask_ps(m)) << k;
  }
  return met;
#else
  std::uint32_t met = 0;
  for (int k = 0; k < 16; ++k)
    met |= static_cast<std::uint32_t>((c.x0[k] <= x1) & (x0 <= c.x1[k]) & (c.y0[k] <= y1) & (y0 <= c.y1[k])) << k;
  return met;
#endif
}

// Whether the angle `a` lies on an arc from `a0` sweeping `sweep` (signed).
bool angleOnArc(double a, double a0, double sweep, double tolerance) {
  double const span = std::fabs(sweep);
  if (span >= kTwoPi) return true;
  double d = sweep >= 0.0 ? a - a0 : a0 - a;
  d = std::fmod(d, kTwoPi);
  if (d < 0.0) d += kTwoPi;
  return d <= span + tolerance || d >= kTwoPi - tolerance;
}

// A line or an arc in the XY plane, by its fraction u in [0, 1].
struct Element {
  bool arc = false;
  V2 s, e;                // start and end
  V2 c;                   // arc: centre
  double R = 0.0;         // arc: radius
  double a0 = 0.0;        // arc: angle of the start about the centre
  double sweep = 0.0;     // arc: swept angle, counterclockwise positive
  double L = 0.0;         // line: length

  static Element line(V2 a, V2 b) { return line(a, b, dist(a, b)); }
  // Makes this the line from a to b of the given length, in place; the
  // fields of an arc are left as they are and not read for a line.
  void setLine(V2 a, V2 b, double length) {
    arc = false;
    s = a;
    e = b;
    L = length;
  }
  // A line whose length is known already.
  static Element line(V2 a, V2 b, double length) {
    Element el;
    el.s = a;
    el.e = b;
    el.L = length;
    return el;
  }
  // An arc whose end points are known already.
  static Element circle(V2 centre, double radius, double startAngle, double sweptAngle, V2 start, V2 end) {
    Element el;
    el.arc = true;
    el.c = centre;
    el.R = radius;
    el.a0 = startAngle;
    el.sweep = sweptAngle;
    el.s = start;
    el.e = end;
    return el;
  }
  static Element circle(V2 centre, double radius, double startAngle, double sweptAngle) {
    Element el;
    el.arc = true;
    el.c = centre;
    el.R = radius;
    el.a0 = startAngle;
    el.sweep = sweptAngle;
    el.s = centre + unitAt(startAngle) * radius;
    el.e = centre + unitAt(startAngle + sweptAngle) * radius;
    return el;
  }

  double length() const { return arc ? R * std::fabs(sweep) : L; }
  V2 pointAt(double u) const {
    if (!arc) return u <= 0.0 ? s : (u >= 1.0 ? e : s + (e - s) * u);
    if (u <= 0.0) return s;
    if (u >= 1.0) return e;
    return c + unitAt(a0 + sweep * u) * R;
  }
  V2 tangentAt(double u) const {
    if (!arc) return L > 0.0 ? (e - s) * (1.0 / L) : V2{1.0, 0.0};
    V2 const t = perp(unitAt(a0 + sweep * u));
    return sweep >= 0.0 ? t : t * -1.0;
  }
  Box box() const {
    Box b = boxOf(s);
    b.add(e);
    if (arc && std::fabs(sweep) <= kPi / 2.0) {
      // Within its chord's box grown by its sagitta.
      double const half = 0.5 * dist(s, e);
      double const sag = R - std::sqrt(std::max(0.0, R * R - half * half));
      return b.grown(sag);
    }
    if (arc) {
      static constexpr double kQuarter = kPi / 2.0;
      for (int k = 0; k < 4; ++k) {
        double const a = k * kQuarter;
        if (angleOnArc(a, a0, sweep, 0.0)) b.add(c + unitAt(a) * R);
      }
    }
    return b;
  }
  // The fractions at which the arc passes the angle `a`, several on an arc of
  // more than a turn.
  // Whether the point X of the arc's circle may lie on the arc: a cheap test
  // that lets through every point on it (and some off it) for arcs of up to
  // half a turn.
  bool mayHold(V2 X) const {
    if (std::fabs(sweep) > kPi) return true;
    V2 const a = s - c;
    V2 const b = e - c;
    V2 const x = X - c;
    double const slack = kLenEps * R;
    double const side = sweep >= 0.0 ? 1.0 : -1.0;
    return side * cross(a, x) >= -slack && side * cross(x, b) >= -slack;
  }
  template <typename F>
  void fractionsAtAngle(double a, F&& take) const {
    double const span = std::fabs(sweep);
    if (span <= 0.0) return;
    double const tol = kLenEps / std::max(R, kLenEps);
    double d = sweep >= 0.0 ? a - a0 : a0 - a;
    d = std::fmod(d, kTwoPi);
    if (d < 0.0) d += kTwoPi;
    if (d > kTwoPi - tol) d -= kTwoPi;
    for (double t = d; t <= span + tol; t += kTwoPi)
      if (t >= -tol) take(clamp01(t / span));
  }
};

double distPointSegment(V2 p, V2 a, V2 b) {
  V2 const d = b - a;
  double const l2 = dot(d, d);
  if (l2 <= 0.0) return dist(p, a);
  double const t = clamp01(dot(p - a, d) / l2);
  return dist(p, a + d * t);
}

double distPointElement(V2 p, Element const& el) {
  if (!el.arc) return distPointSegment(p, el.s, el.e);
  V2 const v = p - el.c;
  double const l = norm(v);
  if (l <= 0.0) return el.R;
  if (angleOnArc(angleOf(v), el.a0, el.sweep, 0.0)) return std::fabs(l - el.R);
  return std::min(dist(p, el.s), dist(p, el.e));
}

bool segmentsCross(V2 a, V2 b, V2 c, V2 d) {
  V2 const r = b - a;
  V2 const s = d - c;
  double const den = cross(r, s);
  if (den == 0.0) return false;
  double const t = cross(c - a, s) / den;
  double const u = cross(c - a, r) / den;
  return t >= 0.0 && t <= 1.0 && u >= 0.0 && u <= 1.0;
}

double distSegmentElement(V2 a, V2 b, Element const& el) {
  if (!el.arc) {
    if (segmentsCross(a, b, el.s, el.e)) return 0.0;
    return std::min(std::min(distPointSegment(a, el.s, el.e), distPointSegment(b, el.s, el.e)),
                    std::min(distPointSegment(el.s, a, b), distPointSegment(el.e, a, b)));
  }
  double best = std::min(std::min(distPointElement(a, el), distPointElement(b, el)),
                         std::min(distPointSegment(el.s, a, b), distPointSegment(el.e, a, b)));
  V2 const d = b - a;
  double const l2 = dot(d, d);
  if (l2 <= 0.0) return best;
  // Where the segment's line meets the circle, and the circle's point nearest
  // the line.
  double const t = dot(el.c - a, d) / l2;
  V2 const foot = a + d * t;
  double const h = dist(foot, el.c);
  double const l = std::sqrt(l2);
  if (h < el.R) {
    double const half = std::sqrt(el.R * el.R - h * h) / l;
    for (double tt : {t - half, t + half}) {
      if (tt < 0.0 || tt > 1.0) continue;
      V2 const q = a + d * tt;
      if (angleOnArc(angleOf(q - el.c), el.a0, el.sweep, 0.0)) return 0.0;
    }
  }
  if (h > 0.0 && t >= 0.0 && t <= 1.0) {
    V2 const towards = (foot - el.c) * (1.0 / h);
    if (angleOnArc(angleOf(towards), el.a0, el.sweep, 0.0))
      best = std::min(best, distPointSegment(el.c + towards * el.R, a, b));
  }
  return best;
}

struct Hit {
  double ua;
  double ub;
  V2 point;
};

// Crossings of two elements, without overlaps and touches of parallel lines
// or concentric arcs.
void intersect(Element const& A, Element const& B, std::vector<Hit>& hits) {
  hits.clear();
  if (!A.arc && !B.arc) {
    V2 const d1 = A.e - A.s;
    V2 const d2 = B.e - B.s;
    double const l1 = norm(d1);
    double const l2 = norm(d2);
    double const den = cross(d1, d2);
    if (std::fabs(den) <= 1e-15 * l1 * l2) return;
    V2 const w = B.s - A.s;
    double const t = cross(w, d2) / den;
    double const s = cross(w, d1) / den;
    double const tt = kLenEps / l1;
    double const ts = kLenEps / l2;
    if (t < -tt || t > 1.0 + tt || s < -ts || s > 1.0 + ts) return;
    hits.push_back({clamp01(t), clamp01(s), A.s + d1 * clamp01(t)});
    return;
  }
  if (A.arc != B.arc) {
    Element const& L = A.arc ? B : A;
    Element const& C = A.arc ? A : B;
    V2 const d = L.e - L.s;
    double const a = dot(d, d);
    V2 const f = L.s - C.c;
    double const b = dot(d, f);
    double const cc = dot(f, f) - C.R * C.R;
    double const disc = b * b - a * cc;
    if (disc < 0.0 || a <= 0.0) return;
    double const sq = std::sqrt(disc);
    double const tol = kLenEps / std::sqrt(a);
    double const roots[2] = {(-b - sq) / a, (-b + sq) / a};
    for (int k = 0; k < (sq > 0.0 ? 2 : 1); ++k) {
      double const t = roots[k];
      if (t < -tol || t > 1.0 + tol) continue;
      double const tl = clamp01(t);
      V2 const X = L.s + d * tl;
      if (!C.mayHold(X)) continue;
      C.fractionsAtAngle(angleOf(X - C.c), [&](double uc) {
        if (A.arc)
          hits.push_back({uc, tl, X});
        else
          hits.push_back({tl, uc, X});
      });
    }
    return;
  }
  V2 const D = B.c - A.c;
  double const d = norm(D);
  if (d <= 1e-12 * std::max(A.R, B.R)) return;
  if (d > A.R + B.R + kLenEps || d < std::fabs(A.R - B.R) - kLenEps) return;
  double const a = (A.R * A.R - B.R * B.R + d * d) / (2.0 * d);
  double const h2 = A.R * A.R - a * a;
  double const h = h2 > 0.0 ? std::sqrt(h2) : 0.0;
  V2 const e = D * (1.0 / d);
  V2 const base = A.c + e * a;
  V2 const points[2] = {base + perp(e) * h, base - perp(e) * h};
  for (int k = 0; k < (h > 0.0 ? 2 : 1); ++k) {
    V2 const X = points[k];
    if (!A.mayHold(X) || !B.mayHold(X)) continue;
    double const aa = angleOf(X - A.c);
    double const ab = angleOf(X - B.c);
    A.fractionsAtAngle(aa, [&](double ua) { B.fractionsAtAngle(ab, [&](double ub) { hits.push_back({ua, ub, X}); }); });
  }
}

// A ring buffer that keeps the storage of the slots it reuses.
template <typename T>
class Ring {
public:
  bool empty() const noexcept { return m_size == 0; }
  std::size_t size() const noexcept { return m_size; }
  T& operator[](std::size_t i) { return m_items[(m_head + i) & m_mask]; }
  T const& operator[](std::size_t i) const { return m_items[(m_head + i) & m_mask]; }
  T& front() { return (*this)[0]; }
  /// A slot at the back, holding whatever it held before.
  T& pushSlot() {
    if (m_size == m_items.size()) grow();
    ++m_size;
    return (*this)[m_size - 1];
  }
  void popFront() {
    m_head = (m_head + 1) & m_mask;
    --m_size;
  }

private:
  void grow() {
    std::vector<T> bigger(m_items.empty() ? 16 : m_items.size() * 2);
    for (std::size_t i = 0; i < m_size; ++i) bigger[i] = std::move((*this)[i]);
    m_items.swap(bigger);
    m_mask = m_items.size() - 1;
    m_head = 0;
  }
  std::vector<T> m_items;
  std::size_t m_mask = 0;
  std::size_t m_head = 0;
  std::size_t m_size = 0;
};

enum class Kind : std::uint8_t {
  PassThroughW,
  PassThrough,
  CommentW,
  Comment,
  Command,
  EntityIndex,
  MachineCommand,
  Coolant,
  SpindleSpeed,
  CompensationMode,
  CompensationSide,
  Open,
  ParamPoint,
  ParamDouble,
  ParamInt,
  ParamWString,
  ParamString,
  Stock,
  Context,
  Tool,
  ToolChange,
  Section,
  Group,
  TurnGroup,
  GroupEnd,
  TurnGroupEnd,
  Dwell,
  Skip,
  LineNumber,
  AxisOrdering,
  AxisValues,
  Frame,
  // Motions from here on.
  Rapid,
  Rapid5D,
  Linear,
  Linear5D,
  LinearExtrude,
  CWArc,
  CCWArc,
  Circular,
  CWArcExtrude,
  CCWArcExtrude,
  CircularExtrude,
  CWCircle,
  CCWCircle,
  Spline,
  Bezier,
  NURBS,
};
inline bool isMotion(Kind k) { return k >= Kind::Rapid; }
inline bool isStraight(Kind k) {
  return k == Kind::Rapid || k == Kind::Rapid5D || k == Kind::Linear || k == Kind::Linear5D;
}

// What a motion is to the compensation.
enum class Role : std::uint8_t {
  Plain,    // not compensated
  LeadIn,   // first straight XY move of a run
  Contour,  // offset
  Still,    // in a run, but no XY travel
};

struct NamedText {
  std::string name;
  std::string value;
};
struct NamedWideText {
  std::string name;
  std::wstring value;
};
struct Nurbs {
  std::vector<Point3D> points;
  std::vector<double> weights;
  std::vector<double> knots;
};
using Payload = std::variant<std::monostate, std::string, std::wstring, NamedText, NamedWideText, NCContext, NCTool,
                             AxisOrdering, AxisValues, Frame, std::vector<Point3D>, Nurbs>;

struct Event {
  Kind kind = Kind::Skip;
  Role role = Role::Plain;
  bool hasPayload = false;
  unsigned int flags = 0;
  int i = 0;
  double a = 0.0;  // feed, or the one number of an event
  double b = 0.0;  // sweep
  double c = 0.0;  // extrusion
  Point3D p;       // target or end
  Point3D q;       // centre
  Vector3D v;      // normal or tool axis
  // Motions.
  std::uint64_t seq = 0;
  std::uint32_t run = 0;
  unsigned int marker = 0;
  Point3D start;  // programmed point it starts from
  Point3D end;    // programmed point it ends at
  Element el;     // its XY path
  int side = 0;
  double r = 0.0;
  double walked = 0.0;
  std::uint64_t lastPiece = 0;  // one past its last piece
};

enum class Source : std::uint8_t { Line, Arc, Corner };

struct Crossing {
  double u = 0.0;
  std::uint64_t partner = 0;
  double partnerU = 0.0;
  V2 point;
  V2 partnerDir;     // the partner's direction of travel there
  V2 partnerToward;  // unit, from the point towards the partner's contour
};

// One element of the raw offset path: the offset of a contour element, or
// the arc about a corner. Each point of it lies at the tool radius from its
// contour point; `toward` points there.
struct Piece {
  std::uint64_t id = 0;
  std::uint32_t run = 0;
  std::uint64_t motion = 0;
  unsigned int marker = 0;
  Source source = Source::Line;
  bool reversed = false;  // runs against its contour: never cut along
  bool inert = false;     // of no length
  Element geo;            // the path
  double len = 0.0;       // its length
  V2 corner;              // Corner: the contour point it turns about
  // Arc: the contour arc (centre, radius, start angle, sweep). A line's
  // contour is its offset moved back by the radius.
  V2 arcCentre;
  double arcR = 0.0, arcA0 = 0.0, arcSweep = 0.0;
  // A small outside corner before it is cut straight to where the offsets
  // meet.
  bool joinedStart = false;
  V2 joinAt;
  V2 towardConst;         // Line
  double towardScale = 0.0;  // Arc: toward = (X - centre) * towardScale
  double r = 0.0;
  double z0 = 0.0, z1 = 0.0;
  Box box;
  double walkedFrom = 1.0, walkedTo = 0.0;
  bool sorted = true;
  std::vector<Crossing> crossings;

  V2 dirAt(double u) const { return geo.tangentAt(u); }
  V2 pointAt(double u) const { return geo.pointAt(u); }
  double zAt(double u) const { return lerp(z0, z1, u); }
  V2 towardAt(V2 X) const {
    V2 t;
    if (source == Source::Line) return towardConst;
    if (source == Source::Corner)
      t = corner - X;
    else
      t = (X - geo.c) * towardScale;
    double const l = norm(t);
    return l > 0.0 ? t * (1.0 / l) : V2{0.0, 0.0};
  }
  bool hasContour() const { return source != Source::Corner; }
  Element contour() const {
    if (source == Source::Line) return Element::line(geo.s + towardConst * r, geo.e + towardConst * r, geo.L);
    return Element::circle(arcCentre, arcR, arcA0, arcSweep);
  }
  void sortCrossings() {
    if (sorted) return;
    std::sort(crossings.begin(), crossings.end(), [](Crossing const& a, Crossing const& b) { return a.u < b.u; });
    sorted = true;
  }
};

std::string plural(std::size_t n, char const* one, char const* many) {
  return std::to_string(n) + (n == 1 ? one : many);
}

}  // namespace

class NCRadiusCompensationStream::Engine {
public:
  explicit Engine(ScopePointer<NCStream> output) : m_out(output) {
    m_hits.reserve(16);
    m_gather.reserve(16);
    m_episode.skipped.reserve(64);
  }

  ScopePointer<NCStream> m_out;
  std::size_t m_lookAhead = 1;
  bool m_compensating = false;
  WarningHandler m_warn;

  // ---------------------------------------------------------------- input

  NCContext m_context;
  NCTool m_tool;
  double m_radius = 0.0;  // signed, in the context's unit
  unsigned int m_lastMarker = 0;
  int m_emitting = 0;  // depth of calls to the output
  Ring<Event> m_queue;
  std::deque<Payload> m_payloads;
  std::size_t m_heldMotions = 0;
  std::uint64_t m_motionSeq = 0;
  Point3D m_inputPos;  // programmed position after the last motion given in

  struct InputRun {
    bool active = false;
    bool broken = false;  // the next motion starts a new run
    std::uint32_t id = 0;
    int side = 0;
    double r = 0.0;
    bool hasLeadIn = false;
    bool hasElement = false;
    V2 lastTangent;
    bool lastWasLine = false;
    std::uint64_t lastLateWarning = 0;
    bool lateWarned = false;
  } m_in;
  std::uint32_t m_nextRun = 1;
  int m_lastInputWarning = 0;

  // --------------------------------------------------------------- pieces

  // Pieces m_pieceBase .. m_nextPiece - 1, in slots by id, with their boxes
  // alongside for quick scans.
  std::vector<Piece> m_slots;
  std::vector<Box> m_boxes;
  std::uint64_t m_slotMask = 0;
  std::uint64_t m_pieceBase = 0;
  std::uint64_t m_nextPiece = 0;
  std::vector<Box> m_chunks;  // by id >> kChunkShift, ring of power-of-two size
  std::vector<Box> m_blocks;  // by id >> kBlockShift, likewise
  std::vector<ChunkBoxes> m_chunkBoxes;  // alongside m_chunks
  std::uint64_t m_chunkMask = 0;
  std::uint64_t m_blockMask = 0;
  std::vector<Piece> m_head;  // the first pieces of the input run
  std::uint32_t m_headRun = 0;
  Box m_headBox;  // of the pieces in m_head
  std::vector<Hit> m_hits;

  // ---------------------------------------------------------------- output

  Point3D m_tool3;       // where the tool is after the last motion out
  Point3D m_outProgram;  // programmed point after the last motion out
  struct LastOut {
    Kind kind = Kind::Linear;
    unsigned int flags = 0;
    double feed = 0.0;
    Vector3D axis{0, 0, 1};
    bool any = false;
  } m_lastOut;

  struct Walker {
    std::uint32_t run = 0;  // 0: no run being cut
    bool parked = false;
    bool ledIn = false;
    std::uint64_t piece = 0;  // next piece to cut, or to search from when parked
    double u = 0.0;
    V2 parkedAt;
    bool resumeKnown = false;
    bool scanFresh = false;  // the search may take the start of the piece it is at
    bool joined = false;     // the tool is on the extension of the piece, before its start
    // Pieces before this one have been searched in vain since the tool
    // stopped: a point found unclear stays so as more contour comes in, and
    // the straight line from where the tool stands too.
    std::uint64_t searched = 0;
    std::uint64_t resumePiece = 0;
    double resumeU = 0.0;
  } m_walker;

  struct Episode {
    bool open = false;
    bool stopped = false;  // the tool stopped and never found its way on
    V2 from, to;           // the point where the path left off, and where it went on
    struct Skipped {
      Element el;
      double r;
      unsigned int marker;
    };
    std::vector<Skipped> skipped;
  } m_episode;

  struct Gathered {
    std::uint64_t id;
    double u;
    V2 dir;
    V2 toward;
  };
  std::vector<Gathered> m_gather;

  // --------------------------------------------------------------- helpers

  NCStream* out() { return m_out.get(); }
  bool reentrant() const { return m_emitting > 0; }

  struct EmitGuard {
    explicit EmitGuard(int& depth) : m_depth(depth) { ++m_depth; }
    ~EmitGuard() { --m_depth; }
    int& m_depth;
  };

  void warn(unsigned int marker, std::string const& text) {
    if (m_warn) m_warn(marker, text);
  }

  double tolerance() const {
    double const t = m_context.getTolerance();
    return std::isfinite(t) && t > 0.0 ? t : 0.0;
  }

  void updateRadius() {
    m_radius = m_tool.getRadius() * NCUnit::getUnitConversionFactor(m_tool.getUnit(), m_context.getUnit());
  }

  Piece& piece(std::uint64_t id) { return m_slots[static_cast<std::size_t>(id & m_slotMask)]; }
  Box const& boxOfPiece(std::uint64_t id) const { return m_boxes[static_cast<std::size_t>(id & m_slotMask)]; }
  bool headEvicted() const { return !m_head.empty() && m_head.front().id < m_pieceBase; }
  bool alive(std::uint64_t id) const { return id >= m_pieceBase && id < m_nextPiece; }

  // -------------------------------------------------------------- queueing

  // Points and the element are written before they are read, for every
  // kind, so a reused slot only needs its plain fields cleared.
  Event& newEvent(Kind kind) {
    Event& e = m_queue.pushSlot();
    e.kind = kind;
    e.role = Role::Plain;
    e.hasPayload = false;
    e.flags = 0;
    e.i = 0;
    e.a = e.b = e.c = 0.0;
    e.run = 0;
    e.side = 0;
    e.r = 0.0;
    e.walked = 0.0;
    return e;
  }

  template <typename T>
  void hold(Kind kind, T&& payload) {
    Event& e = newEvent(kind);
    e.hasPayload = true;
    m_payloads.emplace_back(std::forward<T>(payload));
  }

  Event& holdPlain(Kind kind) { return newEvent(kind); }

  // Sends held events out, oldest first, until only `keep` motions are held;
  // the events after the last motion sent wait for their own motion unless
  // `all` is set.
  void release(std::size_t keep, bool all) {
    EmitGuard guard(m_emitting);
    while (m_heldMotions > keep && !m_queue.empty()) {
      while (!m_queue.empty()) {
        Event& e = m_queue.front();
        bool const motion = isMotion(e.kind);
        if (motion) {
          --m_heldMotions;
          emitMotion(e);
        } else {
          emitOther(e);
        }
        m_queue.popFront();
        if (motion) break;
      }
    }
    if (all) {
      while (!m_queue.empty()) {
        emitOther(m_queue.front());
        m_queue.popFront();
      }
    }
  }

  // An uncompensated motion needs nothing after it: it goes out at once,
  // with all that was held before it (a compensated run it ends is complete,
  // since what it is checked against is its own run). So only compensated
  // runs are delayed, and a caller that keeps state beside each motion (the
  // axis values of a 5-axis move) finds it in step wherever nothing is
  // compensated.
  void afterMotionIn(bool compensated) {
    ++m_heldMotions;
    if (!compensated)
      release(0, false);
    else if (m_heldMotions > m_lookAhead)
      release(m_lookAhead, false);
  }

  // Everything out, the tool back on the programmed point, the run over.
  void flush() {
    release(0, false);
    {
      EmitGuard guard(m_emitting);
      endWalkerRun();
      if (dist(xy(m_tool3), xy(m_outProgram)) > kLenEps && m_lastOut.any) {
        unsigned int const flags = m_lastOut.flags & ~COMPENSATION_SIDE_MASK;
        emitStraight(m_lastOut.kind, flags, m_lastOut.feed, m_lastOut.axis, m_outProgram);
      }
    }
    release(0, true);
    m_in.active = false;
    m_pieceBase = m_nextPiece;
    m_head.clear();
    m_walker = Walker();
    m_walker.piece = m_nextPiece;
  }

  // ------------------------------------------------------- output: plain

  void emitOther(Event& e) {
    if (!e.hasPayload) {
      emitPlainEvent(e);
      return;
    }
    Payload payload = std::move(m_payloads.front());
    m_payloads.pop_front();
    NCStream* o = out();
    if (!o) return;
    switch (e.kind) {
      case Kind::PassThroughW: o->passThrough(std::get<std::wstring>(payload)); break;
      case Kind::PassThrough: o->passThrough(std::get<std::string>(payload)); break;
      case Kind::CommentW: o->onComment(std::get<std::wstring>(payload)); break;
      case Kind::Comment: o->onComment(std::get<std::string>(payload)); break;
      case Kind::Command: o->onCommand(static_cast<Command>(e.i)); break;
      case Kind::EntityIndex: o->onToolpathEntityIndex(ToolpathEntityIndex(static_cast<std::uint32_t>(e.i))); break;
      case Kind::MachineCommand: o->onMachineCommand(e.i); break;
      case Kind::Coolant: o->onCoolant(e.i); break;
      case Kind::SpindleSpeed: o->onSpindleSpeed(e.a); break;
      case Kind::CompensationMode: o->onRadiusCompensationMode(e.i != 0); break;
      case Kind::CompensationSide: o->onRadiusCompensation(e.i); break;
      case Kind::Open: o->onOpen(); break;
      case Kind::ParamPoint: o->onParameter(std::get<std::string>(payload), e.p); break;
      case Kind::ParamDouble: o->onParameter(std::get<std::string>(payload), e.a); break;
      case Kind::ParamInt: o->onParameter(std::get<std::string>(payload), e.i); break;
      case Kind::ParamWString: {
        auto const& nw = std::get<NamedWideText>(payload);
        o->onParameter(nw.name, nw.value);
        break;
      }
      case Kind::ParamString: {
        auto const& nt = std::get<NamedText>(payload);
        o->onParameter(nt.name, nt.value);
        break;
      }
      case Kind::Stock: o->onStock(e.p, e.q); break;
      case Kind::Context: o->onContext(std::get<NCContext>(payload)); break;
      case Kind::Tool: o->onTool(std::get<NCTool>(payload)); break;
      case Kind::ToolChange: o->onToolChange(std::get<NCTool>(payload)); break;
      case Kind::Section: o->onSection(); break;
      case Kind::Group: o->onGroup(std::get<std::string>(payload)); break;
      case Kind::TurnGroup: o->onTurnGroup(std::get<std::string>(payload)); break;
      case Kind::GroupEnd: o->onGroupEnd(); break;
      case Kind::TurnGroupEnd: o->onTurnGroupEnd(); break;
      case Kind::Dwell: o->onDwell(e.a); break;
      case Kind::Skip: o->onSkip(); break;
      case Kind::LineNumber: o->onLineNumber(static_cast<unsigned int>(e.i)); break;
      case Kind::AxisOrdering: o->onMachineAxisOrdering(std::get<AxisOrdering>(payload)); break;
      case Kind::AxisValues: o->onMachineAxisValues(std::get<AxisValues>(payload)); break;
      case Kind::Frame: o->onFrame(std::get<Frame>(payload)); break;
      default: break;
    }
  }

  // The events without a payload.
  void emitPlainEvent(Event const& e) {
    NCStream* o = out();
    if (!o) return;
    switch (e.kind) {
      case Kind::LineNumber: o->onLineNumber(static_cast<unsigned int>(e.i)); break;
      case Kind::EntityIndex: o->onToolpathEntityIndex(ToolpathEntityIndex(static_cast<std::uint32_t>(e.i))); break;
      case Kind::Command: o->onCommand(static_cast<Command>(e.i)); break;
      case Kind::MachineCommand: o->onMachineCommand(e.i); break;
      case Kind::Coolant: o->onCoolant(e.i); break;
      case Kind::SpindleSpeed: o->onSpindleSpeed(e.a); break;
      case Kind::CompensationMode: o->onRadiusCompensationMode(e.i != 0); break;
      case Kind::CompensationSide: o->onRadiusCompensation(e.i); break;
      case Kind::Open: o->onOpen(); break;
      case Kind::Stock: o->onStock(e.p, e.q); break;
      case Kind::Section: o->onSection(); break;
      case Kind::GroupEnd: o->onGroupEnd(); break;
      case Kind::TurnGroupEnd: o->onTurnGroupEnd(); break;
      case Kind::Dwell: o->onDwell(e.a); break;
      case Kind::Skip: o->onSkip(); break;
      default: break;
    }
  }

  // A motion exactly as it was given.
  void emitVerbatim(Event& e) {
    Payload payload;
    if (e.hasPayload) {
      payload = std::move(m_payloads.front());
      m_payloads.pop_front();
    }
    m_tool3 = e.end;
    NCStream* o = out();
    if (!o) return;
    switch (e.kind) {
      case Kind::Rapid: o->onRapid(e.p, e.flags); break;
      case Kind::Rapid5D: o->onRapid5D(e.p, e.v, e.flags); break;
      case Kind::Linear: o->onLinear(e.p, e.a, e.flags); break;
      case Kind::Linear5D: o->onLinear5D(e.p, e.v, e.a, e.flags); break;
      case Kind::LinearExtrude: o->onLinearExtrude(e.p, e.a, e.c, e.flags); break;
      case Kind::CWArc: o->onCWArc(e.q, e.p, e.v, e.a, e.flags); break;
      case Kind::CCWArc: o->onCCWArc(e.q, e.p, e.v, e.a, e.flags); break;
      case Kind::Circular: o->onCircular(e.q, e.p, e.v, e.b, e.a, e.flags); break;
      case Kind::CWArcExtrude: o->onCWArcExtrude(e.q, e.p, e.v, e.a, e.c, e.flags); break;
      case Kind::CCWArcExtrude: o->onCCWArcExtrude(e.q, e.p, e.v, e.a, e.c, e.flags); break;
      case Kind::CircularExtrude: o->onCircularExtrude(e.q, e.p, e.v, e.b, e.a, e.c, e.flags); break;
      case Kind::CWCircle: o->onCWCircle(e.q, e.p, e.v, e.a, e.flags); break;
      case Kind::CCWCircle: o->onCCWCircle(e.q, e.p, e.v, e.a, e.flags); break;
      case Kind::Spline: o->onSpline(std::get<std::vector<Point3D>>(payload), e.a, e.flags); break;
      case Kind::Bezier: o->onBezier(std::get<std::vector<Point3D>>(payload), e.a, e.flags); break;
      case Kind::NURBS: {
        auto const& n = std::get<Nurbs>(payload);
        o->onNURBS(n.points, n.weights, n.knots, e.i, e.a, e.flags);
        break;
      }
      default: break;
    }
  }

  // A straight move in the form of a motion of kind `kind`: rapids stay
  // rapids, 5-axis moves keep their axis, everything else becomes a linear.
  void emitStraight(Kind kind, unsigned int flags, double feed, Vector3D const& axis, Point3D const& target) {
    m_tool3 = target;
    NCStream* o = out();
    if (!o) return;
    switch (kind) {
      case Kind::Rapid: o->onRapid(target, flags); break;
      case Kind::Rapid5D: o->onRapid5D(target, axis, flags); break;
      case Kind::Linear5D: o->onLinear5D(target, axis, feed, flags); break;
      default: o->onLinear(target, feed, flags); break;
    }
  }

  void lineTo(Event const& e, V2 p, double z) { emitStraight(e.kind, e.flags, e.a, e.v, Point3D(p.x, p.y, z)); }

  void arcTo(Event const& e, V2 centre, double radius, double startAngle, double sweep, double z) {
    V2 const endXY = centre + unitAt(startAngle + sweep) * radius;
    Point3D const end(endXY.x, endXY.y, z);
    double const span = std::fabs(sweep);
    if (e.kind == Kind::Rapid || e.kind == Kind::Rapid5D) {
      // A rapid has no arc: tangent rapids outside the arc, as close to it
      // as the tolerance allows.
      double const tol = std::max(tolerance(), 1e-6 * radius);
      double const maxStep = 2.0 * std::acos(std::min(1.0, radius / (radius + tol)));
      int n = maxStep > 0.0 ? static_cast<int>(std::ceil(span / maxStep)) : 64;
      n = std::max(1, std::min(n, 64));
      if (span / n > kPi / 2.0) n = static_cast<int>(std::ceil(span / (kPi / 2.0)));
      double const step = sweep / n;
      double const z0 = m_tool3.z;
      double const outer = radius / std::cos(step / 2.0);
      for (int k = 0; k < n; ++k) {
        V2 const v = centre + unitAt(startAngle + (k + 0.5) * step) * outer;
        lineTo(e, v, lerp(z0, z, (k + 0.5) / n));
      }
      lineTo(e, endXY, z);
      return;
    }
    Point3D const c(centre.x, centre.y, m_tool3.z);
    Vector3D const normal(0.0, 0.0, sweep >= 0.0 ? 1.0 : -1.0);
    m_tool3 = end;
    NCStream* o = out();
    if (!o) return;
    if (e.kind != Kind::Circular && span > kArcSafeSweep && span < kTwoPi - kArcSafeSweep)
      o->onCCWArc(c, end, normal, e.a, e.flags);
    else
      o->onCircular(c, end, normal, span, e.a, e.flags);
  }

  void zOnly(Event const& e) {
    if (std::fabs(e.end.z - m_tool3.z) > kLenEps) lineTo(e, xy(m_tool3), e.end.z);
  }

  void rememberLast(Event const& e) {
    m_lastOut.kind = e.kind;
    m_lastOut.flags = e.flags;
    m_lastOut.feed = e.a;
    m_lastOut.axis = e.v;
    m_lastOut.any = true;
  }

  // ---------------------------------------------------- output: motions

  void emitMotion(Event& e) {
    switch (e.role) {
      case Role::Plain:
        endWalkerRun();
        emitPlain(e);
        break;
      case Role::LeadIn:
        beginWalkerRun(e.run);
        leadIn(e);
        walk(e);
        break;
      case Role::Contour:
        if (m_walker.run != e.run) {
          beginWalkerRun(e.run);
          leadIn(e);
        }
        walk(e);
        finishContour(e);
        break;
      case Role::Still:
        if (m_walker.run != e.run) {
          endWalkerRun();
          emitPlain(e);
        } else if (m_walker.parked) {
          walk(e);
        } else {
          zOnly(e);
        }
        break;
    }
    m_outProgram = e.end;
    rememberLast(e);
    evict();
  }

  // An uncompensated motion; the first after a run leads out of it.
  void emitPlain(Event& e) {
    if (!isStraight(e.kind) && dist(xy(m_tool3), xy(e.start)) > kLenEps) {
      emitStraight(e.kind, e.flags, e.a, e.v, e.start);
    }
    emitVerbatim(e);
  }

  // ------------------------------------------------------------ walking

  void beginWalkerRun(std::uint32_t run) {
    endWalkerRun();
    m_walker = Walker();
    m_walker.run = run;
    // The run's pieces come after those of the runs before it.
    std::uint64_t id = m_pieceBase;
    while (id < m_nextPiece && piece(id).run < run) ++id;
    m_walker.piece = id;
  }

  void endWalkerRun() {
    if (m_walker.run == 0) return;
    if (m_walker.parked) m_episode.stopped = true;
    closeEpisode();
    m_walker.run = 0;
    m_walker.parked = false;
  }

  bool runHasPieces() {
    return m_walker.piece < m_nextPiece && piece(m_walker.piece).run == m_walker.run;
  }

  // The lead-in of the run: straight to the first point of the offset path
  // that is clear of the contour.
  void leadIn(Event& e) {
    if (!runHasPieces()) {
      if (e.role == Role::LeadIn) {
        // No contour move after it (yet): it ends on its own offset point.
        V2 const t = e.el.tangentAt(1.0);
        V2 const n = e.side == 1 ? perp(t) : perp(t) * -1.0;
        lineTo(e, xy(e.end) + n * e.r, e.end.z);
        m_walker.ledIn = true;
      }
      return;
    }
    std::uint64_t id = 0;
    double u = 0.0;
    if (findClearPoint(true, false, V2{}, id, u)) {
      Piece& p = piece(id);
      lineTo(e, p.pointAt(u), p.zAt(u));
      m_walker.piece = id;
      m_walker.u = u;
      m_walker.ledIn = true;
      return;
    }
    // Nothing clear yet: the tool waits where it is.
    zOnly(e);
    park(xy(m_tool3));
  }

  void park(V2 at) {
    m_walker.parked = true;
    m_walker.parkedAt = at;
    m_walker.resumeKnown = false;
    m_walker.scanFresh = false;
    m_walker.searched = 0;
    openEpisode(at);
  }

  void walk(Event& e) {
    for (;;) {
      if (m_walker.parked) {
        if (!m_walker.resumeKnown) {
          std::uint64_t id = 0;
          double u = 0.0;
          if (findClearPoint(m_walker.scanFresh, m_walker.ledIn, m_walker.parkedAt, id, u)) {
            m_walker.resumeKnown = true;
            m_walker.resumePiece = id;
            m_walker.resumeU = u;
          } else {
            m_walker.searched = m_nextPiece;
          }
        }
        if (m_walker.resumeKnown && piece(m_walker.resumePiece).motion <= e.seq) {
          Piece& p = piece(m_walker.resumePiece);
          V2 const to = p.pointAt(m_walker.resumeU);
          m_episode.to = to;
          m_episode.stopped = false;
          lineTo(e, to, p.zAt(m_walker.resumeU));
          m_walker.parked = false;
          m_walker.ledIn = true;
          m_walker.piece = m_walker.resumePiece;
          m_walker.u = m_walker.resumeU;
          m_walker.resumeKnown = false;
          continue;
        }
        zOnly(e);
        if (!m_walker.resumeKnown && e.lastPiece > m_walker.piece) {
          m_walker.piece = e.lastPiece;
          m_walker.u = 0.0;
          m_walker.scanFresh = true;
        }
        return;
      }
      if (m_walker.piece >= m_nextPiece) return;
      Piece& p = piece(m_walker.piece);
      if (p.run != m_walker.run || p.motion > e.seq) return;
      if (p.inert) {
        ++m_walker.piece;
        m_walker.u = 0.0;
        continue;
      }
      if (p.reversed) {
        park(xy(m_tool3));
        continue;
      }
      // Close a gap left by a discontinuous contour.
      V2 const here = p.pointAt(m_walker.u);
      if (!m_walker.joined && dist(here, xy(m_tool3)) > kLenEps) lineTo(e, here, p.zAt(m_walker.u));
      p.sortCrossings();
      bool turned = false;
      for (std::size_t k = 0; k < p.crossings.size(); ++k) {
        Crossing const& c = p.crossings[k];
        // A crossing where the walker stands counts too (a piece that came
        // in after the walker got here); the one it landed on leaves into
        // the clear, so it does not turn it again.
        if (c.u < m_walker.u) continue;
        if (dot(p.dirAt(c.u), c.partnerToward) <= kCrossSine) continue;
        // The path runs into the reach of another contour element here.
        cutAlong(e, p, m_walker.u, c.u);
        m_walker.u = c.u;
        std::uint64_t id = 0;
        double u = 0.0;
        if (findJump(p, c, id, u)) {
          openEpisode(c.point);
          m_episode.to = c.point;
          m_walker.piece = id;
          m_walker.u = u;
        } else {
          park(c.point);
        }
        turned = true;
        break;
      }
      if (turned) continue;
      // Ahead is a cusp into a piece that runs against its contour. Its
      // crossing with the path was not found (a contour element not yet
      // seen, or one reached from behind): cut only as far as is clear.
      if (m_walker.piece + 1 < m_nextPiece && piece(m_walker.piece + 1).reversed &&
          piece(m_walker.piece + 1).run == p.run && !clearOf(p.pointAt(1.0))) {
        double lo = m_walker.u;
        double hi = 1.0;
        double const len = p.len;
        for (int k = 0; k < 64 && (hi - lo) * len > kLenEps; ++k) {
          double const mid = 0.5 * (lo + hi);
          if (clearOf(p.pointAt(mid)))
            lo = mid;
          else
            hi = mid;
        }
        cutAlong(e, p, m_walker.u, lo);
        m_walker.u = lo;
        park(p.pointAt(lo));
        continue;
      }
      if (joinCorner(e, p)) continue;
      cutAlong(e, p, m_walker.u, 1.0);
      ++m_walker.piece;
      m_walker.u = 0.0;
    }
  }

  // A small outside corner between two lines (see makePieces) is cut
  // straight to where the offsets meet: one motion fewer, and the path stays
  // off the contour by at most the tolerance more than the radius there (the
  // finely broken curves of a CAM system turn by a fraction of a degree at
  // each point).
  bool joinCorner(Event& e, Piece& p) {
    if (p.source != Source::Line || m_walker.piece + 2 >= m_nextPiece) return false;
    Piece& corner = piece(m_walker.piece + 1);
    Piece& next = piece(m_walker.piece + 2);
    // The arc's crossings are what would tell of another contour element
    // close to the corner: with any, the walker takes the arc.
    if (!next.joinedStart || corner.source != Source::Corner || !corner.crossings.empty() || next.run != p.run)
      return false;
    double const len = p.len * (1.0 - m_walker.u);
    lineTo(e, next.joinAt, p.z1);
    p.walkedFrom = std::min(p.walkedFrom, m_walker.u);
    p.walkedTo = 1.0;
    corner.walkedFrom = 0.0;
    corner.walkedTo = 1.0;
    e.walked += len;
    if (len > kLenEps) closeEpisode();
    m_walker.piece += 2;
    m_walker.u = 0.0;
    m_walker.joined = true;
    return true;
  }

  void cutAlong(Event& e, Piece& p, double u0, double u1) {
    m_walker.joined = false;
    if (u1 <= u0) return;
    double const len = p.len * (u1 - u0);
    double const z = p.zAt(u1);
    if (len <= kLenEps && std::fabs(z - m_tool3.z) <= kLenEps) return;
    if (p.geo.arc) {
      arcTo(e, p.geo.c, p.geo.R, p.geo.a0 + p.geo.sweep * u0, p.geo.sweep * (u1 - u0), z);
      if (u1 >= 1.0) {
        V2 const end = p.geo.e;
        m_tool3.x = end.x;
        m_tool3.y = end.y;
      }
    } else {
      lineTo(e, p.pointAt(u1), z);
    }
    p.walkedFrom = std::min(p.walkedFrom, u0);
    p.walkedTo = std::max(p.walkedTo, u1);
    if (p.hasContour()) e.walked += len;
    if (len > kLenEps) closeEpisode();
  }

  void finishContour(Event& e) {
    if (!m_episode.open || e.walked > kLenEps) return;
    m_episode.skipped.push_back({e.el, e.r, e.marker});
  }

  // Where the path can go on from the crossing `c` on `p`: the same point on
  // a later piece, leaving into the clear.
  bool findJump(Piece& p, Crossing const& c, std::uint64_t& outId, double& outU) {
    V2 const X = c.point;
    m_gather.clear();
    m_gather.push_back({p.id, c.u, p.dirAt(c.u), p.towardAt(X)});
    m_gather.push_back({c.partner, c.partnerU, c.partnerDir, c.partnerToward});
    // Further pieces through the same point.
    for (std::size_t g = 0; g < m_gather.size() && m_gather.size() < 12; ++g) {
      std::uint64_t const gid = m_gather[g].id;
      if (!alive(gid)) continue;
      for (Crossing const& k : piece(gid).crossings) {
        if (dist(k.point, X) > 100.0 * kLenEps) continue;
        bool known = false;
        for (Gathered const& h : m_gather)
          if (h.id == k.partner && std::fabs(h.u - k.partnerU) < 1e-9) known = true;
        if (!known) m_gather.push_back({k.partner, k.partnerU, k.partnerDir, k.partnerToward});
        if (m_gather.size() >= 12) break;
      }
    }
    bool found = false;
    for (Gathered const& cand : m_gather) {
      bool const ahead = cand.id > p.id || (cand.id == p.id && cand.u > c.u);
      if (!ahead || !alive(cand.id)) continue;
      Piece const& q = piece(cand.id);
      if (q.run != p.run || q.reversed || q.inert) continue;
      bool clear = true;
      for (Gathered const& other : m_gather) {
        if (other.id == cand.id && other.u == cand.u) continue;
        if (dot(cand.dir, other.toward) > kCrossSine) {
          clear = false;
          break;
        }
      }
      if (!clear) continue;
      if (!found || cand.id < outId || (cand.id == outId && cand.u < outU)) {
        outId = cand.id;
        outU = cand.u;
        found = true;
      }
    }
    return found;
  }

  // Whether `X` keeps the tool radius from every contour element of the
  // walker's run that is known.
  bool clearOf(V2 X) {
    Box const probe = boxOf(X);
    bool clear = true;
    forEachContour(probe, [&](Piece const& q) {
      if (distPointElement(X, q.contour()) < q.r - kClearTol) clear = false;
      return clear;
    });
    return clear;
  }

  bool segmentClear(V2 a, V2 b) {
    Box probe = boxOf(a);
    probe.add(b);
    bool clear = true;
    forEachContour(probe, [&](Piece const& q) {
      if (distSegmentElement(a, b, q.contour()) < q.r - kClearTol) clear = false;
      return clear;
    });
    return clear;
  }

  // Calls `f` for the pieces with a contour whose box, grown by twice their
  // radius, meets `probe`; stops when `f` returns false.
  template <typename F>
  void forEachContour(Box const& probe, F&& f) {
    std::uint32_t const run = m_walker.run;
    bool goOn = true;
    if (headEvicted() && m_headBox.overlaps(probe.grown(2.0 * m_maxRadius)))
      for (Piece const& h : m_head) {
        if (h.run != run || alive(h.id) || !h.hasContour()) continue;
        if (!h.box.grown(2.0 * h.r).overlaps(probe)) continue;
        if (!f(h)) return;
      }
    if (m_nextPiece == m_pieceBase) return;
    forEachNear(probe.grown(2.0 * m_maxRadius), m_pieceBase, m_nextPiece - 1, [&](std::uint64_t id) {
      Piece const& q = piece(id);
      if (q.run != run || !q.hasContour() || !q.box.grown(2.0 * q.r).overlaps(probe)) return true;
      goOn = f(q);
      return goOn;
    });
  }

  double m_maxRadius = 0.0;

  // The first point of the walker's run, from where the walker is, that is
  // clear of the contour and from which the path goes on clear; when
  // `fromOutside` is set, also reachable from `from` in a straight line that
  // keeps clear. With `includeHere`, the walker's own point is a candidate.
  bool findClearPoint(bool includeHere, bool checkLine, V2 from, std::uint64_t& outId, double& outU) {
    std::uint64_t const first = std::max(m_walker.piece, m_walker.searched);
    for (std::uint64_t id = first; id < m_nextPiece; ++id) {
      Piece& p = piece(id);
      if (p.run != m_walker.run) break;
      if (p.reversed || p.inert) continue;
      p.sortCrossings();
      bool const atWalker = id == m_walker.piece;
      double const uFrom = atWalker ? m_walker.u : 0.0;
      bool const startCounts = !atWalker || includeHere;
      // Candidates on this piece: its start, and its crossings, in order.
      std::size_t k = 0;
      double u = uFrom;
      bool haveCandidate = startCounts;
      for (;;) {
        if (!haveCandidate) {
          while (k < p.crossings.size() && p.crossings[k].u <= u + 1e-12) ++k;
          if (k >= p.crossings.size()) break;
          u = p.crossings[k].u;
        }
        haveCandidate = false;
        double next = 1.0;
        for (std::size_t j = k; j < p.crossings.size(); ++j)
          if (p.crossings[j].u > u + 1e-12) {
            next = p.crossings[j].u;
            break;
          }
        V2 const Y = p.pointAt(u);
        if (clearOf(Y) && clearOf(p.pointAt(0.5 * (u + next))) && (!checkLine || segmentClear(from, Y))) {
          outId = id;
          outU = u;
          return true;
        }
        if (next >= 1.0) break;
      }
    }
    return false;
  }

  // ------------------------------------------------------------ episodes

  void openEpisode(V2 at) {
    if (m_episode.open) return;
    m_episode.open = true;
    m_episode.stopped = false;
    m_episode.from = at;
    m_episode.to = at;
    m_episode.skipped.clear();
  }

  // Reports the contour elements left out whose middle the path now stays
  // off by more than the tolerance. (Their ends are often touched at a
  // corner; the round tool leaves inside corners of any contour uncut, and an
  // element cut across its middle, like the floor of a slot as wide as the
  // tool, is not left out.)
  void closeEpisode() {
    if (!m_episode.open) return;
    m_episode.open = false;
    std::size_t lost = 0;
    unsigned int firstMarker = 0;
    double const tol = tolerance();
    for (auto const& s : m_episode.skipped) {
      double const d = distPointSegment(s.el.pointAt(0.5), m_episode.from, m_episode.to);
      if (d - s.r > tol + kClearTol) {
        if (lost == 0) firstMarker = s.marker;
        ++lost;
      }
    }
    m_episode.skipped.clear();
    if (lost == 0) return;
    if (m_episode.stopped)
      warn(firstMarker, "Line " + std::to_string(firstMarker) +
                            ": cutter compensation found no path clear of the contour within the look-ahead of " +
                            plural(m_lookAhead, " move", " moves") +
                            "; the tool stays where the path was last clear, and " +
                            plural(lost, " move is", " moves are") + " left uncut.");
    else
      warn(firstMarker, "Line " + std::to_string(firstMarker) +
                            ": cutter compensation cut out a loop that would gouge the contour, which is narrower "
                            "than the tool here; " +
                            plural(lost, " move is", " moves are") + " left uncut.");
  }

  // --------------------------------------------------------- input: motions

  void inputWarning(int kind, std::string const& what) {
    if (m_lastInputWarning == kind) return;
    m_lastInputWarning = kind;
    warn(m_lastMarker, "Line " + std::to_string(m_lastMarker) + ": " + what);
  }

  // Not a number and the infinities fail the comparisons too.
  static bool finiteWithin(Point3D const& p) {
    return std::fabs(p.x) <= kLimit && std::fabs(p.y) <= kLimit && std::fabs(p.z) <= kLimit;
  }

  enum class Geo { None, Still, Element };

  // The XY path of a motion, or why it has none that can be compensated.
  Geo geometryOf(Event& e, int& why) {
    why = 0;
    V2 const S = xy(e.start);
    if (!finiteWithin(e.start) || !finiteWithin(e.p)) {
      why = 1;
      return Geo::None;
    }
    switch (e.kind) {
      case Kind::Rapid5D:
      case Kind::Linear5D: {
        Vector3D const a = e.v;
        double const l = std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
        if (!(l > 0.0) || !std::isfinite(l) || a.z <= 0.0 || std::fabs(a.x) > kAxisTol * l ||
            std::fabs(a.y) > kAxisTol * l) {
          why = 2;
          return Geo::None;
        }
      }
        [[fallthrough]];
      case Kind::Rapid:
      case Kind::Linear: {
        V2 const E = xy(e.p);
        e.el.setLine(S, E, dist(S, E));
        if (e.el.L <= kLenEps) return Geo::Still;
        return Geo::Element;
      }
      case Kind::CWArc:
      case Kind::CCWArc:
      case Kind::CWCircle:
      case Kind::CCWCircle:
      case Kind::Circular: {
        if (!finiteWithin(e.q)) {
          why = 1;
          return Geo::None;
        }
        Vector3D n = e.v;
        if (e.kind == Kind::CWArc || e.kind == Kind::CWCircle) n = -n;
        double const l = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
        if (!(l > 0.0) || !std::isfinite(l) || std::fabs(n.x) > kAxisTol * l || std::fabs(n.y) > kAxisTol * l) {
          why = 3;
          return Geo::None;
        }
        V2 const C = xy(e.q);
        double const R = dist(S, C);
        double sweep = 0.0;
        if (e.kind == Kind::Circular) {
          if (!std::isfinite(e.b) || std::fabs(e.b) > kMaxSweep) {
            why = 5;
            return Geo::None;
          }
          sweep = n.z > 0.0 ? e.b : -e.b;
        } else {
          // As a helix reads it: counterclockwise about the normal, in
          // (0, 2 pi], the end on the start's ray making a whole turn.
          V2 const x = R > 0.0 ? (S - C) * (1.0 / R) : V2{1.0, 0.0};
          V2 const y = n.z > 0.0 ? perp(x) : perp(x) * -1.0;
          V2 const w = xy(e.p) - C;
          double angle = std::atan2(dot(w, y), dot(w, x));
          if (angle <= 0.0) angle += kTwoPi;
          sweep = n.z > 0.0 ? angle : -angle;
        }
        if (R <= kLenEps || R * std::fabs(sweep) <= kLenEps) return Geo::Still;
        e.el = Element::circle(C, R, angleOf(S - C), sweep);
        return Geo::Element;
      }
      case Kind::LinearExtrude:
      case Kind::CWArcExtrude:
      case Kind::CCWArcExtrude:
      case Kind::CircularExtrude:
        why = 4;
        return Geo::None;
      default:
        why = 6;
        return Geo::None;
    }
  }

  static int sideOf(unsigned int flags) {
    unsigned int const s = flags & COMPENSATION_SIDE_MASK;
    return s == COMPENSATION_SIDE_1 ? 1 : (s == COMPENSATION_SIDE_2 ? 2 : 0);
  }

  void motionIn(Event& e) {
    e.seq = ++m_motionSeq;
    e.marker = m_lastMarker;
    e.start = m_inputPos;
    if (e.kind == Kind::Spline || e.kind == Kind::Bezier || e.kind == Kind::NURBS) {
      // Their end is their last control point, in their payload.
      Payload const& pl = m_payloads.back();
      std::vector<Point3D> const* points = std::get_if<std::vector<Point3D>>(&pl);
      if (!points) {
        if (auto const* n = std::get_if<Nurbs>(&pl)) points = &n->points;
      }
      e.p = points && !points->empty() ? points->back() : m_inputPos;
    }
    e.end = e.p;
    int const flagSide = sideOf(e.flags);
    m_compensating = flagSide != 0;
    if (flagSide == 0) m_lastInputWarning = 0;

    int side = flagSide;
    double r = m_radius;
    int why = 0;
    Geo const geo = side != 0 ? geometryOf(e, why) : Geo::None;
    if (side != 0) {
      if (geo == Geo::None) {
        static char const* const kWhat[] = {
            "",
            ("a move with coordinates that are not finite or beyond 1e6 is not compensated; it is output as "
             "programmed."),
            "a 5-axis move whose tool axis is not +Z is not compensated; it is output as programmed.",
            "an arc outside the XY plane is not compensated; it is output as programmed.",
            "an extruding move is not compensated; it is output as programmed.",
            "an arc of more than 16 turns is not compensated; it is output as programmed.",
            "a spline move is not compensated; it is output as programmed.",
        };
        inputWarning(why, kWhat[why]);
        side = 0;
      } else if (!std::isfinite(r) || std::fabs(r) > kLimit) {
        inputWarning(7,
                     "the tool radius is not a usable number (is the tool's unit known?); the move is output as "
                     "programmed.");
        side = 0;
      } else {
        m_lastInputWarning = 0;
      }
    }
    if (side != 0 && r < 0.0) {
      side = 3 - side;
      r = -r;
    }
    if (side != 0 && r <= kLenEps) side = 0;
    e.side = side;
    e.r = r;

    if (side == 0) {
      e.role = Role::Plain;
      m_in.active = false;
    } else {
      bool const join = m_in.active && !m_in.broken && m_in.side == side && m_in.r == r;
      if (!join) startInputRun(side, r);
      e.run = m_in.id;
      if (geo == Geo::Still) {
        e.role = Role::Still;
      } else if (!m_in.hasLeadIn && !m_in.hasElement && isStraight(e.kind)) {
        e.role = Role::LeadIn;
        m_in.hasLeadIn = true;
      } else {
        e.role = Role::Contour;
        makePieces(e);
      }
    }
    e.lastPiece = m_nextPiece;
    m_in.broken = false;
    m_inputPos = e.end;
    afterMotionIn(side != 0);
  }

  void startInputRun(int side, double r) {
    m_in.active = true;
    m_in.broken = false;
    m_in.id = m_nextRun++;
    m_in.side = side;
    m_in.r = r;
    m_in.hasLeadIn = false;
    m_in.hasElement = false;
    m_in.lateWarned = false;
    m_head.clear();
    m_headRun = m_in.id;
  }

  V2 sideNormal(V2 t, int side) const { return side == 1 ? perp(t) : perp(t) * -1.0; }

  Piece& newPiece(Event const& e, Source source) {
    if (m_nextPiece - m_pieceBase + 1 > m_slotMask + 1 || m_slots.empty()) growSlots();
    Piece& p = piece(m_nextPiece);
    p.id = m_nextPiece++;
    p.run = e.run;
    p.motion = e.seq;
    p.marker = e.marker;
    p.source = source;
    p.reversed = false;
    p.inert = false;
    p.r = e.r;
    p.joinedStart = false;
    p.walkedFrom = 1.0;
    p.walkedTo = 0.0;
    p.sorted = true;
    p.crossings.clear();
    return p;
  }

  void makePieces(Event& e) {
    std::uint64_t const firstNew = m_nextPiece;
    int const side = e.side;
    double const r = e.r;
    Element const& el = e.el;
    m_maxRadius = std::max(m_maxRadius, r);
    V2 const t0 = el.tangentAt(0.0);
    bool joinStart = false;
    V2 joinAt;
    if (m_in.hasElement) {
      double const c = dot(m_in.lastTangent, t0);
      double const sn = cross(m_in.lastTangent, t0);
      if (!(sn == 0.0 && c > 0.0)) {  // else straight on: nothing at the corner
        V2 const corner = xy(e.start);
        V2 const n0 = sideNormal(m_in.lastTangent, side);
        V2 const n1 = sideNormal(t0, side);
        bool const outside = side == 1 ? sn < 0.0 : sn > 0.0;
        double const tol = tolerance();
        // A small outside turn between two lines: their offsets meet at the
        // corner plus (n0 + n1) r / (1 + cos turn), which is within the
        // tolerance of the arc about the corner when cos(turn / 2) (r + tol)
        // is at least r. The path may go straight there instead of round the
        // arc, if nothing crosses the arc (see joinCorner).
        if (outside && !el.arc && m_in.lastWasLine && c > 0.0 && tol > 0.0 &&
            std::sqrt(0.5 * (1.0 + c)) * (r + tol) >= r) {
          joinStart = true;
          joinAt = corner + (n0 + n1) * (r / (1.0 + c));
        }
        {
          double theta = std::atan2(sn, c);
          if (std::fabs(theta) >= kPi - 1e-12) theta = side == 1 ? -kPi : kPi;  // a reversal turns outside
          if (r * std::fabs(theta) > kLenEps) {
            Piece& p = newPiece(e, Source::Corner);
            p.reversed = side == 1 ? theta > 0.0 : theta < 0.0;
            p.corner = corner;
            p.geo = Element::circle(corner, r, angleOf(n0), theta, corner + n0 * r, corner + n1 * r);
            p.z0 = p.z1 = e.start.z;
            if (std::fabs(theta) <= kPi / 2.0) {
              // The chord's box grown by the sagitta, r (1 - cos(theta / 2)).
              Box b = boxOf(p.geo.s);
              b.add(p.geo.e);
              setBox(p, b.grown(r * (1.0 - std::sqrt(0.5 * (1.0 + c)))));
            } else {
              setBox(p, p.geo.box());
            }
          }
        }
      }
    }
    Piece& p = newPiece(e, el.arc ? Source::Arc : Source::Line);
    p.z0 = e.start.z;
    p.z1 = e.end.z;
    p.joinedStart = joinStart;
    p.joinAt = joinAt;
    if (!el.arc) {
      V2 const n = sideNormal(t0, side);
      p.geo.setLine(el.s + n * r, el.e + n * r, el.L);
      p.towardConst = n * -1.0;
    } else {
      p.arcCentre = el.c;
      p.arcR = el.R;
      p.arcA0 = el.a0;
      p.arcSweep = el.sweep;
      // Towards the centre when the tool is on the centre's side.
      double const kappa = (el.sweep > 0.0) == (side == 1) ? 1.0 : -1.0;
      double const offset = el.R - kappa * r;
      if (std::fabs(offset) * std::fabs(el.sweep) <= kLenEps) {
        p.inert = true;
        p.geo = Element::line(el.c, el.c);
      } else {
        p.geo = Element::circle(el.c, std::fabs(offset), offset > 0.0 ? el.a0 : el.a0 + kPi, el.sweep);
        p.reversed = offset < 0.0;
        p.towardScale = kappa / offset;
      }
    }
    setBox(p, p.geo.box());
    findCrossings(firstNew);
    m_in.hasElement = true;
    m_in.lastWasLine = !el.arc;
    m_in.lastTangent = el.tangentAt(1.0);
    lateCheckOfWalker(e, piece(m_nextPiece - 1));
  }

  // ---------------------------------------------------- piece bookkeeping

  Box& chunk(std::uint64_t ch) { return m_chunks[static_cast<std::size_t>(ch & m_chunkMask)]; }
  Box& block(std::uint64_t b) { return m_blocks[static_cast<std::size_t>(b & m_blockMask)]; }
  ChunkBoxes& chunkBoxes(std::uint64_t ch) { return m_chunkBoxes[static_cast<std::size_t>(ch & m_chunkMask)]; }

  // Calls `f(id)` for the pieces from `lo` to `hi` whose box meets `probe`,
  // through the boxes of their blocks and chunks.
  template <typename F>
  void forEachNear(Box const& probe, std::uint64_t lo, std::uint64_t hi, F&& f) {
    if (lo > hi) return;
    for (std::uint64_t b = lo >> kBlockShift; b <= (hi >> kBlockShift); ++b) {
      if (!block(b).overlaps(probe)) continue;
      std::uint64_t const cFrom = std::max(lo, b << kBlockShift) >> kChunkShift;
      std::uint64_t const cTo = std::min(hi, ((b + 1) << kBlockShift) - 1) >> kChunkShift;
      float const fx0 = down(probe.x0), fy0 = down(probe.y0), fx1 = up(probe.x1), fy1 = up(probe.y1);
      for (std::uint64_t ch = cFrom; ch <= cTo; ++ch) {
        if (!chunk(ch).overlaps(probe)) continue;
        // Test the chunk's boxes together, then visit the ones that met and
        // lie between lo and hi.
        std::uint64_t const first = ch << kChunkShift;
        unsigned int const k0 = static_cast<unsigned int>(std::max(lo, first) - first);
        unsigned int const k1 = static_cast<unsigned int>(std::min(hi, first + (1u << kChunkShift) - 1) - first);
        std::uint32_t met = meeting(chunkBoxes(ch), fx0, fy0, fx1, fy1);
        met &= (0xFFFFu >> (15 - k1)) & (0xFFFFu << k0);
        while (met != 0) {
          unsigned int const k = static_cast<unsigned int>(__builtin_ctz(met));
          met &= met - 1;
          if (boxOfPiece(first + k).overlaps(probe) && !f(first + k)) return;
        }
      }
    }
  }

  void growSlots() {
    std::size_t const size = m_slots.empty() ? 256 : m_slots.size() * 2;
    std::vector<Piece> slots(size);
    std::vector<Box> boxes(size);
    std::uint64_t const mask = size - 1;
    for (std::uint64_t id = m_pieceBase; id < m_nextPiece; ++id) {
      slots[id & mask] = std::move(piece(id));
      boxes[id & mask] = boxOfPiece(id);
    }
    m_slots.swap(slots);
    m_boxes.swap(boxes);
    m_slotMask = mask;
    // A chunk for every 16 slots, and one more for a chunk cut by the base.
    m_chunks.assign(2 * (size >> kChunkShift), Box());
    m_chunkBoxes.assign(2 * (size >> kChunkShift), ChunkBoxes());
    m_blocks.assign(2 * (size >> kBlockShift), Box());
    m_chunkMask = m_chunks.size() - 1;
    m_blockMask = m_blocks.size() - 1;
    for (std::uint64_t id = m_pieceBase; id < m_nextPiece; ++id) addToChunk(id);
  }

  void addToChunk(std::uint64_t id) {
    Box const& box = boxOfPiece(id);
    ChunkBoxes& fb = chunkBoxes(id >> kChunkShift);
    std::size_t const lane = static_cast<std::size_t>(id & ((1u << kChunkShift) - 1));
    fb.x0[lane] = down(box.x0);
    fb.y0[lane] = down(box.y0);
    fb.x1[lane] = up(box.x1);
    fb.y1[lane] = up(box.y1);
    Box& c = chunk(id >> kChunkShift);
    if ((id & ((1u << kChunkShift) - 1)) == 0 || id == m_pieceBase)
      c = box;
    else
      c.add(box);
    Box& b = block(id >> kBlockShift);
    if ((id & ((1u << kBlockShift) - 1)) == 0 || id == m_pieceBase)
      b = box;
    else
      b.add(box);
  }

  void setBox(Piece& p, Box const& box) {
    p.box = box;
    p.len = p.geo.length();
    m_boxes[static_cast<std::size_t>(p.id & m_slotMask)] = p.box;
    addToChunk(p.id);
    if (m_head.size() < kHeadPieces && m_headRun == p.run) {
      if (m_head.empty())
        m_headBox = p.box;
      else
        m_headBox.add(p.box);
      m_head.push_back(p);
      m_head.back().crossings.clear();
      m_head.back().crossings.shrink_to_fit();
    }
  }

  bool stillAhead(Piece const& q, double u) const {
    if (m_walker.run == 0 || q.run != m_walker.run) return q.run > m_walker.run || m_walker.run == 0;
    if (q.id > m_walker.piece) return true;
    return q.id == m_walker.piece && u >= m_walker.u && !m_walker.parked;
  }

  // Crossings of the pieces from `firstNew` on (those of the newest motion)
  // with the pieces before them. A crossing with a stretch already cut means
  // the cut went into the reach of this contour: a gouge, reported.
  void findCrossings(std::uint64_t firstNew) {
    bool gouged = false;
    auto test = [&](Piece& p, Piece& q, bool inRing) {
      if (q.run != p.run || q.inert || p.inert || q.id + 1 >= p.id || !q.box.overlaps(p.box)) return;
      intersect(p.geo, q.geo, m_hits);
      for (Hit const& h : m_hits) {
        V2 const X = h.point;
        V2 const pDir = p.dirAt(h.ua);
        V2 const qDir = q.dirAt(h.ub);
        V2 const pToward = p.towardAt(X);
        V2 const qToward = q.towardAt(X);
        p.crossings.push_back({h.ua, q.id, h.ub, X, qDir, qToward});
        p.sorted = false;
        if (inRing && stillAhead(q, h.ub)) {
          q.crossings.push_back({h.ub, p.id, h.ua, X, pDir, pToward});
          q.sorted = false;
        } else if (!gouged && q.walkedTo > q.walkedFrom) {
          // Inside the stretch cut, or at an end of it with the stretch on
          // the contour's side.
          double const margin = kLenEps / std::max(q.len, kLenEps);
          double const into = dot(qDir, pToward);
          if (h.ub > q.walkedFrom + margin && h.ub < q.walkedTo - margin)
            gouged = std::fabs(into) > kCrossSine;
          else if (std::fabs(h.ub - q.walkedTo) <= margin)
            gouged = into < -kCrossSine;
          else if (std::fabs(h.ub - q.walkedFrom) <= margin)
            gouged = into > kCrossSine;
        }
      }
    };
    std::uint64_t const lastNew = m_nextPiece - 1;
    Box probe = piece(firstNew).box;
    for (std::uint64_t id = firstNew + 1; id <= lastNew; ++id) probe.add(piece(id).box);
    if (headEvicted() && m_headBox.overlaps(probe))
      for (Piece& h : m_head)
        if (!alive(h.id) && h.box.overlaps(probe))
          for (std::uint64_t id = firstNew; id <= lastNew; ++id) test(piece(id), h, false);
    if (firstNew >= m_pieceBase + 1)
      forEachNear(probe, m_pieceBase, firstNew - 1, [&](std::uint64_t qid) {
        for (std::uint64_t id = firstNew; id <= lastNew; ++id) test(piece(id), piece(qid), true);
        return true;
      });
    // The new pieces with each other: the offsets on both sides of a corner.
    for (std::uint64_t id = firstNew + 2; id <= lastNew; ++id)
      for (std::uint64_t qid = firstNew; qid + 2 <= id; ++qid) test(piece(id), piece(qid), true);
    if (gouged) lateWarning(piece(lastNew));
  }

  // A contour element that comes within the radius of where the tool is now
  // has been gouged already, and that cannot be undone: it is reported, and
  // the tool stops there. (The stretches cut before are checked through the
  // crossings of the new offset with them.)
  void lateCheckOfWalker(Event const& e, Piece const& p) {
    if (m_walker.run != p.run || (!m_walker.parked && !m_walker.ledIn)) return;
    V2 const at = m_walker.parked ? m_walker.parkedAt : xy(m_tool3);
    Box const reach = boxOf(e.el.s).grown(e.r + e.el.length());
    if (!reach.contains(at) || distPointElement(at, e.el) >= e.r - kClearTol) return;
    lateWarning(p);
    if (!m_walker.parked) park(at);
  }

  void lateWarning(Piece const& p) {
    if (m_in.lateWarned && p.motion < m_in.lastLateWarning + m_lookAhead) return;
    m_in.lateWarned = true;
    m_in.lastLateWarning = p.motion;
    warn(p.marker, "Line " + std::to_string(p.marker) +
                       ": the contour comes within the tool radius of the path already cut, farther back than "
                       "the look-ahead of " +
                       plural(m_lookAhead, " move", " moves") + "; the part may be gouged.");
  }

  void evict() {
    std::uint64_t const keepFrom = m_walker.piece > historyLength() ? m_walker.piece - historyLength() : 0;
    while (m_pieceBase < keepFrom && m_pieceBase < m_nextPiece) {
      Piece const& p = piece(m_pieceBase);
      if (!m_head.empty() && p.run == m_head.front().run && p.id <= m_head.back().id) {
        Piece& h = m_head[static_cast<std::size_t>(p.id - m_head.front().id)];
        h.walkedFrom = p.walkedFrom;
        h.walkedTo = p.walkedTo;
      }
      ++m_pieceBase;
    }
  }

  // Pieces kept behind the walker: crossings with them stop the tool short
  // of a gouge, and show a gouge already cut.
  std::uint64_t historyLength() const { return static_cast<std::uint64_t>(m_lookAhead) / 2 + 16; }
};

// ------------------------------------------------------------------ public

NCRadiusCompensationStream::NCRadiusCompensationStream(ScopePointer<NCStream> output)
    : m_engine(std::make_unique<Engine>(output)) {}

NCRadiusCompensationStream::~NCRadiusCompensationStream() = default;

void NCRadiusCompensationStream::setLookAhead(std::size_t moves) {
  Engine& en = *m_engine;
  en.m_lookAhead = moves == 0 ? 1 : moves;
  if (!en.reentrant() && en.m_heldMotions > en.m_lookAhead) en.release(en.m_lookAhead, false);
}

std::size_t NCRadiusCompensationStream::getLookAhead() const noexcept { return m_engine->m_lookAhead; }

bool NCRadiusCompensationStream::isCompensating() const noexcept { return m_engine->m_compensating; }

void NCRadiusCompensationStream::setWarningHandler(WarningHandler handler) { m_engine->m_warn = std::move(handler); }

double NCRadiusCompensationStream::getToolRadius() const noexcept { return m_engine->m_radius; }

#define ORVO_RC_PASS(call)                                                   \
  do {                                                                       \
    if (m_engine->reentrant()) return m_engine->out() ? m_engine->out()->call : true; \
  } while (false)

bool NCRadiusCompensationStream::passThrough(std::wstring const& text) {
  ORVO_RC_PASS(passThrough(text));
  m_engine->hold(Kind::PassThroughW, text);
  return true;
}

bool NCRadiusCompensationStream::passThrough(std::string const& text) {
  ORVO_RC_PASS(passThrough(text));
  m_engine->hold(Kind::PassThrough, text);
  return true;
}

bool NCRadiusCompensationStream::onComment(std::wstring const& text) {
  ORVO_RC_PASS(onComment(text));
  m_engine->hold(Kind::CommentW, text);
  return true;
}

bool NCRadiusCompensationStream::onComment(std::string const& text) {
  ORVO_RC_PASS(onComment(text));
  m_engine->hold(Kind::Comment, text);
  return true;
}

bool NCRadiusCompensationStream::onCommand(Command command) {
  ORVO_RC_PASS(onCommand(command));
  m_engine->holdPlain(Kind::Command).i = static_cast<int>(command);
  return true;
}

bool NCRadiusCompensationStream::onToolpathEntityIndex(ToolpathEntityIndex const& index) {
  ORVO_RC_PASS(onToolpathEntityIndex(index));
  m_engine->holdPlain(Kind::EntityIndex).i = static_cast<int>(index.index());
  return true;
}

bool NCRadiusCompensationStream::onMachineCommand(int code) {
  ORVO_RC_PASS(onMachineCommand(code));
  m_engine->holdPlain(Kind::MachineCommand).i = code;
  return true;
}

bool NCRadiusCompensationStream::onCoolant(int mode) {
  ORVO_RC_PASS(onCoolant(mode));
  m_engine->holdPlain(Kind::Coolant).i = mode;
  return true;
}

bool NCRadiusCompensationStream::onSpindleSpeed(double speed) {
  ORVO_RC_PASS(onSpindleSpeed(speed));
  m_engine->holdPlain(Kind::SpindleSpeed).a = speed;
  return true;
}

bool NCRadiusCompensationStream::onRadiusCompensationMode(bool on) {
  ORVO_RC_PASS(onRadiusCompensationMode(on));
  if (on) {
    m_engine->holdPlain(Kind::CompensationMode).i = 1;
    return true;
  }
  m_engine->m_compensating = false;
  m_engine->flush();
  Engine::EmitGuard guard(m_engine->m_emitting);
  return m_engine->out() ? m_engine->out()->onRadiusCompensationMode(false) : true;
}

bool NCRadiusCompensationStream::onRadiusCompensation(int side) {
  ORVO_RC_PASS(onRadiusCompensation(side));
  m_engine->holdPlain(Kind::CompensationSide).i = side;
  return true;
}

bool NCRadiusCompensationStream::onOpen() {
  ORVO_RC_PASS(onOpen());
  m_engine->holdPlain(Kind::Open);
  return true;
}

bool NCRadiusCompensationStream::onParameter(std::string const& name, Point3D const& value) {
  ORVO_RC_PASS(onParameter(name, value));
  m_engine->hold(Kind::ParamPoint, name);
  m_engine->m_queue[m_engine->m_queue.size() - 1].p = value;
  return true;
}

bool NCRadiusCompensationStream::onParameter(std::string const& name, double value) {
  ORVO_RC_PASS(onParameter(name, value));
  m_engine->hold(Kind::ParamDouble, name);
  m_engine->m_queue[m_engine->m_queue.size() - 1].a = value;
  return true;
}

bool NCRadiusCompensationStream::onParameter(std::string const& name, int value) {
  ORVO_RC_PASS(onParameter(name, value));
  m_engine->hold(Kind::ParamInt, name);
  m_engine->m_queue[m_engine->m_queue.size() - 1].i = value;
  return true;
}

bool NCRadiusCompensationStream::onParameter(std::string const& name, std::wstring const& value) {
  ORVO_RC_PASS(onParameter(name, value));
  m_engine->hold(Kind::ParamWString, NamedWideText{name, value});
  return true;
}

bool NCRadiusCompensationStream::onParameter(std::string const& name, std::string const& value) {
  ORVO_RC_PASS(onParameter(name, value));
  m_engine->hold(Kind::ParamString, NamedText{name, value});
  return true;
}

bool NCRadiusCompensationStream::onStock(Point3D const& minimum, Point3D const& maximum) {
  ORVO_RC_PASS(onStock(minimum, maximum));
  Event& e = m_engine->holdPlain(Kind::Stock);
  e.p = minimum;
  e.q = maximum;
  return true;
}

bool NCRadiusCompensationStream::onContext(NCContext const& context) {
  ORVO_RC_PASS(onContext(context));
  m_engine->m_context = context;
  m_engine->updateRadius();
  m_engine->hold(Kind::Context, context);
  return true;
}

bool NCRadiusCompensationStream::onTool(NCTool const& tool) {
  ORVO_RC_PASS(onTool(tool));
  m_engine->m_tool = tool;
  m_engine->updateRadius();
  m_engine->hold(Kind::Tool, tool);
  return true;
}

bool NCRadiusCompensationStream::onToolChange(NCTool const& tool) {
  ORVO_RC_PASS(onToolChange(tool));
  m_engine->m_tool = tool;
  m_engine->updateRadius();
  m_engine->hold(Kind::ToolChange, tool);
  return true;
}

bool NCRadiusCompensationStream::onSection() {
  ORVO_RC_PASS(onSection());
  // A section starts a new compensated run.
  m_engine->m_in.broken = true;
  m_engine->holdPlain(Kind::Section);
  return true;
}

bool NCRadiusCompensationStream::onGroup(std::string const& name) {
  ORVO_RC_PASS(onGroup(name));
  m_engine->hold(Kind::Group, name);
  return true;
}

bool NCRadiusCompensationStream::onTurnGroup(std::string const& name) {
  ORVO_RC_PASS(onTurnGroup(name));
  m_engine->hold(Kind::TurnGroup, name);
  return true;
}

bool NCRadiusCompensationStream::onGroupEnd() {
  ORVO_RC_PASS(onGroupEnd());
  m_engine->holdPlain(Kind::GroupEnd);
  return true;
}

bool NCRadiusCompensationStream::onTurnGroupEnd() {
  ORVO_RC_PASS(onTurnGroupEnd());
  m_engine->holdPlain(Kind::TurnGroupEnd);
  return true;
}

bool NCRadiusCompensationStream::onSectionEnd() {
  ORVO_RC_PASS(onSectionEnd());
  m_engine->flush();
  Engine::EmitGuard guard(m_engine->m_emitting);
  return m_engine->out() ? m_engine->out()->onSectionEnd() : true;
}

bool NCRadiusCompensationStream::onDwell(double seconds) {
  ORVO_RC_PASS(onDwell(seconds));
  m_engine->holdPlain(Kind::Dwell).a = seconds;
  return true;
}

bool NCRadiusCompensationStream::onRapid(Point3D const& target, unsigned int flags) {
  ORVO_RC_PASS(onRapid(target, flags));
  Event& e = m_engine->newEvent(Kind::Rapid);
  e.p = target;
  e.flags = flags;
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onRapid5D(Point3D const& target, Vector3D const& toolAxis, unsigned int flags) {
  ORVO_RC_PASS(onRapid5D(target, toolAxis, flags));
  Event& e = m_engine->newEvent(Kind::Rapid5D);
  e.p = target;
  e.v = toolAxis;
  e.flags = flags;
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onLinear(Point3D const& target, double feed, unsigned int flags) {
  ORVO_RC_PASS(onLinear(target, feed, flags));
  Event& e = m_engine->newEvent(Kind::Linear);
  e.p = target;
  e.a = feed;
  e.flags = flags;
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onLinear5D(Point3D const& target, Vector3D const& toolAxis, double feed,
                                            unsigned int flags) {
  ORVO_RC_PASS(onLinear5D(target, toolAxis, feed, flags));
  Event& e = m_engine->newEvent(Kind::Linear5D);
  e.p = target;
  e.v = toolAxis;
  e.a = feed;
  e.flags = flags;
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onLinearExtrude(Point3D const& target, double feed, double extrusion,
                                                 unsigned int flags) {
  ORVO_RC_PASS(onLinearExtrude(target, feed, extrusion, flags));
  Event& e = m_engine->newEvent(Kind::LinearExtrude);
  e.p = target;
  e.a = feed;
  e.c = extrusion;
  e.flags = flags;
  m_engine->motionIn(e);
  return true;
}

namespace {
void setArc(Event& e, Point3D const& center, Point3D const& end, Vector3D const& normal, double feed,
            unsigned int flags) {
  e.q = center;
  e.p = end;
  e.v = normal;
  e.a = feed;
  e.flags = flags;
}
}  // namespace

bool NCRadiusCompensationStream::onCWArc(Point3D const& center, Point3D const& end, Vector3D const& normal,
                                         double feed, unsigned int flags) {
  ORVO_RC_PASS(onCWArc(center, end, normal, feed, flags));
  Event& e = m_engine->newEvent(Kind::CWArc);
  setArc(e, center, end, normal, feed, flags);
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onCCWArc(Point3D const& center, Point3D const& end, Vector3D const& normal,
                                          double feed, unsigned int flags) {
  ORVO_RC_PASS(onCCWArc(center, end, normal, feed, flags));
  Event& e = m_engine->newEvent(Kind::CCWArc);
  setArc(e, center, end, normal, feed, flags);
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onCircular(Point3D const& center, Point3D const& end, Vector3D const& normal,
                                            double sweep, double feed, unsigned int flags) {
  ORVO_RC_PASS(onCircular(center, end, normal, sweep, feed, flags));
  Event& e = m_engine->newEvent(Kind::Circular);
  setArc(e, center, end, normal, feed, flags);
  e.b = sweep;
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onCWArcExtrude(Point3D const& center, Point3D const& end, Vector3D const& normal,
                                                double feed, double extrusion, unsigned int flags) {
  ORVO_RC_PASS(onCWArcExtrude(center, end, normal, feed, extrusion, flags));
  Event& e = m_engine->newEvent(Kind::CWArcExtrude);
  setArc(e, center, end, normal, feed, flags);
  e.c = extrusion;
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onCCWArcExtrude(Point3D const& center, Point3D const& end, Vector3D const& normal,
                                                 double feed, double extrusion, unsigned int flags) {
  ORVO_RC_PASS(onCCWArcExtrude(center, end, normal, feed, extrusion, flags));
  Event& e = m_engine->newEvent(Kind::CCWArcExtrude);
  setArc(e, center, end, normal, feed, flags);
  e.c = extrusion;
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onCircularExtrude(Point3D const& center, Point3D const& end, Vector3D const& normal,
                                                   double sweep, double feed, double extrusion, unsigned int flags) {
  ORVO_RC_PASS(onCircularExtrude(center, end, normal, sweep, feed, extrusion, flags));
  Event& e = m_engine->newEvent(Kind::CircularExtrude);
  setArc(e, center, end, normal, feed, flags);
  e.b = sweep;
  e.c = extrusion;
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onCWCircle(Point3D const& center, Point3D const& end, Vector3D const& normal,
                                            double feed, unsigned int flags) {
  ORVO_RC_PASS(onCWCircle(center, end, normal, feed, flags));
  Event& e = m_engine->newEvent(Kind::CWCircle);
  setArc(e, center, end, normal, feed, flags);
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onCCWCircle(Point3D const& center, Point3D const& end, Vector3D const& normal,
                                             double feed, unsigned int flags) {
  ORVO_RC_PASS(onCCWCircle(center, end, normal, feed, flags));
  Event& e = m_engine->newEvent(Kind::CCWCircle);
  setArc(e, center, end, normal, feed, flags);
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onSpline(std::vector<Point3D> const& controlPoints, double feed,
                                          unsigned int flags) {
  ORVO_RC_PASS(onSpline(controlPoints, feed, flags));
  m_engine->hold(Kind::Spline, controlPoints);
  Event& e = m_engine->m_queue[m_engine->m_queue.size() - 1];
  e.a = feed;
  e.flags = flags;
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onBezier(std::vector<Point3D> const& controlPoints, double feed,
                                          unsigned int flags) {
  ORVO_RC_PASS(onBezier(controlPoints, feed, flags));
  m_engine->hold(Kind::Bezier, controlPoints);
  Event& e = m_engine->m_queue[m_engine->m_queue.size() - 1];
  e.a = feed;
  e.flags = flags;
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onNURBS(std::vector<Point3D> const& controlPoints, std::vector<double> const& weights,
                                         std::vector<double> const& knots, int degree, double feed,
                                         unsigned int flags) {
  ORVO_RC_PASS(onNURBS(controlPoints, weights, knots, degree, feed, flags));
  m_engine->hold(Kind::NURBS, Nurbs{controlPoints, weights, knots});
  Event& e = m_engine->m_queue[m_engine->m_queue.size() - 1];
  e.i = degree;
  e.a = feed;
  e.flags = flags;
  m_engine->motionIn(e);
  return true;
}

bool NCRadiusCompensationStream::onSkip() {
  ORVO_RC_PASS(onSkip());
  m_engine->holdPlain(Kind::Skip);
  return true;
}

bool NCRadiusCompensationStream::onLineNumber(unsigned int number) {
  ORVO_RC_PASS(onLineNumber(number));
  m_engine->m_lastMarker = number;
  m_engine->holdPlain(Kind::LineNumber).i = static_cast<int>(number);
  return true;
}

bool NCRadiusCompensationStream::onMachineAxisOrdering(AxisOrdering const& ordering) {
  ORVO_RC_PASS(onMachineAxisOrdering(ordering));
  m_engine->hold(Kind::AxisOrdering, ordering);
  return true;
}

bool NCRadiusCompensationStream::onMachineAxisValues(AxisValues const& values) {
  ORVO_RC_PASS(onMachineAxisValues(values));
  m_engine->hold(Kind::AxisValues, values);
  return true;
}

bool NCRadiusCompensationStream::onFrame(Frame const& frame) {
  ORVO_RC_PASS(onFrame(frame));
  m_engine->hold(Kind::Frame, frame);
  return true;
}

bool NCRadiusCompensationStream::onClose() {
  ORVO_RC_PASS(onClose());
  m_engine->flush();
  Engine::EmitGuard guard(m_engine->m_emitting);
  return m_engine->out() ? m_engine->out()->onClose() : true;
}

#undef ORVO_RC_PASS

}  // namespace Orvo
