#include "machine/machine/DefinitionCheck.h"

#include <cmath>
#include <charconv>

#include "machine/machine/AxisDefinition.h"
#include "machine/machine/DescendantRange.h"
#include "machine/machine/LimitedRotaryAxisDefinition.h"
#include "machine/machine/PartDefinition.h"
#include "machine/machine/RotaryAxisDefinition.h"

namespace machine {

namespace {

/// The shortest text that reads back as the same double.
std::string number(double value) {
  char buffer[32];
  auto const end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  return std::string(buffer, end);
}

using Kind = DefinitionCheck::Kind;

bool isFinite(Orvo::Point3D const& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

bool inReach(double value) { return std::fabs(value) <= DefinitionCheck::kMaximumMagnitude; }

bool inReach(Orvo::Point3D const& p) { return inReach(p.x) && inReach(p.y) && inReach(p.z); }

bool isUnitVector(Orvo::Vector3D const& v) {
  if (!std::isfinite(v.x) || !std::isfinite(v.y) || !std::isfinite(v.z)) return false;
  return std::fabs(v.x * v.x + v.y * v.y + v.z * v.z - 1.0) <= 1e-9;
}

std::string text(Orvo::Point3D const& p) { return "(" + number(p.x) + ", " + number(p.y) + ", " + number(p.z) + ")"; }

class Collector {
public:
  explicit Collector(std::vector<DefinitionCheck::Problem>& problems) : m_problems(problems) {}

  void part(PartDefinition const& part) {
    m_part = &part;
    Orvo::Frame const& frame = part.attachFrame();
    point("the attach frame's origin", frame.origin());
    if (!isUnitVector(frame.xAxis()) || !isUnitVector(frame.zAxis()))
      add(Kind::NOT_FINITE, "the attach frame's axes are not finite unit vectors");
    if (AxisDefinition const* const axis = part.axisDefinition()) this->axis(*axis);
  }

  void tree(bool hasHead, bool hasTable) {
    m_part = nullptr;
    if (!hasHead) add(Kind::NO_HEAD, "the kinematics has no head part");
    if (!hasTable) add(Kind::NO_TABLE, "the kinematics has no table part");
  }

private:
  static std::string beyond() { return " lies beyond " + number(DefinitionCheck::kMaximumMagnitude); }

  void axis(AxisDefinition const& axis) {
    if (!isUnitVector(axis.direction())) add(Kind::DIRECTION, "the axis direction is zero or not a finite vector");
    if (auto const* const rotary = dynamic_cast<RotaryAxisDefinition const*>(&axis))
      point("the axis point", rotary->point());
    value("the value as modelled", axis.valueAsModelled().value());
    value("the home position", axis.defaultHome().value());
    if (auto const change = axis.defaultToolChangePosition()) value("the tool change position", change->value());
    std::optional<Orvo::AxisValue> const min = axis.physicalMin();
    std::optional<Orvo::AxisValue> const max = axis.physicalMax();
    if (min) value("the minimum", min->value());
    if (max) value("the maximum", max->value());
    if (min && max && min->value() > max->value())
      add(Kind::REVERSED_RANGE,
          "the minimum " + number(min->value()) + " is above the maximum " + number(max->value()));
  }

  void value(char const* what, double v) {
    if (!std::isfinite(v))
      add(Kind::NOT_FINITE, std::string(what) + " " + number(v) + " is not finite");
    else if (!inReach(v))
      add(Kind::OUT_OF_REACH, std::string(what) + " " + number(v) + beyond());
  }

  void point(char const* what, Orvo::Point3D const& p) {
    if (!isFinite(p))
      add(Kind::NOT_FINITE, std::string(what) + " " + text(p) + " is not finite");
    else if (!inReach(p))
      add(Kind::OUT_OF_REACH, std::string(what) + " " + text(p) + beyond());
  }

  void add(Kind kind, std::string const& sentence) {
    DefinitionCheck::Problem problem;
    problem.kind = kind;
    if (m_part) {
      problem.part = m_part->id();
      problem.message = "part \"" + m_part->id().id() + "\": " + sentence;
    } else {
      problem.message = sentence;
    }
    m_problems.push_back(std::move(problem));
  }

  std::vector<DefinitionCheck::Problem>& m_problems;
  PartDefinition const* m_part = nullptr;
};

}  // namespace

std::vector<DefinitionCheck::Problem> DefinitionCheck::check(KinematicsDefinition const& kinematics) {
  std::vector<Problem> problems;
  Collector collector(problems);
  bool hasHead = false;
  bool hasTable = false;
  DescendantRange const all = kinematics.allParts();
  for (PartDefinition const& part : all) {
    hasHead = hasHead || part.type() == PartType::HEAD;
    hasTable = hasTable || part.type() == PartType::TABLE;
    collector.part(part);
  }
  collector.tree(hasHead, hasTable);
  return problems;
}

}  // namespace machine
