#!/usr/bin/python3
"""What a screen reader finds in one application, and what it can do there.

accessibility.py tree APPLICATION          one line an element: role, name, states, x, y, width and
                                           height, separated by tabs
accessibility.py act APPLICATION ROLE NAME carries out the first action of that element

Ends with 1 when the application or the element is not there (yet).
"""
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402


def application(name):
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        child = desktop.get_child_at_index(index)
        if child and child.get_name() == name:
            return child
    return None


def walk(element):
    yield element
    for index in range(element.get_child_count()):
        child = element.get_child_at_index(index)
        if child:
            yield from walk(child)


def states(element):
    return ",".join(sorted(state.value_nick for state in element.get_state_set().get_states()))


def area(element):
    try:
        box = element.get_component_iface().get_extents(Atspi.CoordType.SCREEN)
        return box.x, box.y, box.width, box.height
    except (AttributeError, GLib.Error):
        return 0, 0, 0, 0


def role(element):
    name = element.get_role_name()
    return "button" if name == "push button" else name  # as it was called up to AT-SPI 2.52


def main(verb, name, *target):
    Atspi.set_timeout(2000, 2000)
    found = application(name)
    if not found:
        return 1
    for element in walk(found):
        if verb == "tree":
            print(role(element), element.get_name(), states(element), *area(element), sep="\t")
        elif (role(element), element.get_name()) == target:
            return 0 if element.get_action_iface().do_action(0) else 1
    return 0 if verb == "tree" else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
