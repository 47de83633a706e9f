// How the keys of a challenge are drawn: nobody may learn which come next, and none may come more often.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

#include "challenge/BypassController.h"
#include "challenge/Shuffle.h"
#include "platform/sim/SimMachine.h"

namespace dormel {
namespace {

TEST(Draw, PicksReject) {
  const struct {
    std::uint64_t range;
    std::vector<std::uint64_t> source;
    std::uint64_t picked;
  } rows[] = {
      {1, {7}, 0},
      {4, {0}, 0},                                 // a power of two never rejects
      {4, {~0ULL}, 3},                             //
      {3, {0, 1ULL << 63}, 1},                     // 2^64 mod 3 = 1: a low half of 0 is thrown away
      {15, {0, 0, ~0ULL}, 14},                     //
      {6, {1}, 0},                                 // low half 6, not below 2^64 mod 6 = 4
      {(1ULL << 63) + 1, {2, 4, 1}, 0},            // low halves 2 and 4 are below 2^63 - 1
      {(1ULL << 63) + 1, {2, ~0ULL}, 1ULL << 63},  //
  };
  for (const auto& row : rows) {
    SimMachine machine;
    machine.random.script(row.source);
    EXPECT_EQ(uniformBelow(row.range), row.picked) << row.range;
    EXPECT_EQ(machine.random.scriptedLeft(), 0U) << row.range;
  }
}

TEST(Draw, ShufflesForwardFromTheFirstPosition) {
  // The third of four, then the second of the three left, then the last of two.
  SimMachine machine;
  machine.random.script({~0ULL / 4 * 2 + 10, ~0ULL / 3 + 10, ~0ULL});
  EXPECT_EQ(shuffled(std::vector{'a', 'b', 'c', 'd'}), (std::vector<char>{'c', 'a', 'd', 'b'}));
}

/// Pearson's statistic over equally likely cells, as a normal deviate (Wilson and Hilferty's transformation).
template <typename Cell>
double excess(const std::map<Cell, int>& counts, std::size_t cells) {
  double total = 0;
  for (const auto& [cell, count] : counts) total += count;
  const double expected = total / static_cast<double>(cells);
  double chiSquare = static_cast<double>(cells - counts.size()) * expected;
  for (const auto& [cell, count] : counts) chiSquare += (count - expected) * (count - expected) / expected;
  const double freedom = static_cast<double>(cells - 1);
  const double spread = 2 / (9 * freedom);
  return (std::cbrt(chiSquare / freedom) - (1 - spread)) / std::sqrt(spread);
}

TEST(Draw, IsUniform) {
  constexpr int DRAWS = 100'000;
  SimMachine machine;
  const auto controller = BypassController::create();
  std::map<KeyCode, int> left;
  std::map<KeyCode, std::map<KeyCode, int>> right;  // per left modifier: which kinds remain depends on it
  std::map<std::pair<KeyCode, KeyCode>, int> leftLetters;
  std::map<KeyCode, int> rightLetters;
  for (int draw = 0; draw < DRAWS; ++draw) {
    controller->pickRandomKeys(false);
    const auto& keys = controller->requiredKeys();
    ASSERT_EQ(keys.size(), 5U);
    ASSERT_TRUE(keys[0].isModifier && keys[1].isModifier);
    ASSERT_FALSE(keys[2].isModifier || keys[3].isModifier || keys[4].isModifier);
    ASSERT_NE(modifierType(keys[0].keyCode), modifierType(keys[1].keyCode)) << "a same-kind pair";
    ASSERT_NE(keys[2].keyCode, keys[3].keyCode);
    ++left[keys[0].keyCode];
    ++right[keys[0].keyCode][keys[1].keyCode];
    ++leftLetters[{keys[2].keyCode, keys[3].keyCode}];
    ++rightLetters[keys[4].keyCode];
  }
  // Five deviations: one seed in a million would fail a fair draw.
  EXPECT_LT(excess(left, 4), 5);
  for (const auto& [leftKey, counts] : right) EXPECT_LT(excess(counts, leftKey == 59 ? 3 : 2), 5) << leftKey;
  EXPECT_LT(excess(leftLetters, 15 * 14), 5);
  EXPECT_LT(excess(rightLetters, 11), 5);
  std::set<KeyCode> rightLettersDrawn;
  for (const auto& [keyCode, count] : rightLetters) rightLettersDrawn.insert(keyCode);
  EXPECT_EQ(rightLettersDrawn, (std::set<KeyCode>{4, 38, 40, 37, 32, 34, 31, 35, 45, 46, 16}));
}

}  // namespace
}  // namespace dormel
