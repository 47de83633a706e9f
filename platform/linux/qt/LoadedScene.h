// What a view's scene consists of once it was loaded.
#pragma once

#include <QColor>
#include <QQuickItem>
#include <memory>

#include "platform/linux/qt/ViewBridge.h"

namespace dormel {

/// A view's scene, loaded. The root reads the bridge and must go first.
struct LoadedScene {
  std::unique_ptr<ViewBridge> bridge;  ///< null when nobody registered a scene for the view
  std::unique_ptr<QQuickItem> root;    ///< null when the scene cannot be had
  QColor background = Qt::transparent;
};

}  // namespace dormel
