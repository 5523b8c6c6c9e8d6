#include "desktop/x11/TestProgram.h"

#include <cstdlib>
#include <regex>
#include <stdexcept>

namespace {

std::string& written() {
  static std::string text;
  return text;
}

void write(QtMsgType, const QMessageLogContext&, const QString& line) {
  written() += line.toStdString() + '\n';
}

}  // namespace

TestProgram::TestProgram(const harness::Environment& environment) {
  clearenv();
  for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
  written().clear();
  qInstallMessageHandler(write);
  application_ = std::make_unique<QApplication>(argumentCount_, arguments_.data());
  QApplication::setApplicationDisplayName(QStringLiteral("Probe"));
  server_ = linux_desktop::XServer::connect();
  if (!server_) throw std::runtime_error("no X server: " + written());
  events_.emplace(*server_);
}

TestProgram::~TestProgram() {
  qInstallMessageHandler(nullptr);
}

void TestProgram::turn() {
  events_->dispatch();
  QApplication::processEvents();
}

bool TestProgram::until(const std::function<bool()>& fact) {
  return harness::until(fact, harness::kPatience, [this] { turn(); });
}

const std::string& TestProgram::log() const {
  return written();
}

bool TestProgram::logs(const std::string& pattern) {
  const std::regex wanted(pattern);
  return until([&] {
    for (std::size_t end = 0; (end = written().find('\n', found_)) != std::string::npos;) {
      const std::string line = written().substr(found_, end - found_);
      found_ = end + 1;
      if (std::regex_search(line, wanted)) return true;
    }
    return false;
  });
}
