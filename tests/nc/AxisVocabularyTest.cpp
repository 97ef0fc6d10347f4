#include <gtest/gtest.h>

#include <map>

#include "nc/AxisInfo.h"
#include "nc/AxisName.h"
#include "nc/AxisOrdering.h"
#include "nc/AxisValues.h"
#include "nc/MachinePartId.h"
#include "nc/TaggedFrame.h"

using namespace Orvo;

TEST(AxisName, EmptyNameServesUnnamedAxes) {
  EXPECT_EQ(AxisName("").getName(), "");
  EXPECT_TRUE(AxisName("X") == AxisName(std::string("X")));
  EXPECT_FALSE(AxisName("X") == AxisName("Y"));
}

TEST(MachinePartId, IsAnOrderedKey) {
  std::map<MachinePartId, int> m;
  m[MachinePartId("b")] = 2;
  m[MachinePartId("a")] = 1;
  m[MachinePartId("a")] = 3;
  EXPECT_EQ(m.size(), 2u);
  EXPECT_EQ(m.begin()->first.id(), "a");
  EXPECT_STREQ(MachinePartId("x1").c_str(), "x1");
  EXPECT_TRUE(MachinePartId("a") != MachinePartId("b"));
  EXPECT_FALSE(MachinePartId("a") < MachinePartId("a"));
}

TEST(AxisOrdering, IndexFindsByNameOrNothing) {
  AxisOrdering o;
  o.append(AxisInfo("x_part", "X"));
  o.append(AxisInfo(MachinePartId("c_part"), AxisName("C")));
  EXPECT_EQ(o.size(), 2);
  EXPECT_EQ(o.index(AxisName("C")), 1);
  EXPECT_FALSE(o.index(AxisName("Q")));
  EXPECT_EQ(o.machinePartId(1).id(), "c_part");
  EXPECT_EQ(o.axisName(0).getName(), "X");
}

TEST(AxisOrdering, SizedOrderingIsFilledBySetAxisInfo) {
  AxisOrdering o(2);
  EXPECT_EQ(o.size(), 2);
  o.setAxisInfo(1, AxisInfo("p", "B"));
  EXPECT_EQ(o.axisName(1).getName(), "B");
  AxisOrdering copy = o;
  EXPECT_TRUE(copy == o);
  copy.setAxisInfo(0, AxisInfo("q", "A"));
  EXPECT_FALSE(copy == o);
}

TEST(AxisValues, IndexedValuesCompareElementByElement) {
  AxisValues v(3);
  v.setValue(0, 1.0);
  v.setValue(2, 3.0);
  EXPECT_EQ(v.size(), 3);
  EXPECT_EQ(v.value(2).value(), 3.0);
  EXPECT_EQ(v[0].value(), 1.0);
  AxisValues const w(std::vector<AxisValue>{1.0, 0.0, 3.0});
  EXPECT_TRUE(v == w);
  v.setValue(1, std::nan(""));
  EXPECT_TRUE(v != v);  // the NaN rule carries over
}

TEST(TaggedFrame, KeepsTagsAndFrame) {
  TaggedFrame const t("wcs", "table", Frame(IdentityTag{}));
  EXPECT_EQ(t.tag(), "wcs");
  EXPECT_EQ(t.baseFrameTag(), "table");
  EXPECT_EQ(t.frame(), Frame(IdentityTag{}));
}
