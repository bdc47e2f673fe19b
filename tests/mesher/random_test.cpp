// Random regions with random holes: each either decomposes into a sound
// structure or fails with one of the mesher's own messages. Every case has
// its own seed, printed when it fails. KNTR_SOAK=1 in the environment runs
// 20000 cases of each kind instead of a few hundred.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <string>

#include "mesher/structure.h"
#include "support/mesh_checker.h"
#include "support/mesh_runner.h"
#include "support/mesh_shapes.h"

namespace kntr::mesher {
namespace {

using testing::MesherTest;
namespace shapes = testing::shapes;

// The messages a decomposition may end with.
bool knownMessage(const std::string& message) {
  static const char* const known[] = {
      "(IZMCPR) Max number of internal holes exceeded!",
      "(IZMCPR) Max number of polygon vertices exceeded!",
      "(JNHBOB) Max number of vertices exceeded!",
      "(JNHBOB) Max number of polygon vertices exceeded!",
      "(JNHBOB) Failed to locate subregion above top hole vertex!",
      "(JNHBOB) Internal error - problems with angular tolerance!",
      "(RSRFVX) Attempt to overflow integer auxiliary vector!",
      "(RSRFVX) Attempt to overflow double precision auxiliary vector!",
      "(INSEDG) Max number of polygons exceeded!",
      "(INSEDG) Max number of polygon vertices exceeded!",
      "(INSVTX) Max number of vertices exceeded!",
      "(INSVTX) Max number of polygon vertices exceeded!",
      "(MKVONB) Encountered parallel edges when intersecting!",
      "(SCVPGR) Internal error - attempt to underflow vertex stack!",
      "(SCVPG1) Internal error - index out of range when scanning!",
      "(SCVPG2) Internal error - index out of range when scanning!",
      "(SCVPG3) Internal error - index out of range when scanning!",
      "(SCVPG4) Internal error - index out of range when scanning!",
  };
  for (const char* text : known) {
    if (message.rfind(text, 0) == 0) return true;
  }
  return false;
}

void runRandomRegions(std::uint32_t baseSeed, int cases, bool grid, bool tangled, int& decomposed,
                      std::map<std::string, int>& failures, std::string& output,
                      const std::function<std::string()>& takeOutput) {
  for (int i = 0; i < cases; ++i) {
    const std::uint32_t seed = baseSeed + static_cast<std::uint32_t>(i);
    std::mt19937 random(seed);
    const testing::TestRegion region = shapes::randomRegion(random, MaxHoles, grid, tangled);
    const bool ok = testing::decomposeRegion(region);
    output = takeOutput();
    if (ok) {
      ++decomposed;
      const auto problems = testing::checkDecomposition(meshData(), testing::regionArea(region),
                                                        testing::boundaryLength(region));
      EXPECT_TRUE(problems.empty()) << "seed " << seed << (grid ? " (grid)" : "") << ":\n"
                                    << testing::joined(problems);
      EXPECT_EQ(output, "") << "seed " << seed;
    } else {
      const auto messages = testing::mesherMessages(output);
      ASSERT_FALSE(messages.empty()) << "seed " << seed << ": failed without a message";
      EXPECT_TRUE(knownMessage(messages.front())) << "seed " << seed << ": " << messages.front();
      failures[messages.front()] += 1;
      std::printf("  seed %u%s: %s\n", seed, grid ? " (grid)" : "", messages.front().c_str());
    }
  }
}

TEST_F(MesherTest, RandomRegionsDecomposeOrFailWithAMessage) {
  int decomposed = 0;
  std::map<std::string, int> failures;
  std::string last;
  const int cases = std::getenv("KNTR_SOAK") ? 20000 : 300;
  runRandomRegions(1000u, cases, false, false, decomposed, failures, last,
                   [this] { return output(); });
  for (const auto& [message, count] : failures) {
    std::printf("  %d x %s\n", count, message.c_str());
  }
  std::printf("  %d of %d random regions decomposed\n", decomposed, cases);
  // Regions in general position with holes kept clear of everything are
  // proper input: all of them must go through.
  EXPECT_EQ(decomposed, cases);
}

// On a coarse grid many points stand level with one another and edges run
// along common lines.
TEST_F(MesherTest, RandomGridRegionsDecomposeOrFailWithAMessage) {
  int decomposed = 0;
  std::map<std::string, int> failures;
  std::string last;
  const int cases = std::getenv("KNTR_SOAK") ? 20000 : 200;
  runRandomRegions(5000u, cases, true, false, decomposed, failures, last,
                   [this] { return output(); });
  for (const auto& [message, count] : failures) {
    std::printf("  %d x %s\n", count, message.c_str());
  }
  std::printf("  %d of %d random grid regions decomposed\n", decomposed, cases);
  EXPECT_GE(decomposed, cases * 95 / 100);
}

// Ragged exteriors with deep pockets, on and off the grid.
TEST_F(MesherTest, RandomRaggedRegionsDecomposeOrFailWithAMessage) {
  int decomposed = 0;
  std::map<std::string, int> failures;
  std::string last;
  const int cases = std::getenv("KNTR_SOAK") ? 20000 : 150;
  runRandomRegions(9000u, cases, false, true, decomposed, failures, last,
                   [this] { return output(); });
  runRandomRegions(13000u, cases, true, true, decomposed, failures, last,
                   [this] { return output(); });
  for (const auto& [message, count] : failures) {
    std::printf("  %d x %s\n", count, message.c_str());
  }
  std::printf("  %d of %d random ragged regions decomposed\n", decomposed, 2 * cases);
  EXPECT_GE(decomposed, 2 * cases * 95 / 100);
}

}  // namespace
}  // namespace kntr::mesher
