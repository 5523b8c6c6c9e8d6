import Gio from 'gi://Gio';
import GLib from 'gi://GLib';

const PATH = '/org/calmdeck/Shell';

/// The program that is served, as the session bus knows it.
export class Program {
  /// `known` is called with this once it is known which process it is, unless this is destroyed.
  constructor(connection, owner, known) {
    this._connection = connection;
    this._owner = owner;
    this._pid = 0;
    this._question = new Gio.Cancellable();
    this._ask('GetConnectionUnixProcessID', pid => {
      this._pid = pid;
      known(this);
    });
  }

  destroy() {
    this._question.cancel();
  }

  ownsWindow(window) {
    return window.get_pid() === this._pid;
  }

  /// Offers what `xml` describes, one interface, to the program and to nobody else. `service` has a
  /// function for each method, by its name, which returns the reply's values as an array, or
  /// nothing where there are none. Gives what emits the interface's signals and takes it back.
  offer(xml, service) {
    const [description] = Gio.DBusNodeInfo.new_for_xml(xml).interfaces;
    const guarded = {};
    for (const {name, out_args: values} of description.methods) {
      const type = `(${values.map(value => value.signature).join('')})`;
      guarded[`${name}Async`] = (given, call) => this._answer(call, type, () => service[name](...given));
    }
    const offered = Gio.DBusExportedObject.wrapJSObject(xml, guarded);
    offered.export(this._connection, PATH);
    return {
      emit: (name, type, values) => this.emit(description.name, name, type, values),
      destroy: () => offered.unexport(),
    };
  }

  /// Tells the program, and nobody else.
  emit(interfaceName, name, type = '()', values = []) {
    this._connection.emit_signal(
      this._owner, PATH, interfaceName, name, new GLib.Variant(type, values));
  }

  /// Calls what the program, or a part of it that has another name on the bus, offers there.
  /// `answered` gets the values; without it nobody waits for an answer.
  call(service, path, interfaceName, method, values, answered = null) {
    this._connection.call(
      service, path, interfaceName, method, values, null, Gio.DBusCallFlags.NO_AUTO_START, -1,
      this._question, answered && ((connection, result) => {
        if (this._question.is_cancelled()) return;
        try {
          answered(...connection.call_finish(result).deepUnpack());
        } catch (error) {
          logError(error);
        }
      }));
  }

  _answer(call, type, work) {
    if (call.get_sender() !== this._owner) {
      call.return_dbus_error('org.freedesktop.DBus.Error.AccessDenied', 'only Calmdeck is served');
      return;
    }
    try {
      call.return_value(new GLib.Variant(type, work() ?? []));
    } catch (error) {
      logError(error);
      call.return_dbus_error('org.freedesktop.DBus.Error.Failed', error.message);
    }
  }

  _ask(question, answered) {
    const bus = 'org.freedesktop.DBus';
    const about = new GLib.Variant('(s)', [this._owner]);
    this.call(bus, '/org/freedesktop/DBus', bus, question, about, answered);
  }
}
