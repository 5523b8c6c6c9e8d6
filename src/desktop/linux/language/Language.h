#pragma once

#include <QString>
#include <QTranslator>
#include <string>
#include <string_view>

#include "platform/port/Program.h"

namespace linux_desktop {

/// The language of the session, as the environment says it: our own texts from the catalogues
/// (po/) that are installed with the program, Qt's from those that come with Qt. What has no
/// translation stays English, and so does what is printed. Needs the application object.
class Language final : public platform::port::Texts {
 public:
  Language();
  ~Language() override;
  Language(const Language&) = delete;
  Language& operator=(const Language&) = delete;

  [[nodiscard]] std::string localized(std::string_view text) const override;

 private:
  QTranslator qt_;
};

/// A text that users read, in their language once there is a Language. Looked up by what it is in
/// English.
[[nodiscard]] QString localized(const char* text);

/// Marks a text that `localized` gets later, for those who gather what is to be translated.
constexpr const char* localizedLater(const char* text) {
  return text;
}

}  // namespace linux_desktop
