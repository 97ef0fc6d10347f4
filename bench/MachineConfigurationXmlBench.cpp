// Reading a realistic five-axis machine configuration document (a tilting
// table and a rotary table, every element of the format in use, units on
// most numbers) with MachineConfiguration::createFromXML, against a bare
// pugixml parse of the same document from the same wide text in memory. The
// goal is a read at most 2 times the parse.
//
// The mtkit side does everything a script's call does: the wide text to
// UTF-8, the parse with the hostile-input checks (nesting limit), the walk
// over the document with every value parsed and checked, the axes built and
// added, and the configuration made and destroyed. The peer only parses, the
// fastest way pugixml's API has from wide text.
// Ratios are of CPU time; on a loaded machine run with
//   --benchmark_repetitions=10 --benchmark_enable_random_interleaving=true

#include <benchmark/benchmark.h>

#include <pugixml.hpp>

#include <memory>
#include <string>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "machine/machine/PostMachineConfig/MachineConfigurationLoader.h"
#include "util/utility/DOM/Document.h"
#include "util/utility/Messages.h"

namespace {

using com::vantora::post::MachineConfiguration;
using com::vantora::post::MachineConfigurationLoader;

// The same document as the fuzzer's five-axis seed.
char const kDocument[] = R"XML(<?xml version="1.0" encoding="UTF-8"?>
<machine xmlns="http://mtkit.invalid/xml/2009/machine" version="1.0">
  <vendor>Example Works</vendor>
  <vendorUrl>https://example.invalid/</vendorUrl>
  <model>FX-500</model>
  <description>Five-axis mill with a tilting table and a rotary head</description>
  <control>Generic 5X</control>
  <machining milling="yes" turning="no" wire="no" jet="no" inspection="no"/>
  <dimensions width="2.5m" depth="2000mm" height="2800" weight="7.5t"/>
  <capacities width="500" depth="400" height="350" weight="300kg"/>
  <tooling toolChanger="yes" toolPreload="yes" numberOfTools="40" maximumToolLength="300mm" maximumToolDiameter="125" maximumToolWeight="8kg"/>
  <machiningTime ratio="1.1" toolChangeTime="6s"/>
  <coolant options="FLOOD MIST THROUGH_TOOL AIR"/>
  <capabilities maximumFeedrate="30m/min" maximumCuttingFeedrate="10000mm/min" maximumBlockProcessingSpeed="1000" workOffsets="99"/>
  <spindle axis="0 0 1" maximumPower="25kW" maximumSpeed="18000rpm" minimumSpeed="50" collectChuck="HSK-A63">
    <description>Motor spindle</description>
  </spindle>
  <post>
    <postProcessor>generic5x.cps</postProcessor>
    <setupSheet>setup-sheet.cps</setupSheet>
    <postProperties/>
  </post>
  <simulation wcs="0 0 100" retractOnIndexing="yes" shortestAngularRotation="yes">
    <machineAssembly>fx500.step</machineAssembly>
  </simulation>
  <multiAxis virtualToolTip="no" feedrateMethod="dpm" maximumFeedrate="5000" feedrateType="combination" outputTolerance="0.01" bpwRatio="1" reconfigure="yes" stockExpansion="1 1 1" safeRetractDistance="10mm" safeRetractFeedrate="5000" safePlungeFeedrate="1000" adjust="yes" method="linearize rotary" cone="3" angle="10deg" tolerance="0.04" linearizationTolerance="0.04"/>
  <home x="0" y="0" z="500"/>
  <axis id="X" name="x-slide" actuator="linear" coordinate="X" range="-400 400" maximumFeed="30m/min" rapidFeed="40m/min" resolution="0.001"/>
  <axis id="Y" name="y-slide" actuator="linear" coordinate="Y" range="-300 300" maximumFeed="30m/min"/>
  <axis id="Z" name="z-slide" actuator="linear" coordinate="Z" range="-500 0" homePosition="0"/>
  <axis id="U" name="trunnion" actuator="rotational" coordinate="A" axis="1 0 0" offset="0 0 -150" link="table" range="-120 30" preference="negative" resolution="0.001" maximumFeed="3600" rapidFeed="10rpm" reset="operation" tcp="yes"/>
  <axis id="V" name="rotary-table" actuator="rotational" coordinate="C" axis="0 0 1" link="table" range="unbound" reset="rewind" cyclic="yes"/>
</machine>
)XML";

void BM_ReadConfigurationXml(benchmark::State& state) {
  std::wstring const text = Orvo::Messages::utf8ToWide(kDocument);
  for (auto _ : state) {
    std::unique_ptr<MachineConfiguration> configuration(MachineConfiguration::createFromXML(text));
    benchmark::DoNotOptimize(configuration.get());
  }
  state.SetLabel("createFromXML: to UTF-8, parse, checks, read every value, build the configuration");
}
BENCHMARK(BM_ReadConfigurationXml);

void BM_ParseConfigurationXmlOnly(benchmark::State& state) {
  std::string const text = kDocument;
  for (auto _ : state) {
    pugi::xml_document document;
    pugi::xml_parse_result const result =
        document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
    benchmark::DoNotOptimize(result.status);
    benchmark::DoNotOptimize(document.document_element().internal_object());
  }
  state.SetLabel("pugixml load_buffer of the same UTF-8 text, nothing read");
}
BENCHMARK(BM_ParseConfigurationXmlOnly);

void BM_ParseConfigurationXmlWideOnly(benchmark::State& state) {
  std::wstring const text = Orvo::Messages::utf8ToWide(kDocument);
  for (auto _ : state) {
    pugi::xml_document document;
    pugi::xml_parse_result const result = document.load_buffer(text.data(), text.size() * sizeof(wchar_t),
                                                               pugi::parse_default, pugi::encoding_wchar);
    benchmark::DoNotOptimize(result.status);
    benchmark::DoNotOptimize(document.document_element().internal_object());
  }
  state.SetLabel("pugixml load_buffer of the same wide text as createFromXML gets, nothing read");
}
BENCHMARK(BM_ParseConfigurationXmlWideOnly);

// The other way pugixml's API offers from wide text, the way createFromXML
// goes: its own conversion to UTF-8, then a parse in place. Slower than the
// peer above, which is therefore the one the goal is measured against.
void BM_ParseConfigurationXmlWideAsUtf8InPlace(benchmark::State& state) {
  std::wstring const text = Orvo::Messages::utf8ToWide(kDocument);
  for (auto _ : state) {
    std::string utf8 = pugi::as_utf8(text);
    pugi::xml_document document;
    pugi::xml_parse_result const result =
        document.load_buffer_inplace(utf8.data(), utf8.size(), pugi::parse_default, pugi::encoding_utf8);
    benchmark::DoNotOptimize(result.status);
    benchmark::DoNotOptimize(document.document_element().internal_object());
  }
  state.SetLabel("pugixml as_utf8 of the same wide text, then load_buffer_inplace, nothing read");
}
BENCHMARK(BM_ParseConfigurationXmlWideAsUtf8InPlace);

// Not peers: the shares of the read. The walk over a document parsed once
// (every value read and checked, the axes built and added, the
// configuration made and destroyed), and a default configuration made and
// destroyed with nothing read.
void BM_ReadParsedDocumentOnly(benchmark::State& state) {
  Orvo::DOM::Document document;
  document.create();
  document.loadFromUtf8(kDocument);
  for (auto _ : state) {
    MachineConfigurationLoader reader;
    std::unique_ptr<MachineConfiguration> configuration = reader.read(document.getRoot(), std::nullopt, 0);
    benchmark::DoNotOptimize(configuration.get());
  }
  state.SetLabel("the walk over an already parsed document, the configuration made and destroyed");
}
BENCHMARK(BM_ReadParsedDocumentOnly);

void BM_MakeEmptyConfiguration(benchmark::State& state) {
  for (auto _ : state) {
    std::unique_ptr<MachineConfiguration> configuration(new MachineConfiguration());
    benchmark::DoNotOptimize(configuration.get());
  }
  state.SetLabel("a default configuration made and destroyed, nothing read");
}
BENCHMARK(BM_MakeEmptyConfiguration);

}  // namespace

BENCHMARK_MAIN();
