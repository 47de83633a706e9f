#include "platform/linux/qt/QtEventLoopAdapter.h"

#include <QAbstractEventDispatcher>

namespace dormel::qt {

QtEventLoopAdapter::QtEventLoopAdapter(EventLoop& loop) : notifier_(loop.descriptor(), QSocketNotifier::Read) {
  const auto dispatch = [&loop] { loop.dispatchPending(); };
  QObject::connect(&notifier_, &QSocketNotifier::activated, &context_, dispatch);
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &context_, dispatch);
}

}  // namespace dormel::qt
