#!/usr/bin/env python3
"""The Inkscape extension run exactly as Inkscape runs it
(python3 latticebender.py --id=... --option=... input.svg > output.svg):
selection and options reach `latticebender run`, the result replaces the
document, message boxes and failures become Inkscape messages, and the
.inx files match the command table."""

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROGRAM, SOURCE = sys.argv[1], sys.argv[2]
sys.argv[1:] = []
SCRIPT = os.path.join(SOURCE, "extensions", "inkscape", "latticebender.py")

try:
    import inkex  # noqa: F401
except ImportError:
    print("inkex (Inkscape's Python module) is not installed; skipped")
    sys.exit(77)


def run_extension(svg_path, *options, program=PROGRAM):
    env = dict(os.environ, LATTICEBENDER=program)
    return subprocess.run([sys.executable, SCRIPT, *options, svg_path], capture_output=True, text=True, env=env)


class Extension(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tmp = tempfile.TemporaryDirectory()
        cls.dir = cls.tmp.name
        cls.svg = os.path.join(cls.dir, "demo.svg")
        doc = os.path.join(SOURCE, "examples", "mesh.lbdoc")
        subprocess.run([PROGRAM, "export", doc, "-o", cls.svg], check=True, capture_output=True)
        # The page as Inkscape keeps it: sizes in millimetres and a named view.
        text = Path(cls.svg).read_text(encoding="utf-8").replace('width="220"', 'width="220mm"', 1)
        text = text.replace("<defs>", '<sodipodi:namedview id="view1" pagecolor="#ffffff"/>\n  <defs>', 1)
        Path(cls.svg).write_text(text, encoding="utf-8")


    @classmethod
    def tearDownClass(cls):
        cls.tmp.cleanup()

    def stops(self, text):
        return [s.split(";")[0] for s in text.split("stop-color:")[1:]]

    def test_variants_change_the_selected_mesh_and_colour_checkbox_off_keeps_colours(self):
        before = self.stops(Path(self.svg).read_text(encoding="utf-8"))
        runs = {v: run_extension(self.svg, "--id=mesh", "--command=136", *(["--variant=" + v] if v else []))
                for v in ("", "alt", "ctrl")}
        for v, r in runs.items():
            self.assertEqual(r.returncode, 0, v + r.stderr)
        self.assertIn("<meshgradient", runs["alt"].stdout)
        self.assertNotEqual(self.stops(runs["alt"].stdout), before)
        self.assertNotEqual(self.stops(runs[""].stdout), self.stops(runs["ctrl"].stdout))
        # Page size and named view carry over.
        self.assertIn('width="220mm"', runs["alt"].stdout)
        self.assertIn("namedview", runs["alt"].stdout)
        off = run_extension(self.svg, "--id=mesh", "--command=136", "--color=false", "--opacity=false")
        self.assertEqual(off.returncode, 0, off.stderr)
        self.assertEqual(self.stops(off.stdout), before)

    def test_message_boxes_and_failures_become_messages(self):
        fake = os.path.join(self.dir, "fake-latticebender")
        Path(fake).write_text("#!/bin/sh\n"
                              "# Echoes a message box, copies the input to -o, records its arguments.\n"
                              'echo "$@" > "%s/args"\n'
                              'echo "No mesh is selected."\n'
                              'cp "$2" "$4"\n' % self.dir)
        os.chmod(fake, 0o755)
        r = run_extension(self.svg, "--id=mesh", "--id=demo", "--command=140", "--variant=ctrl+alt",
                          "--opacity=false", program=fake)
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertIn("No mesh is selected.", r.stderr)
        args = Path(self.dir, "args").read_text().split()
        self.assertEqual(args[0], "run")
        self.assertIn("140+ctrl+alt", args)
        self.assertEqual(args[args.index("--select") + 1], "mesh,demo")
        self.assertEqual(args[args.index("--opacity") + 1], "off")
        self.assertEqual(args[args.index("--color") + 1], "on")

        bad = os.path.join(self.dir, "bad.svg")
        Path(bad).write_text("<svg xmlns='http://www.w3.org/2000/svg'><path d='M0 0 Q'/></svg>")
        r = run_extension(bad, "--command=136")
        self.assertNotEqual(r.returncode, 0)
        self.assertIn("bad path data", r.stderr)

    def test_unknown_variant_and_missing_program(self):
        r = run_extension(self.svg, "--command=136", "--variant=shift")
        self.assertNotEqual(r.returncode, 0)
        self.assertIn("unknown variant", r.stderr)
        r = run_extension(self.svg, "--command=136", program="/nonexistent/latticebender")
        self.assertNotEqual(r.returncode, 0)
        self.assertIn("not found", r.stderr)

    def test_inx_files_match_the_command_table(self):
        gen = os.path.join(SOURCE, "extensions", "inkscape", "gen_inx.py")
        r = subprocess.run([sys.executable, gen, "--check"], capture_output=True, text=True)
        self.assertEqual(r.returncode, 0, r.stdout + r.stderr)
        inx = [f for f in os.listdir(os.path.dirname(gen)) if f.endswith(".inx")]
        self.assertEqual(len(inx), 37)


if __name__ == "__main__":
    unittest.main(verbosity=1)
