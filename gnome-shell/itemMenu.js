import GLib from 'gi://GLib';
import * as PopupMenu from 'resource:///org/gnome/shell/ui/popupMenu.js';

const MENU = 'com.canonical.dbusmenu';
const ROOT = 0;

/// Shows in a menu of the shell's what a status item has in its own, a list without submenus.
export class ItemMenu {
  /// `tell` calls the item: path, interface, method, type, values, what gets the answer.
  constructor(menu, tell) {
    this._menu = menu;
    this._tell = tell;
    this._menu.connect('open-state-changed', (_menu, open) => {
      if (!open) this._report(ROOT, 'closed');
    });
  }

  toggle() {
    if (this._menu.isOpen) {
      this._menu.close();
      return;
    }
    // What is in it is put there by the first of these.
    this._ask('AboutToShow', '(i)', [ROOT], () => {});
    this._ask(
      'GetLayout', '(iias)', [ROOT, -1, []], (_revision, [, , entries]) => this._open(entries));
  }

  _open(entries) {
    this._menu.removeAll();
    for (const [id, properties] of entries.map(entry => entry.deepUnpack())) {
      const title = properties.label.deepUnpack().replace(/_(.)/g, '$1');
      this._menu.addAction(title, () => this._report(id, 'clicked'));
    }
    this._menu.open();
    this._report(ROOT, 'opened');
  }

  _report(id, what) {
    const nothing = new GLib.Variant('i', 0);
    this._ask('Event', '(isvu)', [id, what, nothing, global.get_current_time()], () => {});
  }

  _ask(method, type, values, answered) {
    this._tell('/Menu', MENU, method, type, values, answered);
  }
}
