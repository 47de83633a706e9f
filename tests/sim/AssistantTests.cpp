// The permission assistant: where its guide stands, how it flies there, what it follows, and what can be dragged off
// it.
#include <gtest/gtest.h>

#include "assistant/AssentaAssistant.h"
#include "assistant/OverlayContentView.h"
#include "assistant/OverlayWindowController.h"
#include "assistant/SettingsWindowLocator.h"
#include "platform/Dragging.h"
#include "platform/sim/SimMachine.h"

namespace dormel {
namespace {

constexpr double EXACT = 1e-9;
constexpr Rect SCREEN{0, 0, 1920, 1056};

void expectNear(const Rect& seen, const Rect& wanted) {
  EXPECT_NEAR(seen.x, wanted.x, EXACT);
  EXPECT_NEAR(seen.y, wanted.y, EXACT);
  EXPECT_NEAR(seen.width, wanted.width, EXACT);
  EXPECT_NEAR(seen.height, wanted.height, EXACT);
}

TEST(Assistant, Geometry) {
  const struct {
    Rect settings, visible;
    double x, y;
  } places[] = {{{100, 200, 980, 700}, SCREEN, 402, 214},
                {{100, 200, 600, 500}, SCREEN, 262, 214},  // narrower than sidebar and guide together
                {{-300, -50, 980, 700}, SCREEN, 8, 8},
                {{1700, 900, 400, 300}, SCREEN, 1382, 914},
                {{0, 0, 300, 300}, {0, 0, 500, 100}, -38, -17},  // a screen too small for the guide
                {{2000, -300, 1001, 651}, {1920, -200, 1280, 1000}, 2312.5, -192}};
  for (const auto& place : places) {
    expectNear(OverlayWindowController::anchoredFrame(place.settings, place.visible), {place.x, place.y, 530, 109});
  }
  const struct {
    Seconds elapsed;
    double progress;
  } springs[] = {{0, 0},
                 {0.05, 0.07155065313865938},
                 {0.1, 0.21753201856346382},
                 {0.36, 0.821025553585931},
                 {0.7199, 0.9863888253762696}};
  for (const auto& row : springs) {
    EXPECT_NEAR(OverlayWindowController::launchProgress(row.elapsed), row.progress, EXACT);
  }
  const struct {
    Rect from, to;
    double progress;
    Rect seen;
  } arcs[] = {{{0, 0, 100, 40}, {600, 300, 530, 109}, 0.25, {150, 190.21875, 207.5, 57.25}},  // the highest lift
              {{0, 0, 100, 40}, {600, 300, 530, 109}, 1, {600, 300, 530, 109}},
              {{10, 10, 530, 109}, {40, 10, 530, 109}, 0.5, {25, 32, 530, 109}},  // the least
              {{0, 900, 80, 30}, {2400, 100, 530, 109}, 0.6, {1440, 669.72, 350, 77.4}}};
  for (const auto& arc : arcs) {
    expectNear(OverlayWindowController::curvedFrame(arc.from, arc.to, arc.progress), arc.seen);
  }
}

TEST(Assistant, PagesAndHost) {
  EXPECT_EQ(settingsURL(AssentaPanel::screenRecording),
            "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?Privacy_ScreenCapture");
  EXPECT_EQ(assentaPanel("Privacy_AppBundles"), AssentaPanel::appManagement);
  EXPECT_EQ(assentaPanel("Privacy_Camera"), std::nullopt);
  SimMachine machine;
  machine.bundle.setPath("/home/user/My Apps/Night 100%.app");
  EXPECT_EQ(AssentaHostApp::current(machine.bundle).displayName, "Night 100%");
  machine.bundle.setInfo("CFBundleName", "Dormel");
  EXPECT_EQ(AssentaHostApp::current(machine.bundle).displayName, "Dormel");
  machine.bundle.setInfo("CFBundleDisplayName", "Dormel Beta");
  const AssentaHostApp host = AssentaHostApp::current(machine.bundle);
  EXPECT_EQ(host.displayName, "Dormel Beta");
  EXPECT_EQ(host.bundleURL, "file:///home/user/My%20Apps/Night%20100%25.app");
  EXPECT_EQ(host.icon, "/home/user/My Apps/Night 100%.app/icon.png");
}

/// A machine with two screens, the second one higher than the first, on which a settings program runs.
class AssistantTest : public testing::Test {
 protected:
  AssistantTest() {
    machine.screens.plug("DP-2", {1920, 300, 1280, 1000});
    machine.others.setRunning({SETTINGS});
    machine.settle();
    machine.journal.clear();
  }
  void show(const std::vector<ListedWindow>& windows) { machine.others.setWindows(windows); }
  void front(const RunningApplication& application) { machine.others.bringToFront(application); }
  void present(const std::optional<Rect>& from = {}) {
    assistant().present(AssentaPanel::accessibility, AssentaHostApp::current(machine.bundle), from);
  }
  static AssentaAssistant& assistant() { return AssentaAssistant::shared(); }
  [[nodiscard]] SimWindow* guide() const {
    const auto visible = machine.windows.visible();
    return visible.empty() ? nullptr : visible.back();
  }

  const RunningApplication SETTINGS{70, SYSTEM_SETTINGS, ActivationPolicy::regular};
  const RunningApplication EDITOR{80, "editor", ActivationPolicy::regular};
  const ListedWindow WINDOW{70, 0, Rect{100, 180, 980, 700}};  // its bottom edge at 1080 - 880
  SimMachine machine;
};

TEST_F(AssistantTest, ChoosesTheWindow) {
  const RunningApplication hidden{69, SYSTEM_SETTINGS, ActivationPolicy::prohibited};
  const RunningApplication second{71, SYSTEM_SETTINGS, ActivationPolicy::regular};
  const auto at = [](double x, double y, double width, double height) {
    return ListedWindow{70, 0, Rect{x, y, width, height}};
  };
  const struct {
    const char* name;
    std::vector<RunningApplication> running;
    std::optional<std::vector<ListedWindow>> windows;
    std::optional<Rect> frame;
  } cases[] = {
      {"plain", {SETTINGS}, {{WINDOW}}, Rect{100, 200, 980, 700}},
      {"nobody runs", {}, {{WINDOW}}, {}},
      {"no answer", {SETTINGS}, {}, {}},
      {"one that cannot show windows first", {hidden, SETTINGS, second}, {{WINDOW}}, Rect{100, 200, 980, 700}},
      {"another's, a higher layer, no bounds", {second}, {{WINDOW, {71, 3, WINDOW.bounds}, {71, 0, {}}}}, {}},
      {"too narrow, too low", {SETTINGS}, {{at(0, 0, 320, 900), at(0, 0, 900, 240)}}, {}},
      {"the largest, the first of equals",
       {SETTINGS},
       {{at(0, 0, 400, 300), at(10, 0, 500, 400), at(20, 0, 400, 500)}},
       Rect{10, 680, 500, 400}},
      {"mostly on the other screen", {SETTINGS}, {{at(1820, -100, 600, 500)}}, Rect{1820, 680, 600, 500}},
      {"on no screen", {SETTINGS}, {{at(5000, 50, 600, 500)}}, Rect{5000, 50, 600, 500}},
  };
  front(SETTINGS);
  for (const auto& example : cases) {
    SCOPED_TRACE(example.name);
    machine.others.setRunning(example.running);
    machine.others.setWindows(example.windows);
    const auto found = SettingsWindowLocator::frontmostWindow();
    ASSERT_EQ(found.has_value(), example.frame.has_value());
    if (found) {
      EXPECT_EQ(found->frame, *example.frame);
    }
  }
  EXPECT_EQ(SettingsWindowLocator::userInterfaceGeometry({1820, -100, 600, 500}).visibleFrame,
            (Rect{1920, 300, 1280, 976}));
  machine.others.setRunning({SETTINGS, second});
  machine.others.setWindows({{{71, 0, Rect{300, 180, 980, 700}}, WINDOW}});
  front(second);
  EXPECT_EQ(SettingsWindowLocator::frontmostWindow()->pid, 71) << "of two settings programs the one in front";
  front(EDITOR);
  EXPECT_FALSE(SettingsWindowLocator::frontmostWindow());
}

TEST_F(AssistantTest, SaysWhereToLookWhereThePageCannotBeOpened) {
  machine.workspace.setHasSettings(false);
  present();
  ASSERT_EQ(machine.alerts.shown().size(), 1U);
  EXPECT_EQ(machine.alerts.shown().front().informativeText, "Look for Privacy_Accessibility.");
  assistant().dismiss();
  EXPECT_TRUE(machine.alerts.shown().empty());
  machine.workspace.setHasSettings(true);
  present();
  EXPECT_TRUE(machine.alerts.shown().empty());
}

TEST_F(AssistantTest, FollowsHidesAndReturns) {
  front(EDITOR);
  present();
  EXPECT_EQ(guide(), nullptr);
  EXPECT_FALSE(assistant().didPresentCurrentOverlay());
  show({WINDOW});
  front(SETTINGS);
  machine.settle();  // the activation alone brings it
  ASSERT_NE(guide(), nullptr);
  EXPECT_EQ(guide()->frame(), (Rect{402, 214, 530, 109}));
  EXPECT_EQ(guide()->style().level, WindowLevel::status);
  EXPECT_EQ(guide()->style().collectionBehavior, 337U);
  EXPECT_FALSE(guide()->style().canBecomeKey);

  show({{70, 0, Rect{150, 180, 980, 700}}});
  machine.advance(0.149);
  EXPECT_EQ(guide()->frame().x, 402);
  machine.advance(0.001);
  EXPECT_EQ(guide()->frame().x, 452);
  front(EDITOR);
  machine.settle();
  EXPECT_EQ(guide(), nullptr);
  front(SETTINGS);
  machine.settle();
  ASSERT_NE(guide(), nullptr);
  show({});  // in front without a window: docked inside the main screen
  machine.advance(0.15);
  EXPECT_EQ(guide()->frame(), OverlayWindowController::anchoredFrame({80, 70, 1760, 916}, SCREEN));
  EXPECT_EQ(machine.windows.keyWindow(), nullptr);

  std::static_pointer_cast<OverlayContentView>(guide()->content())->back();
  EXPECT_EQ(guide(), nullptr);
  EXPECT_EQ(assistant().activePanel(), std::nullopt);
  EXPECT_EQ(assistant().overlayController(), nullptr);
  EXPECT_EQ(machine.timeline.repeatingTimers(), 0);
  EXPECT_EQ(machine.others.observers(), 0U);
  assistant().dismiss();
}

TEST_F(AssistantTest, FliesInAndMeetsTheMovedWindow) {
  const Rect button{1200, 700, 120, 32};
  show({WINDOW});
  front(SETTINGS);
  present(button);
  EXPECT_EQ(machine.journal.lines().at(1).substr(13), "open " + settingsURL(AssentaPanel::accessibility));
  EXPECT_EQ(guide()->frame(), button);
  EXPECT_EQ(guide()->alpha(), 0.9);
  show({{70, 0, Rect{150, 180, 980, 700}}});
  machine.advance(0.35);
  const double progress = OverlayWindowController::launchProgress(20 * 16667e-6);  // as of the last frame
  EXPECT_NEAR(guide()->alpha(), 0.9 + 0.1 * progress, EXACT);
  expectNear(guide()->frame(), OverlayWindowController::curvedFrame(button, {452, 214, 530, 109}, progress));
  machine.advance(0.4);
  EXPECT_EQ(guide()->frame(), (Rect{452, 214, 530, 109}));
  EXPECT_EQ(guide()->alpha(), 1);
  EXPECT_EQ(machine.timeline.repeatingTimers(), 1) << "only the tracking is left";

  present(Rect{5, 5, 0, 20});  // replaces it; an empty source is none
  EXPECT_EQ(machine.windows.visible().size(), 1U);
  EXPECT_EQ(guide()->frame(), (Rect{452, 214, 530, 109}));
}

TEST_F(AssistantTest, TheRowIsDraggedAsTheBundlesAddress) {
  show({WINDOW});
  front(SETTINGS);
  present();
  const auto content = std::static_pointer_cast<OverlayContentView>(guide()->content());
  EXPECT_EQ(content->title(), "Drag Dormel to the list above to allow Accessibility");
  const auto row = content->dragSource();
  std::string changes;
  row->setOnChange([&] { changes += row->isRowHidden() ? 'h' : 's'; });
  machine.dragging.setDenied(true);
  row->mouseDown({16, 52, 498, 43});
  EXPECT_EQ(changes, "");
  machine.dragging.setDenied(false);
  machine.journal.clear();
  row->mouseDown({16, 52, 498, 43});
  row->mouseDown({16, 52, 498, 43});
  EXPECT_EQ(machine.journal.lines().size(), 1U);
  EXPECT_EQ(machine.journal.lines().front().substr(13), "drag from 418,228 498x43");
  EXPECT_EQ(machine.dragging.ask(FILE_URL_TYPE), "file:///Applications/Dormel.app");
  EXPECT_EQ(machine.dragging.ask("public.text"), std::nullopt);
  machine.dragging.end(DragOperation::none);
  machine.settle();
  EXPECT_EQ(changes, "hs");
  row->mouseDown({16, 52, 498, 43});
  assistant().dismiss();
  EXPECT_EQ(machine.dragging.ask(FILE_URL_TYPE), "file:///Applications/Dormel.app") << "the drop outlives the guide";
  machine.dragging.end(DragOperation::copy);
  machine.settle();
}

}  // namespace
}  // namespace dormel
