#include "platform/linux/WindowPlatform.h"

#include <QGuiApplication>
#include <utility>

#include "platform/linux/LinuxServices.h"
#include "platform/linux/posix/StandardDescriptors.h"
#include "platform/linux/qt/QtAlerts.h"
#include "platform/linux/qt/QtDragging.h"
#include "platform/linux/qt/QtEventLoopAdapter.h"
#include "platform/linux/qt/QtGuideWindows.h"
#include "platform/linux/qt/QtMainMenu.h"
#include "platform/linux/qt/QtMainWindows.h"
#include "platform/linux/qt/SceneLoader.h"
#include "platform/linux/qt/TextsTranslator.h"
#include "platform/linux/qt/Toolkit.h"

namespace dormel {
namespace {

bool isOnX() { return QGuiApplication::platformName() == QLatin1String("xcb"); }

WindowHelp windowHelp(x11::X11Platform* x11) {
  WindowHelp help;
  help.isSwallowed = [x11](unsigned key) { return x11 != nullptr && x11->isKeyDownSwallowed(key); };
  if (x11 != nullptr && isOnX()) {
    help.activate = [x11](WId window) { x11->managedWindows().activate(static_cast<std::uint32_t>(window)); };
    help.canBlend = [x11] { return x11->isCompositing(); };
  } else {
    help.canBlend = [] { return true; };
  }
  return help;
}

OtherApplications otherApplications(x11::X11Platform* x11) {
  if (x11 == nullptr || !isOnX() || !x11->managedWindows().canHideOthers()) return {};
  return {[x11] { x11->managedWindows().hideOthers(); }, [x11] { x11->managedWindows().showOthers(); }};
}

}  // namespace

struct WindowPlatform::Parts {
  explicit Parts(QmlSceneRegistry scenes)
      : icon(scenes.icon()),
        stage(std::make_shared<SceneLoader>(std::move(scenes))),
        common(LaunchKind::windows),
        carrier(common.loop()),
        windows(std::make_shared<WindowGroup>(stage, windowHelp(common.x11()))),
        dragging(stage, common.display().screens()),
        panels(common.display().windows(), common.display().screens(), dragging, windows),
        alerts(windows),
        mainWindows(windows),
        mainMenu(windows, otherApplications(common.x11())),
        services(common.with({panels, alerts, mainWindows, mainMenu, dragging})) {
    QCoreApplication::installTranslator(&translator);
  }

  Toolkit toolkit;
  TextsTranslator translator;
  QIcon icon;
  std::shared_ptr<SceneLoader> stage;
  LinuxServices common;
  qt::QtEventLoopAdapter carrier;
  std::shared_ptr<WindowGroup> windows;
  QtDragging dragging;
  QtGuideWindows panels;
  QtAlerts alerts;
  QtMainWindows mainWindows;
  QtMainMenu mainMenu;
  Platform& services;
};

WindowPlatform::WindowPlatform(QmlSceneRegistry scenes)
    : parts_((posix::holdStandardDescriptors(), std::make_unique<Parts>(std::move(scenes)))) {}

WindowPlatform::~WindowPlatform() = default;

bool WindowPlatform::hasDesktop() { return Toolkit::reachesWayland() || x11::Connection::answers(); }

Platform& WindowPlatform::services() { return parts_->services; }

void WindowPlatform::run(ApplicationDelegate& delegate) {
  DesktopApplication& application = parts_->common.application();
  parts_->common.launch(delegate);
  parts_->toolkit.join(
      parts_->icon, {[&application] { application.terminate(); }, [&application] { return application.mayTerminate(); },
                     [&delegate] { delegate.didBecomeActive(); }});
  QGuiApplication::exec();
  parts_->common.process().exit(1);  // nobody leaves the loop on purpose
}

}  // namespace dormel
