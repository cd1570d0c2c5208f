#!/usr/bin/env python3
"""LatticeBender's panel commands as an Inkscape effect: the document and the
selected ids go to `latticebender run`, its result replaces the document and
its message boxes become Inkscape messages."""

import os
import shutil
import subprocess
import sys
import tempfile

import inkex

VARIANTS = ("", "alt", "ctrl", "ctrl+alt")


def find_program(explicit):
    """The latticebender program: --program, $LATTICEBENDER, the one
    installed next to this script, or the one on PATH."""
    here = os.path.join(os.path.dirname(os.path.abspath(__file__)), "latticebender")
    for candidate in (explicit, os.environ.get("LATTICEBENDER"), here, shutil.which("latticebender")):
        if candidate and os.path.isfile(candidate) and os.access(candidate, os.X_OK):
            return candidate
    return None


class LatticeBender(inkex.EffectExtension):
    def add_arguments(self, pars):
        pars.add_argument("--command", type=int, required=True, help="command id of the panel button")
        pars.add_argument("--variant", default="", help="modifier keys: '', alt, ctrl or ctrl+alt")
        pars.add_argument("--color", type=inkex.Boolean, default=True, help="the panel's colour checkbox")
        pars.add_argument("--opacity", type=inkex.Boolean, default=True, help="the panel's opacity checkbox")
        pars.add_argument("--program", default="", help="path of the latticebender program")

    def effect(self):
        variant = self.options.variant.strip().lower()
        if variant not in VARIANTS:
            raise inkex.AbortExtension("LatticeBender: unknown variant '%s'" % variant)
        program = find_program(self.options.program)
        if program is None:
            raise inkex.AbortExtension(
                "LatticeBender: the latticebender program was not found; "
                "run `make install-inkscape` or set LATTICEBENDER to its path.")
        original = self.svg
        with tempfile.TemporaryDirectory(prefix="latticebender-") as tmp:
            src = os.path.join(tmp, "in.svg")
            dst = os.path.join(tmp, "out.svg")
            self.document.write(src)
            command = str(self.options.command) + ("+" + variant if variant else "")
            args = [program, "run", src, "-o", dst,
                    "--color", "on" if self.options.color else "off",
                    "--opacity", "on" if self.options.opacity else "off",
                    "--command", command]
            ids = [i for i in (self.options.ids or []) if i]
            if ids:
                args += ["--select", ",".join(ids)]
            proc = subprocess.run(args, capture_output=True, text=True)
            # Message boxes come on standard output, one per line.
            for line in proc.stdout.splitlines():
                if line.strip():
                    inkex.errormsg(line)
            if proc.returncode != 0:
                raise inkex.AbortExtension(proc.stderr.strip() or
                                           "LatticeBender: command %s failed (exit %d)" % (command, proc.returncode))
            for line in proc.stderr.splitlines():
                if line.strip():
                    inkex.errormsg(line)
            result = inkex.load_svg(dst)
        keep_page(original, result.getroot())
        self.document = result
        self.svg = result.getroot()


def keep_page(original, result):
    """Inkscape's page settings are not art: the page size in its units and
    the named view carry over from the original document."""
    for name in ("width", "height"):
        if original.get(name) is not None:
            result.set(name, original.get(name))
    for tag in ("sodipodi:namedview", "svg:metadata"):
        old = original.find(tag, namespaces=inkex.NSS)
        if old is not None:
            result.insert(0, old)


if __name__ == "__main__":
    LatticeBender().run()
