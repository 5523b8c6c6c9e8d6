#include "desktop/linux/ui/ShortcutText.h"

#include <QCoreApplication>
#include <algorithm>
#include <iterator>

namespace linux_desktop {
namespace {

struct Name {
  char16_t character;
  const char* name;
};

constexpr Name kModifiers[] = {{u'⌃', "Ctrl"}, {u'⌥', "Alt"}, {u'⇧', "Shift"}, {u'⌘', "Super"}};

/// What the platform has keys give that write nothing, and what writes only space.
constexpr Name kKeys[] = {
    {0x3, "Enter"},     {0x9, "Tab"},        {0xd, "Return"},       {0x1b, "Escape"},
    {0x20, "Space"},    {0x7f, "Backspace"}, {0xf700, "Up"},        {0xf701, "Down"},
    {0xf702, "Left"},   {0xf703, "Right"},   {0xf728, "Delete"},    {0xf729, "Home"},
    {0xf72b, "End"},    {0xf72c, "Page Up"}, {0xf72d, "Page Down"}, {0xf739, "Clear"},
    {0xf746, "Insert"},
};

/// As Qt itself names keys, in the user's language.
QString localName(const Name& row) {
  return QCoreApplication::translate("QShortcut", row.name);
}

QString nameOf(QStringView key) {
  const auto* found = std::end(kKeys);
  if (key.size() == 1) found = std::ranges::find(kKeys, key.front().unicode(), &Name::character);
  return found == std::end(kKeys) ? key.toString() : localName(*found);
}

/// Of a text without a modifier all is before it.
struct Parts {
  QString before;
  QString symbols;
  QString key;
};

const Name* modifierOf(QChar symbol) {
  return std::ranges::find(kModifiers, symbol.unicode(), &Name::character);
}

Parts partsOf(const QString& text) {
  const auto isModifier = [](QChar symbol) { return modifierOf(symbol) != std::end(kModifiers); };
  const auto begin = std::ranges::find_if(text, isModifier);
  const auto end = std::find_if_not(begin, text.end(), isModifier);
  return {QStringView(text.begin(), begin).toString(), QStringView(begin, end).toString(),
          nameOf(QStringView(end, text.end()))};
}

}  // namespace

QString readableShortcut(const QString& text) {
  const Parts parts = partsOf(text);
  return parts.before + parts.symbols + parts.key;
}

QString shortcutInWords(const QString& text) {
  const Parts parts = partsOf(text);
  QString words = parts.before;
  for (const QChar symbol : parts.symbols) words += localName(*modifierOf(symbol)) + u'+';
  return words + parts.key.left(1).toUpper() + parts.key.mid(1);
}

}  // namespace linux_desktop
