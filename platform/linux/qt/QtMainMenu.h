// The main menu: in the desktop's menu bar where there is one, and by its shortcuts in any case (Command is the Control
// key). Main thread only.
#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "platform/MainWindow.h"
#include "platform/linux/qt/DesktopWindow.h"
#include "platform/linux/qt/ExportedMenuBar.h"
#include "platform/linux/qt/WindowGroup.h"

namespace dormel {

/// What can be done about the windows of other applications; empty where this desktop does not let anybody.
struct OtherApplications {
  std::function<void()> hide;
  std::function<void()> show;
};

class QtMainMenu : public QObject, public MainMenu {
 public:
  QtMainMenu(std::shared_ptr<WindowGroup> group, OtherApplications others);

  void install(const std::vector<Menu>& menus, std::size_t windows,
               std::function<void(MenuCommand)> onCommand) override;

  /// Whether the command would do anything now.
  [[nodiscard]] bool canPerform(MenuCommand command) const;
  void perform(MenuCommand command);

 private:
  [[nodiscard]] bool takes(const QKeyEvent& press);
  void showAbout();

  std::shared_ptr<WindowGroup> group_;
  OtherApplications others_;
  std::vector<Menu> menus_;
  std::function<void(MenuCommand)> onCommand_;
  std::unique_ptr<ExportedMenuBar> exported_;
  WindowHandle about_;
};

}  // namespace dormel
