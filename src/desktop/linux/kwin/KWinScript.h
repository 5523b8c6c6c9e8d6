#pragma once

#include <QByteArray>

namespace linux_desktop {

/// What runs inside KWin; it takes `wish` from the line before it. The same text for KWin 5 and 6.
///
/// A window that is hidden is minimised and left out of the pager, which is the mark by which a
/// later run, of another process too, knows it again. The mark goes when the user brings the window
/// forward, for as long as the script stays loaded.
[[nodiscard]] const QByteArray& kwinScript();

}  // namespace linux_desktop
