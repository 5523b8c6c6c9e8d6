#include "desktop/linux/sway/SwayConfig.h"

#include <wordexp.h>

#include <QFileInfo>
#include <algorithm>
#include <variant>

#include "desktop/linux/files/WholeFile.h"
#include "desktop/linux/keys/KeyTable.h"
#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

constexpr int kDeepestInclude = 8;
constexpr qsizetype kLargestFile = 1 << 20;

/// Files that a pattern of the shell names, in order.
QByteArrayList filesOf(const QByteArray& pattern) {
  wordexp_t words{};
  QByteArrayList files;
  if (::wordexp(pattern.constData(), &words, WRDE_NOCMD) != 0) return files;
  for (std::size_t i = 0; i < words.we_wordc; ++i) files += words.we_wordv[i];
  ::wordfree(&words);
  return files;
}

QByteArrayList wordsOf(const QByteArray& line) {
  QByteArrayList words = line.simplified().split(' ');
  words.removeAll(QByteArray());
  return words;
}

constexpr ModifierNames kModifiers{"ctrl+", "mod1+", "shift+", "mod4+"};

/// Puts the modifiers into `chord`, and returns what is none.
QByteArray takeModifiers(const QByteArray& combination, SwayChord& chord) {
  QByteArray key;
  for (const QByteArray& part : combination.split('+')) {
    if (const auto modifier = modifierNamed(part.toStdString())) {
      chord.modifiers |= *modifier;
    } else {
      key = part;
    }
  }
  return key;
}

/// What "Mod4+Return" of a `bindsym` stands for.
SwayChord chordOfSymbol(const QByteArray& combination) {
  SwayChord chord;
  const QByteArray name = takeModifiers(combination, chord);
  chord.keysym =
      xkb_keysym_to_lower(xkb_keysym_from_name(name.constData(), XKB_KEYSYM_CASE_INSENSITIVE));
  return chord;
}

/// What "Mod4+36" of a `bindcode` stands for.
SwayChord chordOfCode(const QByteArray& combination) {
  SwayChord chord;
  chord.key = takeModifiers(combination, chord).toUInt();
  return chord;
}

}  // namespace

QByteArray swayCode(std::uint32_t modifiers, Keycode key) {
  return QByteArray::fromStdString(modifierText(modifiers, kModifiers)) + QByteArray::number(key);
}

std::vector<SwayChord> swayChordsOfPress(const Keymap& keymap, KeyboardGroup group,
                                         std::uint32_t modifiers, Keycode key) {
  const xkb_keysym_t plain = xkb_keysym_to_lower(keymap.keysym(key, group, false));
  std::vector<SwayChord> chords{{.modifiers = modifiers, .key = key},
                                {.modifiers = modifiers, .keysym = plain}};
  // With what Shift makes of the key, sway counts Shift as used up.
  const xkb_keysym_t shifted = keymap.keysym(key, group, true);
  if ((modifiers & platform::shiftKey) != 0 && shifted == xkb_keysym_to_lower(shifted)) {
    chords.push_back(
        {.modifiers = modifiers & ~std::uint32_t{platform::shiftKey}, .keysym = shifted});
  }
  return chords;
}

SwayConfig SwayConfig::read(SwaySocket& sway) {
  const QJsonObject config = sway.call(SwaySocket::Question::Config).object();
  const QJsonObject version = sway.call(SwaySocket::Question::Version).object();
  return {config[QLatin1String("config")].toString().toUtf8(),
          version[QLatin1String("loaded_config_file_name")].toString().toUtf8()};
}

SwayConfig::SwayConfig(const QByteArray& text, const QByteArray& file) {
  add(text, QFileInfo(QString::fromUtf8(file)).path().toUtf8(), 0);
}

void SwayConfig::add(const QByteArray& text, const QByteArray& folder, int depth) {
  QByteArray whole = text;
  whole.replace("\\\n", " ");
  QByteArrayList blocks;
  for (const QByteArray& raw : whole.split('\n')) {
    QByteArray line = withVariables(raw.trimmed());
    if (line.startsWith('#') || line.isEmpty()) continue;
    if (line == "}") {
      if (!blocks.isEmpty()) blocks.removeLast();
    } else if (line.endsWith('{')) {
      line.chop(1);
      blocks += line;
    } else {
      const QByteArrayList words = wordsOf(blocks.join(' ') + ' ' + line);
      if (words.front() == "set" && words.size() > 2) {
        variables_.insert_or_assign(words[1], words.mid(2).join(' '));
      } else if (words.front() == "include" && words.size() > 1) {
        addIncluded(words.mid(1).join(' '), folder, depth);
      } else {
        lines_.push_back(words);
      }
    }
  }
}

void SwayConfig::addIncluded(const QByteArray& pattern, const QByteArray& folder, int depth) {
  if (depth == kDeepestInclude) return;
  const bool isAbsolute =
      pattern.startsWith('/') || pattern.startsWith('~') || pattern.startsWith('$');
  for (const QByteArray& file : filesOf(isAbsolute ? pattern : folder + '/' + pattern)) {
    const auto text = readWhole(file.toStdString(), kLargestFile);
    if (const auto* bytes = std::get_if<QByteArray>(&text)) {
      add(*bytes, QFileInfo(QString::fromUtf8(file)).path().toUtf8(), depth + 1);
    }
  }
}

QByteArray SwayConfig::withVariables(QByteArray line) const {
  for (qsizetype place = line.indexOf('$'); place >= 0; place = line.indexOf('$', place)) {
    const auto found = std::ranges::find_if(variables_, [&](const auto& variable) {
      return line.mid(place).startsWith(variable.first);
    });
    if (found != variables_.end()) line.replace(place, found->first.size(), found->second);
    ++place;
  }
  return line;
}

QByteArray SwayConfig::valueOf(const QByteArray& directive, const QByteArray& usual) const {
  const auto last = std::ranges::find_if(lines_.rbegin(), lines_.rend(), [&](const auto& words) {
    return words.size() > 1 && words.front() == directive;
  });
  return last == lines_.rend() ? usual : (*last)[1];
}

std::vector<SwayChord> SwayConfig::bound() const {
  std::vector<SwayChord> chords;
  for (const QByteArrayList& words : lines_) {
    const bool isByCode = words.front() == "bindcode";
    if (!isByCode && words.front() != "bindsym") continue;
    const auto combination =
        std::find_if(words.begin() + 1, words.end(),
                     [](const QByteArray& word) { return !word.startsWith("--"); });
    if (combination == words.end()) continue;
    chords.push_back(isByCode ? chordOfCode(*combination) : chordOfSymbol(*combination));
  }
  return chords;
}

}  // namespace linux_desktop
