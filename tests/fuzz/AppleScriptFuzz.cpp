#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <vector>

#include "platform/applescript/Script.h"
#include "platform/port/Automation.h"

// Runs the bytes before the first NUL as a script, on a desktop that answers from the bytes after
// it: any object may exist or fail in any way, any property may have any value.
namespace platform::applescript {
namespace {

void require(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "broken promise: " << what << std::endl;
  std::abort();
}

class Answers {
 public:
  Answers(const std::uint8_t* data, std::size_t size) : bytes_(data, size) {}

  std::optional<port::ScriptError> error() {
    constexpr std::array<int, 7> kNumbers{-1700, -1708, -1719, -1728, -1743, -10000, 0};
    if (bytes_.ConsumeIntegralInRange(0, 3) != 3) return std::nullopt;
    return port::ScriptError{bytes_.PickValueInArray(kNumbers), text()};
  }

  std::string text() { return bytes_.ConsumeRandomLengthString(16); }

  Value value(int depth = 0) {
    switch (bytes_.ConsumeIntegralInRange(0, depth < 3 ? 6 : 4)) {
      case 0:
        return bytes_.ConsumeIntegral<std::int64_t>();
      case 1:
        return bytes_.ConsumeBool();
      case 2:
        return bytes_.ConsumeFloatingPoint<double>();
      case 3:
        return text();
      case 4:
        return NSRange{bytes_.ConsumeIntegral<std::size_t>(), 1};
      case 5:
        return Array{value(depth + 1), value(depth + 1)};
      default:
        return record(depth + 1);
    }
  }

  Dictionary record(int depth = 0) {
    Dictionary entries;
    entries.emplace(text(), value(depth));
    entries.insert_or_assign("input volume", value(depth));
    return entries;
  }

  bool chance() { return bytes_.ConsumeIntegralInRange(0, 15) == 15; }

 private:
  FuzzedDataProvider bytes_;
};

class AnyObject final : public port::ScriptObject {
 public:
  explicit AnyObject(Answers& answers) : answers_(answers) {}

  port::ScriptResult<std::shared_ptr<port::ScriptObject>> element(
      std::string_view className, const port::ElementSpecifier&) override {
    require(!className.empty(), "an element has a class");
    return make(answers_);
  }

  port::ScriptResult<Value> property(std::string_view name) override {
    require(!name.empty(), "a property has a name");
    if (auto error = answers_.error()) return *error;
    return answers_.value();
  }

  std::optional<port::ScriptError> click() override { return answers_.error(); }

  static port::ScriptResult<std::shared_ptr<port::ScriptObject>> make(Answers& answers) {
    if (auto error = answers.error()) return *error;
    if (answers.chance()) return nullptr;
    return std::make_shared<AnyObject>(answers);
  }

 private:
  Answers& answers_;
};

class AnyAutomation final : public port::Automation {
 public:
  explicit AnyAutomation(Answers& answers) : answers_(answers) {}

  port::ScriptResult<std::shared_ptr<port::ScriptObject>> application(std::string_view) override {
    return AnyObject::make(answers_);
  }
  std::optional<port::ScriptError> keyCode(std::int64_t) override { return answers_.error(); }
  port::ScriptResult<Dictionary> volumeSettings() override {
    if (auto error = answers_.error()) return *error;
    return answers_.record();
  }
  std::optional<port::ScriptError> setInputVolume(int level) override {
    require(level >= 0 && level <= 100, "the input volume is clamped");
    return answers_.error();
  }
  std::optional<port::ScriptError> displayNotification(std::string_view) override {
    return answers_.error();
  }

 private:
  Answers& answers_;
};

void checkFailure(const ScriptFailure& failure, std::string_view source) {
  require(failure.range.begin <= failure.range.end, "a range does not end before it begins");
  require(failure.range.end <= source.size(), "a range lies in the source");
  const std::string printed = description(errorInformation(failure, source));
  require(std::all_of(printed.begin(), printed.end(),
                      [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }),
          "an error prints in plain characters");
}

void checkOne(const std::uint8_t* data, std::size_t size) {
  const std::uint8_t* const end = data + size;
  const std::uint8_t* const separator = std::find(data, end, std::uint8_t{0});
  // Not a string: its terminator would hide a read beyond the end.
  const std::vector<char> script(data, separator);
  const std::string_view source(script.data(), script.size());
  const std::uint8_t* const rest = separator == end ? end : separator + 1;
  Answers answers(rest, static_cast<std::size_t>(end - rest));
  AnyAutomation automation(answers);
  const bool reachable = !answers.chance();
  const ScriptOutcome outcome = runScript(source, reachable ? &automation : nullptr);
  if (const auto* failure = std::get_if<ScriptFailure>(&outcome)) checkFailure(*failure, source);
}

}  // namespace
}  // namespace platform::applescript

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  platform::applescript::checkOne(data, size);
  return 0;
}
