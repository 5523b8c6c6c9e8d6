#include "desktop/harness/SoundServer.h"

#include <regex>
#include <stdexcept>
#include <utility>

#include "desktop/harness/Process.h"

namespace harness {

using namespace std::chrono_literals;

namespace {

void throwUnless(bool fact, const std::string& complaint) {
  if (!fact) throw std::runtime_error(complaint);
}

}  // namespace

SoundServer::SoundServer(Kind kind, const Environment& environment, std::vector<std::string> sinks,
                         Start start)
    : kind_(kind),
      sinks_(std::move(sinks)),
      runtime_(environment.at("XDG_RUNTIME_DIR")),
      environment_(environment) {
  if (start == Start::Now) this->start();
}

SoundServer::~SoundServer() {
  kill();
}

void SoundServer::start() {
  if (kind_ == Kind::PulseAudio) {
    startPulseAudio();
  } else {
    startPipeWire();
  }
}

Process& SoundServer::launch(std::vector<std::string> argv) {
  processes_.push_back(std::make_unique<Process>(Command{std::move(argv), environment_, runtime_}));
  return *processes_.back();
}

void SoundServer::startPulseAudio() {
  std::vector<std::string> argv{"pulseaudio",
                                "-n",
                                "--daemonize=no",
                                "--exit-idle-time=-1",
                                "--use-pid-file=no",
                                "--log-target=stderr",
                                "-L",
                                "module-native-protocol-unix"};
  for (const std::string& sink : sinks_) {
    argv.insert(argv.end(), {"-L", "module-null-sink sink_name=" + sink});
  }
  front_ = &launch(std::move(argv));
  awaitAnswers();
}

// The order counts: each of them gives up, or misses its peers, without the one before.
void SoundServer::startPipeWire() {
  Process& bus = launch({"dbus-daemon", "--session", "--nofork", "--print-address"});
  const auto address = bus.waitForLine("^unix:");
  throwUnless(address.has_value(), "dbus-daemon: " + bus.errorOutput());
  environment_["DBUS_SESSION_BUS_ADDRESS"] = *address;
  engine_ = &launch({"pipewire"});
  throwUnless(until([&] {
                return run("pw-cli", {"info", "0"}).succeeded();
              }),
              "pipewire: " + engine_->errorOutput());
  launch({"wireplumber"});
  // Now and then pipewire-pulse 0.3 ends without a word while the session manager is starting too.
  for (int attempt = 0; attempt < 3 && (front_ == nullptr || !front_->running()); ++attempt) {
    front_ = &launch({"pipewire-pulse"});
    until([this] { return !front_->running() || run("pactl", {"info"}).succeeded(); });
  }
  awaitAnswers();
  for (const std::string& sink : sinks_) addSink(sink);
  makeDefault("sink", sinks_.empty() ? "auto_null" : sinks_.front());
  // See addDevice(); this one runs while something plays.
  if (sinks_.empty()) launch({"pacat", "--raw", "--device=auto_null", "/dev/zero"});
}

void SoundServer::awaitAnswers() {
  throwUnless(until([&] { return !front_->running() || run("pactl", {"info"}).succeeded(); }) &&
                  front_->running(),
              "the sound server did not start: " + front_->errorOutput());
}

void SoundServer::kill() {
  while (!processes_.empty()) {  // the clients before what they lean on
    processes_.back()->kill();
    processes_.pop_back();
  }
  front_ = engine_ = nullptr;
}

void SoundServer::restart() {
  kill();
  start();
}

RunResult SoundServer::run(const std::string& program, std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), program);
  return runToEnd({std::move(arguments), environment_});
}

std::string SoundServer::pactl(const std::vector<std::string>& arguments) {
  RunResult result = run("pactl", arguments);
  throwUnless(result.succeeded(), "pactl " + arguments.front() + ": " + result.errorOutput);
  if (result.output.ends_with('\n')) result.output.pop_back();
  return result.output;
}

// "Volume: front-left: 19661 /  30% / -31.37 dB,   front-right: 39322 / ..."
std::vector<int> SoundServer::sourceVolumes(const std::string& source) {
  const std::string text = pactl({"get-source-volume", source});
  static const std::regex kVolume(": *([0-9]+) */");
  std::vector<int> volumes;
  for (std::sregex_iterator at(text.begin(), text.end(), kVolume), end; at != end; ++at) {
    volumes.push_back(std::stoi((*at)[1]));
  }
  return volumes;
}

std::string SoundServer::addSink(const std::string& sink) {
  return addDevice("sink", sink, {"module-null-sink", "sink_name=" + sink});
}

std::string SoundServer::addSource(const std::string& source) {
  const std::vector<std::string> module =
      kind_ == Kind::PulseAudio
          ? std::vector<std::string>{"module-null-source", "source_name=" + source, "channels=2"}
          : std::vector<std::string>{"module-null-sink", "media.class=Audio/Source/Virtual",
                                     "sink_name=" + source, "channel_map=front-left,front-right"};
  std::string added = addDevice("source", source, module);
  makeDefault("source", source);
  return added;
}

void SoundServer::makeDefault(const std::string& kind, const std::string& device) {
  throwUnless(until([&] {
                return run("pactl", {"set-default-" + kind, device}).succeeded() &&
                       pactl({"get-default-" + kind}) == device;
              }),
              device + " never became the default " + kind);
}

std::string SoundServer::addDevice(const std::string& kind, const std::string& device,
                                   std::vector<std::string> module) {
  module.insert(module.begin(), "load-module");
  // From 1.4 on a PipeWire null device that has never run keeps telling its old mute and volume.
  if (kind_ == Kind::PipeWire) module.emplace_back("node.always-process=true");
  std::string added = pactl(module);
  throwUnless(until([&] {
                return run("pactl", {"get-" + kind + "-mute", device}).succeeded();
              }),
              "the " + kind + " " + device + " never came");
  return added;
}

std::ostream& operator<<(std::ostream& stream, SoundServerKind kind) {
  return stream << (kind == SoundServerKind::PulseAudio ? "PulseAudio" : "PipeWire");
}

}  // namespace harness
