#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "desktop/linux/defaults/SettingsFile.h"

/// A settings file in a folder of its own, and what the program said about it.
class SettingsFixture : public ::testing::Test {
 protected:
  [[nodiscard]] const std::filesystem::path& file() const { return file_; }
  [[nodiscard]] std::filesystem::path beside(const std::string& suffix) const {
    return file_.string() + suffix;
  }

  void write(const std::string& text) const { writeTo(file_, text); }
  static void writeTo(const std::filesystem::path& file, const std::string& text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
  }
  [[nodiscard]] std::string text() const { return textOf(file_); }
  static std::string textOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  /// How many lines of standard error `action` caused.
  template <typename Action>
  static std::ptrdiff_t linesSaidBy(Action action) {
    ::testing::internal::CaptureStderr();
    action();
    const std::string said = ::testing::internal::GetCapturedStderr();
    return std::count(said.begin(), said.end(), '\n');
  }

  QTemporaryDir folder_;
  std::filesystem::path file_ =
      std::filesystem::path(folder_.path().toStdString()) / "calmdeck" / "settings.json";
};
