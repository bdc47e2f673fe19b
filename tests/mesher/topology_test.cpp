// Hash values and the smoothing topology.
#include "mesher/topology.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "mesher/hash.h"
#include "support/mesh_fixture.h"

namespace kntr::testing {
namespace {

using mesher::IHASH2;
using mesher::IHASHN;
using mesher::topology;

using HashTest = MesherTest;

TEST_F(HashTest, TextAndPairHashes) {
  // "37": 51 * 16 + 55. The longer texts pass 28 bits and fold; their values
  // come from a separate implementation of the same rule.
  EXPECT_EQ(mesher::hashText("37"), 871u);
  EXPECT_EQ(mesher::hashText("12345"), 3430005u);
  EXPECT_EQ(mesher::hashText("123456789012"), 183411906u);
  EXPECT_EQ(mesher::hashText(""), 0u);

  bool status = false;
  EXPECT_EQ(IHASH2(3, 7, 199, status), 76);  // 871 mod 199, plus 1
  EXPECT_FALSE(status);
  EXPECT_EQ(IHASH2(7, 3, 199, status), 76);
  // A number wider than the field of 8 is written as stars: the text is
  // "99999999********", hashed to 248778 by the separate implementation.
  EXPECT_EQ(IHASH2(100000000, 99999999, 199, status), 248778 % 199 + 1);
  EXPECT_EQ(IHASH2(99999999, 100000000, 199, status), IHASH2(100000000, 99999999, 199, status));
  EXPECT_EQ(IHASH2(99999999, 5, 1000000000, status),
            static_cast<int>(mesher::hashText("599999999") % 1000000000) + 1);

  EXPECT_EQ(IHASH2(0, 7, 199, status), 0);
  expectFailure(status, "(IHASH2) Numbers to be hashed must be positive!");
}

TEST_F(HashTest, ListHashIgnoresOrder) {
  const unsigned seed = 99;
  std::mt19937 rng(seed);
  std::uniform_int_distribution<int> key(1, 50000);
  for (int trial = 0; trial < 200; ++trial) {
    const int n = 1 + trial % 10;
    std::vector<int> keys(static_cast<std::size_t>(n));
    for (int& k : keys) k = key(rng);
    std::vector<int> sorted = keys;
    std::sort(sorted.begin(), sorted.end());
    std::string text;
    for (const int k : sorted) text += std::to_string(k);
    bool status = false;
    const int expected = static_cast<int>(mesher::hashText(text) % 199) + 1;
    EXPECT_EQ(IHASHN(n, View1<const int>(keys.data(), n), 199, status), expected)
        << "seed " << seed << " trial " << trial;
    std::shuffle(keys.begin(), keys.end(), rng);
    EXPECT_EQ(IHASHN(n, View1<const int>(keys.data(), n), 199, status), expected)
        << "seed " << seed << " trial " << trial;
  }
  // A pair hashes as IHASH2 does.
  const int pair[2] = {7, 3};
  bool status = false;
  EXPECT_EQ(IHASHN(2, View1<const int>(pair, 2), 199, status), 76);

  const int keys[11] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
  EXPECT_EQ(IHASHN(11, View1<const int>(keys, 11), 199, status), 0);
  expectFailure(status, "(IHASHN) Max allowed number of key values exceeded!maximum!");
  const int negative[3] = {4, -1, 2};
  EXPECT_EQ(IHASHN(3, View1<const int>(negative, 3), 199, status), 0);
  expectFailure(status, "(IHASHN) Numbers to be hashed must be positive!");
}

class TopologyTest : public MesherTest {
 protected:
  void SetUp() override {
    MesherTest::SetUp();
    mesher::clearTopology();
  }
  int face(int a, int b, int c) {
    int f = 0;
    bool status = false;
    mesher::ISFACE(a, b, c, f, status);
    EXPECT_FALSE(status) << output();
    return f;
  }
};

// Classes and neighbours are checked by the smoothing of whole meshes,
// which moves exactly the interior vertices to the mean of their neighbours.
TEST_F(TopologyTest, IsfaceRefusesBadFaces) {
  // The same vertices in any order are the same face.
  EXPECT_EQ(face(1, 2, 3), 1);
  EXPECT_EQ(face(3, 1, 2), 1);
  EXPECT_EQ(topology().NumFaces, 1);
  int count = 0;
  std::vector<int> neighbours(25);
  bool status = false;
  mesher::IQVNBF(4, 25, count, View1<int>(neighbours.data(), 25), status);
  expectFailure(status, "(IQVNBF) Illegal topology vertex index!");

  mesher::clearTopology();
  for (int k = 2; k <= 26; ++k) face(1, k, k + 1);
  EXPECT_EQ(topology().VertexFaceCount(1), 25);
  int f = 0;
  mesher::ISFACE(1, 27, 28, f, status);
  expectFailure(status, "(ISFACE) Vertex->Face list overflowed!");
  // A vertex number below 1 is refused.
  mesher::clearTopology();
  mesher::ISFACE(1, 0, 3, f, status);
  EXPECT_TRUE(status);
  EXPECT_EQ(topology().NumFaces, 0);
}

TEST_F(TopologyTest, FullChainsAreReported) {
  face(1, 2, 3);
  bool status = false;
  // Fill the chains that this face's keys fall into, then file it again.
  const int pair = IHASH2(1, 2, mesher::EdgeHashSize, status);
  topology().EdgeHashCount(pair) = mesher::EdgeHashSlots;
  mesher::MKEVHS(1, status);
  expectFailure(status, "(MKEVHS) Edge->vertex hash list overflowed by too many collisions!");

  const int vertices[3] = {1, 2, 3};
  const int byVertices =
      IHASHN(3, View1<const int>(vertices, 3), mesher::FaceVertexHashSize, status);
  topology().FaceVertexHashCount(byVertices) = mesher::FaceVertexHashSlots;
  mesher::MKFVHS(1, status);
  expectFailure(status, "(MKFVHS) Face->vertex hash list overflowed by too many collisions!");

  const int edges[3] = {topology().FaceEdge(1, 1), topology().FaceEdge(1, 2),
                        topology().FaceEdge(1, 3)};
  const int byEdges = IHASHN(3, View1<const int>(edges, 3), mesher::FaceEdgeHashSize, status);
  topology().FaceEdgeHashCount(byEdges) = mesher::FaceEdgeHashSlots;
  mesher::MKFEHS(1, status);
  expectFailure(status, "(MKFEHS) Face->edge hash list overflowed by too many collisions!");
}

TEST_F(TopologyTest, ChainsHoldTheLargestMeshTheLimitsAllow) {
  // Rows of 2 x 56 triangles of a grid, 169 new edges a row: 70 rows (7840
  // triangles, 11886 edges) stay just under the edge limit, and every chain
  // must take its share without overflowing; the 71st row runs out of edges.
  const int columns = 57;
  auto vertex = [&](int i, int j) { return (j - 1) * columns + i; };
  bool status = false;
  int f = 0, rows = 0;
  for (int j = 1; j <= 80 && !status; ++j) {
    for (int i = 1; i < columns && !status; ++i) {
      mesher::ISFACE(vertex(i, j), vertex(i + 1, j), vertex(i + 1, j + 1), f, status);
      if (!status) mesher::ISFACE(vertex(i, j), vertex(i + 1, j + 1), vertex(i, j + 1), f, status);
    }
    if (!status) rows = j;
  }
  EXPECT_EQ(rows, 70);
  expectFailure(status, "(ISFACE) Max number of edges exceeded!");
}

}  // namespace
}  // namespace kntr::testing
