#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "desktop/linux/login/AutostartItems.h"

/// Autostart folders of their own, none of them there yet, and what the program says about them.
class AutostartFixture : public ::testing::Test {
 protected:
  using Path = std::filesystem::path;
  using Texts = std::vector<std::string>;

  [[nodiscard]] std::vector<Path> folders() const { return {folder_, everybodys_}; }
  [[nodiscard]] Path file(const std::string& name) const { return folder_ / name; }

  static void write(const Path& file, const std::string& text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
  }
  /// An entry with these lines, `age` old.
  void writeEntry(const std::string& name, const std::string& lines,
                  std::chrono::seconds age = std::chrono::hours(1)) const {
    write(file(name), "[Desktop Entry]\nType=Application\nName=x\n" + lines + "\n");
    std::filesystem::last_write_time(file(name), Clock::now() - age);
  }
  [[nodiscard]] static std::string textOf(const Path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  [[nodiscard]] std::vector<platform::port::LoginItem> listed() {
    const auto list = items.items();
    EXPECT_TRUE(list);
    return list.value_or(std::vector<platform::port::LoginItem>{});
  }
  [[nodiscard]] Texts names() {
    Texts names;
    for (const auto& item : listed()) names.push_back(item.identifier);
    return names;
  }
  [[nodiscard]] Texts programs() {
    Texts programs;
    for (const auto& item : listed()) programs.push_back(items.resolve(item).value_or(""));
    return programs;
  }

  /// How many lines of standard error `action` caused.
  template <typename Action>
  static std::ptrdiff_t linesSaidBy(Action action) {
    ::testing::internal::CaptureStderr();
    action();
    const std::string said = ::testing::internal::GetCapturedStderr();
    return std::count(said.begin(), said.end(), '\n');
  }

  using Clock = std::filesystem::file_time_type::clock;
  static constexpr const char* kFirst = "org.calmdeck.Calmdeck.desktop";
  static constexpr const char* kSecond = "org.calmdeck.Calmdeck-2.desktop";

  QTemporaryDir temporary_;
  const Path root = temporary_.path().toStdString();
  const Path folder_ = root / "config" / "autostart";
  const Path everybodys_ = root / "xdg" / "autostart";
  linux_desktop::AutostartItems items{folders()};
};
