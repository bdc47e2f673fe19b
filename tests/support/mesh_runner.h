// Test support: run the mesher's decomposition on a test region.
#pragma once

#include <string>
#include <vector>

#include "framework/onebased.h"
#include "framework/state.h"
#include "support/console_fixture.h"
#include "support/mesh_checker.h"

namespace kntr::testing {

// Room for a region's vertices, the points the mesher adds included.
inline constexpr int TestVertexRoom = 20000;

// The vertex storage that decomposeRegion hands to the mesher.
View1<XY> testVertices();

// Lay `region` out in testVertices(), build the half-edge structure in
// meshData() and decompose it into convex polygons as the region mesher
// does: holes joined first, then every reflex corner removed. False, with
// the mesher's message shown, when a stage fails.
bool decomposeRegion(const TestRegion& region);

// A console test whose errors do not wait for RETURN, so that a failing
// mesher stage can be run without scripted input.
class MesherTest : public ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    framework::program().executionMode = framework::ModeBatch;
  }
};

// The text of the mesher's messages in the console output: each "(NAME)
// text" line, in order.
std::vector<std::string> mesherMessages(const std::string& output);

}  // namespace kntr::testing
