#include <gtest/gtest.h>

#include "challenge/BypassController.h"
#include "challenge/KeyPool.h"
#include "platform/sim/SimMachine.h"

namespace dormel {
namespace {

std::string labelInPool(KeyCode keyCode) {
  const auto controller = BypassController::create();
  for (const auto* pool : {&controller->leftKeys(), &controller->rightKeys()}) {
    for (const KeyPool& key : *pool) {
      if (key.keyCode == keyCode) return key.label;
    }
  }
  return "not in a pool";
}

TEST(KeyLabels, ShowWhatTheLayoutPrintsOrElseTheUsLegend) {
  const struct {
    KeyCode keyCode;
    const char* produces;  // null: nothing
    const char* label;
  } rows[] = {
      {0, "q", "Q"},                           // AZERTY
      {12, "a", "A"},                          //
      {0, "ф", "Ф"},                           // Russian
      {46, "ь", "Ь"},                          //
      {46, ",", "M"},                          // AZERTY prints a comma on the M position
      {35, ";", "P"},                          //
      {13, "´", "W"},                          // a dead key's accent
      {32, "2", "2"},                          // digits stand for themselves
      {6, "ß", "Z"},                           // two letters when capitalised
      {0, "ა", "ა"},                           // Georgian: its capitals are on no keyboard and in few fonts
      {8, "ch", "C"},                          // two characters on one key
      {2, "ö", "Ö"},                           //
      {3, "e\xCC\x81", "\xC3\x89|E\xCC\x81"},  // one character to a reader, however it is encoded
      {9, "", "V"},                            //
      {9, nullptr, "V"},                       //
      {9, "\xFF", "V"},                        // not UTF-8
      {56, "q", "L.Shift"},                    // modifiers never ask the layout
  };
  for (const auto& row : rows) {
    SimMachine machine;
    machine.layout.clear();
    if (row.produces != nullptr) machine.layout.set(row.keyCode, row.produces);
    const std::string label = labelInPool(row.keyCode);
    EXPECT_NE(("|" + std::string(row.label) + "|").find("|" + label + "|"), std::string::npos)
        << row.keyCode << " is labelled " << label;
  }
}

TEST(KeyLabels, SayMoreWhereTheyDoNotNameOneKey) {
  struct Printed {
    KeyCode keyCode;
    const char* produces;
  };
  const struct {
    const char* what;
    std::vector<Printed> layout;  // on top of the US one
    std::vector<std::pair<KeyCode, const char*>> legends;
  } rows[] = {
      {"US", {}, {{0, ""}, {46, ""}, {35, ""}}},
      {"Greek: both are capital sigmas", {{13, "ς"}, {1, "σ"}}, {{13, "prints ς"}, {1, "prints σ"}, {0, ""}}},
      {"AZERTY: M is elsewhere", {{46, ","}, {41, "m"}}, {{46, "prints ,"}, {35, ""}}},
      {"a stand-in that no key types", {{12, "/"}, {0, "ש"}}, {{12, "prints /"}, {0, ""}}},
      {"a stand-in that another key of the challenge types",
       {{12, "'"}, {7, "q"}},
       {{12, "prints '"}, {7, "prints q"}}},
      {"a digit twice", {{32, "4"}, {21, "4"}}, {{32, "row 1, 7th"}}},
      {"two keys that print the same", {{2, "x"}}, {{2, "row 2, 3rd"}, {7, "row 3, 2nd"}}},
      {"one that prints nothing to be seen", {{6, "\xCC\x81"}, {16, "z"}}, {{6, "row 3, 1st"}, {16, "prints z"}}},
  };
  for (const auto& row : rows) {
    SimMachine machine;
    for (const Printed& key : row.layout) machine.layout.set(key.keyCode, key.produces);
    const auto controller = BypassController::create();
    machine.settle();
    machine.layout.clear();  // the legends outlive the layout with their labels
    for (const auto& [keyCode, legend] : row.legends) EXPECT_EQ(controller->legend(keyCode), legend) << row.what;
  }
}

TEST(KeyLabels, StandInTheOrderOfTheTablesAndOutliveALayoutChange) {
  SimMachine machine;
  const auto controller = BypassController::create();
  machine.layout.set(0, "q");  // making it asks for nothing: the screens are covered first
  machine.settle();
  machine.layout.set(0, "a");
  ASSERT_EQ(controller->leftKeys().size(), 19U);
  ASSERT_EQ(controller->rightKeys().size(), 14U);
  EXPECT_EQ(controller->leftKeys()[4].label, "Q");
  controller->pickRandomKeys(false);
  EXPECT_EQ(controller->leftKeys()[4].label, "Q");
  EXPECT_EQ(controller->label(49), "kc49");
  const RequiredKey& first = controller->requiredKeys().front();
  EXPECT_EQ(controller->label(first.keyCode), first.label);
  EXPECT_EQ((RequiredKey{"A", 0, false}), (RequiredKey{"Q", 0, true})) << "the physical key is the identity";
}

TEST(Modifiers, SideBitsDecideBeforeTheGenericOne) {
  const struct {
    KeyCode keyCode;
    EventFlags flags;
    bool pressed;
  } rows[] = {
      {56, 0x20002, true},        {56, 0x20004, false}, {56, 0x20006, true},
      {56, 0x20000, true},        {56, 0, false},       {60, 0x20004, true},
      {60, 0x20006, true},        {60, 0x20002, false}, {59, 0x40001, true},
      {59, 0x42000, false},       {59, 0x40000, true},  {62, 0x42000, true},
      {62, 0x40001, false},       {58, 0x80020, true},  {58, 0x80040, false},
      {61, 0x80040, true},        {61, 0x80020, false}, {55, 0x100008, true},
      {55, 0x100010, false},      {54, 0x100010, true}, {54, 0x100008, false},
      {54, 0x100000, true},       {54, 0x20000, false}, {57, ~EventFlags{0}, false},
      {0, ~EventFlags{0}, false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(isModifierPressed(row.keyCode, row.flags), row.pressed) << row.keyCode << " " << std::hex << row.flags;
  }
}

}  // namespace
}  // namespace dormel
