#include "platform/linux/qt/ExportedMenuBar.h"

#include <private/qguiapplication_p.h>
#include <qpa/qplatformmenu.h>
#include <qpa/qplatformtheme.h>

#include <QKeySequence>
#include <QWindow>

namespace dormel {
namespace {

QKeySequence shortcutOf(const MenuItem& item) {
  if (item.key.empty()) return {};
  QString keys = QStringLiteral("Ctrl+");
  if (item.withShift) keys += QStringLiteral("Shift+");
  if (item.withOption) keys += QStringLiteral("Alt+");
  return QKeySequence(keys + QString::fromStdString(item.key));
}

}  // namespace

ExportedMenuBar::ExportedMenuBar(std::unique_ptr<QPlatformMenuBar> bar, Chosen onChosen, CanDo canDo)
    : onChosen_(std::move(onChosen)), canDo_(std::move(canDo)), bar_(std::move(bar)) {}

ExportedMenuBar::~ExportedMenuBar() = default;

std::unique_ptr<ExportedMenuBar> ExportedMenuBar::create(const std::vector<Menu>& menus, std::size_t windows,
                                                         Chosen onChosen, CanDo canDo) {
  QPlatformTheme* theme = QGuiApplicationPrivate::platformTheme();
  std::unique_ptr<QPlatformMenuBar> bar(theme == nullptr ? nullptr : theme->createPlatformMenuBar());
  if (!bar) return nullptr;
  std::unique_ptr<ExportedMenuBar> exported(new ExportedMenuBar(std::move(bar), std::move(onChosen), std::move(canDo)));
  for (std::size_t i = 0; i < menus.size(); ++i) {
    QPlatformMenu* menu = exported->add(menus[i]);
    if (i == windows) exported->windowsMenu_ = menu;
  }
  return exported;
}

QPlatformMenu* ExportedMenuBar::add(const Menu& menu) {
  std::unique_ptr<QPlatformMenu> shown(bar_->createMenu());
  if (!shown) return nullptr;
  shown->setText(QString::fromStdString(menu.title));
  for (const MenuItem& item : menu.items) {
    std::unique_ptr<QPlatformMenuItem> entry(shown->createMenuItem());
    if (!entry) continue;
    const bool isEnabled = item.command == MenuCommand::separator || canDo_(item.command);
    entry->setText(QString::fromStdString(item.title));
    entry->setIsSeparator(item.command == MenuCommand::separator);
    entry->setShortcut(shortcutOf(item));
    entry->setEnabled(isEnabled);
    entry->setVisible(true);
    QObject::connect(
        entry.get(), &QPlatformMenuItem::activated, entry.get(), [this, command = item.command] { onChosen_(command); },
        Qt::QueuedConnection);
    shown->insertMenuItem(entry.get(), nullptr);
    entries_.push_back({shown.get(), std::move(entry), item.command, isEnabled});
  }
  shown->setVisible(true);
  bar_->insertMenu(shown.get(), nullptr);
  menus_.push_back(std::move(shown));
  return menus_.back().get();
}

void ExportedMenuBar::attach(QWindow& window, std::function<void()> onListed) {
  bar_->handleReparent(&window);
  if (windowsMenu_ == nullptr) return;
  if (listed_) windowsMenu_->removeMenuItem(listed_.get());
  listed_.reset(windowsMenu_->createMenuItem());
  if (!listed_) return;
  listed_->setText(window.title());
  listed_->setVisible(true);
  listed_->setEnabled(true);
  QObject::connect(listed_.get(), &QPlatformMenuItem::activated, &window, std::move(onListed), Qt::QueuedConnection);
  windowsMenu_->insertMenuItem(listed_.get(), nullptr);
}

void ExportedMenuBar::refresh() {
  for (Entry& entry : entries_) {
    const bool now = entry.command == MenuCommand::separator || canDo_(entry.command);
    if (now == entry.isEnabled) continue;
    entry.isEnabled = now;
    entry.item->setEnabled(now);
    entry.menu->syncMenuItem(entry.item.get());
  }
}

}  // namespace dormel
