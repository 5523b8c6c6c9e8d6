#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <map>
#include <vector>

#include "desktop/linux/sway/SwaySocket.h"

namespace linux_desktop {

/// The user's configuration of sway, as far as it counts outside of modes: a directive a line, with
/// the lines of included files, of blocks, and with variables put in.
class SwayConfig {
 public:
  /// As sway has loaded it; empty when it does not say. Waits as SwaySocket::call does.
  [[nodiscard]] static SwayConfig read(SwaySocket& sway);
  /// Of a file's text; what it includes is looked for beside `file`.
  SwayConfig(const QByteArray& text, const QByteArray& file);

  /// What the last such directive says, or else `usual`.
  [[nodiscard]] QByteArray valueOf(const QByteArray& directive, const QByteArray& usual) const;
  /// The combinations, as "Mod4+Return", that directives `name` (bindsym, bindcode) bind, whatever
  /// their options.
  [[nodiscard]] QByteArrayList bound(const QByteArray& name) const;

 private:
  void add(const QByteArray& text, const QByteArray& folder, int depth);
  void addIncluded(const QByteArray& pattern, const QByteArray& folder, int depth);
  [[nodiscard]] QByteArray withVariables(QByteArray line) const;

  /// So that "$mod2" is not taken for "$mod" and a 2.
  struct LongestFirst {
    bool operator()(const QByteArray& a, const QByteArray& b) const {
      return a.size() != b.size() ? a.size() > b.size() : a < b;
    }
  };

  std::vector<QByteArrayList> lines_;  // the words of each
  std::map<QByteArray, QByteArray, LongestFirst> variables_;
};

}  // namespace linux_desktop
