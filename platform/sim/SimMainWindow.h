// The ordinary windows and the main menu of a simulated desktop.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/MainWindow.h"
#include "platform/sim/SimJournal.h"
#include "platform/sim/SimTimeline.h"
#include "platform/sim/SimWindows.h"

namespace dormel {

class SimMainWindows : public MainWindows {
 public:
  SimMainWindows(SimTimeline& timeline, SimJournal& journal, SimWindowServer& panels)
      : timeline_(timeline), journal_(journal), panels_(panels) {}

  [[nodiscard]] std::unique_ptr<MainWindow> make(const MainWindowStyle& style, std::shared_ptr<View> content,
                                                 Task onClose) override;

  // The user's side.
  /// What the frontmost window shows; null when none is on screen.
  [[nodiscard]] std::shared_ptr<View> front() const;
  /// Closes the frontmost window; nothing happens when there is none.
  void closeFront();

  void processEnded();

 private:
  struct State {
    int number = 0;
    std::shared_ptr<View> content;
    Task onClose;
  };
  class Handle;

  void bringToFront(const std::shared_ptr<State>& window);
  void takeOff(const std::shared_ptr<State>& window, const char* how);

  SimTimeline& timeline_;
  SimJournal& journal_;
  SimWindowServer& panels_;
  std::vector<std::shared_ptr<State>> order_;  // those on screen, backmost first
  int lastNumber_ = 0;
};

class SimMainMenu : public MainMenu {
 public:
  SimMainMenu(SimTimeline& timeline, SimJournal& journal, SimMainWindows& windows)
      : timeline_(timeline), journal_(journal), windows_(windows) {}

  void install(const std::vector<Menu>& menus, std::size_t windows,
               std::function<void(MenuCommand)> onCommand) override;

  [[nodiscard]] const std::vector<Menu>& installed() const { return menus_; }
  /// The user presses a shortcut with Command, or chooses an item by its title. False when there is no such item.
  bool press(const std::string& key, bool withShift = false, bool withOption = false);
  bool choose(const std::string& title);

  void processEnded();

 private:
  bool invoke(const std::function<bool(const MenuItem&)>& isMeant);

  SimTimeline& timeline_;
  SimJournal& journal_;
  SimMainWindows& windows_;
  std::vector<Menu> menus_;
  std::function<void(MenuCommand)> onCommand_;
};

}  // namespace dormel
