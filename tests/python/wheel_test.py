"""The wheel works by itself in a fresh environment, without a registry and without a network."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

BOOK = os.environ["QTO_BOOK"]
WHEELS = pathlib.Path(os.environ["QTO_WHEELS"])
SCRIPT = """
import qtoengine
with qtoengine.open({book!r}) as model:
    print(len(model.inputs("Summary!C7")), qtoengine.__file__)
"""


class WheelTest(unittest.TestCase):
    def test_installs_and_answers(self):
        (wheel,) = WHEELS.glob("*.whl")
        with tempfile.TemporaryDirectory() as folder:
            python = pathlib.Path(folder, "venv/bin/python")
            alone = {"PATH": os.environ["PATH"], "HOME": folder, "PIP_NO_INDEX": "1",
                     "PIP_DISABLE_PIP_VERSION_CHECK": "1"}

            def run(*command):
                done = subprocess.run(command, capture_output=True, text=True, cwd=folder, env=alone)
                self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
                return done.stdout

            run(sys.executable, "-m", "venv", pathlib.Path(folder, "venv"))
            run(python, "-m", "pip", "install", "--quiet", wheel)
            count, file = run(python, "-c", SCRIPT.format(book=BOOK)).split()
            self.assertEqual(count, "67")
            self.assertTrue(file.startswith(folder), file)


if __name__ == "__main__":
    unittest.main()
