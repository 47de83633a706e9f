// Which QML scene draws which kind of view. The folders that own views fill it in; drawing knows no view by name.
// Main thread only.
#pragma once

#include <QColor>
#include <QIcon>
#include <QUrl>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "platform/View.h"
#include "platform/linux/qt/DrawingServices.h"
#include "platform/linux/qt/ViewBridge.h"

namespace dormel {

/// One scene: a QML component whose root is an Item with an implicit size and a required property `view`.
struct QmlScene {
  QUrl source;
  /// Makes the object that the root's `view` is set to. It lives as long as the root item and a little longer.
  std::function<std::unique_ptr<ViewBridge>(const std::shared_ptr<View>&)> makeBridge;
  /// What stands behind the scene; opaque colours make the picture opaque.
  QColor background = Qt::transparent;
};

/// The scene of views of the class `Shown`: a component of the program's own modules ("Settings/NightsWindow"), which
/// reads them through a `Bridge`.
template <typename Bridge, typename Shown>
[[nodiscard]] QmlScene qmlScene(const char* component, const QColor& background) {
  return {QUrl(QStringLiteral("qrc:/qt/qml/Dormel/%1.qml").arg(QLatin1String(component))),
          [](const std::shared_ptr<View>& view) -> std::unique_ptr<ViewBridge> {
            return std::make_unique<Bridge>(std::static_pointer_cast<Shown>(view));
          },
          background};
}

class QmlSceneRegistry {
 public:
  void add(ViewKind kind, QmlScene scene) { scenes_[kind] = std::move(scene); }
  /// The scene of that kind; null when nobody registered one.
  [[nodiscard]] const QmlScene* find(ViewKind kind) const;

  /// What a window that is no alert wears above its content: an Item of the window's size with a required property
  /// `minimizable`, which takes the pointer only where its buttons are, and closes and minimises `Window.window`.
  void setWindowFrame(QUrl source) { windowFrame_ = std::move(source); }
  [[nodiscard]] const QUrl& windowFrame() const { return windowFrame_; }

  /// The picture of the program in task switchers.
  void setIcon(std::function<QIcon()> make) { makeIcon_ = std::move(make); }
  [[nodiscard]] QIcon icon() const { return makeIcon_ ? makeIcon_() : QIcon(); }

  /// Has `step` run once, before the first scene is loaded: fonts, say.
  void prepareWith(std::function<void(const DrawingServices&)> step) { preparations_.push_back(std::move(step)); }
  /// Runs the steps that have not run yet.
  void prepare(const DrawingServices& services);

 private:
  std::map<ViewKind, QmlScene> scenes_;
  std::vector<std::function<void(const DrawingServices&)>> preparations_;
  QUrl windowFrame_;
  std::function<QIcon()> makeIcon_;
};

}  // namespace dormel
