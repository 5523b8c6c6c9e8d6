#!/usr/bin/python3
"""Plants one violation at a time in a small tree and looks whether the include check finds it."""
import sys
import tempfile
import unittest
from pathlib import Path

from check_includes import check

RULES = Path(sys.argv.pop(1))

CLEAN = {
    "src/main.cpp": '#include "app/App.h"\n#include "desktop/linux/Desk.h"\n',
    "src/app/App.h": '#include <string>\n#include "presentation/Mode.h"\n',
    "src/presentation/Mode.h": '#include "platform/View.h"\n',
    "src/platform/View.h": "#include <cstdint>\n",
    "src/platform/Scene.cpp": '#include <pugixml.hpp>\n\n#include "platform/View.h"\n',
    "src/desktop/linux/Desk.h": '#include <QWidget>\n#include "platform/View.h"\n',
    "src/desktop/linux/x11/Cover.h":
        '#include <xcb/xcb.h>\n#include "desktop/linux/windowsystem/Seam.h"\n',
    "src/desktop/linux/xserver/Events.h": "#include <xcb/xcb.h>\n",
    "src/desktop/linux/windowsystem/Seam.h": '#include <QRect>\n#include "platform/View.h"\n',
    "src/desktop/simulated/Fake.h": '#include "platform/View.h"\n',
    "tests/app/AppTest.cpp": '#include <gtest/gtest.h>\n#include "desktop/simulated/Fake.h"\n',
    "tests/desktop/PixelTest.cpp": "#include <xcb/xcb.h>\n",
}

# What is added to which file, and a part of the complaint that must follow.
PLANTED = [
    ("src/platform/View.h", '#include "presentation/Mode.h"', "platform may not include presentation"),
    ("src/presentation/Mode.h", '#include "app/App.h"', "presentation may not include app"),
    ("src/app/App.h", '#include "desktop/linux/Desk.h"', "app may not include desktop/linux"),
    ("src/main.cpp", '#include "desktop/simulated/Fake.h"', "main may not include desktop/simulated"),
    ("src/app/App.h", "#include <QString>", "app may not include <QString>"),
    ("src/app/App.h", "  #  include <QtCore/QString>", "app may not include <QtCore/QString>"),
    ("src/platform/View.h", "#include <xcb/xproto.h>", "platform may not include <xcb/xproto.h>"),
    ("src/platform/View.h", "#include <gio/gio.h>", "platform may not include <gio/gio.h>"),
    ("src/desktop/simulated/Fake.h", "#include <pulse/pulseaudio.h>",
     "desktop/simulated may not include <pulse/pulseaudio.h>"),
    ("src/presentation/Mode.h", "#include <unistd.h>", "presentation may not include <unistd.h>"),
    ("src/presentation/Mode.h", "#include <pugixml.hpp>", "presentation may not include <pugixml.hpp>"),
    ("tests/app/AppTest.cpp", "#include <QString>", "tests may not include <QString>"),
    ("src/desktop/linux/ui/Panel.h", '#include "desktop/linux/x11/Cover.h"',
     "desktop/linux/ui may not include desktop/linux/x11"),
    ("src/desktop/linux/windowsystem/Seam.h", '#include "desktop/linux/x11/Cover.h"',
     "desktop/linux/windowsystem may not include desktop/linux/x11"),
    ("src/desktop/linux/Desk.h", "#include <xcb/xcb.h>",
     "desktop/linux may not include <xcb/xcb.h>"),
    ("src/desktop/linux/wallpaper/Picture.h", "#include <xcb/randr.h>",
     "desktop/linux/wallpaper may not include <xcb/randr.h>"),
    ("src/desktop/linux/wallpaper/Picture.h", '#include "desktop/linux/xserver/Events.h"',
     "desktop/linux/wallpaper may not include desktop/linux/xserver"),
    ("src/desktop/linux/tray/Icon.h", "#include <xcb/xcb.h>",
     "desktop/linux/tray may not include <xcb/xcb.h>"),
    ("src/desktop/linux/ui/Panel.h", "#include <gio/gio.h>",
     "desktop/linux/ui may not include <gio/gio.h>"),
    ("src/app/App.h", '#include "App.h"', "files include each other: src/app/App.h -> src/app/App.h"),
    ("src/app/App.h", '#include "Nowhere.h"', '"Nowhere.h" is not in the tree'),
    ("src/attic/Old.h", "#include <string>", "lies in no room"),
]


class IncludeCheckTest(unittest.TestCase):
    def faults(self, added):
        with tempfile.TemporaryDirectory() as folder:
            tree = Path(folder)
            files = dict(CLEAN)
            for name, line in added:
                files[name] = files.get(name, "") + line + "\n"
            for name, text in files.items():
                (tree / name).parent.mkdir(parents=True, exist_ok=True)
                (tree / name).write_text(text)
            return check(tree, RULES)

    def test_a_clean_tree_passes(self):
        self.assertEqual(self.faults([]), [])

    def test_each_planted_violation_is_found(self):
        for name, line, complaint in PLANTED:
            with self.subTest(line=line):
                found = self.faults([(name, line)])
                self.assertTrue(any(complaint in fault for fault in found), found)

    def test_a_ring_around_a_corner_is_found_once(self):
        ring = [(f"src/platform/{a}.h", f'#include "platform/{b}.h"')
                for a, b in (("A", "B"), ("B", "C"), ("C", "A"))]
        self.assertEqual(self.faults(ring),
                         ["files include each other: src/platform/A.h -> src/platform/B.h"
                          " -> src/platform/C.h -> src/platform/A.h"])

    def test_rules_in_a_ring_are_refused(self):
        with tempfile.TemporaryDirectory() as folder:
            rules = Path(folder) / "rules"
            rules.write_text("app: platform\nplatform: app\n")
            self.assertEqual(check(Path(folder), rules),
                             ["rooms include each other: app -> platform -> app"])

    def test_an_include_in_a_comment_counts_for_nothing(self):
        self.assertEqual(self.faults([("src/app/App.h", "/*\n#include <QString>\n*/")]), [])


if __name__ == "__main__":
    unittest.main()
