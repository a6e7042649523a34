"""What the tests of the final timeline build have in common."""

from script_fixture import Outcome, ScriptTest


class FinalBuildTest(ScriptTest):
    def setUp(self) -> None:
        super().setUp()
        (self.home / "Desktop").mkdir()

    def given_probe(self, **probes: dict | None) -> None:
        """Probe results of {name}.wav, with a path unless told otherwise."""
        self.given_json("probe_results.json", {
            f"{name}.wav": None if probe is None else {"path": f"/f/{name}.wav", **probe}
            for name, probe in probes.items()})

    def build(self, timeline: str = "Cut") -> Outcome:
        return self.run_script("final_build", timeline)

    def well_built(self) -> Outcome:
        outcome = self.build()
        self.then_ended_well(outcome)
        self.assertEqual([], outcome.starting_with("ERROR:"), outcome.stdout)
        self.assertTrue(outcome.lines[-1].startswith("SUCCESS:"), outcome.stdout)
        return outcome

    def cuts(self) -> list[tuple[str, str, str]]:
        """(clip, In, Out) of each attempt to append a clip."""
        found = []
        marks = {}
        for call in self.all_calls():
            if call["method"] == "SetClipProperty":
                marks[call["object"], call["arguments"][0]] = call["arguments"][1]
            elif call["method"] == "AppendToTimeline" and ".srt" not in call["arguments"][0][0]:
                [label] = call["arguments"][0]
                name = label.removeprefix("<MediaPoolItem ").removesuffix(">")
                found.append((name, marks[label, "In"], marks[label, "Out"]))
        return found

    def chapter_markers(self) -> list[tuple]:
        arguments = [tuple(call["arguments"]) for call in self.calls("AddMarker")]
        return [each for each in arguments if each[2]]
