// The main menu in the desktop's own menu bar, where the desktop has one. Main thread only.
#pragma once

#include <QPointer>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/MainWindow.h"

class QPlatformMenu;
class QPlatformMenuBar;
class QPlatformMenuItem;
class QWindow;

namespace dormel {

class ExportedMenuBar {
 public:
  using Chosen = std::function<void(MenuCommand)>;
  using CanDo = std::function<bool(MenuCommand)>;

  /// Null where the desktop has no menu bar. `windows` is the menu that lists windows.
  [[nodiscard]] static std::unique_ptr<ExportedMenuBar> create(const std::vector<Menu>& menus, std::size_t windows,
                                                               Chosen onChosen, CanDo canDo);
  ~ExportedMenuBar();

  /// The bar belongs to `window` from now on, which the windows menu lists by its title; `onListed` runs when it is
  /// chosen there.
  void attach(QWindow& window, std::function<void()> onListed);
  /// Shows anew which items can be chosen now.
  void refresh();

 private:
  ExportedMenuBar(std::unique_ptr<QPlatformMenuBar> bar, Chosen onChosen, CanDo canDo);
  QPlatformMenu* add(const Menu& menu);

  Chosen onChosen_;
  CanDo canDo_;
  std::unique_ptr<QPlatformMenuBar> bar_;
  std::vector<std::unique_ptr<QPlatformMenu>> menus_;
  struct Entry {
    QPlatformMenu* menu;
    std::unique_ptr<QPlatformMenuItem> item;
    MenuCommand command;
    bool isEnabled;
  };
  std::vector<Entry> entries_;
  QPlatformMenu* windowsMenu_ = nullptr;
  std::unique_ptr<QPlatformMenuItem> listed_;
};

}  // namespace dormel
