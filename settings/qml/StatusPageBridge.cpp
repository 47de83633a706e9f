#include "settings/qml/StatusPageBridge.h"

#include <utility>

namespace dormel {

StatusPageBridge::StatusPageBridge(std::shared_ptr<StatusPage> page) : page_(std::move(page)) {
  observation_ = page_->observe([this] { emit changed(); });
}

QStringList StatusPageBridge::plainLines() const {
  return {QStringLiteral("DORMEL"), statusTitle(), statusText(), scheduleText(), permissionText(), versionText()};
}

}  // namespace dormel
