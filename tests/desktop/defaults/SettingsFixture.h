#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QtGlobal>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>

#include "desktop/harness/PrivateHome.h"
#include "desktop/linux/defaults/SettingsFile.h"

/// A settings file in a folder of its own, and how often the program complained about it.
class SettingsFixture : public ::testing::Test {
 protected:
  SettingsFixture() {
    said_ = 0;
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { ++said_; });
  }
  ~SettingsFixture() override { qInstallMessageHandler(nullptr); }

  [[nodiscard]] const std::filesystem::path& file() const { return file_; }
  [[nodiscard]] std::filesystem::path folder() const { return file_.parent_path(); }
  [[nodiscard]] std::filesystem::path beside(const std::string& suffix) const {
    return file_.string() + suffix;
  }

  void write(const std::string& text) const { writeTo(file_, text); }
  static void writeTo(const std::filesystem::path& file, const std::string& text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
  }
  [[nodiscard]] std::string text() const { return harness::textOf(file_); }

  /// One run of the program that sets this.
  void store(std::string_view key, platform::Value value) const {
    linux_desktop::SettingsFile(file_).set(key, std::move(value));
  }
  /// What the next run finds.
  [[nodiscard]] std::optional<platform::Value> stored(std::string_view key) const {
    return linux_desktop::SettingsFile(file_).object(key);
  }

  /// The complaints since this was last asked.
  static int complaints() { return said_.exchange(0); }
  static inline std::atomic<int> said_;
  QTemporaryDir temporary_;
  std::filesystem::path file_ =
      std::filesystem::path(temporary_.path().toStdString()) / "calmdeck" / "settings.json";
};
