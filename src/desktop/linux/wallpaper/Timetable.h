#pragma once

#include <QDateTime>
#include <QSize>
#include <QString>

namespace linux_desktop {

/// Whether a desktop's picture is a list of pictures that take turns by the time of the day.
[[nodiscard]] bool isTimetable(const QString& file);

/// Which of them is shown at that time on a monitor of that size; of two that are faded into each
/// other, the one that is seen more. Empty where the list is none or cannot be read.
[[nodiscard]] QString pictureAt(const QString& timetable, const QDateTime& time,
                                const QSize& monitor);

}  // namespace linux_desktop
