"""That include_arrows.py finds wrong includes, and finds none in a tree that is well."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).with_name("include_arrows.py")


class IncludeArrowsTest(unittest.TestCase):
    def check(self, files: dict[str, str]) -> tuple[int, str]:
        """Exit status and output for a tree of these files."""
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                path = Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            run = subprocess.run([sys.executable, SCRIPT, folder], capture_output=True, text=True, check=False)
            self.assertEqual(run.stderr, "")
            return run.returncode, run.stdout

    def test_includes_that_point_downward_pass(self) -> None:
        status, output = self.check({
            "src/base/Text.cpp": '#include "base/Text.h"\n#include <vector>\n',
            "src/steps/Energy.cpp": '#include "model/Transcript.h"\n#include "base/Json.h"\n',
            "src/platform/Http.cpp": '#include "platform/Http.h"\n#include <QNetworkReply>\n#include "Http.moc"\n',
            "src/pipeline/Run.cpp": '#include "steps/Energy.h"\n#include "resolve/Bridge.h"\n#include <QCoroTask>\n',
            "src/cli/main.cpp": '#include "exporters/Edl.h"\n#include "account/Auth.h"\n',
            "src/app/main.cpp": '#include "ui/MineView.h"\n#include "pipeline/Run.h"\n',
            "tools/standin/main.cpp": '#include "standin/Standin.h"\n#include "steps/Energy.h"\n',
            "tests/unit/pipeline/RunTest.cpp": '#include "pipeline/Run.h"\n#include "standin/Standin.h"\n',
            "tests/unit/steps/EnergyTest.cpp": '#include "steps/Energy.h"\n#include "unit/steps/Lines.h"\n',
            "tests/unit/exporters_xml/ReadTest.cpp": '#include "exporters/Edl.h"\n#include <QXmlStreamReader>\n',
        })
        self.assertEqual((status, output), (0, "10 files, every include points downward\n"))

    def test_an_include_that_points_upward_is_found_with_its_line(self) -> None:
        status, output = self.check({"src/model/Story.h": '#pragma once\n\n#include "steps/Energy.h"\n'})
        self.assertEqual((status, output),
                         (1, 'src/model/Story.h:3: model/ must not see steps/ ("steps/Energy.h")\n'))

    def test_every_forbidden_pair_is_found(self) -> None:
        pairs = [("base", "model"), ("exporters", "steps"), ("steps", "exporters"), ("platform", "steps"),
                 ("resolve", "pipeline"), ("pipeline", "cli"), ("pipeline", "exporters"), ("account", "plugin"),
                 ("plugin", "pipeline"), ("ui", "app"), ("cli", "ui"), ("steps", "standin"), ("cli", "app")]
        for upper, lower in pairs:
            with self.subTest(including=upper, included=lower):
                status, output = self.check({f"src/{upper}/A.cpp": f'#include "{lower}/B.h"\n'})
                self.assertEqual((status, output),
                                 (1, f'src/{upper}/A.cpp:1: {upper}/ must not see {lower}/ ("{lower}/B.h")\n'))

    def test_the_standin_sees_the_pure_layers_alone(self) -> None:
        self.assertEqual(self.check({"tools/standin/A.cpp": '#include "platform/B.h"\n'})[0], 1)

    def test_a_qt_header_in_a_domain_layer_is_found(self) -> None:
        for header in ("QString", "QtCore/QString", "qglobal.h", "QCoroTask", "qcoro/qcorotask.h"):
            with self.subTest(header=header):
                status, output = self.check({"src/steps/A.cpp": f"#  include <{header}>\n"})
                self.assertEqual((status, output),
                                 (1, f"src/steps/A.cpp:1: <{header}> is of Qt, which begins above steps/\n"))

    def test_a_standard_header_that_begins_with_q_is_none_of_qts(self) -> None:
        self.assertEqual(self.check({"src/steps/A.cpp": "#include <queue>\n"})[0], 0)

    def test_a_test_that_includes_a_source_is_found(self) -> None:
        for header in ("steps/Energy.cpp", "../../../src/steps/Energy.cpp"):
            with self.subTest(header=header):
                status, output = self.check({"tests/unit/steps/EnergyTest.cpp": f'#include "{header}"\n'})
                self.assertEqual((status, output), (
                    1, f'tests/unit/steps/EnergyTest.cpp:1: "{header}" is a source, not a header\n'))

    def test_a_test_that_sees_more_than_its_layer_is_found(self) -> None:
        self.assertEqual(self.check({"tests/unit/model/A.cpp": '#include "steps/B.h"\n'})[0], 1)
        self.assertEqual(self.check({"tests/unit/exporters_xml/A.cpp": '#include "steps/B.h"\n'})[0], 1)
        self.assertEqual(self.check({"tests/unit/steps/A.cpp": '#include "standin/B.h"\n'})[0], 1)

    def test_an_include_that_is_not_from_the_include_root_is_found(self) -> None:
        for header in ("Energy.h", "../base/Text.h"):
            with self.subTest(header=header):
                status, output = self.check({"src/steps/A.cpp": f'#include "{header}"\n'})
                self.assertEqual((status, output),
                                 (1, f'src/steps/A.cpp:1: "{header}" is not written from the include root\n'))

    def test_a_folder_without_a_place_is_found(self) -> None:
        self.assertEqual(self.check({"src/helpers/A.cpp": '#include "base/B.h"\n'})[0], 1)

    def test_an_empty_tree_is_no_success(self) -> None:
        self.assertEqual(self.check({"README.md": ""}), (1, "No source was found.\n"))


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=1))
