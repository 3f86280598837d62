"""The include rules, on small trees written for each case."""

import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import check_includes  # noqa: E402

PUBLIC = ["qto/engine/drill_down.hpp", "qto/model/model_part.hpp", "qto/qto.hpp"]

ALLOWED = [
    ("qto/engine/walk.hpp", "qto/parser/parser.hpp"),
    ("qto/engine/walk.hpp", "qto/options/drill_options.hpp"),
    ("qto/parser/parser.hpp", "qto/model/model_part.hpp"),
    ("qto/parser/parser.hpp", "qto/options/drill_options.hpp"),
    ("qto/links/linked_book.hpp", "qto/host/workbook.hpp"),
    ("qto/server/calls/dispatch.hpp", "qto/engine/drill_down.hpp"),
    ("qto/server/wrappers/marshaling.hpp", "qto/com/com.hpp"),
    ("qto/hosts/late_bound/remote.hpp", "qto/com/com.hpp"),
    ("qto/hosts/late_bound/range.hpp", "qto/host/range.hpp"),
    ("qto/hosts/embedded/objects/range.hpp", "qto/host/range.hpp"),
    ("qto/hosts/embedded/recalc/recalc.hpp", "qto/hosts/embedded/functions/registry.hpp"),
    ("qto/hosts/embedded/book/cell.hpp", "qto/automation/variant.hpp"),
    ("qto/hosts/embedded/book/style_table.hpp", "qto/hosts/embedded/formats/number_format.hpp"),
    ("cli/tree.cpp", "qto/engine/drill_down.hpp"),
    ("cli/tree.cpp", "qto/qto.hpp"),
    ("qto/qto.hpp", "qto/engine/drill_down.hpp"),
    ("qto/engine/drill_down.hpp", "qto/model/model_part.hpp"),
    ("tests/engine/walk_test.cpp", "qto/engine/walk.hpp"),
    ("cli/tree.cpp", "cli/render.hpp"),
    ("tests/cli/render_test.cpp", "cli/render.hpp"),
]

REFUSED = [
    ("qto/automation/variant.hpp", "qto/host/range.hpp"),
    ("qto/automation/variant.hpp", "qto/server/calls/dispatch.hpp"),
    ("qto/diagnostics/procedure.hpp", "qto/host/range.hpp"),
    ("qto/host/range.hpp", "qto/diagnostics/procedure.hpp"),

    ("qto/options/drill_options.hpp", "qto/engine/drill_down.hpp"),
    ("qto/parser/parser.hpp", "qto/engine/drill_down.hpp"),
    ("qto/engine/drill_down.hpp", "qto/hosts/embedded/objects/range.hpp"),
    ("qto/hosts/embedded/objects/range.hpp", "qto/diagnostics/procedure.hpp"),
    ("qto/hosts/embedded/objects/range.hpp", "qto/com/com.hpp"),
    ("qto/hosts/late_bound/range.hpp", "qto/server/wrappers/marshaling.hpp"),
    ("qto/hosts/late_bound/range.hpp", "qto/hosts/embedded/objects/range.hpp"),
    ("qto/hosts/late_bound/range.hpp", "qto/engine/drill_down.hpp"),
    ("qto/host/range.hpp", "qto/com/com.hpp"),
    ("qto/hosts/embedded/objects/range.hpp", "qto/engine/drill_down.hpp"),
    ("qto/hosts/embedded/formats/format.hpp", "qto/hosts/embedded/formulas/lexer.hpp"),
    ("qto/hosts/embedded/xlsx/reader.hpp", "qto/hosts/embedded/functions/registry.hpp"),
    ("qto/hosts/embedded/book/cell.hpp", "qto/hosts/embedded/formulas/lexer.hpp"),
    ("cli/tree.cpp", "qto/engine/walk.hpp"),
    ("examples/first.cpp", "qto/engine/walk.hpp"),
    ("qto/engine/drill_down.hpp", "qto/engine/walk.hpp"),
    ("qto/qto.hpp", "qto/engine/walk.hpp"),
    ("qto/engine/walk.cpp", "qto/qto.hpp"),
    ("qto/somewhere/new.hpp", "qto/automation/variant.hpp"),
    ("qto/engine/drill_down.hpp", "cli/render.hpp"),
    ("cli/tree.cpp", "tests/support/book.hpp"),
    ("examples/first.cpp", "cli/render.hpp"),
]


class Layers(unittest.TestCase):
    def test_downward_includes_are_allowed(self):
        for source, target in ALLOWED:
            with self.subTest(source=source, target=target):
                self.assertIsNone(check_includes.refusal(source, target, PUBLIC))

    def test_other_includes_are_refused(self):
        for source, target in REFUSED:
            with self.subTest(source=source, target=target):
                self.assertIsNotNone(check_includes.refusal(source, target, PUBLIC))


class Tree(unittest.TestCase):
    def findings(self, files):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                path = pathlib.Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            return check_includes.check_tree(folder)[0]

    def test_a_clean_tree_has_no_findings(self):
        self.assertEqual([], self.findings({
            "qto/automation/text.hpp": "#pragma once\n#include <string>\n",
            "qto/automation/text.cpp": '#include "qto/automation/text.hpp"\n',
        }))

    def test_names_file_and_line_of_an_upward_include(self):
        findings = self.findings({
            "qto/host/range.hpp": "#pragma once\n",
            "qto/automation/text.hpp": '#pragma once\n\n#include "qto/host/range.hpp"\n',
        })
        self.assertEqual([("qto/automation/text.hpp", 3)], [f[:2] for f in findings])

    def test_a_public_header_that_is_gone_is_found(self):
        findings = self.findings({
            "qto/public_headers.txt": "# Those that exist\nqto/host/range.hpp\nqto/host/gone.hpp\n",
            "qto/host/range.hpp": "#pragma once\n",
        })
        self.assertEqual([("qto/public_headers.txt", 3, '"qto/host/gone.hpp" does not exist')],
                         findings)

    def test_missing_pragma_missing_file_and_relative_path(self):
        findings = self.findings({
            "qto/automation/a.hpp": "",
            "qto/automation/b.cpp": '#include "qto/automation/none.hpp"\n#include "a.hpp"\n'
                                    '#include "qto/automation/../automation/a.hpp"\n'
                                    "#include <qto/automation/a.hpp>\n",
        })
        self.assertEqual([("a", 1, "no #pragma once"),
                          ("b", 1, '"qto/automation/none.hpp" does not exist'),
                          ("b", 2, '"a.hpp" is not written from the root'),
                          ("b", 3, '"qto/automation/../automation/a.hpp" is not written from the '
                                   "root"),
                          ("b", 4, "<qto/automation/a.hpp> is ours: write "
                                   '"qto/automation/a.hpp"')],
                         [(pathlib.Path(f[0]).stem, f[1], f[2]) for f in findings])

    def test_reports_a_circle_of_headers_once(self):
        def header(target):
            return f'#pragma once\n#include "qto/automation/{target}.hpp"\n'

        findings = self.findings({
            "qto/automation/a.hpp": header("b"),
            "qto/automation/b.hpp": header("c"),
            "qto/automation/c.hpp": header("a"),
            "qto/automation/d.hpp": header("a"),
        })
        self.assertEqual(["include circle: qto/automation/a.hpp -> qto/automation/b.hpp -> "
                          "qto/automation/c.hpp -> qto/automation/a.hpp"],
                         [f[2] for f in findings])


if __name__ == "__main__":
    unittest.main()
