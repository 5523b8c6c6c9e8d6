#include "desktop/linux/defaults/SettingsFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <atomic>
#include <cstdlib>
#include <utility>

#include "desktop/linux/files/WholeFile.h"
#include "platform/foundation/Process.h"

namespace linux_desktop {
namespace {

Q_LOGGING_CATEGORY(lcDefaults, "calmdeck.defaults", QtWarningMsg)

// Libraries end the process by exit() when the X server goes, which destroys no desktop.
std::atomic<SettingsWriter*> writerAtExit;

namespace fs = std::filesystem;
using platform::Array;
using platform::Value;

QString nameOf(std::string_view key) {
  return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

std::optional<Value> integerOf(const QJsonValue& json) {
  const qint64 number = json.toInteger();
  return json == QJsonValue(number) ? std::optional<Value>(std::int64_t{number}) : std::nullopt;
}

// None for what no setting is: null, an object, a fraction.
std::optional<Value> valueOf(const QJsonValue& json) {
  if (json.isBool()) return json.toBool();
  if (json.isDouble()) return integerOf(json);
  if (json.isString()) return json.toString().toStdString();
  if (!json.isArray()) return std::nullopt;
  Array array;
  for (const QJsonValue element : json.toArray()) {
    std::optional<Value> value = valueOf(element);
    if (!value) return std::nullopt;
    array.push_back(std::move(*value));
  }
  return array;
}

struct JsonOf {
  QJsonValue operator()(bool value) const { return value; }
  QJsonValue operator()(std::int64_t value) const { return qint64{value}; }
  QJsonValue operator()(const std::string& value) const { return QString::fromStdString(value); }
  QJsonValue operator()(const Array& value) const {
    QJsonArray array;
    for (const Value& element : value) array.append(std::visit(*this, element.storage()));
    return array;
  }
  template <typename Other>
  QJsonValue operator()(const Other& /*value*/) const {
    platform::programmingError("a setting is a Bool, an integer, a string or an array of these");
  }
};

}  // namespace

SettingsWriter::SettingsWriter(std::filesystem::path file) : file_(std::move(file)) {
  thread_.setMaxThreadCount(1);
  // It would wake, only to end.
  thread_.setExpiryTimeout(-1);
  static const int registered = std::atexit([] {
    if (SettingsWriter* writer = writerAtExit) writer->finish();
  });
  static_cast<void>(registered);
  writerAtExit = this;
}

SettingsWriter::~SettingsWriter() {
  SettingsWriter* self = this;
  writerAtExit.compare_exchange_strong(self, nullptr);
  finish();
}

void SettingsWriter::write(QByteArray content) {
  {
    const std::lock_guard lock(mutex_);
    newest_ = std::move(content);
    if (std::exchange(isDue_, true)) return;
  }
  thread_.start([this] { storeNewest(); });
}

void SettingsWriter::complain(const std::string& message) const {
  qCWarning(lcDefaults, "Settings file %s: %s", file_.c_str(), message.c_str());
}

void SettingsWriter::finish() {
  thread_.waitForDone();
  if (behind_) store(newest_);
}

void SettingsWriter::storeNewest() {
  QByteArray content;
  {
    const std::lock_guard lock(mutex_);
    content = newest_;
    isDue_ = false;
  }
  store(content);
}

void SettingsWriter::store(const QByteArray& content) {
  const auto error = content.size() > kLargestSettings
                         ? FileError{"it would be bigger than 1 MiB"}
                         : replaceWhole(file_, content, Access::OwnerOnly);
  if (error && !behind_) {
    complain("it cannot be written (" + error->reason +
             "); what changes is kept for this run and written as soon as that works");
  }
  behind_ = error.has_value();
}

SettingsFile::SettingsFile(fs::path file) : file_(std::move(file)), writer_(file_) {
  const auto content = readWhole(file_, kLargestSettings);
  if (const auto* text = std::get_if<QByteArray>(&content)) {
    take(*text);
  } else if (std::holds_alternative<FileTooBig>(content)) {
    startAgain("bigger than 1 MiB");
  } else if (const auto* error = std::get_if<FileError>(&content)) {
    keepForThisRun("it cannot be read (" + error->reason + ")");
  }
}

fs::path SettingsFile::standardPath() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return fs::path(folder.toStdString()) / "calmdeck" / "settings.json";
}

std::optional<Value> SettingsFile::object(std::string_view key) const {
  return valueOf(members_.value(nameOf(key)));
}

void SettingsFile::set(std::string_view key, Value value) {
  const QJsonValue json = std::visit(JsonOf{}, value.storage());
  if (members_.value(nameOf(key)) == json) return;
  members_.insert(nameOf(key), json);
  store();
}

void SettingsFile::remove(std::string_view key) {
  if (!members_.contains(nameOf(key))) return;
  members_.remove(nameOf(key));
  store();
}

void SettingsFile::take(const QByteArray& text) {
  QJsonParseError error;
  const QJsonDocument document = QJsonDocument::fromJson(text, &error);
  if (document.isObject()) {
    members_ = document.object();
  } else if (error.error == QJsonParseError::NoError) {
    startAgain("no JSON object");
  } else {
    startAgain("no settings at byte " + std::to_string(error.offset) + ": " +
               error.errorString().toStdString());
  }
}

void SettingsFile::startAgain(const std::string& reason) {
  const auto aside = setAside(file_);
  if (const auto* error = std::get_if<FileError>(&aside)) {
    keepForThisRun(reason + "; it cannot be renamed either (" + error->reason + ")");
  } else {
    writer_.complain(reason + "; it is now " + std::get<fs::path>(aside).string() +
                     " and the settings start empty");
  }
}

void SettingsFile::keepForThisRun(const std::string& reason) {
  mayWrite_ = false;
  writer_.complain(reason +
                   "; the settings start empty, are kept for this run only and the file stays "
                   "as it is");
}

void SettingsFile::store() {
  if (mayWrite_) writer_.write(QJsonDocument(members_).toJson());
}

}  // namespace linux_desktop
