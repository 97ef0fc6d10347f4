#pragma once
// The settings under which an NC program's numbers are to be read: their
// unit, the chordal tolerance the toolpath was made with, and the program's
// name. Cutter compensation reads it to know how far it may deviate.

#include <string>

#include "nc/NCUnit.h"

namespace Orvo {

class NCContext {
public:
  /// Millimetres, tolerance 0.01, no name.
  NCContext() = default;
  NCContext(int unit, double tolerance, std::string programName = std::string())
      : m_unit(unit), m_tolerance(tolerance), m_programName(std::move(programName)) {}

  /// An NCUnit number.
  int getUnit() const noexcept { return m_unit; }
  double getTolerance() const noexcept { return m_tolerance; }
  std::string const& getProgramName() const noexcept { return m_programName; }

  void setUnit(int unit) noexcept { m_unit = unit; }
  void setTolerance(double tolerance) noexcept { m_tolerance = tolerance; }
  void setProgramName(std::string name) { m_programName = std::move(name); }

  friend bool operator==(NCContext const& a, NCContext const& b) noexcept {
    return a.m_unit == b.m_unit && a.m_tolerance == b.m_tolerance && a.m_programName == b.m_programName;
  }
  friend bool operator!=(NCContext const& a, NCContext const& b) noexcept { return !(a == b); }

private:
  int m_unit = NCUnit::MILLIMETER;
  double m_tolerance = 0.01;
  std::string m_programName;
};

}  // namespace Orvo
