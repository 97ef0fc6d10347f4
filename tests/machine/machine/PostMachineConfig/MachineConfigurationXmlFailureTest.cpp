// Every failure of the XML reader, each provoked by a document that has that
// one fault, and the texts it fails with.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "support/ScriptFailureText.h"

using com::vantora::post::MachineConfiguration;
using mtkit_test::scriptFailure;

namespace {

struct Fault {
  // The children of the root.
  wchar_t const* body;
  wchar_t const* message;
};

std::wstring failureOf(std::wstring const& body) {
  return scriptFailure([&] {
    std::unique_ptr<MachineConfiguration> const c(
        MachineConfiguration::createFromXML(L"<machine version=\"1.0\">" + body + L"</machine>"));
  });
}

void expectFaults(std::vector<Fault> const& faults) {
  for (Fault const& f : faults) EXPECT_EQ(failureOf(f.body), f.message) << "document body: " << std::wstring(f.body);
}

}  // namespace

TEST(MachineConfigurationXmlFailure, RootElements) {
  expectFaults({
      {L"<simulation wcs=\"1 2 3 4\"/>", L"Too many coordinates in simulation WCS in machine configuration."},
      {L"<simulation wcs=\"1 2\"/>", L"Invalid simulation WCS in machine configuration."},
      {L"<simulation wcs=\"1 2 x\"/>", L"Invalid simulation WCS in machine configuration."},
      {L"<simulation retractOnIndexing=\"true\"/>", L"Invalid retract on indexing option in machine configuration."},
      {L"<simulation shortestAngularRotation=\"false\"/>",
       L"Invalid shortest angular rotation option in machine configuration."},
      {L"<dimensions width=\"wide\"/>", L"Invalid width in machine configuration."},
      {L"<dimensions width=\"-1\"/>", L"Width cannot be negative in machine configuration."},
      {L"<dimensions depth=\"10 mm\"/>", L"Invalid depth in machine configuration."},
      {L"<dimensions depth=\"-1in\"/>", L"Depth cannot be negative in machine configuration."},
      {L"<dimensions height=\"10parsec\"/>", L"Invalid height in machine configuration."},
      {L"<dimensions height=\"-0.5m\"/>", L"Height cannot be negative in machine configuration."},
      {L"<dimensions weight=\"heavy\"/>", L"Invalid weight in machine configuration."},
      {L"<dimensions weight=\"-1kg\"/>", L"Weight cannot be negative in machine configuration."},
      {L"<capabilities maximumFeedrate=\"fast\"/>", L"Invalid maximum feed rate in machine configuration."},
      {L"<capabilities maximumFeedrate=\"-1\"/>", L"Maximum feed rate cannot be negative in machine configuration."},
      {L"<capabilities maximumCuttingFeedrate=\"10mm\"/>", L"Invalid maximum cutting feed rate in machine configuration."},
      {L"<capabilities maximumCuttingFeedrate=\"-5mm/min\"/>",
       L"Maximum cutting feed rate cannot be negative in machine configuration."},
      {L"<capabilities maximumBlockProcessingSpeed=\"1.5\"/>",
       L"Invalid maximum block processing speed in machine configuration."},
      {L"<capabilities workOffsets=\"-1\"/>", L"Invalid number of work offsets in machine configuration."},
      {L"<capacities width=\"x\"/>", L"Invalid width capacity in machine configuration."},
      {L"<capacities width=\"-1\"/>", L"Width capacity cannot be negative in machine configuration."},
      {L"<capacities depth=\"x\"/>", L"Invalid depth capacity in machine configuration."},
      {L"<capacities depth=\"-1\"/>", L"Depth capacity cannot be negative in machine configuration."},
      {L"<capacities height=\"x\"/>", L"Invalid height capacity in machine configuration."},
      {L"<capacities height=\"-1\"/>", L"Height capacity cannot be negative in machine configuration."},
      {L"<capacities weight=\"1mm\"/>", L"Invalid weight capacity in machine configuration."},
      {L"<capacities weight=\"-1lb\"/>", L"Weight capacity cannot be negative in machine configuration."},
      {L"<tooling toolChanger=\"true\"/>", L"Invalid tool changer option in machine configuration."},
      {L"<tooling toolPreload=\"on\"/>", L"Invalid tool preload option in machine configuration."},
      {L"<tooling numberOfTools=\"many\"/>", L"Invalid number of tools in machine configuration."},
      {L"<tooling maximumToolLength=\"x\"/>", L"Invalid maximum tool length in machine configuration."},
      {L"<tooling maximumToolLength=\"-1\"/>", L"Maximum tool length cannot be negative in machine configuration."},
      {L"<tooling maximumToolDiameter=\"x\"/>", L"Invalid maximum tool diameter in machine configuration."},
      {L"<tooling maximumToolDiameter=\"-1\"/>", L"Maximum tool diameter cannot be negative in machine configuration."},
      {L"<tooling maximumToolWeight=\"x\"/>", L"Invalid maximum tool weight in machine configuration."},
      {L"<tooling maximumToolWeight=\"-1\"/>", L"Maximum tool weight cannot be negative in machine configuration."},
      {L"<machining milling=\"true\"/>", L"Invalid milling capability option in machine configuration."},
      {L"<machining turning=\"true\"/>", L"Invalid turning capability option in machine configuration."},
      {L"<machining wire=\"true\"/>", L"Invalid wire capability option in machine configuration."},
      {L"<machining jet=\"true\"/>", L"Invalid jet capability option in machine configuration."},
      {L"<machining inspection=\"true\"/>", L"Invalid inspection capability option in machine configuration."},
      {L"<machiningTime ratio=\"-0.5\"/>", L"Feed rate ratio cannot be negative in machine configuration."},
      {L"<machiningTime toolChangeTime=\"-1s\"/>", L"Tool change time cannot be negative in machine configuration."},
      {L"<home x=\"far\"/>", L"Invalid home position in machine configuration."},
      {L"<home z=\"1 in\"/>", L"Invalid home position in machine configuration."},
      {L"<spindle axis=\"0 0 1 0\"/>", L"Too many coordinates in spindle axis in machine configuration."},
      {L"<spindle axis=\"0 0 0\"/>", L"Spindle axis cannot be zero in machine configuration."},
      {L"<spindle axis=\"0 0\"/>", L"Invalid spindle axis in machine configuration."},
      {L"<spindle maximumPower=\"big\"/>", L"Invalid maximum spindle power in machine configuration."},
      {L"<spindle maximumPower=\"-1W\"/>", L"Maximum spindle power cannot be negative in machine configuration."},
      {L"<spindle maximumSpeed=\"fast\"/>", L"Invalid maximum spindle speed in machine configuration."},
      {L"<spindle maximumSpeed=\"-1rpm\"/>", L"Maximum spindle speed cannot be negative in machine configuration."},
      {L"<spindle minimumSpeed=\"slow\"/>", L"Invalid minimum spindle speed in machine configuration."},
      {L"<spindle minimumSpeed=\"-1\"/>", L"Minimum spindle speed cannot be negative in machine configuration."},
  });
}

TEST(MachineConfigurationXmlFailure, MultiAxis) {
  expectFaults({
      {L"<multiAxis virtualToolTip=\"true\"/>", L"Invalid multi-axis virtual tool tip option in machine configuration."},
      {L"<multiAxis maximumFeedrate=\"x\"/>", L"Invalid multi-axis maximum feedrate in machine configuration."},
      {L"<multiAxis maximumFeedrate=\"-1\"/>", L"Multi-axis maximum feedrate cannot be negative in machine configuration."},
      {L"<multiAxis feedrateMethod=\"ipm\"/>", L"Invalid multi-axis feedrate method option in machine configuration."},
      {L"<multiAxis feedrateMethod=\"inverse\" feedrateType=\"hours\"/>",
       L"Invalid multi-axis feedrate type option in machine configuration."},
      {L"<multiAxis feedrateType=\"hours\"/>", L"Invalid multi-axis feedrate type option in machine configuration."},
      {L"<multiAxis outputTolerance=\"tight\"/>",
       L"Invalid multi-axis feedrate output tolerance in machine configuration."},
      {L"<multiAxis outputTolerance=\"-0.1\"/>",
       L"Multi-axis feedrate output tolerance cannot be negative in machine configuration."},
      {L"<multiAxis bpwRatio=\"1mm\"/>", L"Invalid multi-axis bpw ratio in machine configuration."},
      {L"<multiAxis bpwRatio=\"-1\"/>", L"Multi-axis bpw ratio cannot be negative in machine configuration."},
      {L"<multiAxis reconfigure=\"1\"/>", L"Invalid multi-axis reconfigure option in machine configuration."},
      {L"<multiAxis stockExpansion=\"1 2 3 4\"/>", L"Too many values for stock expansion in machine configuration."},
      {L"<multiAxis stockExpansion=\"1 2\"/>", L"Invalid stock expansion vector in machine configuration."},
      {L"<multiAxis safeRetractDistance=\"x\"/>", L"Invalid multi-axis safe retract distance in machine configuration."},
      {L"<multiAxis safeRetractDistance=\"-1\"/>",
       L"Multi-axis safe retract distance cannot be negative in machine configuration."},
      {L"<multiAxis safeRetractFeedrate=\"x\"/>", L"Invalid multi-axis safe retract feedrate in machine configuration."},
      {L"<multiAxis safeRetractFeedrate=\"-1\"/>",
       L"Multi-axis safe retract feedrate cannot be negative in machine configuration."},
      {L"<multiAxis safePlungeFeedrate=\"x\"/>", L"Invalid multi-axis safe plunge feedrate in machine configuration."},
      {L"<multiAxis safePlungeFeedrate=\"-1\"/>",
       L"Multi-axis safe plunge feedrate cannot be negative in machine configuration."},
      {L"<multiAxis adjust=\"maybe\"/>", L"Invalid multi-axis singularity adjust option in machine configuration."},
      {L"<multiAxis method=\"linearize\"/>", L"Invalid multi-axis singularity method option in machine configuration."},
      {L"<multiAxis cone=\"wide\"/>", L"Invalid multi-axis singularity cone in machine configuration."},
      {L"<multiAxis cone=\"-1\"/>", L"Multi-axis singularity cone cannot be negative in machine configuration."},
      {L"<multiAxis angle=\"x\"/>", L"Invalid multi-axis singularity angle in machine configuration."},
      {L"<multiAxis angle=\"-1deg\"/>", L"Multi-axis singularity angle cannot be negative in machine configuration."},
      {L"<multiAxis tolerance=\"x\"/>", L"Invalid multi-axis singularity tolerance in machine configuration."},
      {L"<multiAxis tolerance=\"-1\"/>", L"Multi-axis singularity tolerance cannot be negative in machine configuration."},
      {L"<multiAxis linearizationTolerance=\"x\"/>",
       L"Invalid multi-axis singularity linearization tolerance in machine configuration."},
      {L"<multiAxis linearizationTolerance=\"-1\"/>",
       L"Multi-axis singularity linearization tolerance cannot be negative in machine configuration."},
  });
}

TEST(MachineConfigurationXmlFailure, Axes) {
  expectFaults({
      {L"<axis coordinate=\"A\" axis=\"1 0 0\"/>", L"Invalid Axis in machine configuration."},
      {L"<axis id=\"A\" coordinate=\"A\" axis=\"1 0 0\"/>", L"Invalid Axis in machine configuration."},
      {L"<axis id=\"u\" coordinate=\"A\" axis=\"1 0 0\"/>", L"Invalid Axis in machine configuration."},
      {L"<axis id=\"U\" actuator=\"prismatic\"/>", L"Invalid actuator option for axis 'U' in machine configuration."},
      {L"<axis id=\"V\" offset=\"1 2 3 4\"/>",
       L"Too many coordinates in offset vector for axis 'V' in machine configuration."},
      {L"<axis id=\"V\" offset=\"1 2\"/>", L"Invalid offset vector for axis 'V' in machine configuration."},
      {L"<axis id=\"W\" displacement=\"far\"/>", L"Invalid displacement for axis 'W' in machine configuration."},
      {L"<axis id=\"X\" coordinate=\"D\"/>", L"Invalid coordinate for axis 'X' in machine configuration."},
      {L"<axis id=\"Y\" coordinate=\"-1\"/>", L"Invalid coordinate for axis 'Y' in machine configuration."},
      // The id in these words is X whatever the axis.
      {L"<axis id=\"V\" axis=\"1 0 0 0\"/>", L"Too many coordinates in axis vector for axis 'X' in machine configuration."},
      {L"<axis id=\"V\" axis=\"1 x 0\"/>", L"Invalid axis vector for axis 'V' in machine configuration."},
      {L"<axis id=\"U\" link=\"base\"/>", L"Invalid link option for axis 'U' in machine configuration."},
      {L"<axis id=\"U\" resolution=\"fine\"/>", L"Invalid resolution for axis 'U' in machine configuration."},
      {L"<axis id=\"U\" resolution=\"-0.001\"/>", L"Resolution cannot be negative for axis 'U' in machine configuration."},
      {L"<axis id=\"Z\" homePosition=\"top\"/>", L"Invalid home position for axis 'Z' in machine configuration."},
      {L"<axis id=\"U\" preference=\"up\"/>", L"Invalid preference option for axis 'U' in machine configuration."},
      {L"<axis id=\"U\" maximumFeed=\"fast\"/>", L"Invalid maximum feed rate for axis 'U' in machine configuration."},
      {L"<axis id=\"U\" maximumFeed=\"-1\"/>",
       L"Maximum feed rate cannot be negative for axis 'U' in machine configuration."},
      {L"<axis id=\"X\" actuator=\"linear\" rapidFeed=\"10rpm\"/>",
       L"Invalid rapid feed rate for axis 'X' in machine configuration."},
      {L"<axis id=\"X\" rapidFeed=\"-1\"/>", L"Rapid feed rate cannot be negative for axis 'X' in machine configuration."},
      {L"<axis id=\"U\" range=\"10\"/>", L"Invalid range for axis 'U' in machine configuration."},
      {L"<axis id=\"U\" range=\"1 2 3\"/>", L"Invalid range for axis 'U' in machine configuration."},
      {L"<axis id=\"U\" range=\"a b\"/>", L"Invalid range for axis 'U' in machine configuration."},
      {L"<axis id=\"U\" range=\"Unbound\"/>", L"Invalid range for axis 'U' in machine configuration."},
      {L"<axis id=\"U\" reset=\"never\"/>", L"Invalid reset option for axis 'U' in machine configuration."},
      // U starts with a zero vector, and nothing gave it one.
      {L"<axis id=\"U\" coordinate=\"A\"/>", L"Invalid axis in machine configuration."},
      // No coordinate: an axis that does not exist.
      {L"<axis id=\"X\" actuator=\"linear\"/>", L"Invalid axis in machine configuration."},
  });
}

TEST(MachineConfigurationXmlFailure, ValuesWithoutAFailureTextOfTheirOwnFailWithTheGeneralOne) {
  expectFaults({
      {L"<machiningTime ratio=\"fast\"/>", L"Failed to load machine configuration."},
      {L"<machiningTime toolChangeTime=\"soon\"/>", L"Failed to load machine configuration."},
      {L"<axis id=\"U\" coordinate=\"A\" axis=\"1 0 0\" range=\"-90 90\" cyclic=\"true\"/>",
       L"Failed to load machine configuration."},
      {L"<axis id=\"U\" coordinate=\"A\" axis=\"1 0 0\" tcp=\"off\"/>", L"Failed to load machine configuration."},
  });
}

TEST(MachineConfigurationXmlFailure, Additive) {
  expectFaults({
      {L"<additive centerx=\"middle\"/>", L"Invalid additive center position in machine configuration."},
      {L"<additive centerz=\"1mm\"/>", L"Invalid additive center position in machine configuration."},
      {L"<additive><fff_settings max_extruders=\"two\"/></additive>",
       L"Invalid number of extruders in machine configuration."},
      // More than 1024 would let a document ask for any amount of memory.
      {L"<additive><fff_settings max_extruders=\"1025\"/></additive>",
       L"Invalid number of extruders in machine configuration."},
      {L"<additive><fff_settings max_extruders=\"1688582321\"/></additive>",
       L"Invalid number of extruders in machine configuration."},
      {L"<additive><fff_settings><extruder_offsets><item><x>a</x></item></extruder_offsets></fff_settings></additive>",
       L"Invalid additive extruder offset in machine configuration."},
      {L"<additive><fff_settings><home_position><y/></home_position></fff_settings></additive>",
       L"Invalid additive home position in machine configuration."},
      {L"<additive><fff_settings><park_position><z>1 2</z></park_position></fff_settings></additive>",
       L"Invalid additive park position in machine configuration."},
  });
}

TEST(MachineConfigurationXmlFailure, ValuesBeyondTheRangeOfANumberAreInvalid) {
  expectFaults({
      // 1e308 metres does not fit a double of millimetres.
      {L"<dimensions width=\"1e308m\"/>", L"Invalid width in machine configuration."},
      {L"<machiningTime ratio=\"nan\"/>", L"Failed to load machine configuration."},
      {L"<additive centerx=\"inf\"/>", L"Invalid additive center position in machine configuration."},
      {L"<capabilities workOffsets=\"4294967296\"/>", L"Invalid number of work offsets in machine configuration."},
  });
}

TEST(MachineConfigurationXmlFailure, AddingTheAxesFailsAsAddAxisDoes) {
  // Two linear axes on one coordinate, under different ids.
  EXPECT_EQ(failureOf(L"<axis id=\"X\" actuator=\"linear\" coordinate=\"X\"/>"
                      L"<axis id=\"Y\" actuator=\"linear\" coordinate=\"X\"/>"),
            L"X-axis already added.");
}

TEST(MachineConfigurationXmlFailure, UpTo1024ExtrudersAreRead) {
  std::unique_ptr<MachineConfiguration> const c(MachineConfiguration::createFromXML(
      L"<machine><additive><fff_settings max_extruders=\"1024\"/></additive></machine>"));
  ASSERT_TRUE(c);
  EXPECT_EQ(c->getNumberExtruders(), 1024u);
}
