#include "DemoCommand.h"

#include <functional>
#include <iomanip>
#include <map>
#include <memory>
#include <ostream>

#include "CommandSupport.h"
#include "mtkit.h"

namespace mtkit_tool {
namespace {

using namespace machine;
using Orvo::AxisName;
using Orvo::AxisValue;
using Orvo::MachinePartId;
using Orvo::Point3D;
using Orvo::Vector3D;

std::unique_ptr<PartDefinition> linearPart(char const* id, char const* axis, Vector3D dir, double lo, double hi) {
  auto def = std::make_unique<LinearAxisDefinition>(ControlType::DRIVEN, 0.0, 0.0, AxisName(axis), std::nullopt, dir,
                                                    AxisValue(lo), AxisValue(hi));
  return std::make_unique<PartDefinition>(MachinePartId(id), PartType::LINEAR, std::nullopt, std::nullopt,
                                          std::nullopt, std::move(def));
}

// A head-table machine: X, Y, Z and a B head on the head side; a C table.
std::unique_ptr<PartDefinition> buildDemoTree() {
  auto base = std::make_unique<PartDefinition>(MachinePartId("base"), PartType::STATIC);
  auto x = linearPart("x", "X", {1, 0, 0}, -500, 500);
  auto y = linearPart("y", "Y", {0, 1, 0}, -300, 300);
  auto z = linearPart("z", "Z", {0, 0, 1}, -100, 600);
  auto b = std::make_unique<PartDefinition>(
      MachinePartId("b"), PartType::ROTARY, std::nullopt, std::nullopt, std::nullopt,
      std::make_unique<LimitedRotaryAxisDefinition>(ControlType::DRIVEN, 0.0, 0.0, AxisName("B"), std::nullopt,
                                                    Point3D(0, 0, 150), Vector3D(0, 1, 0), AxisValue(-110),
                                                    AxisValue(110)));
  auto head = std::make_unique<PartDefinition>(MachinePartId("head"), PartType::HEAD);
  head->setSpindleDefinition(SpindleDefinition(0.0, 18000.0, "main spindle"));
  auto c = std::make_unique<PartDefinition>(
      MachinePartId("c"), PartType::ROTARY, std::nullopt, std::nullopt, std::nullopt,
      std::make_unique<InfiniteRotaryAxisDefinition>(ControlType::DRIVEN, 0.0, 0.0, AxisName("C"), std::nullopt,
                                                     Point3D(0, 0, 0), Vector3D(0, 0, 1)));
  auto table = std::make_unique<PartDefinition>(MachinePartId("table"), PartType::TABLE);
  b->addChild(std::move(head));
  z->addChild(std::move(b));
  y->addChild(std::move(z));
  x->addChild(std::move(y));
  c->addChild(std::move(table));
  base->addChild(std::move(x));
  base->addChild(std::move(c));
  return base;
}

void printTransform(std::ostream& out, Orvo::Transform3D const& t, int depth) {
  auto const r = t.rotation();
  auto const p = t.translation();
  out << std::fixed << std::setprecision(6);
  for (int row = 0; row < 3; ++row) {
    out << std::string(static_cast<std::size_t>(depth) * 2 + 4, ' ') << "[" << std::setw(10) << r(row, 0) << ' ' << std::setw(10) << r(row, 1) << ' ' << std::setw(10)
        << r(row, 2) << " | " << std::setw(12) << (row == 0 ? p.x : row == 1 ? p.y : p.z) << "]\n";
  }
  out.unsetf(std::ios::floatfield);
}

void printTree(std::ostream& out, PartDefinition const& part, std::map<std::string, double> const& values,
               int depth) {
  static char const* const typeNames[] = {"root", "linear", "rotary", "static", "head", "table"};
  out << std::string(static_cast<std::size_t>(depth) * 2, ' ') << part.identifier().id() << " ("
      << typeNames[static_cast<int>(part.type())] << ")";
  if (auto const* axis = part.axisDefinition()) {
    std::string const name = axis->name() ? axis->name()->getName() : "";
    auto const it = values.find(name);
    double const value = it != values.end() ? it->second : axis->valueAsModelled().value();
    char const* const unit = axis->axisType() == AxisType::LINEAR ? " mm" : " deg";
    out << " axis " << name << " = " << value << unit;
    if (axis->hasPhysicalLimits())
      out << "  range [" << axis->physicalRange().min().value() << ", " << axis->physicalRange().max().value()
          << "]" << unit;
    out << "\n";
    printTransform(out, axis->transformation(value), depth);
  } else {
    out << "\n";
  }
  for (auto const& child : part.children()) printTree(out, child, values, depth + 1);
}

int runDemo(std::vector<std::string> const& words, std::ostream& out, std::ostream& err) {
  std::map<std::string, double> values;
  for (auto const& word : words) {
    auto const eq = word.find('=');
    values[word.substr(0, eq)] = *parseNumber(word.substr(eq + 1));
  }
  auto const tree = buildDemoTree();
  for (auto const& entry : values) {
    bool known = false;
    std::function<void(PartDefinition const&)> look = [&](PartDefinition const& p) {
      if (p.axisDefinition() && p.axisDefinition()->name() && p.axisDefinition()->name()->getName() == entry.first)
        known = true;
      for (auto const& c : p.children()) look(c);
    };
    look(*tree);
    if (!known) {
      err << "mtkit demo: the example has no axis named '" << entry.first << "' (axes: X Y Z B C)\n";
      return kExitUsage;
    }
  }
  out << "Built-in example: a head-table machine (X Y Z, B head, C table).\n"
      << "Each axis's transformation relative to its value as modelled (rotation | translation in mm):\n";
  printTree(out, *tree, values, 0);
  return kExitOk;
}

}  // namespace

Command addDemoCommand(CLI::App& app) {
  auto words = std::make_shared<std::vector<std::string>>();
  CLI::App* const sub = app.add_subcommand(
      "demo", "a built-in 5-axis head-table tree: each axis's transformation at the given values");
  sub->add_option("AXIS=VALUE", *words, "an axis of X Y Z B C and its value (mm, degrees)")
      ->type_name("")
      ->check(axisWordValidator());
  return {sub, [words](std::ostream& out, std::ostream& err) { return runDemo(*words, out, err); }};
}

}  // namespace mtkit_tool
