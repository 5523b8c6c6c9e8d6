#include "desktop/linux/language/Language.h"

#include <libintl.h>

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QLocale>

namespace linux_desktop {
namespace {

constexpr const char* kDomain = "calmdeck";

bool areCataloguesBound = false;

/// The empty text stands for the catalogue's own head.
const char* lookUp(const char* text) {
  return !areCataloguesBound || *text == '\0' ? text : dgettext(kDomain, text);
}

}  // namespace

Language::Language() {
  const QDir program(QCoreApplication::applicationDirPath());
  bindtextdomain(kDomain, program.filePath(QStringLiteral(CALMDECK_CATALOGUES)).toUtf8());
  bind_textdomain_codeset(kDomain, "UTF-8");
  areCataloguesBound = true;
  const QString catalogues = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
  if (qt_.load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"), catalogues)) {
    QCoreApplication::installTranslator(&qt_);
  }
}

Language::~Language() {
  areCataloguesBound = false;
}

std::string Language::localized(std::string_view text) const {
  return lookUp(std::string(text).c_str());
}

QString localized(const char* text) {
  return QString::fromUtf8(lookUp(text));
}

}  // namespace linux_desktop
