#include "ui/qml/AlertBridge.h"

#include <utility>

#include "platform/linux/qt/QtStrings.h"

namespace dormel {

AlertBridge::AlertBridge(std::shared_ptr<AlertView> view) : view_(std::move(view)) {}

QString AlertBridge::message() const { return QString::fromStdString(view_->alert().message); }

QString AlertBridge::informativeText() const { return QString::fromStdString(view_->alert().informativeText); }

QStringList AlertBridge::buttons() const { return qtStrings(view_->alert().buttons); }

bool AlertBridge::serious() const { return view_->alert().style != AlertStyle::informational; }

void AlertBridge::answer(int button) { view_->answer(static_cast<std::size_t>(button)); }

bool AlertBridge::cancel() {
  const auto button = view_->cancelButton();
  if (button) view_->answer(*button);
  return button.has_value();
}

}  // namespace dormel
