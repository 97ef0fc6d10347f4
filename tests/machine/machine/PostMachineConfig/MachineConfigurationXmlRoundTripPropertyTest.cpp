// Writing a configuration as XML and reading it back: for random
// configurations of several kinds (three-axis mills, machines of four to six
// axes with head and table axes, linear axes in any order and off their unit
// vectors, additive machines), every field the writer writes comes back,
// without units, with millimetres and with inches. Seeds are fixed.
//
// Numbers without units come back exactly where no conversion is involved;
// inches, pounds, degrees and the larger power units go through a division
// and a multiplication, so those are compared to a few units in the last
// place.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "machine/machine/PostMachineConfig/Axis.h"
#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "machine/machine/PostMachineConfig/Range.h"
#include "util/utility/DOM/Document.h"
#include "util/utility/DOM/Element.h"
#include "util/utility/Messages.h"

using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using com::vantora::post::Range;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr int kSamplesPerKind = 150;

enum class Kind { MILL3, TABLE4, TABLE_TABLE5, HEAD_HEAD5, HEAD_TABLE5, SIX, LINEAR_ANY_ORDER, ADDITIVE };

class Random {
 public:
  explicit Random(unsigned int seed) : m_engine(seed) {}

  bool flip() { return std::uniform_int_distribution<int>(0, 1)(m_engine) == 1; }
  int integer(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(m_engine); }
  double uniform(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(m_engine); }
  /// A non-negative value, 0 about one time in five, sometimes a round one.
  double nonNegative(double hi) {
    switch (integer(0, 4)) {
      case 0:
        return 0;
      case 1:
        return integer(1, 1000);
      default:
        return uniform(0, hi);
    }
  }
  double any(double magnitude) { return flip() ? nonNegative(magnitude) : -nonNegative(magnitude); }
  Vector vector(double magnitude) { return Vector(any(magnitude), any(magnitude), any(magnitude)); }
  Vector unitVector() {
    for (;;) {
      Vector const v(uniform(-1, 1), uniform(-1, 1), uniform(-1, 1));
      if (v.getLength() > 0.1) return v.getNormalized();
    }
  }
  std::wstring text() {
    static wchar_t const* const kTexts[] = {
        L"",
        L"Acme",
        L"Acme & S\u00f6hne <5x> \"quoted\" 'single'",
        L"  spaced  out ",
        L"\u4e2d\u6587 machine",
        L"a/b\\c;d=e",
        L"unspecified",
    };
    return kTexts[integer(0, static_cast<int>(std::size(kTexts)) - 1)];
  }

 private:
  std::mt19937 m_engine;
};

/// Equal, or within a few units in the last place of the larger.
bool near(double a, double b) {
  if (a == b) return true;
  double const scale = std::max({1e-300, std::fabs(a), std::fabs(b)});
  return std::fabs(a - b) <= 8 * std::numeric_limits<double>::epsilon() * scale;
}

void expectNear(Vector const& a, Vector const& b, std::string const& what) {
  EXPECT_PRED2(near, a.x, b.x) << what;
  EXPECT_PRED2(near, a.y, b.y) << what;
  EXPECT_PRED2(near, a.z, b.z) << what;
}

/// A rotary axis with every written field random.
Axis randomRotary(Random& r, bool table, Vector const& direction, int coordinate) {
  Range range;
  switch (r.integer(0, 3)) {
    case 0:
      break;  // no range
    case 1: {
      double const a = r.uniform(-2 * kPi, 2 * kPi);
      double const b = r.uniform(-2 * kPi, 2 * kPi);
      range = Range(a, b, Range::ROTATIONAL);
      break;
    }
    case 2:
      range = Range(-kPi, kPi, Range::ROTATIONAL);
      break;
    default: {
      double const point = r.uniform(-kPi, kPi);  // an aggregate axis
      range = Range(point, point, Range::ROTATIONAL);
    }
  }
  Axis axis(table, direction, r.flip() ? Vector(0, 0, 0) : r.vector(500), coordinate, range);
  if (!range.isNonRange()) axis.setCyclic(r.flip());
  axis.setTCPEnabled(r.flip());
  axis.setResolution(r.nonNegative(0.01));
  if (r.flip()) axis.setHomePosition(r.uniform(-kPi, kPi));
  axis.setDisplacement(r.any(100));
  axis.setMaximumFeed(r.nonNegative(100));
  axis.setRapidFeed(r.nonNegative(200));
  axis.setPreference(r.integer(-1, 1));
  axis.setReset(r.integer(0, 3));
  return axis;
}

/// A linear axis on the coordinate, along its unit vector or off it.
Axis randomLinear(Random& r, int coordinate, bool offUnitVector) {
  Vector direction(0, 0, 0);
  direction.setCoordinate(static_cast<unsigned int>(coordinate), 1);
  if (offUnitVector)
    direction = Vector(direction.x + r.uniform(-0.2, 0.2), direction.y + r.uniform(-0.2, 0.2),
                       direction.z + r.uniform(-0.2, 0.2));
  Axis axis(r.flip(), direction, r.flip() ? Vector(0, 0, 0) : r.vector(100), coordinate);
  axis.setActuator(Axis::LINEAR);
  if (r.flip()) {
    double const a = r.any(2000);
    double const b = r.any(2000);
    axis.setRange(Range(a, b, Range::LINEAR));
  }
  axis.setResolution(r.nonNegative(0.01));
  if (r.flip()) axis.setHomePosition(r.any(1000));
  axis.setDisplacement(r.any(100));
  axis.setMaximumFeed(r.nonNegative(20000));
  axis.setRapidFeed(r.nonNegative(50000));
  axis.setPreference(r.integer(-1, 1));
  axis.setReset(r.integer(0, 3));
  return axis;
}

void nameAxis(Random& r, Axis& axis) {
  std::wstring const name = r.text();
  axis.setName(name);
  // The part id is not written: the reader takes it from the name (all but
  // "unspecified"), so the samples keep the two in step.
  if (name != L"unspecified") axis.setMachinePartId(Orvo::MachinePartId(Orvo::Messages::wideToUtf8(name)));
}

MachineConfiguration randomConfiguration(Random& r, Kind kind) {
  MachineConfiguration c;
  c.setVendor(r.text());
  c.setVendorUrl(r.text());
  c.setModel(r.text());
  c.setDescription(r.text());
  c.setControl(r.text());
  c.setPostProcessor(r.text());
  c.setSetupSheet(r.text());
  c.setMachineAssembly(r.text());
  c.setCollectChuck(r.text());
  c.setSpindleDescription(r.text());

  c.setMilling(r.flip());
  c.setTurning(r.flip());
  c.setWire(r.flip());
  c.setJet(r.flip());
  c.setWidth(r.nonNegative(3000));
  c.setDepth(r.nonNegative(3000));
  c.setHeight(r.nonNegative(3000));
  c.setWeight(r.nonNegative(20000));
  c.setPartDimensions(Vector(r.nonNegative(2000), r.nonNegative(2000), r.nonNegative(2000)));
  c.setWeightCapacity(r.nonNegative(5000));
  c.setToolChanger(r.flip());
  c.setToolPreload(r.flip());
  c.setNumberOfTools(static_cast<unsigned int>(r.integer(0, 400)));
  c.setMaximumToolLength(r.nonNegative(500));
  c.setMaximumToolDiameter(r.nonNegative(300));
  c.setMaximumToolWeight(r.nonNegative(30));
  c.setFeedrateRatio(r.nonNegative(3));
  c.setToolChangeTime(r.nonNegative(60));
  for (unsigned int mode = 1; mode < MachineConfiguration::NUMBER_OF_COOLANT_MODES; ++mode)
    c.setCoolantSupported(mode, r.flip());
  c.setMaximumFeedrate(r.nonNegative(60000));
  c.setMaximumCuttingFeedrate(r.nonNegative(30000));
  c.setMaximumBlockProcessingSpeed(static_cast<unsigned int>(r.integer(0, 5000)));
  c.setNumberOfWorkOffsets(static_cast<unsigned int>(r.integer(0, 300)));
  c.setSpindleAxis(r.flip() ? Vector(0, 0, 1) : r.unitVector());
  // Across the power thresholds of the writer.
  c.setMaximumSpindlePower(r.flip() ? r.nonNegative(20000) : r.nonNegative(2e7));
  c.setMaximumSpindleSpeed(r.nonNegative(40000));
  c.setWCS(r.vector(1000));
  c.setRetractOnIndexing(r.flip());
  c.setShortestAngularRotation(r.flip());

  c.setVirtualTooltip(r.flip());
  int const mode = r.integer(0, 2);
  c.setMultiAxisFeedrate(mode, r.flip() ? r.nonNegative(10000) : -1, r.integer(0, 1), r.flip() ? r.nonNegative(1) : -1,
                         r.flip() ? r.nonNegative(10) : -1);
  c.setReconfigure(r.flip());
  c.setRewindStockExpansion(Vector(r.nonNegative(10), r.nonNegative(10), r.nonNegative(10)));
  c.setSafeRetractDistance(r.nonNegative(100));
  c.setSafeRetractFeedrate(r.nonNegative(5000));
  c.setSafePlungeFeedrate(r.nonNegative(5000));
  c.setSingularity(r.flip(), r.integer(0, 2), r.nonNegative(0.2), r.nonNegative(0.5), r.nonNegative(0.1),
                   r.nonNegative(0.1));

  std::vector<Axis> rotaries;
  switch (kind) {
    case Kind::MILL3:
      break;
    case Kind::TABLE4:
      rotaries.push_back(randomRotary(r, true, Vector(1, 0, 0), 0));
      break;
    case Kind::TABLE_TABLE5:
      rotaries.push_back(randomRotary(r, true, Vector(1, 0, 0), 0));
      rotaries.push_back(randomRotary(r, true, Vector(0, 0, 1), 2));
      break;
    case Kind::HEAD_HEAD5:
      rotaries.push_back(randomRotary(r, false, Vector(0, 0, 1), 2));
      rotaries.push_back(randomRotary(r, false, r.unitVector(), 1));
      break;
    case Kind::HEAD_TABLE5:
      rotaries.push_back(randomRotary(r, false, Vector(0, 1, 0), 1));
      rotaries.push_back(randomRotary(r, true, Vector(0, 0, 1), 2));
      break;
    case Kind::SIX:
      for (int i = 0; i < 3; ++i) rotaries.push_back(randomRotary(r, r.flip(), r.unitVector(), r.integer(0, 2)));
      break;
    case Kind::LINEAR_ANY_ORDER: {
      c.removeAllAxes();
      std::vector<int> order{0, 1, 2};
      for (int i = 2; i > 0; --i)
        std::swap(order[static_cast<std::size_t>(i)], order[static_cast<std::size_t>(r.integer(0, i))]);
      int const count = r.integer(1, 3);
      for (int i = 0; i < count; ++i) {
        Axis linear = randomLinear(r, order[static_cast<std::size_t>(i)], r.flip());
        nameAxis(r, linear);
        c.addAxis(linear);
      }
      if (r.flip()) rotaries.push_back(randomRotary(r, r.flip(), r.unitVector(), r.integer(0, 2)));
      break;
    }
    case Kind::ADDITIVE: {
      c.setAdditiveFFF(true);
      if (r.flip()) {
        c.setCenterPositionX(r.any(300));
        c.setCenterPositionY(r.any(300));
        c.setCenterPositionZ(r.any(300));
      }
      unsigned int const extruders = static_cast<unsigned int>(r.integer(0, 3));
      c.setNumberExtruders(extruders);
      for (unsigned int e = 1; e <= extruders; ++e) {
        c.setExtruderOffsetX(e, r.any(50));
        c.setExtruderOffsetY(e, r.any(50));
        c.setExtruderOffsetZ(e, r.any(50));
      }
      if (r.flip()) {
        c.setParkPositionX(r.any(300));
        c.setParkPositionY(r.any(300));
        c.setParkPositionZ(r.any(300));
      }
      break;
    }
  }
  if (kind != Kind::LINEAR_ANY_ORDER) {
    // The linear axes keep their unit vectors and take the other values.
    for (MachineConfiguration::AxisId const id :
         {MachineConfiguration::AXIS_X, MachineConfiguration::AXIS_Y, MachineConfiguration::AXIS_Z}) {
      Axis linear = randomLinear(r, id, false);
      nameAxis(r, linear);
      c.getAxisById(id) = linear;
    }
  }
  for (Axis& rotary : rotaries) {
    nameAxis(r, rotary);
    c.addAxis(rotary);
  }
  return c;
}

void expectSameAxis(Axis const& a, Axis const& b, std::string const& what) {
  EXPECT_EQ(a.isEnabled(), b.isEnabled()) << what;
  EXPECT_EQ(a.getActuator(), b.getActuator()) << what;
  EXPECT_EQ(a.isTable(), b.isTable()) << what;
  expectNear(a.getAxis(), b.getAxis(), what + " axis");
  expectNear(a.getOffset(), b.getOffset(), what + " offset");
  EXPECT_PRED2(near, a.getDisplacement(), b.getDisplacement()) << what;
  EXPECT_EQ(a.getCoordinate(), b.getCoordinate()) << what;
  EXPECT_EQ(a.getName(), b.getName()) << what;
  EXPECT_EQ(a.getMachinePartId(), b.getMachinePartId()) << what;
  EXPECT_PRED2(near, a.getResolution(), b.getResolution()) << what;
  EXPECT_EQ(a.hasHomePosition(), b.hasHomePosition()) << what;
  EXPECT_PRED2(near, a.getHomePosition(), b.getHomePosition()) << what;
  EXPECT_EQ(a.getPreference(), b.getPreference()) << what;
  EXPECT_PRED2(near, a.getMaximumFeed(), b.getMaximumFeed()) << what;
  EXPECT_PRED2(near, a.getRapidFeed(), b.getRapidFeed()) << what;
  EXPECT_EQ(a.isCyclic(), b.isCyclic()) << what;
  EXPECT_EQ(a.isTCPEnabled(), b.isTCPEnabled()) << what;
  EXPECT_EQ(a.getRange().isNonRange(), b.getRange().isNonRange()) << what;
  if (!a.getRange().isNonRange() && !b.getRange().isNonRange()) {
    EXPECT_PRED2(near, a.getRange().getInternalMinimum(), b.getRange().getInternalMinimum()) << what;
    EXPECT_PRED2(near, a.getRange().getInternalMaximum(), b.getRange().getInternalMaximum()) << what;
  }
  EXPECT_EQ(a.isAggregate(), b.isAggregate()) << what;
  EXPECT_EQ(a.getReset(), b.getReset()) << what;
}

/// The spindle description has no getter; the written text shows it.
std::wstring spindleDescription(MachineConfiguration const& c) {
  Orvo::DOM::Document document;
  EXPECT_TRUE(document.create());
  document.loadFromText(c.getXML());
  return document.getRoot().getFirstChildElement(L"spindle").getFirstChildElement(L"description").getTextContent();
}

void expectSame(MachineConfiguration const& a, MachineConfiguration const& b, std::string const& what) {
  EXPECT_EQ(a.getVendor(), b.getVendor()) << what;
  EXPECT_EQ(a.getVendorUrl(), b.getVendorUrl()) << what;
  EXPECT_EQ(a.getModel(), b.getModel()) << what;
  EXPECT_EQ(a.getDescription(), b.getDescription()) << what;
  EXPECT_EQ(a.getControl(), b.getControl()) << what;
  EXPECT_EQ(a.getPostProcessor(), b.getPostProcessor()) << what;
  EXPECT_EQ(a.getSetupSheet(), b.getSetupSheet()) << what;
  EXPECT_EQ(a.getMachineAssembly(), b.getMachineAssembly()) << what;
  EXPECT_EQ(a.getCollectChuck(), b.getCollectChuck()) << what;
  EXPECT_EQ(spindleDescription(a), spindleDescription(b)) << what;

  EXPECT_EQ(a.getMilling(), b.getMilling()) << what;
  EXPECT_EQ(a.getTurning(), b.getTurning()) << what;
  EXPECT_EQ(a.getWire(), b.getWire()) << what;
  EXPECT_EQ(a.getJet(), b.getJet()) << what;
  expectNear(a.getDimensions(), b.getDimensions(), what + " dimensions");
  EXPECT_PRED2(near, a.getWeight(), b.getWeight()) << what;
  expectNear(a.getPartDimensions(), b.getPartDimensions(), what + " capacities");
  EXPECT_PRED2(near, a.getWeightCapacity(), b.getWeightCapacity()) << what;
  EXPECT_EQ(a.getToolChanger(), b.getToolChanger()) << what;
  EXPECT_EQ(a.getToolPreload(), b.getToolPreload()) << what;
  EXPECT_EQ(a.getNumberOfTools(), b.getNumberOfTools()) << what;
  EXPECT_PRED2(near, a.getMaximumToolLength(), b.getMaximumToolLength()) << what;
  EXPECT_PRED2(near, a.getMaximumToolDiameter(), b.getMaximumToolDiameter()) << what;
  EXPECT_PRED2(near, a.getMaximumToolWeight(), b.getMaximumToolWeight()) << what;
  EXPECT_PRED2(near, a.getFeedrateRatio(), b.getFeedrateRatio()) << what;
  EXPECT_PRED2(near, a.getToolChangeTime(), b.getToolChangeTime()) << what;
  EXPECT_EQ(a.getCoolants(), b.getCoolants()) << what;
  EXPECT_PRED2(near, a.getMaximumFeedrate(), b.getMaximumFeedrate()) << what;
  EXPECT_PRED2(near, a.getMaximumCuttingFeedrate(), b.getMaximumCuttingFeedrate()) << what;
  EXPECT_EQ(a.getMaximumBlockProcessingSpeed(), b.getMaximumBlockProcessingSpeed()) << what;
  EXPECT_EQ(a.getNumberOfWorkOffsets(), b.getNumberOfWorkOffsets()) << what;
  // The spindle axis is normalised on reading; the samples give unit ones.
  expectNear(a.getSpindleAxis(), b.getSpindleAxis(), what + " spindle axis");
  EXPECT_PRED2(near, a.getMaximumSpindlePower(), b.getMaximumSpindlePower()) << what;
  EXPECT_PRED2(near, a.getMaximumSpindleSpeed(), b.getMaximumSpindleSpeed()) << what;
  expectNear(a.getWCS(), b.getWCS(), what + " wcs");
  EXPECT_EQ(a.getRetractOnIndexing(), b.getRetractOnIndexing()) << what;
  EXPECT_EQ(a.getShortestAngularRotation(), b.getShortestAngularRotation()) << what;

  EXPECT_EQ(a.getVirtualTooltip(), b.getVirtualTooltip()) << what;
  int const mode = a.getMultiAxisFeedrateMode();
  EXPECT_EQ(mode, b.getMultiAxisFeedrateMode()) << what;
  EXPECT_PRED2(near, a.getMultiAxisFeedrateMaximum(), b.getMultiAxisFeedrateMaximum()) << what;
  // What belongs to the mode; the rest is not carried by the record's setter.
  if (mode == 0) {
    EXPECT_EQ(a.getMultiAxisFeedrateInverseTimeUnits(), b.getMultiAxisFeedrateInverseTimeUnits()) << what;
  }
  if (mode == 1) {
    EXPECT_EQ(a.getMultiAxisFeedrateDPMType(), b.getMultiAxisFeedrateDPMType()) << what;
    EXPECT_PRED2(near, a.getMultiAxisFeedrateOutputTolerance(), b.getMultiAxisFeedrateOutputTolerance()) << what;
    EXPECT_PRED2(near, a.getMultiAxisFeedrateBpwRatio(), b.getMultiAxisFeedrateBpwRatio()) << what;
  }
  auto const& ra = a.getMultiAxisRetractAndReconfigure();
  auto const& rb = b.getMultiAxisRetractAndReconfigure();
  EXPECT_EQ(ra.getReconfigure(), rb.getReconfigure()) << what;
  expectNear(ra.getStockExpansion(), rb.getStockExpansion(), what + " stock expansion");
  EXPECT_PRED2(near, ra.getSafeRetractDistance(), rb.getSafeRetractDistance()) << what;
  EXPECT_PRED2(near, ra.getSafeRetractFeedrate(), rb.getSafeRetractFeedrate()) << what;
  EXPECT_PRED2(near, ra.getSafePlungeFeedrate(), rb.getSafePlungeFeedrate()) << what;
  auto const& sa = a.getSingularity();
  auto const& sb = b.getSingularity();
  EXPECT_EQ(sa.getAdjust(), sb.getAdjust()) << what;
  EXPECT_EQ(sa.getMethod(), sb.getMethod()) << what;
  EXPECT_PRED2(near, sa.getCone(), sb.getCone()) << what;
  EXPECT_PRED2(near, sa.getAngle(), sb.getAngle()) << what;
  EXPECT_PRED2(near, sa.getTolerance(), sb.getTolerance()) << what;
  EXPECT_PRED2(near, sa.getLinearizationTolerance(), sb.getLinearizationTolerance()) << what;

  EXPECT_EQ(a.getNumberOfAxes(), b.getNumberOfAxes()) << what;
  for (int id = MachineConfiguration::AXIS_X; id <= MachineConfiguration::AXIS_W; ++id) {
    auto const axisId = static_cast<MachineConfiguration::AxisId>(id);
    EXPECT_EQ(a.getIndexOfAxisById(axisId), b.getIndexOfAxisById(axisId)) << what << " slot " << id;
    // A slot outside the order list is not written.
    if (a.hasAxis(axisId))
      expectSameAxis(a.getAxisById(axisId), b.getAxisById(axisId), what + " slot " + std::to_string(id));
  }

  EXPECT_EQ(a.getAdditiveFFF(), b.getAdditiveFFF()) << what;
  if (a.getAdditiveFFF()) {
    EXPECT_EQ(a.hasCenterPosition(), b.hasCenterPosition()) << what;
    if (a.hasCenterPosition() && b.hasCenterPosition()) {
      EXPECT_EQ(a.getCenterPositionX(), b.getCenterPositionX()) << what;
      EXPECT_EQ(a.getCenterPositionY(), b.getCenterPositionY()) << what;
      EXPECT_EQ(a.getCenterPositionZ(), b.getCenterPositionZ()) << what;
    }
    EXPECT_EQ(a.getNumberExtruders(), b.getNumberExtruders()) << what;
    for (unsigned int e = 1; e <= a.getNumberExtruders() && e <= b.getNumberExtruders(); ++e) {
      EXPECT_EQ(a.getExtruderOffsetX(e), b.getExtruderOffsetX(e)) << what;
      EXPECT_EQ(a.getExtruderOffsetY(e), b.getExtruderOffsetY(e)) << what;
      EXPECT_EQ(a.getExtruderOffsetZ(e), b.getExtruderOffsetZ(e)) << what;
    }
    EXPECT_EQ(a.hasParkPosition(), b.hasParkPosition()) << what;
    if (a.hasParkPosition() && b.hasParkPosition()) {
      EXPECT_EQ(a.getParkPositionX(), b.getParkPositionX()) << what;
      EXPECT_EQ(a.getParkPositionY(), b.getParkPositionY()) << what;
      EXPECT_EQ(a.getParkPositionZ(), b.getParkPositionZ()) << what;
    }
  }
}

void roundTrip(Kind kind, unsigned int seed) {
  Random r(seed);
  for (int sample = 0; sample < kSamplesPerKind; ++sample) {
    MachineConfiguration const c = randomConfiguration(r, kind);
    for (bool const units : {false, true})
      for (bool const inch : {false, true}) {
        if (!units && inch) continue;  // the same text as without units
        std::string const what = "kind " + std::to_string(static_cast<int>(kind)) + " sample " +
                                 std::to_string(sample) + (units ? (inch ? " in" : " mm") : " bare");
        std::wstring const xml = c.getXMLImpl(units, inch);
        std::unique_ptr<MachineConfiguration> read;
        try {
          read.reset(MachineConfiguration::createFromXML(xml));
        } catch (std::exception const& e) {
          ADD_FAILURE() << what << ": " << e.what();
        }
        ASSERT_NE(read, nullptr) << what;
        expectSame(c, *read, what);
        if (::testing::Test::HasFailure()) return;  // one sample's report is enough
      }
  }
}

TEST(MachineConfigurationXmlRoundTrip, ThreeAxisMills) { roundTrip(Kind::MILL3, 11); }
TEST(MachineConfigurationXmlRoundTrip, FourAxisTables) { roundTrip(Kind::TABLE4, 12); }
TEST(MachineConfigurationXmlRoundTrip, TableTableFiveAxes) { roundTrip(Kind::TABLE_TABLE5, 13); }
TEST(MachineConfigurationXmlRoundTrip, HeadHeadFiveAxes) { roundTrip(Kind::HEAD_HEAD5, 14); }
TEST(MachineConfigurationXmlRoundTrip, HeadTableFiveAxes) { roundTrip(Kind::HEAD_TABLE5, 15); }
TEST(MachineConfigurationXmlRoundTrip, SixAxes) { roundTrip(Kind::SIX, 16); }
TEST(MachineConfigurationXmlRoundTrip, LinearAxesInAnyOrderAndOffTheirUnitVectors) {
  roundTrip(Kind::LINEAR_ANY_ORDER, 17);
}
TEST(MachineConfigurationXmlRoundTrip, AdditiveMachines) { roundTrip(Kind::ADDITIVE, 18); }

}  // namespace
