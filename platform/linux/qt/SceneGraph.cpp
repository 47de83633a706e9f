#include "platform/linux/qt/SceneGraph.h"

#include <QDir>
#include <QFile>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickWindow>
#include <algorithm>
#include <array>
#include <vector>

#include <unistd.h>

#include "platform/Platform.h"
#include "platform/Process.h"

namespace dormel::SceneGraph {
namespace {

/// A driver has something to drive. Asking one that has not would load megabytes of a compiler only to hear so.
bool hasGraphicsDevice() {
  constexpr std::array DEVICES{"/dev/nvidiactl", "/dev/mali0", "/dev/kgsl-3d0", "/dev/dxg"};
  return !QDir(QStringLiteral("/dev/dri")).entryList({QStringLiteral("renderD*")}, QDir::System).isEmpty() ||
         std::any_of(DEVICES.begin(), DEVICES.end(),
                     [](const char* path) { return QFile::exists(QLatin1String(path)); });
}

/// The name of what would draw; empty when nothing would.
QByteArray rendererName() {
  QOpenGLContext context;
  if (!context.create()) return {};
  QOffscreenSurface surface;
  surface.setFormat(context.format());
  surface.create();
  if (!surface.isValid() || !context.makeCurrent(&surface)) return {};
  const auto* name = reinterpret_cast<const char*>(context.functions()->glGetString(GL_RENDERER));
  QByteArray copy(name);
  context.doneCurrent();
  return copy;
}

bool isSoftwareRenderer(const QByteArray& name) {
  constexpr std::array NAMES{"llvmpipe", "softpipe", "swrast", "software rasterizer", "swiftshader"};
  const QByteArray lower = name.toLower();
  return std::any_of(NAMES.begin(), NAMES.end(), [&](const char* known) { return lower.contains(known); });
}

bool hasDriver() {
  if (qgetenv("QT_QUICK_BACKEND") == "software") return false;
  if (qEnvironmentVariable("QSG_RHI_BACKEND") == QLatin1String("opengl")) return !rendererName().isEmpty();
  if (!hasGraphicsDevice()) return false;
  const QByteArray name = rendererName();
  return !name.isEmpty() && !isSoftwareRenderer(name);
}

}  // namespace

void useSoftware() {
  const QString backend = QStringLiteral("software");
  if (QQuickWindow::sceneGraphBackend() != backend) QQuickWindow::setSceneGraphBackend(backend);
}

void chooseForWindows() {
  if (!hasDriver()) {
    useSoftware();
    return;
  }
  // The one interface that pictures without a window are read back through, too (DriverRenderer).
  QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
  // Letters as the software scene graph draws them: sharp, and in the weight that the screens were designed with.
  QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
}

void startAgainInSoftware(const QString& reason) {
  platform().output.printError("The graphics driver cannot draw a window, starting again without it: " +
                               reason.toStdString());
  qputenv("QT_QUICK_BACKEND", "software");
  QFile commandLine(QStringLiteral("/proc/self/cmdline"));
  QList<QByteArray> arguments;
  if (commandLine.open(QIODevice::ReadOnly)) arguments = commandLine.readAll().split('\0');
  std::vector<char*> pointers;
  for (QByteArray& argument : arguments) pointers.push_back(argument.data());
  if (!pointers.empty()) pointers.back() = nullptr;  // what follows the last terminator
  if (!pointers.empty()) ::execv("/proc/self/exe", pointers.data());
  platform().process.exit(1);
}

}  // namespace dormel::SceneGraph
