#include "platform/linux/qt/SceneLoader.h"

#include <QQmlComponent>
#include <QVariantMap>
#include <utility>

#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/Process.h"

namespace dormel {

DrawingServices DrawingServices::ofPlatform() {
  return {[] { return platform().clock.uptime(); }, [](std::string_view line) { platform().output.printError(line); },
          [] { return platform().bundle.path(); }};
}

void SceneLoader::report(const QString& reason) const {
  services_.printError("Cannot draw a screen: " + reason.toStdString());
}

SceneLoader::SceneLoader(QmlSceneRegistry registry, DrawingServices services)
    : registry_(std::move(registry)), services_(std::move(services)) {}

QQmlEngine& SceneLoader::engine() {
  if (!engine_) {
    engine_ = std::make_unique<QQmlEngine>();
    engine_->addImportPath(QStringLiteral("qrc:/qt/qml"));
  }
  return *engine_;
}

std::unique_ptr<QQuickItem> SceneLoader::create(const QUrl& source, const QVariantMap& properties) {
  registry_.prepare(services_);
  QQmlComponent component(&engine(), source);
  std::unique_ptr<QObject> root;
  if (!component.isError()) root.reset(component.createWithInitialProperties(properties));
  // A scene that did not take its view is an object and an error at once.
  if (component.isError() || qobject_cast<QQuickItem*>(root.get()) == nullptr) {
    report(component.isError() ? component.errors().constFirst().toString()
                               : source.toString() + QStringLiteral(" is not an item"));
    return nullptr;
  }
  return std::unique_ptr<QQuickItem>(qobject_cast<QQuickItem*>(root.release()));
}

LoadedScene SceneLoader::load(const std::shared_ptr<View>& view) {
  const QmlScene* scene = registry_.find(view->kind());
  if (scene == nullptr) {
    report(QStringLiteral("no scene for this kind of view"));
    return {};
  }
  LoadedScene loaded{scene->makeBridge(view), nullptr, scene->background};
  loaded.bridge->setUptime(services_.uptime);
  QQmlEngine::setObjectOwnership(loaded.bridge.get(), QQmlEngine::CppOwnership);
  loaded.root = create(scene->source, {{QStringLiteral("view"), QVariant::fromValue<QObject*>(loaded.bridge.get())}});
  return loaded;
}

std::unique_ptr<QmlPicture> SceneLoader::makePicture(const std::shared_ptr<View>& view,
                                                     const std::function<void()>& onChange) {
  LoadedScene scene = load(view);
  return scene.root ? std::make_unique<QmlPicture>(std::move(scene), onChange) : nullptr;
}

std::unique_ptr<QQuickItem> SceneLoader::makeWindowFrame(bool minimizable) {
  if (registry_.windowFrame().isEmpty()) return nullptr;
  return create(registry_.windowFrame(), {{QStringLiteral("minimizable"), minimizable}});
}

}  // namespace dormel
