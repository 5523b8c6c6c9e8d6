#include "desktop/linux/tray/MenuOpening.h"

#include <chrono>
#include <utility>

#include "platform/port/StatusBar.h"

namespace linux_desktop {
namespace {

using namespace std::chrono_literals;

/// The choice is the panel's next message; this is for a busy machine.
constexpr auto kChoiceWindow = 100ms;

}  // namespace

MenuOpening::MenuOpening(platform::port::StatusItemClient& client) : client_(client) {
  choiceWindow_.setSingleShot(true);
  choiceWindow_.setInterval(kChoiceWindow);
  QObject::connect(&choiceWindow_, &QTimer::timeout, &choiceWindow_, [this] { end(); });
}

void MenuOpening::begin(Sign sign) {
  if (inProgress() && !choiceWindow_.isActive() && signs_.insert(sign).second) return;
  end();  // a sign for the second time: the panel kept the closing to itself
  signs_ = {sign};
  endedEarly_ = false;
  chosenEarly_.reset();
  ++unanswered_;
  reporting_ = true;
  client_.statusItemClicked(platform::NSEventType::RightMouseUp);
  reporting_ = false;
}

void MenuOpening::attach() {
  // A client that answers at once is not busy, so it will not answer older requests any more.
  if (reporting_) unanswered_ = 1;
  if (unanswered_ > 0) --unanswered_;
  if (unanswered_ > 0 || endedEarly_) {
    endedEarly_ = endedEarly_ && unanswered_ > 0;
    reportEndLater(std::exchange(chosenEarly_, std::nullopt));
  } else {
    attached_ = true;
  }
}

void MenuOpening::choose(std::size_t index) {
  if (!inProgress()) return;
  if (attached_) {
    choiceWindow_.stop();
    signs_.clear();
    attached_ = false;
    reportEnd(index);
  } else {
    chosenEarly_ = index;
    end();
  }
}

void MenuOpening::end() {
  if (!inProgress()) return;
  choiceWindow_.stop();
  signs_.clear();
  endedEarly_ = !attached_;
  if (std::exchange(attached_, false)) reportEnd(std::nullopt);
}

void MenuOpening::endUnlessChosen() {
  if (inProgress()) choiceWindow_.start();
}

void MenuOpening::reportEnd(std::optional<std::size_t> chosen) {
  if (chosen) client_.menuItemChosen(*chosen);
  client_.menuDidClose();
}

void MenuOpening::reportEndLater(std::optional<std::size_t> chosen) {
  QTimer::singleShot(0, &later_, [this, chosen] { reportEnd(chosen); });
}

}  // namespace linux_desktop
