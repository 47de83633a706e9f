#include "platform/linux/qt/Toolkit.h"

#include <QDir>
#include <QEvent>
#include <QLibraryInfo>
#include <QSessionManager>
#include <clocale>
#include <utility>

#include "platform/Identifiers.h"
#include "platform/linux/qt/SceneGraph.h"

namespace dormel {
namespace {

bool isOnWayland() { return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"); }

bool hasWaylandPlugin() {
  const QDir platforms(QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platforms"));
  return !platforms.entryList({QStringLiteral("libqwayland*")}, QDir::Files).isEmpty();
}

/// The toolkit's arguments are not the process's: those are ours.
std::vector<std::string> toolkitArguments() {
  // The name by which window managers find our desktop entry.
  std::vector<std::string> arguments{"Dormel", "-name", BUNDLE_IDENTIFIER};
  if (isOnWayland() && !hasWaylandPlugin() && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
    arguments.insert(arguments.end(), {"-platform", "xcb"});  // as Qt would, after complaining
  }
  return arguments;
}

}  // namespace

Toolkit::Toolkit() : arguments_(toolkitArguments()) {
  for (std::string& argument : arguments_) argumentPointers_.push_back(argument.data());
  argumentCount_ = static_cast<int>(argumentPointers_.size());
  argumentPointers_.push_back(nullptr);
  QGuiApplication::setApplicationName(QStringLiteral("Dormel"));
  QGuiApplication::setDesktopFileName(QLatin1String(BUNDLE_IDENTIFIER));
  QGuiApplication::setQuitOnLastWindowClosed(false);
  application_ = std::make_unique<QGuiApplication>(argumentCount_, argumentPointers_.data());
  SceneGraph::chooseForWindows();
  // Qt adopts the user's locale for the whole process; the figures in our logs keep their decimal point.
  std::setlocale(LC_NUMERIC, "C");
}

Toolkit::~Toolkit() = default;

bool Toolkit::reachesWayland() { return isOnWayland() && hasWaylandPlugin(); }

void Toolkit::join(const QIcon& icon, DesktopRequests requests) {
  requests_ = std::move(requests);
  QGuiApplication::setWindowIcon(icon);
  application_->installEventFilter(this);
  connect(application_.get(), &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
    if (state != Qt::ApplicationActive) return;
    QMetaObject::invokeMethod(this, requests_.becameActive, Qt::QueuedConnection);
  });
  // The scheduler is what starts us: a session that is restored must not open the window.
  connect(
      application_.get(), &QGuiApplication::saveStateRequest, this,
      [](QSessionManager& manager) { manager.setRestartHint(QSessionManager::RestartNever); }, Qt::DirectConnection);
  connect(
      application_.get(), &QGuiApplication::commitDataRequest, this,
      [this](QSessionManager& manager) {
        if (!requests_.mayQuit()) manager.cancel();
      },
      Qt::DirectConnection);
}

bool Toolkit::eventFilter(QObject* watched, QEvent* event) {
  // Qt's own idea of quitting, the session manager's last word for one, is a request like any other.
  if (event->type() != QEvent::Quit || watched != application_.get()) return false;
  requests_.quit();
  return true;
}

}  // namespace dormel
