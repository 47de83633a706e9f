// An ordinary window of the desktop and the application's main menu. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Geometry.h"
#include "platform/RunLoop.h"
#include "platform/View.h"

namespace dormel {

/// A titled, closable, miniaturisable window of a fixed content size whose title strip is transparent: the content
/// reaches to its top edge and the window is dragged by its background. Dark, opaque, centred on its screen.
struct MainWindowStyle {
  Size contentSize;
  std::string title;
  /// Whether alerts and the main menu belong to it. Another window comes up in the middle of that one.
  bool isMain = true;
};

class MainWindow {
 public:
  virtual ~MainWindow() = default;
  /// In front of the other windows, with the keyboard focus; un-minimised if need be.
  virtual void bringToFront() = 0;
  /// Takes it off the screen without `onClose`.
  virtual void close() = 0;
};

class MainWindows {
 public:
  virtual ~MainWindows() = default;
  /// Not on screen until it is brought to the front. `onClose` runs when the user closes it.
  [[nodiscard]] virtual std::unique_ptr<MainWindow> make(const MainWindowStyle& style, std::shared_ptr<View> content,
                                                         Task onClose) = 0;
};

/// What a menu item does. The editing ones go to the control that has the focus.
enum class MenuCommand {
  separator,
  about,
  hide,
  hideOthers,
  showAll,
  quit,
  undo,
  redo,
  cut,
  copy,
  paste,
  deleteSelection,
  selectAll,
  closeWindow,
  minimizeWindow,
};

struct MenuItem {
  MenuCommand command = MenuCommand::separator;
  std::string title;
  /// The key with Command; empty for none.
  std::string key{};
  bool withShift = false;
  bool withOption = false;
  friend bool operator==(const MenuItem&, const MenuItem&) = default;
};

struct Menu {
  std::string title;
  std::vector<MenuItem> items;
  friend bool operator==(const Menu&, const Menu&) = default;
};

class MainMenu {
 public:
  virtual ~MainMenu() = default;
  /// Installs the menu bar; `windows` is the index of the menu that lists windows. Quitting comes to `onCommand`; the
  /// other commands are carried out by the platform, which has an about panel of its own.
  virtual void install(const std::vector<Menu>& menus, std::size_t windows,
                       std::function<void(MenuCommand)> onCommand) = 0;
};

}  // namespace dormel
