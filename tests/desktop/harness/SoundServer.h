#pragma once

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "desktop/harness/Process.h"

namespace harness {

enum class SoundServerKind { PulseAudio, PipeWire };

/// For the names of parameterised tests.
std::ostream& operator<<(std::ostream& stream, SoundServerKind kind);

/// A private sound server with null sinks and null sources: PulseAudio, or PipeWire with its
/// session manager, its PulseAudio front and a bus of its own. Ends with the object.
class SoundServer {
 public:
  using Kind = SoundServerKind;
  enum class Start { Now, Later };

  /// Serves the clients whose runtime folder and home are those of `environment`, of a
  /// PrivateHome say. With Start::Now it is up when this returns. Without `sinks` PulseAudio has
  /// no output device at all, PipeWire its dummy "auto_null". Throws std::runtime_error, with what
  /// the program said, when it cannot start.
  SoundServer(Kind kind, const Environment& environment, std::vector<std::string> sinks = {"out1"},
              Start start = Start::Now);
  ~SoundServer();
  SoundServer(const SoundServer&) = delete;
  SoundServer& operator=(const SoundServer&) = delete;

  /// Returns when pactl gets answers and every sink is there, the first one as the default.
  void start();
  /// SIGSTOP to the process that clients talk to; returns when it has stopped.
  void stop() { front_->freeze(); }
  void cont() { front_->thaw(); }
  /// PipeWire only: the same to the daemon behind the front.
  void stopEngine() { engine_->freeze(); }
  void contEngine() { engine_->thaw(); }
  /// SIGKILL to all of the server.
  void kill();
  void restart();

  /// Runs pactl with these arguments and returns its standard output without the last newline.
  /// Throws std::runtime_error with what pactl said when it fails.
  std::string pactl(const std::vector<std::string>& arguments);
  [[nodiscard]] bool sinkMuted(const std::string& sink) { return muted("sink", sink); }
  [[nodiscard]] bool sourceMuted(const std::string& source) { return muted("source", source); }
  /// Of each channel, where 65536 is all of it.
  [[nodiscard]] std::vector<int> sourceVolumes(const std::string& source);
  /// Adds a null sink and returns when it is listed; the result is for remove().
  std::string addSink(const std::string& sink);
  /// Likewise a null source with two channels, which becomes the default.
  std::string addSource(const std::string& source);
  /// Returns once it is so: what a session manager does not know yet it may refuse, or forget.
  void makeDefault(const std::string& kind, const std::string& device);
  void remove(const std::string& module) { pactl({"unload-module", module}); }

 private:
  [[nodiscard]] bool muted(const std::string& kind, const std::string& device) {
    return pactl({"get-" + kind + "-mute", device}) == "Mute: yes";
  }
  std::string addDevice(const std::string& kind, const std::string& device,
                        std::vector<std::string> module);
  /// Runs it to its end.
  [[nodiscard]] RunResult run(const std::string& program, std::vector<std::string> arguments) const;
  Process& launch(std::vector<std::string> argv);
  void startPulseAudio();
  void startPipeWire();
  void awaitAnswers();

  Kind kind_;
  std::vector<std::string> sinks_;
  std::filesystem::path runtime_;
  Environment environment_;
  std::vector<std::unique_ptr<Process>> processes_;  // in the order of their start
  Process* front_ = nullptr;
  Process* engine_ = nullptr;
};

}  // namespace harness
