// Qt's event loop carries the process's own. Create it on the main thread, after the application object.
#pragma once

#include <QObject>
#include <QSocketNotifier>

#include "platform/linux/loop/EventLoop.h"

namespace dormel::qt {

/// While it lives, what `loop` has to do is done in Qt's loop, an inner one included. `loop` outlives it.
class QtEventLoopAdapter {
 public:
  explicit QtEventLoopAdapter(EventLoop& loop);

 private:
  QSocketNotifier notifier_;
  QObject context_;
};

}  // namespace dormel::qt
