// Plays the part of a post-processor: writes the simulation stream of a small
// job for one of the example machines, as a stream text file that
// `mtkit simulate` replays.
//
//   stream_producer JOB MACHINE.json OUT.txt [--at X,Y,Z] [--out-of-travel]
//
//   swarf: a 5-axis flank (swarf) pass around a cylinder whose axis is tilted
//       20 degrees about X; the tool leans 10 degrees off the cylinder's
//       rulings, so that its axis sweeps a cone and both rotary axes move.
//   pocket: a 3-axis rectangular pocket in two levels, each entered by a helix.
//   contour: two 2.5D contours programmed on the part's outline for cutter radius
//       compensation, for a 10 mm cutter: the outside of an island with the
//       tool on the left (G41), with outside and inside corners, a convex
//       arc and a notch narrower than the tool; and the wall of a pocket with
//       the tool on the right (G42), whose corner fillets are smaller than
//       the tool. Each has a lead-in that switches compensation on and a
//       lead-out that switches it off.
//
// --at X,Y,Z places the part: the job's own coordinates are moved by that
// much in table coordinates (0,0,0 by default). A part must stand where the
// machine's axes reach it, and the table origin is not always such a place.
// The producer solves every pose as a post would, checks it against the
// controller's travel of each axis, and fails when the program leaves it,
// naming the axes and how far they went; --out-of-travel turns that round,
// for a program meant to leave the travel, which then fails if it stays in.
//
// Like a post, it chooses the rotary positions itself and leaves the linear
// axes to the simulation: every motion is preceded by a placeholder
// AxisValues whose X, Y and Z are NaN. It also writes the NC code it would
// send to the controller, the feeds, spindle and coolant commands, and one
// warning.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "machine/machine/Machine.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineSolver.h"
#include "machine/machine/MachineSpecification.h"
#include "machine/machine/MockSimulationStream.h"
#include "machine/machine/TextFileSimulationStream.h"
#include "machine/machine/TravelLimitSimulationStream.h"

namespace {

using machine::MotionSettings;
using machine::SimulationStream;
using Orvo::Point3D;
using Orvo::Vector3D;

constexpr double kPi = 3.14159265358979323846;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

double radians(double degrees) { return degrees * kPi / 180.0; }

std::unique_ptr<machine::MachineSolver> loadSolver(std::string const& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    std::cerr << "stream_producer: cannot open '" << path << "'\n";
    return nullptr;
  }
  auto result = machine::MachineDefinitionReader().read(in);
  if (result.isError()) {
    std::cerr << "stream_producer: '" << path << "': " << result.getReadErrorMessage() << "\n";
    return nullptr;
  }
  auto const specification = machine::MachineSpecification::makeDefaultForDefinition(*result.getMachineDefinition(), true);
  if (!specification) {
    std::cerr << "stream_producer: '" << path << "' has no kinematics\n";
    return nullptr;
  }
  machine::Machine machine(*specification);
  machine.setAxisOrdering(machine.fullOrdering());
  auto solver = machine.makeMachineSolver();
  if (!solver) std::cerr << "stream_producer: '" << path << "' has too few linear axes to solve\n";
  return solver;
}

/// Formats one NC block from the solved axis positions, as a post would.
std::string ncBlock(int number, char const* motion, machine::MachineSolver const& solver, double feed) {
  std::string block = "N" + std::to_string(number) + " " + motion;
  Orvo::AxisOrdering const& ordering = solver.axisOrdering();
  Orvo::AxisValues const values = solver.axisValues();
  char word[64];
  for (int i = 0; i < ordering.size(); ++i) {
    std::snprintf(word, sizeof word, " %s%.3f", ordering.axisName(i).name().c_str(), values.value(i).value());
    block += word;
  }
  if (feed > 0) {
    std::snprintf(word, sizeof word, " F%.0f", feed);
    block += word;
  }
  return block;
}

// What a job needs besides its stream: the post's solver, where the part
// stands, and the travel check of every pose the post solves.
struct Job {
  Job(machine::MachineSolver& machineSolver, Vector3D const& placement)
      : solver(machineSolver),
        at(placement),
        travel(std::make_unique<machine::MockSimulationStream>(), machineSolver) {
    travel.onAxisOrdering(machineSolver.axisOrdering());
  }
  /// Solves the linear axes for the tip, as the simulation will, and checks
  /// the pose.
  void solveAt(Point3D const& tip) {
    solver.moveToolTipTo(tip);
    travel.onAxisValues(solver.axisValues());
  }

  machine::MachineSolver& solver;
  Vector3D at;
  machine::TravelLimitSimulationStream travel;
};

// Finds the two rotary positions that give a wanted tool axis, by
// Gauss-Newton on the machine's own kinematics, starting from the previous
// solution, or from the best point of a coarse grid for the first one.
class RotarySolver {
public:
  RotarySolver(machine::MachineSolver& solver, int first, int second)
      : m_solver(solver), m_first(first), m_second(second) {}

  /// False if no position gives the axis within 1e-9. The first solution
  /// is the one with the smallest rotary travel from zero, so that a head
  /// does not start upside down; the later ones follow it continuously.
  bool solve(Vector3D const& wanted, double& a, double& b) {
    if (!m_started) {
      double bestTravel = 1e9;
      for (double i = -180; i <= 180; i += 10)
        for (double j = -180; j < 180; j += 10) {
          if (error(wanted, i, j) > 0.3) continue;
          double ci = i, cj = j;
          if (!refine(wanted, ci, cj)) continue;
          double const travel = std::fabs(ci) + std::fabs(cj);
          if (travel < bestTravel) {
            bestTravel = travel;
            m_a = ci;
            m_b = cj;
          }
        }
      m_started = true;
    }
    bool const ok = refine(wanted, m_a, m_b);
    a = m_a;
    b = m_b;
    return ok;
  }

private:
  Vector3D residual(Vector3D const& wanted, double a, double b) {
    Orvo::AxisValues values = m_solver.axisValues();
    values.setValue(m_first, a);
    values.setValue(m_second, b);
    m_solver.moveTo(values);
    return m_solver.toolAxisInTableCs() - wanted;
  }
  double error(Vector3D const& wanted, double a, double b) { return residual(wanted, a, b).length(); }

  /// Gauss-Newton from (a, b); whether it reached the axis within 1e-9.
  bool refine(Vector3D const& wanted, double& a, double& b) {
    for (int iteration = 0; iteration < 50; ++iteration) {
      Vector3D const r = residual(wanted, a, b);
      if (r.length() < 1e-12) break;
      double const h = 1e-6;
      Vector3D const da = (residual(wanted, a + h, b) - r) * (1.0 / h);
      Vector3D const db = (residual(wanted, a, b + h) - r) * (1.0 / h);
      // Normal equations of the 3x2 least squares step.
      double const aa = Vector3D::dot(da, da), ab = Vector3D::dot(da, db), bb = Vector3D::dot(db, db);
      double const ra = Vector3D::dot(da, r), rb = Vector3D::dot(db, r);
      double const det = aa * bb - ab * ab;
      if (std::fabs(det) < 1e-18) break;
      a -= (bb * ra - ab * rb) / det;
      b -= (aa * rb - ab * ra) / det;
    }
    return error(wanted, a, b) < 1e-9;
  }

  machine::MachineSolver& m_solver;
  int m_first;
  int m_second;
  bool m_started = false;
  double m_a = 0;
  double m_b = 0;
};

void openOperation(SimulationStream& stream, int operation);

// What every job starts with: identification, the ordering, the tool and
// the section.
void openJob(SimulationStream& stream, machine::MachineSolver const& solver, int operation, char const* group) {
  stream.onApiVersion(1, 0);
  stream.onMachineId(1);
  stream.onNcProgramId(1000);
  stream.onAxisOrdering(solver.axisOrdering());
  stream.onSimGroup(std::string(group));
  openOperation(stream, operation);
}

// The start of one operation: its id, the tool and the section.
void openOperation(SimulationStream& stream, int operation) {
  stream.onOperationId(operation);
  stream.onWorkOffset(54);
  stream.onNCTool(Orvo::NCTool());
  stream.onNCContext(Orvo::NCContext());
  stream.onSection(SimulationStream::SectionType::Operation);
  stream.onSpindleSpeed(12000);
  stream.onCommand(machine::SimulationStreamCommand(Orvo::NCStream::COMMAND_SPINDLE_CLOCKWISE));
  stream.onCommand(machine::SimulationStreamCommand(Orvo::NCStream::COMMAND_COOLANT_ON));
}

void closeOperation(SimulationStream& stream) {
  stream.onCommand(machine::SimulationStreamCommand(Orvo::NCStream::COMMAND_COOLANT_OFF));
  stream.onCommand(machine::SimulationStreamCommand(Orvo::NCStream::COMMAND_STOP_SPINDLE));
  stream.onSectionEnd();
}

void closeJob(SimulationStream& stream, char const* group) {
  closeOperation(stream);
  stream.onSimGroupEnd(std::string(group));
}

int produceSwarf(Job& job, std::string const& out) {
  machine::MachineSolver& solver = job.solver;
  Orvo::AxisOrdering const ordering = solver.axisOrdering();
  if (ordering.size() != 5) {
    std::cerr << "stream_producer: the swarf pass needs a 5-axis machine\n";
    return 1;
  }
  machine::TextFileSimulationStream stream{std::filesystem::path(out)};
  openJob(stream, solver, 1, "swarf");
  RotarySolver rotaries(solver, 3, 4);
  // A machine file may point its head's Z axis from the spindle to the tip;
  // the rotary positions are solved in the machine's own sense, taken from
  // its home pose, while the stream carries the tool axis pointing up the
  // tool as posts do.
  double const sense = solver.toolAxisInTableCs().z < 0 ? -1.0 : 1.0;

  // The cylinder: radius 30, 40 high, its axis through the part's origin,
  // tilted 20 degrees about X. The tool's flank touches the wall from
  // outside with a 6 mm radius tool, its tip 2 mm above the cylinder's foot.
  double const radius = 30.0 + 6.0;
  double const tilt = radians(20.0);
  double const lean = radians(10.0);
  Vector3D const axis(0, -std::sin(tilt), std::cos(tilt));
  Vector3D const u(1, 0, 0);
  Vector3D const v = Vector3D::cross(axis, u);
  MotionSettings const cutting(Orvo::NCStream::MOVEMENT_CUTTING, machine::NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                               machine::NcCodeRotaryAxisTraverseMode::SHORTEST);
  MotionSettings const rapid(Orvo::NCStream::MOVEMENT_RAPID, machine::NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                             machine::NcCodeRotaryAxisTraverseMode::SHORTEST);
  MotionSettings const leadIn(Orvo::NCStream::MOVEMENT_LEAD_IN, machine::NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                              machine::NcCodeRotaryAxisTraverseMode::SHORTEST);
  int block = 10;
  auto move = [&](Point3D const& tip, Vector3D const& toolAxis, double feed, MotionSettings const& settings) {
    double a = 0, b = 0;
    if (!rotaries.solve(toolAxis * sense, a, b)) std::cerr << "stream_producer: no rotary position for a tool axis\n";
    // The NC block, from the post's own solution.
    job.solveAt(tip);
    stream.onNcOutput(ncBlock(block, feed > 0 ? "G1" : "G0", solver, feed));
    block += 10;
    stream.onAxisValues(Orvo::AxisValues(std::vector<Orvo::AxisValue>{kNaN, kNaN, kNaN, a, b}));
    if (feed > 0)
      stream.onLinear5D(tip, toolAxis, feed, settings);
    else
      stream.onRapid5D(tip, toolAxis, settings);
  };

  int const steps = 180;
  Point3D const foot = Point3D(0, 0, 0) + job.at + axis * 2.0;
  auto toolAt = [&](double angle, Point3D& tip, Vector3D& toolAxis) {
    Vector3D const outward = u * std::cos(angle) + v * std::sin(angle);
    tip = foot + outward * radius;
    toolAxis = (axis * std::cos(lean) + outward * std::sin(lean)).getNormalized();
  };
  Point3D tip;
  Vector3D toolAxis;
  toolAt(0.0, tip, toolAxis);
  move(tip + toolAxis * 100.0 + Vector3D(20, 0, 0), toolAxis, 0, rapid);
  move(tip + Vector3D(20, 0, 0), toolAxis, 800, leadIn);
  move(tip, toolAxis, 800, leadIn);
  stream.onIssue(SimulationStream::IssueCode::POST_WARNING,
                 std::string("Feed rate 2500 mm/min is above the machine's 5-axis limit; 1500 mm/min is used."));
  for (int i = 1; i <= steps; ++i) {
    toolAt(2.0 * kPi * i / steps, tip, toolAxis);
    move(tip, toolAxis, 1500, cutting);
  }
  move(tip + Vector3D(20, 0, 0), toolAxis, 800, leadIn);
  move(tip + toolAxis * 100.0 + Vector3D(20, 0, 0), toolAxis, 0, rapid);
  closeJob(stream, "swarf");
  return stream.isOk() ? 0 : 1;
}

int producePocket(Job& job, std::string const& out) {
  machine::MachineSolver& solver = job.solver;
  if (solver.axisOrdering().size() != 3) {
    std::cerr << "stream_producer: the pocket is for a 3-axis machine\n";
    return 1;
  }
  machine::TextFileSimulationStream stream{std::filesystem::path(out)};
  openJob(stream, solver, 2, "pocket");
  MotionSettings const cutting(Orvo::NCStream::MOVEMENT_CUTTING, machine::NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                               machine::NcCodeRotaryAxisTraverseMode::DIRECT);
  MotionSettings const ramp(Orvo::NCStream::MOVEMENT_RAMP, machine::NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                            machine::NcCodeRotaryAxisTraverseMode::DIRECT);
  MotionSettings const rapid(Orvo::NCStream::MOVEMENT_RAPID, machine::NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                             machine::NcCodeRotaryAxisTraverseMode::DIRECT);
  Orvo::AxisValues const placeholder(std::vector<Orvo::AxisValue>{kNaN, kNaN, kNaN});
  int block = 10;
  auto note = [&](Point3D const& tip, char const* motion, double feed) {
    job.solveAt(tip);
    stream.onNcOutput(ncBlock(block, motion, solver, feed));
    block += 10;
    stream.onAxisValues(placeholder);
  };

  // The pocket: 60 by 40 around (150, 100), two levels of 3 mm, an 8 mm
  // cutter at 5 mm stepover. Each level starts with two helical turns of
  // radius 4 at the centre.
  Point3D const centre = Point3D(150, 100, 0) + job.at;
  double const helixRadius = 4.0;
  Point3D const above = centre + Vector3D(helixRadius, 0, 10);
  note(above, "G0", 0);
  stream.onRapid(above, rapid);
  double top = 1.0;
  for (double const depth : {-3.0, -6.0}) {
    Point3D const start = centre + Vector3D(helixRadius, 0, top);
    note(start, "G1", 600);
    stream.onLinear(start, 600, ramp);
    Point3D const end = centre + Vector3D(helixRadius, 0, depth);
    Orvo::Helix const helix(centre + Vector3D(0, 0, top), start, end, 4.0 * kPi, Vector3D(0, 0, 1));
    note(end, "G3", 600);
    stream.onHelical(helix, end, 600, ramp);
    // Rectangular loops outward from the centre.
    for (double half = 5.0; half <= 26.0; half += 5.0) {
      double const hx = half, hy = std::min(half, 16.0);
      Point3D const corners[] = {centre + Vector3D(hx, -hy, depth), centre + Vector3D(hx, hy, depth),
                                 centre + Vector3D(-hx, hy, depth), centre + Vector3D(-hx, -hy, depth),
                                 centre + Vector3D(hx, -hy, depth)};
      for (Point3D const& corner : corners) {
        note(corner, "G1", 1200);
        stream.onLinear(corner, 1200, cutting);
      }
    }
    Point3D const lifted = centre + Vector3D(helixRadius, 0, depth + 2);
    note(lifted, "G0", 0);
    stream.onRapid(lifted, rapid);
    top = depth + 1.0;
  }
  note(above, "G0", 0);
  stream.onRapid(above, rapid);
  closeJob(stream, "pocket");
  return stream.isOk() ? 0 : 1;
}


// The contours are programmed on the part's outline and carry the
// compensation side in their flags (side 1 is G41, side 2 is G42); the
// simulation's compensator offsets them by the radius of the operation's
// tool, which the stream file does not carry (mtkit simulate --tools).
class ContourWriter {
public:
  // Points are given in the part's coordinates and placed on the table here.
  ContourWriter(SimulationStream& stream, Job& job) : m_stream(stream), m_job(job), m_solver(job.solver) {}

  void rapid(Point3D const& part) {
    Point3D const p = part + m_job.at;
    note(p, "G0", 0, "");
    m_stream.onRapid(p, settings(Orvo::NCStream::MOVEMENT_RAPID, 0));
    m_at = p;
  }
  /// A straight move; `code` is the compensation word of its block, if any.
  void line(Point3D const& part, double feed, Orvo::NCStream::Movement movement, unsigned int side,
            char const* code = "") {
    Point3D const p = part + m_job.at;
    note(p, "G1", feed, code);
    m_stream.onLinear(p, feed, settings(movement, side));
    m_at = p;
  }
  /// A plane arc about `center`, clockwise seen from above (G2) or not (G3).
  void arc(Point3D const& partCenter, Point3D const& partEnd, bool clockwise, double feed, unsigned int side) {
    Point3D const center = partCenter + m_job.at;
    Point3D const end = partEnd + m_job.at;
    // I and J in the machine's axes, from the start to the centre.
    m_solver.moveToolTipTo(center);
    Orvo::AxisValues const c = m_solver.axisValues();
    m_solver.moveToolTipTo(m_at);
    Orvo::AxisValues const s = m_solver.axisValues();
    char ij[64];
    std::snprintf(ij, sizeof ij, " I%.3f J%.3f", c.value(0).value() - s.value(0).value(),
                  c.value(1).value() - s.value(1).value());
    note(end, clockwise ? "G2" : "G3", feed, "", ij);
    Orvo::Helix const helix(center, m_at, end, Vector3D(0, 0, clockwise ? -1 : 1));
    m_stream.onHelical(helix, end, feed, settings(Orvo::NCStream::MOVEMENT_CUTTING, side));
    m_at = end;
  }

private:
  static MotionSettings settings(Orvo::NCStream::Movement movement, unsigned int side) {
    return MotionSettings(Orvo::NCStream::getMovementFlags(movement) | side,
                          machine::NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                          machine::NcCodeRotaryAxisTraverseMode::DIRECT);
  }
  void note(Point3D const& tip, char const* motion, double feed, char const* code, char const* tail = "") {
    m_job.solveAt(tip);
    std::string block = ncBlock(m_block, motion, m_solver, 0);
    if (*code) block.insert(block.find(' ') + 1, std::string(code) + " ");
    block += tail;
    if (feed > 0) {
      char word[32];
      std::snprintf(word, sizeof word, " F%.0f", feed);
      block += word;
    }
    m_stream.onNcOutput(block);
    m_block += 10;
    m_stream.onAxisValues(Orvo::AxisValues(std::vector<Orvo::AxisValue>{kNaN, kNaN, kNaN}));
  }

  SimulationStream& m_stream;
  Job& m_job;
  machine::MachineSolver& m_solver;
  int m_block = 10;
  Point3D m_at{0, 0, 0};
};

int produceContour(Job& job, std::string const& out) {
  machine::MachineSolver& solver = job.solver;
  if (solver.axisOrdering().size() != 3) {
    std::cerr << "stream_producer: the contours are for a 3-axis machine\n";
    return 1;
  }
  machine::TextFileSimulationStream stream{std::filesystem::path(out)};
  ContourWriter nc(stream, job);
  using Movement = Orvo::NCStream::Movement;
  unsigned int const left = Orvo::NCStream::COMPENSATION_SIDE_1;
  unsigned int const right = Orvo::NCStream::COMPENSATION_SIDE_2;
  double const depth = -5.0;
  double const clear = 25.0;
  double const feed = 900.0;

  // Operation 3: the outside of an island, 80 by 60 around (150, 95), cut
  // clockwise with the tool on the left (outside). Going round: outside
  // corners, a notch 8 wide and 10 deep in the top edge (narrower than the
  // 10 mm cutter, with two inside corners), a convex arc of radius 10, and
  // a step with an inside corner in the bottom edge.
  openJob(stream, solver, 3, "contour");
  auto at = [depth](double x, double y) { return Point3D(x, y, depth); };
  nc.rapid(Point3D(90, 80, clear));
  nc.rapid(Point3D(90, 80, 2));
  nc.line(at(90, 80), 300, Movement::MOVEMENT_PLUNGE, 0);
  nc.line(at(110, 100), feed, Movement::MOVEMENT_LEAD_IN, left, "G41 D3");
  nc.line(at(110, 125), feed, Movement::MOVEMENT_CUTTING, left);  // outside corner
  nc.line(at(145, 125), feed, Movement::MOVEMENT_CUTTING, left);  // into the notch
  nc.line(at(145, 115), feed, Movement::MOVEMENT_CUTTING, left);  // inside corner
  nc.line(at(153, 115), feed, Movement::MOVEMENT_CUTTING, left);  // inside corner
  nc.line(at(153, 125), feed, Movement::MOVEMENT_CUTTING, left);
  nc.line(at(190, 125), feed, Movement::MOVEMENT_CUTTING, left);  // outside corner
  nc.line(at(190, 85), feed, Movement::MOVEMENT_CUTTING, left);
  nc.arc(Point3D(180, 85, depth), at(180, 75), true, feed, left);  // convex, radius 10
  nc.line(at(140, 75), feed, Movement::MOVEMENT_CUTTING, left);   // inside corner
  nc.line(at(140, 65), feed, Movement::MOVEMENT_CUTTING, left);   // outside corner
  nc.line(at(110, 65), feed, Movement::MOVEMENT_CUTTING, left);   // outside corner
  nc.line(at(110, 110), feed, Movement::MOVEMENT_CUTTING, left);  // past the start
  nc.line(at(90, 130), feed, Movement::MOVEMENT_LEAD_OUT, 0, "G40");
  nc.rapid(Point3D(90, 130, clear));
  closeOperation(stream);

  // Operation 4: the wall of a pocket, 60 by 40 around (150, -100) with
  // corner fillets of radius 3 (smaller than the cutter), cut clockwise with
  // the tool on the right (inside), entered and left square to the top wall.
  openOperation(stream, 4);
  nc.rapid(Point3D(150, -100, clear));
  nc.rapid(Point3D(150, -100, 2));
  nc.line(at(150, -100), 300, Movement::MOVEMENT_PLUNGE, 0);
  nc.line(at(150, -80), feed, Movement::MOVEMENT_LEAD_IN, right, "G42 D4");
  double const f = 3.0;
  nc.line(at(180 - f, -80), feed, Movement::MOVEMENT_CUTTING, right);
  nc.arc(at(180 - f, -80 - f), at(180, -80 - f), true, feed, right);
  nc.line(at(180, -120 + f), feed, Movement::MOVEMENT_CUTTING, right);
  nc.arc(at(180 - f, -120 + f), at(180 - f, -120), true, feed, right);
  nc.line(at(120 + f, -120), feed, Movement::MOVEMENT_CUTTING, right);
  nc.arc(at(120 + f, -120 + f), at(120, -120 + f), true, feed, right);
  nc.line(at(120, -80 - f), feed, Movement::MOVEMENT_CUTTING, right);
  nc.arc(at(120 + f, -80 - f), at(120 + f, -80), true, feed, right);
  nc.line(at(150, -80), feed, Movement::MOVEMENT_CUTTING, right);
  nc.line(at(150, -100), feed, Movement::MOVEMENT_LEAD_OUT, 0, "G40");
  nc.rapid(Point3D(150, -100, clear));
  closeJob(stream, "contour");
  return stream.isOk() ? 0 : 1;
}

/// "X,Y,Z" as three numbers, or empty.
std::optional<Vector3D> parsePlacement(std::string const& text) {
  double v[3];
  char const* p = text.c_str();
  for (int i = 0; i < 3; ++i) {
    char* end = nullptr;
    v[i] = std::strtod(p, &end);
    if (end == p || !std::isfinite(v[i])) return std::nullopt;
    p = end;
    if (i < 2 && *p++ != ',') return std::nullopt;
  }
  if (*p) return std::nullopt;
  return Vector3D(v[0], v[1], v[2]);
}

/// The travel check of the job: each axis that left its travel on stderr;
/// 1 when that was not what --out-of-travel said to expect.
int reportTravel(Job const& job, bool outOfTravelExpected) {
  for (auto const& axis : job.travel.axes()) {
    if (axis.count == 0) continue;
    char const* unit = axis.type == machine::AxisType::ROTARY ? "deg" : "mm";
    std::fprintf(stderr, "stream_producer: axis %s leaves its travel %g to %g %s in %ld poses, reaching %g to %g %s\n",
                 axis.name.c_str(), axis.range.min().value(), axis.range.max().value(), unit, axis.count, axis.lowest,
                 axis.highest, unit);
  }
  bool const out = job.travel.overTravels() > 0;
  if (out && !outOfTravelExpected) {
    std::cerr << "stream_producer: the program leaves the machine's travel; place the part with --at X,Y,Z\n";
    return 1;
  }
  if (!out && outOfTravelExpected) {
    std::cerr << "stream_producer: --out-of-travel, but the program stays inside the machine's travel\n";
    return 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  char const* const usage = "usage: stream_producer swarf|pocket|contour MACHINE.json OUT.txt [--at X,Y,Z] [--out-of-travel]\n";
  std::string const job = argc >= 4 ? argv[1] : "";
  if (job != "swarf" && job != "pocket" && job != "contour") {
    std::cerr << usage;
    return 2;
  }
  Vector3D at(0, 0, 0);
  bool outOfTravel = false;
  for (int i = 4; i < argc; ++i) {
    std::string const arg = argv[i];
    if (arg == "--out-of-travel") {
      outOfTravel = true;
    } else if (arg == "--at" && i + 1 < argc) {
      auto const placement = parsePlacement(argv[++i]);
      if (!placement) {
        std::cerr << "stream_producer: --at needs X,Y,Z, got '" << argv[i] << "'\n";
        return 2;
      }
      at = *placement;
    } else {
      std::cerr << usage;
      return 2;
    }
  }
  auto solver = loadSolver(argv[2]);
  if (!solver) return 1;
  solver->moveToHome();
  Job work(*solver, at);
  int const status = job == "swarf" ? produceSwarf(work, argv[3])
                     : job == "pocket" ? producePocket(work, argv[3])
                                       : produceContour(work, argv[3]);
  if (status != 0) return status;
  return reportTravel(work, outOfTravel);
}
