#pragma once
// Fixtures and builders for the persistence tests: the hand-written files of
// tests/data, the two machine motions they hold, and random motions for
// round trips.

#include <cctype>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "machine/machine/MachineClassDatabasePopulator.h"
#include "machine/machine/MachineMotion.h"
#include "machine/machine/MachineMotions.h"
#include "nc/PersistClassDatabase.h"

namespace mtkit_test {

inline std::string testDataPath(std::string const& name) { return std::string(MTKIT_TEST_DATA_DIR) + "/" + name; }

inline std::string readTestData(std::string const& name) {
  std::ifstream in(testDataPath(name), std::ios::binary);
  if (!in) throw std::runtime_error("cannot open " + testDataPath(name));
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

/// The bytes of an annotated hex file: pairs of hex digits, with "#" starting
/// a comment to the end of the line.
inline std::string bytesOfHex(std::string const& text) {
  std::string bytes;
  int high = -1;
  bool comment = false;
  for (char const c : text) {
    if (c == '\n') comment = false;
    if (comment || std::isspace(static_cast<unsigned char>(c))) continue;
    if (c == '#') {
      comment = true;
      continue;
    }
    int const digit = std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : std::tolower(c) - 'a' + 10;
    if (digit < 0 || digit > 15) throw std::runtime_error(std::string("not a hex digit: ") + c);
    if (high < 0) {
      high = digit;
    } else {
      bytes.push_back(static_cast<char>(high * 16 + digit));
      high = -1;
    }
  }
  if (high >= 0) throw std::runtime_error("an odd number of hex digits");
  return bytes;
}

inline std::string binaryFixture(std::string const& name) { return bytesOfHex(readTestData(name)); }

inline persist::PersistClassDatabase const& motionDatabase() {
  static persist::PersistClassDatabase const database = [] {
    persist::PersistClassDatabase d;
    machine::MachineClassDatabasePopulator().populate(d);
    return d;
  }();
  return database;
}

inline Orvo::MotionContext makeContext(int machineId, int programId, int toolpathId, int workOffset,
                                       std::vector<std::pair<int, int>> const& patterns = {}) {
  Orvo::MotionContext context;
  context.setMachineId(machineId);
  context.setNcProgramId(programId);
  context.setToolpathId(toolpathId);
  context.setWorkOffset(workOffset);
  for (auto const& [id, instance] : patterns) {
    context.openPattern(id);
    context.setPatternInstance(instance);
  }
  return context;
}

inline Orvo::AxisOrdering makeOrdering(std::vector<std::pair<char const*, char const*>> const& axes) {
  Orvo::AxisOrdering ordering;
  for (auto const& [part, name] : axes) ordering.append(Orvo::AxisInfo(part, name));
  return ordering;
}

// The two motions of the fixtures in tests/data.
inline machine::MachineMotion fixtureMotionA() {
  machine::MachineMotion motion(makeContext(1, 2, 3, 54, {{7, 2}}));
  motion.setAxisOrdering(
      makeOrdering({{"x_slide", "X"}, {"y_slide", "Y"}, {"z_slide", "Z"}, {"a_tilt", "A"}, {"c_rotary", "C"}}));
  motion.appendEntity(Orvo::AxisValues(std::vector<Orvo::AxisValue>{10.5, -20.25, 300.0, 45.0, -90.0}));
  return motion;
}

inline machine::MachineMotion fixtureMotionB() {
  machine::MachineMotion motion(makeContext(1, 2, 4, 0));
  motion.setAxisOrdering(makeOrdering({{"x_slide", "X"}, {"y_slide", "Y"}, {"z_slide", "Z"}}));
  motion.appendEntity(Orvo::AxisValues(std::vector<Orvo::AxisValue>{1.0, 2.0, 3.0}));
  motion.invalidate();
  return motion;
}

inline machine::MachineMotions fixtureMotions() {
  machine::MachineMotions motions;
  motions.insert(fixtureMotionA());
  motions.insert(fixtureMotionB());
  return motions;
}

/// `count` motions with random contexts, orderings (0 to 8 axes, names with
/// non-ASCII letters among them), entities (0 to 3) and finite values.
inline machine::MachineMotions randomMotions(std::uint32_t seed, int count) {
  std::mt19937 random(seed);
  auto uniform = [&random](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); };
  std::uniform_real_distribution<double> number(-1e4, 1e4);
  static char const* const names[] = {"X", "Y", "Z", "A", "B", "C", "U", "W", "\xc3\x84", ""};
  machine::MachineMotions motions;
  for (int i = 0; i < count; ++i) {
    Orvo::MotionContext context;
    context.setMachineId(uniform(-5, 5));
    context.setNcProgramId(uniform(0, 1 << 30));
    context.setToolpathId(i);  // distinct, so that insert keeps every motion
    context.setWorkOffset(uniform(-1, 60));
    for (int p = uniform(0, 2); p > 0; --p) {
      context.openPattern(uniform(0, 100));
      context.setPatternInstance(uniform(0, 20));
    }
    machine::MachineMotion motion(context);
    Orvo::AxisOrdering ordering;
    int const axes = uniform(0, 8);
    for (int a = 0; a < axes; ++a)
      ordering.append(Orvo::AxisInfo("part_" + std::to_string(uniform(0, 99)), names[uniform(0, 9)]));
    motion.setAxisOrdering(ordering);
    for (int e = uniform(0, 3); e > 0; --e) {
      std::vector<Orvo::AxisValue> values;
      for (int a = 0; a < axes; ++a) values.emplace_back(number(random));
      motion.appendEntity(Orvo::AxisValues(values));
    }
    if (uniform(0, 4) == 0) motion.invalidate();
    motions.insert(std::move(motion));
  }
  return motions;
}

}  // namespace mtkit_test
