"""Names of files that some systems cannot store are found."""

import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import check_names  # noqa: E402


class Names(unittest.TestCase):
    def test_ordinary_names_pass(self):
        names = ["README.md", ".ci/run", "qto/model/model_part.hpp", "tests/data/Größe (2).xlsx",
                 "console.cpp", "docs/aux_tools.md"]
        self.assertEqual([], check_names.check_names(names))

    def test_what_some_system_cannot_store_is_found(self):
        for name in ["Z:\\tmp\\t.log", "a\\b", "a:b", "tab\there", "line\nfeed", "what?", "a*", "a|b",
                     'say "x"', "ends.", "folder /file", "docs/aux.md", "NUL", "com1/file"]:
            with self.subTest(name=name):
                self.assertIsNotNone(check_names.refusal(name))

    def test_names_that_differ_by_letter_case_only_are_found(self):
        findings = check_names.check_names(["docs/Names.md", "docs/names.md", "docs/other.md"])
        self.assertEqual(["docs/names.md"], [path for path, _ in findings])


if __name__ == "__main__":
    unittest.main()
