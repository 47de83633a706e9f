#include "platform/linux/qt/QmlSceneRegistry.h"

#include <utility>

namespace dormel {

const QmlScene* QmlSceneRegistry::find(ViewKind kind) const {
  const auto at = scenes_.find(kind);
  return at == scenes_.end() ? nullptr : &at->second;
}

void QmlSceneRegistry::prepare(const DrawingServices& services) {
  for (const auto& step : std::exchange(preparations_, {})) step(services);
}

}  // namespace dormel
