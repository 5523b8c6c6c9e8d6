#include "desktop/simulated/SimulatedStatusBar.h"

#include <algorithm>

#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSStatusItem.h"
#include "platform/foundation/Process.h"

namespace simulated {

class SimulatedStatusBar::Peer final : public platform::port::StatusItemPeer {
 public:
  explicit Peer(SimulatedStatusBar& bar) : bar_(bar) {}
  ~Peer() override { bar_.client_ = nullptr; }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  void setImage(const platform::NSImage* image) override {
    bar_.image_ = image == nullptr ? "" : image->name();
    bar_.log_.add("statusItem.setImage " + bar_.image_);
  }

  void setToolTip(const std::string& text) override { bar_.toolTip_ = text; }

  void openMenu(const platform::NSMenu& menu) override {
    bar_.log_.add("statusItem.openMenu");
    bar_.menu_.emplace();
    for (const auto& item : menu.itemArray()) bar_.menu_->push_back(item->title());
  }

 private:
  SimulatedStatusBar& bar_;
};

std::unique_ptr<platform::port::StatusItemPeer> SimulatedStatusBar::createStatusItem(
    platform::port::StatusItemClient& client) {
  if (client_ != nullptr) platform::programmingError("the simulated status bar has one item");
  client_ = &client;
  return std::make_unique<Peer>(*this);
}

void SimulatedStatusBar::choose(std::string_view title) {
  if (!menu_) platform::programmingError("no menu is open");
  const auto line = std::ranges::find(*menu_, title);
  if (line == menu_->end()) platform::programmingError("the menu has no such line");
  client_->menuItemChosen(static_cast<std::size_t>(line - menu_->begin()));
  closeMenu();
}

void SimulatedStatusBar::closeMenu() {
  menu_.reset();
  // The item may have gone with what was chosen.
  if (client_ != nullptr) client_->menuDidClose();
}

}  // namespace simulated
