"""A folder of made-up programs to stand first (or alone) on PATH, each of which keeps a record of how it was called."""

import os
import stat
from pathlib import Path


class FakePrograms:
    """Writes shell scripts into `folder`. Every call of one appends a line "name arguments" to `calls`."""

    def __init__(self, folder: Path) -> None:
        self.folder = folder
        self.folder.mkdir(parents=True)
        self.call_file = folder.parent / (folder.name + ".calls")
        self.call_file.write_text("")

    def add(self, name: str, body: str = "exit 0") -> None:
        path = self.folder / name
        path.write_text(f'#!/bin/bash\necho "{name} $*" >>"{self.call_file}"\n{body}\n')
        path.chmod(path.stat().st_mode | stat.S_IXUSR)

    def link(self, *names: str) -> None:
        """Makes real programs of this machine reachable, for a PATH that holds this folder alone."""
        for name in names:
            for folder in os.environ["PATH"].split(":"):
                if os.access(os.path.join(folder, name), os.X_OK):
                    (self.folder / name).symlink_to(os.path.join(folder, name))
                    break
            else:
                raise FileNotFoundError(name)

    def calls(self, name: str) -> list[str]:
        lines = self.call_file.read_text().splitlines()
        return [line for line in lines if line.split(" ")[0] == name]
