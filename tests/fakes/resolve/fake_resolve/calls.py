"""The record of all calls, and the calls that are told to go wrong."""

import functools
import json
from collections import Counter


class ResolveObject:
    """What all objects of the stand-in have in common; what a script may not use begins with an underscore."""

    def __init__(self, world):
        self._world = world

    def __repr__(self):
        return f"<{type(self).__name__} {self._label()}>"

    def _label(self):
        return ""


def api(function):
    """Marks a method that scripts may call: it is recorded, and fails when it was told to."""

    @functools.wraps(function)
    def call(self, *arguments):
        return self._world.calls.made(self, function, arguments)

    return call


def plain(value):
    """A value as JSON can hold it; objects of the stand-in as "<Class label>"."""
    if isinstance(value, (list, tuple)):
        return [plain(element) for element in value]
    if isinstance(value, dict):
        return {str(key): plain(element) for key, element in value.items()}
    if value is None or isinstance(value, (bool, int, float, str)):
        return value
    return repr(value)


class Calls:
    """Counts, records and spoils calls."""

    def __init__(self, failures, log_path):
        self.failures = failures
        self.log = open(log_path, "a", encoding="utf-8", buffering=1) if log_path else None
        self.counts = Counter()

    def made(self, target, function, arguments):
        method = function.__name__
        full_name = f"{type(target).__name__}.{method}"
        self.counts[method] += 1
        self.counts[full_name] += 1
        try:
            failure = self.failure_of(method, full_name)
            if failure is None:
                result = function(target, *arguments)
            elif "raises" in failure:
                raise RuntimeError(failure["raises"])
            else:
                result = failure["gives"]
        except Exception as error:
            self.record(target, method, arguments, raises=str(error))
            raise
        self.record(target, method, arguments, result=plain(result))
        return result

    def failure_of(self, method, full_name):
        for failure in self.failures:
            name = failure["method"]
            if name in (method, full_name) and failure.get("call") in (None, self.counts[name]):
                return failure
        return None

    def record(self, target, method, arguments, **outcome):
        if self.log:
            line = {"object": repr(target), "method": method, "arguments": plain(arguments), **outcome}
            self.log.write(json.dumps(line) + "\n")
