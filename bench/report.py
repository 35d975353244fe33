#!/usr/bin/env python3
"""Writes docs/performance.md and its charts from the benchmark's JSON output.

    bench/report.py LUMORA RESULTS.json [--widest RESULTS.json] [--instructions COUNTS.json]
                    [--docs DIRECTORY]

LUMORA: the command line tool, which knows the modes.
--widest: results of another run, with the widest vectors that the processor has.
--instructions: what bench/instructions.py has counted.
"""

import argparse
import json
import pathlib
import subprocess

import charts
from results import Results, Verdict, expand, thread_rows

HERE = pathlib.Path(__file__).resolve().parent
FORMATS = ["rgba", "nv21", "nv12"]
SIZES = ["1280x720", "1920x1080", "4000x3000"]
STRENGTHS = [0, 4, 8, 12, 15, 16, 24, 32]
# (name, strength) of the works with a mode, in the order of the modes; main() asks the tool.
MODES = []


def modes_of(lumora):
    """Modes with a level at two of them, those that read a mask with one too."""
    modes = []
    for look in json.loads(subprocess.check_output([lumora, "looks", "--json"])):
        name = look["name"].upper().replace("-", "")
        modes += [(name, s) for s in ([1, 3] if "blur" in look["strength"] else [16])]
        if any(option["option"] == "--mask" for option in look["options"]):
            modes.append((name + "-MASK", 16))
    return modes


def case(mode, form, size="4000x3000", strength=16, threads=1, textures="prepared"):
    return f"{mode}/{form}/{size}/s{strength}/t{threads}/{textures}"


def number(value, digits=2):
    """As text, empty for a figure that this run did not measure."""
    return "" if value is None else f"{value:.{digits}f}"


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|---" + "|---:" * (len(head) - 1) + "|"]
    lines += ["| " + " | ".join(row) + " |" for row in rows if any(row[1:])]
    return "\n".join(lines) + "\n"


def mode_name(mode, strength):
    return f"{mode} level {strength}" if strength != 16 else mode


def targets_table(results, targets, widest):
    rows = []
    for target in targets:
        verdict = Verdict(results, target)
        wide = Verdict(widest, target).value if widest else None
        met = {True: "met", False: "**missed**", None: "not complete"}[verdict.met]
        peers = "; ".join(
            f"{speed:.1f} x {name} (target {factor:g}){'' if speed >= factor else ' **missed**'}"
            for name, speed, factor in verdict.peers)
        worst = "" if verdict.case is None else "`" + verdict.case + "`"
        rows.append([verdict.work, number(verdict.limit, 2), number(verdict.value), met,
                     number(wide), peers, worst])
    head = ["Work", "Target", "Measured", "", "Widest", "As fast as the peer", "Worst case"]
    return table(head, rows)


def modes_table(results):
    rows = []
    for mode, strength in MODES:
        row = [mode_name(mode, strength)]
        for form in FORMATS:
            name = case(mode, form, strength=strength)
            row += [number(results.get(name, "ms")), number(results.get(name))]
        rgba = case(mode, "rgba", strength=strength)
        row += [number(results.get(rgba, "Mpx/s"), 0)]
        rows.append(row)
    head = ["Mode"] + [f"{form} {unit}" for form in FORMATS for unit in ("ms", "x limit")]
    return table(head + ["rgba Mpx/s"], rows)


def instructions_table(results, counts):
    rows = []
    for mode, strength in MODES:
        row = [mode_name(mode, strength)]
        for form in ("rgba", "nv12"):
            a_pixel = counts.get(mode, {}).get(form) if strength != 1 else None
            ms = results.get(case(mode, form, strength=strength), "ms")
            rate = None if None in (a_pixel, ms) else a_pixel * 12e6 / (ms * 1e6)
            row += [number(a_pixel), number(rate, 1)]
        rows.append(row)
    return table(["Mode", "rgba a pixel", "a nanosecond", "nv12 a pixel", "a nanosecond"], rows)


def columns_table(results, head, columns, form="rgba", modes=None, column="ms"):
    """One row per mode; columns: keyword arguments of case()."""
    rows = [[mode_name(mode, strength)]
            + [number(results.get(case(mode, form, **{"strength": strength, **wanted}), column))
               for wanted in columns]
            for mode, strength in modes or MODES]
    return table(["Mode"] + head, rows)


def default_allocator_table(results):
    rows = []
    for mode, strength in MODES:
        for at in sorted({8, strength}):
            name = case(mode, "rgba", strength=at)
            if results.get(name, "x_default") is not None:
                rows.append([f"{mode} strength {at}", number(results.get(name)),
                             number(results.get(name, "x_default"))])
    return table(["Work (RGBA)", "reused blocks", "default pair"], rows)


def threads_table(results, rule):
    rows = []
    for row in thread_rows(results, rule):
        verdict = ""
        if row.wanted is not None:
            verdict = "met" if row.speedup >= row.wanted else "**missed**"
        if row.slower_by_more:
            verdict += " **slower than one**"
        rows.append([row.name.replace("/t1/prepared", ""), number(row.one), number(row.four),
                     number(row.speedup), number(row.wanted, 1), verdict])
    return table(["Work", "1 thread ms", "4 threads ms", "faster", "target", ""], rows)


def steps_table(results):
    names = [name for name in results.cases
             if name.split("/")[0] in ("memcpy", "blend", "lut", "threads", "gauss", "resize1", "resize3",
                                      "init")]
    return table(["Step", "ms", "x limit", "of filling a fresh block"],
                 [[name, number(results.get(name, "ms"), 3), number(results.get(name)),
                   number(results.get(name, "x_fill"))] for name in names])


def peers_table(results):
    libraries = sorted({name.split("/")[1] for name in results.cases if name.startswith("peer/")})
    works = sorted({"/".join(name.split("/")[2:4]) for name in results.cases
                    if name.startswith("peer/")})
    return table(["Work"] + libraries,
                 [[work] + [number(results.get(f"peer/{library}/{work}/4000x3000"))
                            for library in libraries] for work in works])


def write_charts(results, targets, directory):
    marks = {}
    for target in targets:
        for name in expand(target["cases"]) if "measure" not in target else []:
            mode, form = name.split("/")[:2]
            if form == "rgba":
                marks[mode] = target["limit"]
    rows = [(mode_name(mode, strength),
             [results.get(case(mode, form, strength=strength)) for form in ("rgba", "nv12")],
             marks.get(mode)) for mode, strength in MODES]
    rows = [row for row in rows if row[1][0] is not None]
    (directory / "modes.svg").write_text(charts.bars(
        "Times of the in-place limit, 12 megapixels (mark: target of RGBA)", ["RGBA", "NV12"], rows))

    shown = ["HEIBAI", "RIXI", "TIANMEIKEREN", "EARLYBIRD"]
    per_pixel = [(mode, [None if ms is None else 1e6 * ms / (int(w) * int(h))
                         for size in SIZES for w, h in [size.split("x")]
                         for ms in [results.get(case(mode, "rgba", size), "ms")]])
                 for mode in shown]
    if all(any(v is not None for v in values) for _, values in per_pixel):
        (directory / "sizes.svg").write_text(charts.lines(
            "Nanoseconds a pixel, RGBA, one thread", "picture size", SIZES, per_pixel))
    by_strength = [(str(strength), [results.get(case("RIXI", "rgba", strength=strength))], None)
                   for strength in STRENGTHS]
    (directory / "strengths.svg").write_text(charts.bars(
        "RIXI by strength, times of the limit, RGBA, one thread", ["RIXI"],
        [row for row in by_strength if row[1][0] is not None]))


def document(results, targets, rule, widest, counts):
    context = results.context
    wide_level = widest.context["vector_level"] if widest else "not measured"
    sections = {
        "MACHINE": f"{context.get('processor', 'unknown processor')}, {context['num_cpus']} cores, "
                   f"vector level {context['vector_level']}, {context.get('compiler', '')}; "
                   f"{context['date'][:10]}. The limit ran at {context['limit_GB/s']} GB/s on 48 MB "
                   f"(an in-place addition at {context['in_place_add_GB/s']} GB/s), times by "
                   f"{context['clock']} clock.",
        "WIDEST": wide_level,
        "TARGETS": targets_table(results, targets, widest),
        "MODES": modes_table(results),
        "INSTRUCTIONS": instructions_table(results, counts),
        "SIZES": columns_table(results, SIZES, [{"size": size} for size in SIZES]),
        "STRENGTHS": columns_table(results, ["8", "16", "32"],
                                   [{"strength": s} for s in (8, 16, 32)], column="x_limit",
                                   modes=[m for m in MODES
                                          if results.get(case(m[0], "rgba", strength=32))]),
        "PERCALL": columns_table(results, ["prepared", "per call"],
                                 [{}, {"textures": "percall"}], column="x_limit",
                                 modes=[m for m in MODES
                                        if results.get(case(m[0], "rgba", textures="percall"))]),
        "ALLOCATORS": default_allocator_table(results),
        "THREADS": threads_table(results, rule),
        "STEPS": steps_table(results),
        "PEERS": peers_table(results),
        "LIMITS": (HERE / "limits.md").read_text(encoding="utf-8"),
    }
    text = (HERE / "performance.in.md").read_text(encoding="utf-8")
    for name, section in sections.items():
        text = text.replace(f"@{name}@", section.rstrip("\n"))
    return text


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("lumora")
    parser.add_argument("results")
    parser.add_argument("--widest")
    parser.add_argument("--instructions", type=pathlib.Path)
    parser.add_argument("--docs", type=pathlib.Path, default=HERE.parent / "docs")
    arguments = parser.parse_args()
    MODES.extend(modes_of(arguments.lumora))
    results = Results(arguments.results)
    widest = Results(arguments.widest) if arguments.widest else None
    counts = json.loads(arguments.instructions.read_text()) if arguments.instructions else {}
    with open(HERE / "targets.json", encoding="utf-8") as file:
        wanted = json.load(file)
    images = arguments.docs / "performance"
    images.mkdir(parents=True, exist_ok=True)
    write_charts(results, wanted["targets"], images)
    text = document(results, wanted["targets"], wanted["threads"], widest,
                    counts)
    (arguments.docs / "performance.md").write_text(text, encoding="utf-8")
    for name, why in sorted(results.refused.items())[:5]:
        print(f"refused: {name}: {why}")
    if len(results.refused) > 5:
        print(f"... {len(results.refused)} cases refused in all")


if __name__ == "__main__":
    main()
