#pragma once

#include <QMetaObject>
#include <QObject>
#include <functional>
#include <optional>
#include <utility>

namespace linux_desktop {

/// What the server says as one turn of the event loop sees it: asked for at the first call of a
/// turn, and forgotten at its end. One toggle needs it for each monitor several times. Main thread
/// only.
template <class Answer>
class OncePerTurn {
 public:
  explicit OncePerTurn(std::function<Answer()> ask) : ask_(std::move(ask)) {}

  [[nodiscard]] const Answer& now() {
    if (!answer_) {
      answer_.emplace(ask_());
      QMetaObject::invokeMethod(
          &context_, [this] { forget(); }, Qt::QueuedConnection);
    }
    return *answer_;
  }
  /// It may be another by now.
  void forget() { answer_.reset(); }

 private:
  std::function<Answer()> ask_;
  std::optional<Answer> answer_;
  QObject context_;
};

}  // namespace linux_desktop
