// A program with nothing but a status item: prints what the tray reports, a line each.

#include <QApplication>
#include <QScreen>
#include <QTimer>
#include <cstdio>
#include <string>

#include "desktop/linux/tray/TrayStatusBar.h"
#include "desktop/linux/x11/XOwnWindows.h"
#include "desktop/linux/x11/XTraySelection.h"
#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSMenu.h"

namespace {

using linux_desktop::TrayStatusBar;

void say(const std::string& line) {
  std::puts(line.c_str());
  std::fflush(stdout);
}

std::string text(const QPoint& point) {
  return std::to_string(point.x()) + "," + std::to_string(point.y());
}

/// A square or a disc, in a colour that no panel has.
constexpr std::string_view kSquare =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 16 16"><rect width="16" height="16" fill="#f0f"/></svg>)";
constexpr std::string_view kDisc =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 16 16"><circle cx="8" cy="8" r="8" fill="#0f0"/></svg>)";

class Probe final : public platform::port::StatusItemClient {
 public:
  explicit Probe(const QStringList& arguments)
      : menuIsLate_(arguments.contains("--late-menu")), item_(bar_.createStatusItem(*this)) {
    for (const char* title : {"Preferences", "Check for Updates", "Quit"})
      menu_.addItemWithTitle(title, "choose", "");
    menu_.itemArray()[1]->setEnabled(!arguments.contains("--second-disabled"));
    item_->setImage(&square_);
    QObject::connect(&bar_, &TrayStatusBar::hasTrayChanged, &bar_,
                     [](bool has) { say(has ? "tray: yes" : "tray: no"); });
    if (arguments.contains("--anchor")) QTimer::singleShot(500, &bar_, [this] { sayAnchor(); });
  }

  void statusItemClicked(platform::NSEventType type) override {
    if (type == platform::NSEventType::LeftMouseUp) {
      say("left");
      discShown_ = !discShown_;
      item_->setImage(discShown_ ? &disc_ : &square_);
      sayAnchor();
      return;
    }
    say("right");
    if (menuIsLate_)
      QTimer::singleShot(300, &bar_, [this] { openMenu(); });
    else
      openMenu();
  }
  void menuItemChosen(std::size_t index) override { say("chosen " + std::to_string(index)); }
  void menuDidClose() override { say("closed"); }

 private:
  void openMenu() {
    item_->openMenu(menu_);
    say("menu attached");
  }
  void sayAnchor() {
    const linux_desktop::Anchor anchor = bar_.anchor().anchor();
    std::string line = "anchor " + text(anchor.point);
    if (anchor.panelGeometry)
      line += " panel " + text(anchor.panelGeometry->topLeft()) + " " +
              std::to_string(anchor.panelGeometry->width()) + "x" +
              std::to_string(anchor.panelGeometry->height());
    say(line);
  }

  bool menuIsLate_;
  bool discShown_ = false;
  platform::NSImage square_{"square", kSquare};
  platform::NSImage disc_{"disc", kDisc};
  platform::NSMenu menu_{"Menu"};
  std::unique_ptr<linux_desktop::XServer> server_ = linux_desktop::XServer::connect();
  linux_desktop::XEvents events_{*server_};
  linux_desktop::XOwnWindows ownWindows_{events_};
  linux_desktop::XTraySelection legacyTray_;
  TrayStatusBar bar_{ownWindows_, &legacyTray_};
  std::unique_ptr<platform::port::StatusItemPeer> item_;
};

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  const Probe probe(QApplication::arguments());
  say("up");
  return QApplication::exec();
}
