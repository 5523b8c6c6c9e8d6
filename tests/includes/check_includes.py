#!/usr/bin/python3
"""Refuses includes that the rules forbid, and files that include each other.

check_includes.py TREE RULES    prints a line for each fault; ends with 1 when there is one.
"""
import fnmatch
import re
import sys
from pathlib import Path

SUFFIXES = {".h", ".hpp", ".c", ".cpp", ".in"}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)
COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
STANDARD = re.compile(r"[a-z_]+")
MAIN = "main"


class Rules:
    def __init__(self, path):
        self.rooms, self.foreign = {}, {}
        for number, line in enumerate(path.read_text().splitlines(), 1):
            line = line.split("#")[0].strip()
            if not line:
                continue
            name, colon, rest = line.partition(":")
            if not colon:
                raise SystemExit(f"{path}:{number}: a rule is 'room: rooms'")
            if name.startswith("foreign "):
                self.foreign[name.split()[1]] = rest.split()
            else:
                self.rooms[name] = rest.split()
        self.rooms = {room: self.expanded(allowed) for room, allowed in self.rooms.items()}
        named = {room for allowed in self.rooms.values() for room in allowed}
        for room in sorted((named | set(self.foreign)) - set(self.rooms)):
            raise SystemExit(f"{path}: {room} is named but has no rule of its own")

    def expanded(self, allowed):
        below = [room for name in allowed if name.endswith("/*")
                 for room in self.rooms if (room + "/").startswith(name[:-1])]
        return [name for name in allowed if not name.endswith("/*")] + below

    def room_of(self, file):
        """The room of a path relative to the tree; None when no rule names one."""
        parts = file.parts[1:] if file.parts[0] == "src" else file.parts
        for length in range(len(parts) - 1, 0, -1):
            if "/".join(parts[:length]) in self.rooms:
                return "/".join(parts[:length])
        return MAIN if file.parts[0] == "src" and len(parts) == 1 else None


class Check:
    def __init__(self, tree, rules):
        self.tree, self.rules, self.faults = tree, rules, []
        self.files = sorted(file.relative_to(tree) for top in ("src", "tests", "bench", "demo", "resources")
                            for file in (tree / top).rglob("*") if file.suffix in SUFFIXES)
        self.graph = {file: [] for file in self.files}

    def run(self):
        for file in self.files:
            self.check_file(file)
        self.find_cycles(self.graph, "files")
        self.find_cycles(self.rules.rooms, "rooms")
        return self.faults

    def check_file(self, file):
        room = self.rules.room_of(file)
        if room is None:
            self.faults.append(f"{file}: lies in no room that the rules name")
            return
        text = COMMENT.sub("", (self.tree / file).read_text())
        for bracket, header in INCLUDE.findall(text):
            target = self.resolve(file, header)
            if target:
                self.graph[file].append(target)
                self.check_own(file, room, header, target)
            elif bracket == '"':
                self.faults.append(f'{file}: "{header}" is not in the tree')
            elif not STANDARD.fullmatch(header):
                self.check_foreign(file, room, header)

    def resolve(self, file, header):
        for base in (Path("src"), Path("tests"), Path("."), file.parent):
            if base / header in self.graph:
                return base / header
        return None

    def check_own(self, file, room, header, target):
        other = self.rules.room_of(target)
        if other != room and other not in self.rules.rooms[room]:
            self.faults.append(f"{file}: {room} may not include {other} ({header})")

    def check_foreign(self, file, room, header):
        allowed = self.rules.foreign.get(room, [])
        if not any(fnmatch.fnmatchcase(header, pattern) for pattern in allowed):
            self.faults.append(f"{file}: {room} may not include <{header}>")

    def find_cycles(self, graph, kind):
        done, path = set(), []

        def visit(node):
            if node in path:
                ring = path[path.index(node):] + [node]
                self.faults.append(f"{kind} include each other: " + " -> ".join(map(str, ring)))
            elif node not in done:
                path.append(node)
                for target in graph.get(node, []):
                    visit(target)
                path.pop()
                done.add(node)

        for node in sorted(graph):
            visit(node)


def check(tree, rules):
    return Check(tree, Rules(rules)).run()


if __name__ == "__main__":
    found = check(Path(sys.argv[1]), Path(sys.argv[2]))
    print("\n".join(found))
    sys.exit(1 if found else 0)
