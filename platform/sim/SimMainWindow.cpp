#include "platform/sim/SimMainWindow.h"

#include <utility>

namespace dormel {

/// What the process holds; the window goes with it.
class SimMainWindows::Handle : public MainWindow {
 public:
  Handle(SimMainWindows& windows, std::shared_ptr<State> state) : windows_(windows), state_(std::move(state)) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() override { windows_.takeOff(state_, "closed"); }

  void bringToFront() override { windows_.bringToFront(state_); }
  void close() override { windows_.takeOff(state_, "closed"); }

 private:
  SimMainWindows& windows_;
  std::shared_ptr<State> state_;
};

std::unique_ptr<MainWindow> SimMainWindows::make(const MainWindowStyle& style, std::shared_ptr<View> content,
                                                 Task onClose) {
  auto state = std::make_shared<State>(State{++lastNumber_, std::move(content), std::move(onClose)});
  journal_.note("main window ", state->number, " made, ", style.contentSize.width, "x", style.contentSize.height, " ",
                style.title);
  return std::make_unique<Handle>(*this, std::move(state));
}

std::shared_ptr<View> SimMainWindows::front() const { return order_.empty() ? nullptr : order_.back()->content; }

void SimMainWindows::closeFront() {
  if (order_.empty()) return;
  const std::shared_ptr<State> closed = order_.back();
  takeOff(closed, "closed by the user");
  timeline_.addMain(0, 0, [closed] { closed->onClose(); });
}

void SimMainWindows::bringToFront(const std::shared_ptr<State>& window) {
  if (!timeline_.processRuns()) return;
  const bool isNew = std::erase(order_, window) == 0;
  order_.push_back(window);
  journal_.note("main window ", window->number, " front");
  panels_.giveFocusToOrdinaryWindow();
  if (isNew) panels_.tellFirstShown(window->content);
}

void SimMainWindows::takeOff(const std::shared_ptr<State>& window, const char* how) {
  if (std::erase(order_, window) == 0) return;
  journal_.note("main window ", window->number, " ", how);
  if (order_.empty()) panels_.stealOrdinaryFocus();
}

void SimMainWindows::processEnded() { order_.clear(); }

void SimMainMenu::install(const std::vector<Menu>& menus, std::size_t windows,
                          std::function<void(MenuCommand)> onCommand) {
  journal_.note("menu installed, windows in ", menus.at(windows).title);
  menus_ = menus;
  onCommand_ = std::move(onCommand);
}

bool SimMainMenu::press(const std::string& key, bool withShift, bool withOption) {
  return invoke([&](const MenuItem& item) {
    return item.key == key && item.withShift == withShift && item.withOption == withOption;
  });
}

bool SimMainMenu::choose(const std::string& title) {
  return invoke([&](const MenuItem& item) { return item.title == title; });
}

bool SimMainMenu::invoke(const std::function<bool(const MenuItem&)>& isMeant) {
  for (const Menu& menu : menus_) {
    for (const MenuItem& item : menu.items) {
      if (item.command == MenuCommand::separator || !isMeant(item)) continue;
      journal_.note("menu: ", item.title);
      if (item.command == MenuCommand::closeWindow) windows_.closeFront();
      if (item.command == MenuCommand::about || item.command == MenuCommand::quit) {
        timeline_.addMain(0, 0, [this, command = item.command] { onCommand_(command); });
      }
      return true;
    }
  }
  return false;
}

void SimMainMenu::processEnded() {
  menus_.clear();
  onCommand_ = nullptr;
}

}  // namespace dormel
