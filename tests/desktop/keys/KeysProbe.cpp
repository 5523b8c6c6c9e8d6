// A program with nothing but the keyboard: it registers hot keys and has a window that is typed in.
// Reads commands from the fifo that it is given, a line each:
//   register <number> <key code> <modifiers>    answers "status <status>"
//   unregister <number>                         answers "unregistered"
//   window                                      answers "focused" when it has the keyboard
// Says "pressed <number>" and "released <number>" of hot keys, and of what is typed in the window
// "key <code> <flags> <text>", the text as the hexadecimal code of its character, or "-" where
// there is none.

#include <QApplication>
#include <QWidget>
#include <sstream>
#include <string>

#include "desktop/linux/keys/SessionHotKeys.h"
#include "desktop/linux/x11/X11WindowSystem.h"
#include "desktop/probe/OrderFifo.h"

namespace {

using probe::say;

std::string hexadecimal(const std::optional<std::string>& text) {
  if (!text) return "-";
  std::ostringstream codes;
  for (const char32_t code : QString::fromStdString(*text).toStdU32String())
    codes << std::hex << static_cast<std::uint32_t>(code);
  return codes.str();
}

class TypedIn final : public QWidget {
 public:
  explicit TypedIn(linux_desktop::KeyTranslator& translator) : translator_(translator) {
    setFocusPolicy(Qt::StrongFocus);
  }

 protected:
  void focusInEvent(QFocusEvent*) override { say("focused"); }
  void keyPressEvent(QKeyEvent* press) override {
    const auto event = translator_.translate(*press);
    if (!event) return;
    std::ostringstream line;
    line << "key " << event->keyCode << ' ' << std::hex << event->modifierFlags << ' '
         << hexadecimal(event->charactersIgnoringModifiers);
    say(line.str());
  }

 private:
  linux_desktop::KeyTranslator& translator_;
};

class Probe final : platform::port::HotKeysClient {
 public:
  Probe(linux_desktop::X11WindowSystem& windowSystem, const char* fifo)
      : windowSystem_(windowSystem),
        orders_(fifo, [this](const std::string& line) { obey(line); }) {
    hotKeys_.setClient(this);
  }

 private:
  void hotKeyPressed(platform::port::HotKeyNumber number) override {
    say("pressed " + std::to_string(number));
  }
  void hotKeyReleased(platform::port::HotKeyNumber number) override {
    say("released " + std::to_string(number));
  }

  void obey(const std::string& line) {
    std::istringstream words(line);
    std::string command;
    std::uint32_t number = 0;
    std::uint32_t keyCode = 0;
    std::uint32_t modifiers = 0;
    words >> command >> number >> keyCode >> modifiers;
    if (command == "register") {
      say("status " + std::to_string(hotKeys_.registerHotKey(number, keyCode, modifiers)));
    } else if (command == "unregister") {
      hotKeys_.unregisterHotKey(number);
      say("unregistered");
    } else if (command == "window") {
      window_.resize(200, 100);
      window_.show();
      window_.activateWindow();
    }
  }

  linux_desktop::X11WindowSystem& windowSystem_;
  linux_desktop::SessionHotKeys hotKeys_{windowSystem_.hotKeys()};
  TypedIn window_{*windowSystem_.keyTranslator()};
  probe::OrderFifo orders_;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setApplicationDisplayName(QStringLiteral("Probe"));
  const auto windowSystem = linux_desktop::X11WindowSystem::open();
  if (!windowSystem || argc < 2) return 1;
  const Probe probe(*windowSystem, argv[1]);
  say("up");
  return QApplication::exec();
}
