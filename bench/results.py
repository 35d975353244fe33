"""The benchmark's JSON output: cases by name, and targets checked against them."""

import itertools
import json
import re


def expand(pattern):
    """'a/{b,c}/d' -> ['a/b/d', 'a/c/d']"""
    parts = [part[1:-1].split(",") if part.startswith("{") else [part]
             for part in re.split(r"(\{[^}]*\})", pattern)]
    return ["".join(choice) for choice in itertools.product(*parts)]


class Results:
    def __init__(self, path):
        with open(path, encoding="utf-8") as file:
            data = json.load(file)
        self.context = data["context"]
        self.cases = {}
        self.refused = {}
        for case in data["benchmarks"]:
            name = case["name"].removesuffix("/manual_time")
            if case.get("error_occurred"):
                self.refused[name] = case["error_message"]
            else:
                self.cases[name] = case

    def get(self, name, column="x_limit"):
        """A column of a case, or None. 'ms' is the median time."""
        case = self.cases.get(name)
        return None if case is None else case.get("real_time" if column == "ms" else column)

    def fastest_peer(self, work):
        """(x_limit, library) of the fastest library whose work fits, at the target size."""
        fits = re.compile("peer/" + re.escape(work).replace(r"\*", "[^/]+") + "/4000x3000")
        found = [(case["x_limit"], name.split("/")[1])
                 for name, case in self.cases.items() if fits.fullmatch(name)]
        return min(found, default=None)

    def peer_sum(self, works):
        """x_limit of 'memcpy/rgba/4000x3000 + */blend/rgba', and who it was."""
        total, names = 0, []
        for work in works.split(" + "):
            found = (self.get(work), work.split("/")[0]) if work in self.cases else None
            found = found or self.fastest_peer(work)
            if found is None:
                return None
            total += found[0]
            names.append(found[1])
        return total, " + ".join(names)


def strength_variant(name, strength):
    return re.sub(r"/s\d+/", f"/s{strength}/", name)


# What a case adds to the one that it is measured against: the column, and that one's name.
ADDED = {
    "added": ("x_limit", lambda name: strength_variant(name, 16)),
    "added_default": ("x_default", lambda name: strength_variant(name, 16)),
    "added_percall": ("x_limit", lambda name: name.replace("/percall", "/prepared")),
    "added_percall_default": ("x_default", lambda name: name.replace("/percall", "/prepared")),
}


def measured(results, target, name):
    measure = target.get("measure", "x_limit")
    if measure == "strength32":
        value, plain = results.get(name), results.get(strength_variant(name, 16))
        return None if value is None or plain is None else value / plain
    if measure in ADDED:
        column, plain_name = ADDED[measure]
        value, plain = results.get(name, column), results.get(plain_name(name))
        return None if value is None or plain is None else value - plain
    return results.get(name, measure)


class Verdict:
    """One target, the worst of its cases and each of its peers."""

    def __init__(self, results, target):
        self.work = target["work"]
        self.limit = target["limit"]
        names = expand(target["cases"])
        values = [(value, name) for name in names
                  if (value := measured(results, target, name)) is not None]
        self.missing = [name for name in names
                        if not any(name == found for _, found in values)]
        self.value, self.case = max(values, default=(None, None))
        self.met = None if self.value is None or self.missing else self.value <= self.limit
        self.peers = []
        for works, factor in target.get("peers", []):
            peer = results.peer_sum(works)
            if peer is not None and self.value is not None:
                self.peers.append((peer[1], peer[0] / self.value, factor))


class ThreadRow:
    """One against four threads."""

    def __init__(self, results, rule, name):
        self.name = name
        self.one = results.get(name, "ms")
        self.four = results.get(name.replace("/t1/", "/t4/"), "ms")
        self.start = results.get("threads/start-join", "ms") or 0
        # Of the fastest rounds: in those both had the processors to themselves.
        self.speedup = results.get(name, "ms_best") / results.get(
            name.replace("/t1/", "/t4/"), "ms_best")
        heavy = results.get(name) > rule["above"] and name.split("/")[0] not in rule["only_reported"]
        self.wanted = rule["speedup"] if heavy else None
        self.slower_by_more = self.four > self.one + self.start


def thread_rows(results, rule):
    names = [name for name in results.cases
             if "/t1/prepared" in name and name.replace("/t1/", "/t4/") in results.cases
             and "/4000x3000/" in name]
    return [ThreadRow(results, rule, name) for name in names]
