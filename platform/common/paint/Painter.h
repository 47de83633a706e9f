// Keeps one painter at work for all canvases: starts it when the first of them shows something, watches that it
// answers, and ends and replaces one that died, hangs or says what cannot be. Main thread only; always owned by a
// shared_ptr.
//
// It is started again at once, then after pauses that grow to 5 s, for ever. An order has to be answered within a
// second (and the first of a process within ten of its start: a toolkit loads slowly on a machine that swaps), also
// when the canvas that it was for has gone meanwhile; a painter that was too slow gives the next one more time. One
// that has shown pictures for two seconds makes all that forgotten.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/RunLoop.h"
#include "platform/common/paint/Messages.h"
#include "platform/common/paint/PainterProcess.h"

namespace dormel::paint {

class Painter : public std::enable_shared_from_this<Painter> {
 public:
  /// What a canvas is to the painter.
  class Client {
   public:
    virtual ~Client() = default;
    /// A process has been started and knows nothing yet.
    virtual void started() = 0;
    /// It is gone, with everything it was told and its memory.
    virtual void gone() = 0;
    /// Something of this canvas's. False when it cannot be true.
    [[nodiscard]] virtual bool hear(const Answer& answer, const std::shared_ptr<const PictureMemory>& memory) = 0;
    /// Its picture moves by time alone.
    [[nodiscard]] virtual bool isMoving() const = 0;
  };

  /// `launcher` outlives it.
  explicit Painter(PainterLauncher& launcher) : launcher_(launcher) {}

  /// The client's number in messages. It leaves before it goes.
  [[nodiscard]] std::uint32_t join(Client& client);
  void leave(std::uint32_t client);

  /// Somebody has something to show.
  void need();
  [[nodiscard]] bool isRunning() const { return process_ != nullptr; }
  /// It has been given up on for the moment: three processes in a row came to nothing.
  [[nodiscard]] bool hasFailedOften() const { return failures_ >= 3; }

  void send(const Order& order);
  /// The number of an order that has to be answered, from now on.
  [[nodiscard]] std::uint32_t newSerial(std::uint32_t client);
  /// A picture has come on screen.
  void pictureShown();
  /// To be called when what `isMoving` says may have changed.
  void reconsiderMoving();

 private:
  struct Unanswered {
    Seconds sentAt;
    std::uint32_t client;
  };

  void start();
  void hear(std::string_view bytes, const std::shared_ptr<const PictureMemory>& memory);
  [[nodiscard]] bool take(const Answer& answer, const std::shared_ptr<const PictureMemory>& memory);
  /// False when nobody waited for it.
  bool answered(std::uint32_t serial);
  void fail(const std::string& reason);
  void stop();
  void ping();
  void watch();
  void checkOverdue(bool isSecondLook);
  /// When the oldest order has to be answered; there is one.
  [[nodiscard]] Seconds due() const;

  PainterLauncher& launcher_;
  std::map<std::uint32_t, Client*> clients_;
  std::uint32_t lastClient_ = 0;
  std::unique_ptr<PainterProcess> process_;
  bool hasAnswered_ = false;
  Seconds startedAt_ = 0;
  std::map<std::uint32_t, Unanswered> unanswered_;  ///< by serial
  std::uint32_t lastSerial_ = 0;
  std::optional<Seconds> shownSince_;  ///< this process's first picture
  int failures_ = 0;                   ///< in a row
  int complaints_ = 0;
  Seconds patience_ = 1;
  bool isMoving_ = false;
  Timer startTimer_;
  Timer overdueTimer_;
  Timer pingTimer_;
  Timer idleTimer_;
};

}  // namespace dormel::paint
