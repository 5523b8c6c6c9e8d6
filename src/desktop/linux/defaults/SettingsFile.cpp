#include "desktop/linux/defaults/SettingsFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>
#include <utility>

#include "desktop/linux/files/WholeFile.h"
#include "platform/foundation/Process.h"

namespace linux_desktop {
namespace {

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
