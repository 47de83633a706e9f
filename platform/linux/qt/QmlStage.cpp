#include "platform/linux/qt/QmlStage.h"

#include <QQmlComponent>
#include <QQuickItem>
#include <QVariantMap>
#include <utility>

#include "platform/Platform.h"
#include "platform/Process.h"
#include "platform/linux/qt/PlainTextPicture.h"
#include "platform/linux/qt/QmlPicture.h"

namespace dormel {
namespace {

void complain(const QString& reason) {
  platform().output.printError("Cannot draw a screen as designed, showing its text only: " + reason.toStdString());
}

}  // namespace

QmlStage::QmlStage(QmlSceneRegistry registry) : registry_(std::move(registry)) {}

std::unique_ptr<Picture> QmlStage::makePicture(const std::shared_ptr<View>& view,
                                               const std::function<void()>& onChange) {
  const QmlScene* scene = registry_.find(view->kind());
  if (scene == nullptr) {
    complain(QStringLiteral("no scene for this kind of view"));
    return std::make_unique<PlainTextPicture>(nullptr, Qt::transparent, onChange);
  }
  registry_.prepare();
  if (!engine_) {
    engine_ = std::make_unique<QQmlEngine>();
    engine_->addImportPath(QStringLiteral("qrc:/qt/qml"));
  }
  std::unique_ptr<ViewBridge> bridge = scene->makeBridge(view);
  QQmlEngine::setObjectOwnership(bridge.get(), QQmlEngine::CppOwnership);
  QQmlComponent component(engine_.get(), scene->source);
  std::unique_ptr<QObject> root;
  if (!component.isError()) {
    root.reset(
        component.createWithInitialProperties({{QStringLiteral("view"), QVariant::fromValue<QObject*>(bridge.get())}}));
  }
  // A scene that did not take its view is an object and an error at once.
  if (component.isError() || qobject_cast<QQuickItem*>(root.get()) == nullptr) {
    complain(component.isError() ? component.errors().constFirst().toString()
                                 : scene->source.toString() + QStringLiteral(" is not an item"));
    root.reset();
    return std::make_unique<PlainTextPicture>(std::move(bridge), scene->background, onChange);
  }
  std::unique_ptr<QQuickItem> item(qobject_cast<QQuickItem*>(root.release()));
  return std::make_unique<QmlPicture>(std::move(bridge), std::move(item), scene->background, onChange);
}

}  // namespace dormel
