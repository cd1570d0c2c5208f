#!/usr/bin/env python3
"""Writes one .inx file per panel command from the command table in
frame/ButtonDefs.cpp (title and modifier variants from the tooltip).
With --check, only reports whether the files are up to date."""

import os
import re
import sys
from xml.sax.saxutils import escape

HERE = os.path.dirname(os.path.abspath(__file__))
TABLE = os.path.join(HERE, "..", "..", "frame", "ButtonDefs.cpp")
IDS = os.path.join(HERE, "..", "..", "sdk", "LBModule.h")

# A table row names its command by the enum in sdk/LBModule.h (or, in older
# tables, by number).
ENTRY = re.compile(r'\{\s*(\d+),\s*(\d+),\s*(\d+),\s*"([A-Z0-9_]+)",\s*(\w+),\s*((?:L"(?:[^"\\]|\\.)*"\s*)+)\}')
ENUM = re.compile(r"\b(kCmd\w+)\s*=\s*(\d+)")


def command_ids():
    return {name: int(value) for name, value in ENUM.findall(open(IDS, encoding="utf-8").read())}
VARIANT = re.compile(r"^\[(|Ctrl|Alt|Ctrl\]\+\[Alt)\]\s*-\s*(.*)$")
KEYS = {"": "", "Alt": "alt", "Ctrl": "ctrl", "Ctrl]+[Alt": "ctrl+alt"}


def commands():
    text = open(TABLE, encoding="utf-8").read()
    ids = command_ids()
    for m in ENTRY.finditer(text):
        tip = "".join(re.findall(r'L"((?:[^"\\]|\\.)*)"', m.group(6)))
        tip = tip.replace("\\n", "\n").replace('\\"', '"')
        lines = [l.strip() for l in tip.split("\n")]
        title = lines[0]
        variants = []
        for line in lines[1:]:
            v = VARIANT.match(line)
            if v:
                variants.append((KEYS[v.group(1)], v.group(2)))
        cid = m.group(5)
        yield (int(cid) if cid.isdigit() else ids[cid]), m.group(4), title, variants


def inx(cid, pic, title, variants):
    name = "%s (%d)" % (title, cid)
    out = ['<?xml version="1.0" encoding="UTF-8"?>',
           "<!-- LatticeBender command %d (%s); written by gen_inx.py from the command table. -->" % (cid, pic),
           '<inkscape-extension xmlns="http://www.inkscape.org/namespace/inkscape/extension">',
           "  <name>%s</name>" % escape(name),
           "  <id>org.latticebender.command%d</id>" % cid,
           '  <param name="command" type="int" min="0" max="100000" gui-hidden="true">%d</param>' % cid]
    if variants:
        out.append('  <param name="variant" type="optiongroup" appearance="radio" gui-text="Variant">')
        if not any(k == "" for k, _ in variants):
            variants = [("", title)] + variants
        for key, text in variants:
            label = ("[%s] " % key.replace("+", "+").title() if key else "") + text
            out.append('    <option value="%s">%s</option>' % (key, escape(label)))
        out.append("  </param>")
    out += ['  <param name="color" type="bool" gui-text="Colors">true</param>',
            '  <param name="opacity" type="bool" gui-text="Opacity">true</param>',
            "  <effect needs-live-preview=\"false\">",
            "    <object-type>all</object-type>",
            "    <effects-menu>",
            '      <submenu name="LatticeBender"/>',
            "    </effects-menu>",
            "  </effect>",
            "  <script>",
            '    <command location="inx" interpreter="python">latticebender.py</command>',
            "  </script>",
            "</inkscape-extension>", ""]
    return "\n".join(out)


def main():
    check = "--check" in sys.argv
    stale = []
    found = list(commands())
    if len(found) != 37:
        print("expected 37 commands in %s, found %d" % (TABLE, len(found)))
        return 1
    for cid, pic, title, variants in found:
        path = os.path.join(HERE, "latticebender_%d.inx" % cid)
        text = inx(cid, pic, title, variants)
        old = open(path, encoding="utf-8").read() if os.path.exists(path) else None
        if old != text:
            stale.append(path)
            if not check:
                with open(path, "w", encoding="utf-8") as f:
                    f.write(text)
    if check and stale:
        print("out of date: " + ", ".join(os.path.basename(p) for p in stale))
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
