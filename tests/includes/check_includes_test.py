#!/usr/bin/python3
"""Plants one violation at a time in a small tree and looks whether the include check finds it."""
import tempfile
import unittest
from pathlib import Path

from check_includes import check

RULES = """\
main: app platform
app: platform
platform:
desktop/linux/x11: platform
desktop/linux/ui: platform
tests: app platform
bench: desktop/linux/*
foreign desktop/linux/x11: xcb/*
"""

CLEAN = {
    "src/main.cpp": '#include "app/App.h"\n',
    "src/app/App.h": '#include <string>\n#include "platform/View.h"\n',
    "src/platform/View.h": "#include <cstdint>\n",
    "src/desktop/linux/x11/Cover.h": '#include <xcb/xcb.h>\n#include "platform/View.h"\n',
    "tests/app/AppTest.cpp": '#include "app/App.h"\n',
    "bench/Run.cpp": '#include "desktop/linux/x11/Cover.h"\n',
}

# What is added to which file, and a part of the complaint that must follow.
PLANTED = [
    ("src/platform/View.h", '#include "app/App.h"', "platform may not include app"),
    ("src/main.cpp", '#include "desktop/linux/x11/Cover.h"', "main may not include desktop/linux/x11"),
    ("src/desktop/linux/ui/Panel.h", '#include "desktop/linux/x11/Cover.h"',
     "desktop/linux/ui may not include desktop/linux/x11"),
    ("src/app/App.h", "  #  include <QtCore/QString>", "app may not include <QtCore/QString>"),
    ("src/desktop/linux/ui/Panel.h", "#include <xcb/xcb.h>",
     "desktop/linux/ui may not include <xcb/xcb.h>"),
    ("tests/app/AppTest.cpp", "#include <QString>", "tests may not include <QString>"),
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
            (tree / "rules").write_text(RULES)
            return check(tree, tree / "rules")

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
