#include "platform/linux/updates/HelperProcess.h"

#include <QProcess>
#include <utility>

#include "platform/linux/updates/BundleExchange.h"

namespace dormel::updates {
namespace {

// Unpacking takes a second; a disk that takes a minute for it must not keep the window from its user for ever.
constexpr int INSTALL_LIMIT = 60'000;
constexpr int KILL_LIMIT = 5'000;

std::unique_ptr<QProcess> prepare(const std::string& program, const QStringList& arguments) {
  auto process = std::make_unique<QProcess>();
  process->setProgram(QString::fromStdString(program));
  process->setArguments(arguments);
  process->setStandardInputFile(QProcess::nullDevice());
  process->setProcessChannelMode(QProcess::ForwardedErrorChannel);  // into our own log
  return process;
}

std::optional<Verdict> nextVerdict(QProcess& process) {
  if (!process.canReadLine()) return {};
  return parseVerdict(process.readLine(256).trimmed().toStdString()).value_or(Verdict{});
}

/// Ends the process; none of its signals comes any more.
void putDown(QProcess& process) {
  process.disconnect();
  process.kill();
  process.waitForFinished(KILL_LIMIT);
}

}  // namespace

HelperProcess::HelperProcess(std::string program, const std::string& bundle)
    : program_(std::move(program)), bundle_(bundle), store_(bundle) {}

HelperProcess::~HelperProcess() { cancel(); }

void HelperProcess::check(bool fetch, std::function<void(const Verdict&)> onVerdict, Task onEnd) {
  cancel();
  onVerdict_ = std::move(onVerdict);
  onEnd_ = std::move(onEnd);
  process_ = prepare(program_, fetch ? QStringList{"check", "--fetch"} : QStringList{"check"});
  QObject::connect(process_.get(), &QProcess::readyReadStandardOutput, [this] { hear(); });
  QObject::connect(
      process_.get(), &QProcess::finished, process_.get(), [this] { end(); }, Qt::QueuedConnection);
  QObject::connect(
      process_.get(), &QProcess::errorOccurred, process_.get(),
      [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) end();
      },
      Qt::QueuedConnection);
  process_->start();
}

void HelperProcess::hear() {
  while (const auto verdict = process_ ? nextVerdict(*process_) : std::nullopt) onVerdict_(*verdict);
}

void HelperProcess::end() {
  hear();
  // Destroyed by the loop: this is called by one of its own signals.
  if (process_) process_.release()->deleteLater();
  onVerdict_ = {};
  if (const Task onEnd = std::exchange(onEnd_, {})) onEnd();
}

void HelperProcess::cancel() {
  if (!process_) return;
  putDown(*process_);
  process_.reset();
  onVerdict_ = {};
  onEnd_ = {};
}

std::optional<std::string> HelperProcess::waiting() const {
  const auto offer = store_.staged();
  return offer ? std::optional(offer->version.text()) : std::nullopt;
}

Verdict HelperProcess::install() {
  if (!store_.exists()) return {Verdict::Kind::nothing};
  const auto process = prepare(program_, {"install"});
  process->start();
  if (!process->waitForFinished(INSTALL_LIMIT)) putDown(*process);
  Verdict verdict;
  while (const auto next = nextVerdict(*process)) verdict = *next;
  // It may have been ended at the worst of moments.
  repairExchange(bundle_, store_.folder() + "/old");
  return verdict;
}

void HelperProcess::clear() { store_.clear(); }

}  // namespace dormel::updates
