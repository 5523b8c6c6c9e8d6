import Meta from 'gi://Meta';

/// Whether it is a window in which the desktop's icons stand. On Wayland those are ordinary ones to
/// the shell; the extensions that draw icons say by the title that they are to be at the bottom.
export function isIcons(window) {
  if (!window) return false;
  return window.get_window_type() === Meta.WindowType.DESKTOP ||
    /^@!-?\d+,-?\d+;\w*B/.test(window.get_title() ?? '');
}

/// Whether it is a window by itself in which a user works. Dialogs of a window go where it goes.
export function isForWork(window) {
  switch (window.get_window_type()) {
    case Meta.WindowType.NORMAL:
      return !isIcons(window);
    case Meta.WindowType.DIALOG:
    case Meta.WindowType.MODAL_DIALOG:
      return window.get_transient_for() === null;
    default:
      return false;
  }
}
