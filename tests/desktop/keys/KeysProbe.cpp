// A program with nothing but the keyboard: it registers hot keys and has a window that is typed in.
// Reads commands from the fifo that it is given, a line each:
//   register <number> <key code> <modifiers>    answers "status <status>"
//   unregister <number>                         answers "unregistered"
//   window                                      answers "focused" when it has the keyboard
// Says "pressed <number> <nanoseconds>" and "released <number>" of hot keys, and of what is typed
// in the window "key <code> <flags> <text>", the text as the hexadecimal code of its character, or
// "-" where there is none.

#include <fcntl.h>

#include <QApplication>
#include <QSocketNotifier>
#include <QWidget>
#include <chrono>
#include <cstdio>
#include <sstream>
#include <string>

#include "desktop/harness/FileDescriptor.h"
#include "desktop/linux/keys/SessionHotKeys.h"
#include "desktop/linux/x11/X11WindowSystem.h"

namespace {

void say(const std::string& line) {
  std::puts(line.c_str());
  std::fflush(stdout);
}

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
  Probe(linux_desktop::WindowSystem& windowSystem, const char* fifo)
      : windowSystem_(windowSystem),
        fifo_(::open(fifo, O_RDWR | O_NONBLOCK | O_CLOEXEC)),
        notifier_(fifo_.get(), QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { read(); });
    hotKeys_.setClient(this);
  }

 private:
  void hotKeyPressed(platform::port::HotKeyNumber number) override {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    say("pressed " + std::to_string(number) + " " +
        std::to_string(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()));
  }
  void hotKeyReleased(platform::port::HotKeyNumber number) override {
    say("released " + std::to_string(number));
  }

  void read() {
    char byte = 0;
    while (::read(fifo_.get(), &byte, 1) == 1) {
      if (byte != '\n') {
        line_ += byte;
        continue;
      }
      std::istringstream words(std::exchange(line_, {}));
      obey(words);
    }
  }

  void obey(std::istringstream& words) {
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

  linux_desktop::WindowSystem& windowSystem_;
  linux_desktop::SessionHotKeys hotKeys_{windowSystem_.hotKeys()};
  harness::FileDescriptor fifo_;
  QSocketNotifier notifier_;
  TypedIn window_{*windowSystem_.keyTranslator()};
  std::string line_;
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
