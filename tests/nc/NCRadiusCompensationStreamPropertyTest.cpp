// The compensator against random closed contours of lines and arcs: the
// path it cuts never comes closer to the contour than the tool radius, and
// around a convex contour it keeps the radius: exactly with a tolerance of
// nothing, and within the tolerance otherwise (small corners between lines
// are then joined where their offsets meet). The distances are measured
// here with this file's own geometry.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "nc/NCRadiusCompensationStream.h"
#include "nc/NCUnit.h"
#include "nc/ToolGeometry.h"
#include "support/AssertRecorder.h"
#include "support/RecordingNCStream.h"

namespace {

using mtkit_test::NCCall;
using mtkit_test::RecordingNCStream;
using Orvo::NCRadiusCompensationStream;
using Orvo::NCStream;
using Orvo::NCTool;
using Orvo::Point3D;
using Orvo::ScopePointer;
using Orvo::ToolGeometry;
using Orvo::Vector3D;

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;

struct P {
  double x = 0.0;
  double y = 0.0;
};
P operator+(P a, P b) { return {a.x + b.x, a.y + b.y}; }
P operator-(P a, P b) { return {a.x - b.x, a.y - b.y}; }
P operator*(P a, double s) { return {a.x * s, a.y * s}; }
double dotP(P a, P b) { return a.x * b.x + a.y * b.y; }
double crossP(P a, P b) { return a.x * b.y - a.y * b.x; }
double len(P a) { return std::sqrt(dotP(a, a)); }
P polar(double a) { return {std::cos(a), std::sin(a)}; }
P leftOf(P a) { return {-a.y, a.x}; }

// A line, or an arc about c of radius R from angle a0 sweeping sw
// (counterclockwise positive).
struct Curve {
  bool arc = false;
  P s, e, c;
  double R = 0.0, a0 = 0.0, sw = 0.0;

  P at(double t) const { return arc ? c + polar(a0 + sw * t) * R : s + (e - s) * t; }
  P tangent(double t) const {
    if (!arc) return (e - s) * (1.0 / len(e - s));
    P const r = leftOf(polar(a0 + sw * t));
    return sw > 0 ? r : r * -1.0;
  }
};

Curve lineCurve(P a, P b) {
  Curve k;
  k.s = a;
  k.e = b;
  return k;
}

Curve arcCurve(P c, double R, double a0, double sw) {
  Curve k;
  k.arc = true;
  k.c = c;
  k.R = R;
  k.a0 = a0;
  k.sw = sw;
  k.s = k.at(0.0);
  k.e = k.at(1.0);
  return k;
}

bool onArc(Curve const& k, P p) {
  if (std::fabs(k.sw) >= kTwoPi) return true;
  double const a = std::atan2(p.y - k.c.y, p.x - k.c.x);
  double d = k.sw > 0 ? a - k.a0 : k.a0 - a;
  d = std::fmod(d, kTwoPi);
  if (d < 0) d += kTwoPi;
  return d <= std::fabs(k.sw);
}

double pointToSegment(P p, P a, P b) {
  P const d = b - a;
  double t = dotP(p - a, d) / dotP(d, d);
  t = std::max(0.0, std::min(1.0, t));
  return len(p - (a + d * t));
}

double pointToCurve(P p, Curve const& k) {
  if (!k.arc) return pointToSegment(p, k.s, k.e);
  double const r = len(p - k.c);
  if (r > 0 && onArc(k, p)) return std::fabs(r - k.R);
  return std::min(len(p - k.s), len(p - k.e));
}

bool segmentsMeet(P a, P b, P c, P d) {
  double const d1 = crossP(b - a, c - a), d2 = crossP(b - a, d - a);
  double const d3 = crossP(d - c, a - c), d4 = crossP(d - c, b - c);
  return ((d1 > 0) != (d2 > 0)) && ((d3 > 0) != (d4 > 0));
}

// The least distance between two curves: at an end of one, at a point where
// they meet, or where a circle's radius lines up with the other curve.
double curveToCurve(Curve const& A, Curve const& B) {
  double best = std::min(std::min(pointToCurve(A.s, B), pointToCurve(A.e, B)),
                         std::min(pointToCurve(B.s, A), pointToCurve(B.e, A)));
  if (!A.arc && !B.arc) return segmentsMeet(A.s, A.e, B.s, B.e) ? 0.0 : best;
  if (A.arc != B.arc) {
    Curve const& L = A.arc ? B : A;
    Curve const& C = A.arc ? A : B;
    P const d = L.e - L.s;
    double const t = dotP(C.c - L.s, d) / dotP(d, d);
    P const foot = L.s + d * t;
    double const h = len(foot - C.c);
    if (h < C.R) {
      double const half = std::sqrt(C.R * C.R - h * h) / len(d);
      for (double u : {t - half, t + half})
        if (u >= 0 && u <= 1 && onArc(C, L.s + d * u)) return 0.0;
    }
    if (h > 0 && t >= 0 && t <= 1) {
      P const q = C.c + (foot - C.c) * (C.R / h);
      if (onArc(C, q)) best = std::min(best, pointToSegment(q, L.s, L.e));
    }
    return best;
  }
  P const D = B.c - A.c;
  double const d = len(D);
  if (d == 0) return best;
  P const u = D * (1.0 / d);
  if (d <= A.R + B.R && d >= std::fabs(A.R - B.R)) {
    double const a = (A.R * A.R - B.R * B.R + d * d) / (2 * d);
    double const h = std::sqrt(std::max(0.0, A.R * A.R - a * a));
    for (double s : {1.0, -1.0}) {
      P const X = A.c + u * a + leftOf(u) * (s * h);
      if (onArc(A, X) && onArc(B, X)) return 0.0;
    }
  }
  for (double s : {1.0, -1.0}) {
    P const pa = A.c + u * (s * A.R);
    if (onArc(A, pa)) best = std::min(best, pointToCurve(pa, B));
    P const pb = B.c + u * (s * B.R);
    if (onArc(B, pb)) best = std::min(best, pointToCurve(pb, A));
  }
  return best;
}

// The arc from a to b with sagitta `bulge` times the chord, to the left of
// a->b when positive.
Curve bulgedArc(P a, P b, double bulge) {
  double const chord = len(b - a);
  double const sag = bulge * chord;
  double const R = (chord * chord / 4.0 + sag * sag) / (2.0 * std::fabs(sag));
  P const mid = (a + b) * 0.5;
  P const left = leftOf((b - a) * (1.0 / chord));
  // The centre lies away from the bulge.
  P const c = mid + left * (sag > 0 ? -(R - std::fabs(sag)) : (R - std::fabs(sag)));
  double const a0 = std::atan2(a.y - c.y, a.x - c.x);
  double a1 = std::atan2(b.y - c.y, b.x - c.x);
  // Bulging left of a->b turns clockwise about c.
  double sw = a1 - a0;
  if (sag > 0) {
    while (sw >= 0) sw -= kTwoPi;
  } else {
    while (sw <= 0) sw += kTwoPi;
  }
  return arcCurve(c, R, a0, sw);
}

struct Contour {
  std::vector<Curve> curves;  // closed, from the middle of the first element
  bool counterclockwise = true;
  bool convex = false;
  P inside;
};

// The polar angle about `o` grows along the curve, within (from, to).
bool staysInWedge(Curve const& k, P o, double from, double to) {
  double prev = from;
  for (int i = 1; i < 32; ++i) {
    P const p = k.at(i / 32.0);
    double a = std::atan2(p.y - o.y, p.x - o.x);
    while (a < from) a += kTwoPi;
    while (a > from + kTwoPi) a -= kTwoPi;
    if (a <= prev || a >= to) return false;
    if (len(p - o) < 1e-3) return false;
    prev = a;
  }
  return true;
}

Contour randomContour(std::mt19937_64& rng) {
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (;;) {
    Contour k;
    k.convex = unit(rng) < 0.3;
    int const n = 3 + static_cast<int>(unit(rng) * 10);
    P const o{unit(rng) * 200 - 100, unit(rng) * 200 - 100};
    k.inside = o;
    // Star-shaped about o: sorted angles, gaps below a half turn.
    std::vector<double> angles;
    for (int i = 0; i < n; ++i) angles.push_back(unit(rng) * kTwoPi);
    std::sort(angles.begin(), angles.end());
    bool gapsOk = true;
    for (int i = 0; i < n; ++i) {
      double const gap = i + 1 < n ? angles[i + 1] - angles[i] : angles[0] + kTwoPi - angles[i];
      if (gap >= 0.95 * kPi || gap < 0.05) gapsOk = false;
    }
    if (!gapsOk) continue;
    std::vector<P> v;
    double const base = 5 + unit(rng) * 30;
    for (int i = 0; i < n; ++i) {
      double const radius = k.convex ? base : base * (0.25 + 0.75 * unit(rng));
      v.push_back(o + polar(angles[i]) * radius);
    }
    std::vector<Curve> edges;
    bool ok = true;
    for (int i = 0; i < n && ok; ++i) {
      P const a = v[i];
      P const b = v[(i + 1) % n];
      double const from = angles[i];
      double const to = i + 1 < n ? angles[i + 1] : angles[0] + kTwoPi;
      Curve edge = lineCurve(a, b);
      if (unit(rng) < 0.4) {
        // Counterclockwise, outward is to the right of a->b.
        double bulge = k.convex ? -0.02 - 0.2 * unit(rng) : (unit(rng) - 0.5) * 0.6;
        if (std::fabs(bulge) < 0.01) bulge = 0.01;
        edge = bulgedArc(a, b, bulge);
      }
      if (!staysInWedge(edge, o, from, to)) ok = false;
      edges.push_back(edge);
    }
    if (!ok) continue;
    if (k.convex) {
      // Every corner turns left (or not at all), and every arc bulges out.
      for (int i = 0; i < n && ok; ++i) {
        Curve const& a = edges[i];
        Curve const& b = edges[(i + 1) % n];
        if (crossP(a.tangent(1.0), b.tangent(0.0)) < -1e-12) ok = false;
        if (a.arc && a.sw < 0) ok = false;
      }
      if (!ok) continue;
    }
    // Start and end in the middle of the first edge.
    Curve const& first = edges[0];
    std::vector<Curve> curves;
    if (first.arc) {
      curves.push_back(arcCurve(first.c, first.R, first.a0 + first.sw / 2, first.sw / 2));
      for (int i = 1; i < n; ++i) curves.push_back(edges[i]);
      curves.push_back(arcCurve(first.c, first.R, first.a0, first.sw / 2));
    } else {
      P const m = (first.s + first.e) * 0.5;
      curves.push_back(lineCurve(m, first.e));
      for (int i = 1; i < n; ++i) curves.push_back(edges[i]);
      curves.push_back(lineCurve(first.s, m));
    }
    if (unit(rng) < 0.5) {
      // The other way round.
      std::reverse(curves.begin(), curves.end());
      for (Curve& c : curves) {
        if (c.arc)
          c = arcCurve(c.c, c.R, c.a0 + c.sw, -c.sw);
        else
          c = lineCurve(c.e, c.s);
      }
      k.counterclockwise = false;
    }
    k.curves = curves;
    return k;
  }
}

// The path that a recording describes, from `start`.
std::vector<Curve> pathOf(std::vector<NCCall> const& calls, P start, std::vector<bool>& touchesStart, P leadPoint) {
  std::vector<Curve> path;
  P here = start;
  for (NCCall const& c : calls) {
    if (!RecordingNCStream::isMotion(c.name)) continue;
    P const end{c.p.x, c.p.y};
    if (c.name == "onCCWArc" || c.name == "onCircular") {
      P const centre{c.q.x, c.q.y};
      double const R = len(here - centre);
      double const a0 = std::atan2(here.y - centre.y, here.x - centre.x);
      double sweep = 0.0;
      if (c.name == "onCircular") {
        sweep = c.sweep;
      } else {
        P const x = (here - centre) * (1.0 / R);
        P const y = c.v.z > 0 ? leftOf(x) : leftOf(x) * -1.0;
        double a = std::atan2(dotP(end - centre, y), dotP(end - centre, x));
        if (a <= 0) a += kTwoPi;
        sweep = a;
      }
      path.push_back(arcCurve(centre, R, a0, c.v.z > 0 ? sweep : -sweep));
    } else if (len(end - here) > 0) {
      path.push_back(lineCurve(here, end));
    } else {
      here = end;
      continue;
    }
    touchesStart.push_back(len(here - leadPoint) < 1e-9 || len(end - leadPoint) < 1e-9);
    here = end;
  }
  return path;
}

std::string describe(Contour const& k, double r, unsigned int flags) {
  std::ostringstream out;
  out.precision(17);
  out << "radius " << r << " flags " << flags << (k.counterclockwise ? " ccw" : " cw") << (k.convex ? " convex" : "")
      << "\n";
  for (Curve const& c : k.curves) {
    if (c.arc)
      out << "  arc c(" << c.c.x << ", " << c.c.y << ") R " << c.R << " a0 " << c.a0 << " sw " << c.sw << "\n";
    else
      out << "  line (" << c.s.x << ", " << c.s.y << ") -> (" << c.e.x << ", " << c.e.y << ")\n";
  }
  return out.str();
}

struct Outcome {
  double closest = 1e300;   // of the path cut to the contour
  double farthest = 0.0;    // of a point of the path from the contour (convex only)
  int warnings = 0;
};

// Runs one contour through a compensator: in along the normal of its start
// from outside, or from the star's centre, round, and back out.
Outcome cut(Contour const& k, double r, unsigned int flags, bool outside, double tolerance, std::size_t lookAhead) {
  P const m = k.curves.front().s;
  P const t = k.curves.front().tangent(0.0);
  P const outward = k.counterclockwise ? leftOf(t) * -1.0 : leftOf(t);
  P const lead = outside ? m + outward * (r + 50.0) : k.inside;

  Outcome result;
  RecordingNCStream out;
  NCRadiusCompensationStream comp{ScopePointer<NCStream>(&out)};
  comp.setLookAhead(lookAhead);
  comp.setWarningHandler([&](unsigned int, std::string const&) { ++result.warnings; });
  comp.onContext(Orvo::NCContext(Orvo::NCUnit::MILLIMETER, tolerance));
  comp.onTool(NCTool(1, ToolGeometry(2.0 * r, 0, 10, 40)));
  comp.onRapid(Point3D(lead.x, lead.y, 0), 1u);
  comp.onLinear(Point3D(m.x, m.y, 0), 100, flags);
  for (Curve const& c : k.curves) {
    if (c.arc)
      comp.onCCWArc(Point3D(c.c.x, c.c.y, 0), Point3D(c.e.x, c.e.y, 0), Vector3D(0, 0, c.sw > 0 ? 1 : -1), 100, flags);
    else
      comp.onLinear(Point3D(c.e.x, c.e.y, 0), 100, flags);
  }
  comp.onLinear(Point3D(lead.x, lead.y, 0), 100, 3u);
  comp.onClose();

  std::vector<bool> leadMove;
  std::vector<Curve> const path = pathOf(out.calls, P{0, 0}, leadMove, lead);
  for (std::size_t i = 0; i < path.size(); ++i) {
    if (leadMove[i]) continue;  // the lead-in and lead-out are the program's own
    for (Curve const& c : k.curves) result.closest = std::min(result.closest, curveToCurve(path[i], c));
    if (k.convex) {
      for (int s = 0; s <= 8; ++s) {
        P const p = path[i].at(s / 8.0);
        double d = 1e300;
        for (Curve const& c : k.curves) d = std::min(d, pointToCurve(p, c));
        result.farthest = std::max(result.farthest, d);
      }
    }
  }
  return result;
}

TEST(NCRadiusCompensationStreamProperty, RandomClosedContoursAreNeverGougedAndConvexOnesKeepTheRadius) {
  mtkit_test::AssertRecorder asserts;
  std::mt19937_64 rng(20261125);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  int failures = 0;
  int convexChecked = 0;
  int withPath = 0;
  for (int n = 0; n < 10000 && failures < 5; ++n) {
    Contour const k = randomContour(rng);
    double const r = 0.5 + 7.5 * unit(rng);
    bool const outside = unit(rng) < 0.5 || k.convex;
    // Counterclockwise, the right (256) is outside.
    unsigned int const side = (outside == k.counterclockwise) ? 256u : 128u;
    unsigned int const flags = 3u | side;
    double const tolerance = n % 2 == 0 ? 0.0 : 0.01;
    Outcome const o = cut(k, r, flags, outside, tolerance, 100);
    // Around the outside there is always a path to cut.
    bool bad = o.closest < r - 1e-7 || (outside && o.closest > 1e299);
    if (o.closest < 1e299) ++withPath;
    if (k.convex) {
      ++convexChecked;
      if (o.farthest > r + tolerance + 1e-7) bad = true;
    }
    if (bad) {
      ++failures;
      ADD_FAILURE() << "contour " << n << " (tolerance " << tolerance << "): closest " << o.closest << " farthest "
                    << o.farthest << "\n"
                    << describe(k, r, flags);
    }
  }
  EXPECT_GT(convexChecked, 1000);
  EXPECT_GT(withPath, 8000);
  EXPECT_TRUE(asserts.takeTexts().empty());
}

TEST(NCRadiusCompensationStreamProperty, WithAShortLookAheadEveryGougeIsReported) {
  // A look-ahead of a few moves cannot see a far wall in time; the tool may
  // then cut into it, but never without a warning.
  mtkit_test::AssertRecorder asserts;
  std::mt19937_64 rng(1125);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (std::size_t lookAhead : {1u, 3u, 10u}) {
    int gouged = 0;
    int failures = 0;
    for (int n = 0; n < 1500 && failures < 5; ++n) {
      Contour const k = randomContour(rng);
      double const r = 0.5 + 7.5 * unit(rng);
      bool const outside = unit(rng) < 0.5;
      unsigned int const flags = 3u | ((outside == k.counterclockwise) ? 256u : 128u);
      Outcome const o = cut(k, r, flags, outside, 0.01, lookAhead);
      if (o.closest >= r - 1e-7) continue;
      ++gouged;
      if (o.warnings == 0) {
        ++failures;
        ADD_FAILURE() << "look-ahead " << lookAhead << ", contour " << n << ": gouged to " << o.closest
                      << " without a warning\n"
                      << describe(k, r, flags);
      }
    }
    // The case is met, more often the shorter the look-ahead.
    if (lookAhead == 1u) {
      EXPECT_GT(gouged, 100);
    }
  }
  EXPECT_TRUE(asserts.takeTexts().empty());
}

}  // namespace
