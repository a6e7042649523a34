"""That the figures of ./test coverage are added up by folder."""

import sys
import unittest

from by_folder import shares, table


def file(name: str, total: int, covered: int) -> dict:
    return {"filename": name, "line_total": total, "line_covered": covered}


class ByFolderTest(unittest.TestCase):
    def test_files_of_one_folder_are_added_up(self) -> None:
        summary = {"files": [file("src/steps/A.cpp", 10, 9), file("src/base/T.h", 4, 4), file("src/steps/B.cpp", 30, 30)]}
        self.assertEqual(shares(summary), {"base": (4, 4), "steps": (40, 39)})

    def test_a_folder_within_a_folder_counts_with_the_outer_one(self) -> None:
        self.assertEqual(shares({"files": [file("src/ui/a/b.h", 2, 1)]}), {"ui": (2, 1)})

    def test_what_lies_outside_src_is_not_counted(self) -> None:
        self.assertEqual(shares({"files": [file("tests/fakes/F.h", 5, 5), file("src/lone.cpp", 5, 5)]}), {})

    def test_a_folder_below_the_aim_is_marked(self) -> None:
        rows = table({"base": (200, 190), "cli": (200, 189)}, 95.0).splitlines()
        self.assertEqual(rows[1].split(), ["base", "200", "190", "95.0", "%"])
        self.assertEqual(rows[2].split(), ["cli", "200", "189", "94.5", "%", "below", "95", "%"])


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=1))
