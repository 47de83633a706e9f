// The Qt application object of this process: which Qt platform it stands on, and what the desktop asks of it. Create it
// first, on the main thread.
#pragma once

#include <QGuiApplication>
#include <QIcon>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/RunLoop.h"

namespace dormel {

/// What of an application the desktop can ask for.
struct DesktopRequests {
  Task quit;                      ///< somebody wants it to end
  std::function<bool()> mayQuit;  ///< whether it would
  Task becameActive;              ///< one of its windows has the focus again; not called inside the event
};

class Toolkit : public QObject {
 public:
  Toolkit();
  Toolkit(const Toolkit&) = delete;
  Toolkit& operator=(const Toolkit&) = delete;
  ~Toolkit() override;

  /// Whether Qt can show windows on the Wayland compositor of this session. May be asked before there is a toolkit.
  [[nodiscard]] static bool reachesWayland();

  /// Appears on the desktop as an application with that icon. `requests` are answered until the process ends.
  void join(const QIcon& icon, DesktopRequests requests);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::vector<std::string> arguments_;
  std::vector<char*> argumentPointers_;
  int argumentCount_ = 0;
  std::unique_ptr<QGuiApplication> application_;
  DesktopRequests requests_;
};

}  // namespace dormel
