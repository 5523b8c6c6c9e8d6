import Meta from 'gi://Meta';
import Shell from 'gi://Shell';
import * as Main from 'resource:///org/gnome/shell/ui/main.js';

const INTERFACE = `<node>
  <interface name="org.calmdeck.Shell.Keys">
    <method name="Grab">
      <arg name="accelerator" type="s" direction="in"/>
      <arg name="key" type="u" direction="out"/>
    </method>
    <method name="Release"><arg name="key" type="u" direction="in"/></method>
    <signal name="Pressed"><arg name="key" type="u"/></signal>
  </interface>
</node>`;

/// Keys that reach the program wherever the user is.
export class Keys {
  constructor(program) {
    this._offered = program.offer(INTERFACE, this);
    this._keys = new Set();
    this._signal = global.display.connect('accelerator-activated', (_display, key) => {
      if (this._keys.has(key)) this._offered.emit('Pressed', '(u)', [key]);
    });
  }

  destroy() {
    global.display.disconnect(this._signal);
    [...this._keys].forEach(key => this.Release(key));
    this._offered.destroy();
  }

  /// 0: somebody else has it, or there is no such key.
  Grab(accelerator) {
    const once = Meta.KeyBindingFlags.IGNORE_AUTOREPEAT;
    const key = global.display.grab_accelerator(accelerator, once);
    if (key === Meta.KeyBindingAction.NONE) return [0];
    Main.wm.allowKeybinding(Meta.external_binding_name_for_action(key), Shell.ActionMode.ALL);
    this._keys.add(key);
    return [key];
  }

  Release(key) {
    if (!this._keys.delete(key)) return;
    global.display.ungrab_accelerator(key);
    Main.wm.allowKeybinding(Meta.external_binding_name_for_action(key), Shell.ActionMode.NONE);
  }
}
