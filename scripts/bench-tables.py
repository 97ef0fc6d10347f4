#!/usr/bin/env python3
"""Turns the benchmark records in docs/bench/ into the ratio tables of
docs/PERFORMANCE.md.

    scripts/bench-tables.py [--update docs/PERFORMANCE.md] docs/bench/*.json

Without --update the tables are printed. With it, each table replaces the
text between its markers in the document,

    <!-- table: NAME -->
    ...
    <!-- end table -->

and nothing else in the document changes. A table whose record is not given
is left as it stands.

Every time is the median CPU time of the repetitions of one run (the single
run when there are no repetitions). A ratio is mtkit's median over the
peer's, both from the same record: below 1 mtkit is faster. The spread is
the larger of the two coefficients of variation. Python 3 standard library
only.
"""

import argparse
import json
import os
import re
import sys

# A run is called quiet when the 1-minute load average at its start was
# below this; the load of the run itself is not in it yet.
QUIET_LOAD = 0.5


def pair_table(record, peer, rows, mine="mtkit"):
    """Rows of (work, mtkit benchmark, peer benchmark, goal or None)."""
    return {"kind": "pairs", "record": record, "peer": peer, "rows": rows, "mine": mine}


def grid_table(record, row_header, rows_from, columns):
    """One row per argument of the benchmark `rows_from` (named by its
    label, else by the argument); columns of time(...) and ratio(...), with
    {arg} in the benchmark names."""
    return {"kind": "grid", "record": record, "row_header": row_header, "rows_from": rows_from, "columns": columns}


def time(header, benchmark):
    return {"kind": "time", "header": header, "benchmark": benchmark}


def ratio(header, numerator, denominator, goal=None):
    return {"kind": "ratio", "header": header, "numerator": numerator, "denominator": denominator, "goal": goal}


TABLES = {
    "kinematics-fk-first-axis": grid_table("KinematicsBench", "Machine", "BM_Fk_Kdl_FirstAxis", [
        time("KDL, whole chain", "BM_Fk_Kdl_FirstAxis/{arg}"),
        time("mtkit", "BM_Fk_Mtkit_FirstAxis/{arg}"),
        ratio("mtkit / KDL", "BM_Fk_Mtkit_FirstAxis/{arg}", "BM_Fk_Kdl_FirstAxis/{arg}", 0.3),
    ]),
    "kinematics-fk-last-axis": grid_table("KinematicsBench", "Machine", "BM_Fk_KdlPrefix_LastAxis", [
        time("KDL, kept prefix", "BM_Fk_KdlPrefix_LastAxis/{arg}"),
        time("mtkit", "BM_Fk_Mtkit_LastAxis/{arg}"),
        ratio("mtkit / KDL", "BM_Fk_Mtkit_LastAxis/{arg}", "BM_Fk_KdlPrefix_LastAxis/{arg}"),
    ]),
    "kinematics-fk-each-axis": grid_table("KinematicsBench", "Machine", "BM_Fk_Kdl_EachAxisInTurn", [
        time("KDL, whole chain", "BM_Fk_Kdl_EachAxisInTurn/{arg}"),
        time("mtkit", "BM_Fk_Mtkit_EachAxisInTurn/{arg}"),
        ratio("mtkit / KDL", "BM_Fk_Mtkit_EachAxisInTurn/{arg}", "BM_Fk_Kdl_EachAxisInTurn/{arg}"),
    ]),
    "kinematics-ik": grid_table("KinematicsBench", "Machine", "BM_Ik_KdlJacobian_CachedPose", [
        time("KDL step, kept inverse", "BM_Ik_KdlJacobian_CachedPose/{arg}"),
        time("mtkit, cached pose", "BM_Ik_Mtkit_CachedPose/{arg}"),
        ratio("cached: mtkit / KDL", "BM_Ik_Mtkit_CachedPose/{arg}", "BM_Ik_KdlJacobian_CachedPose/{arg}", 1.0),
        time("KDL step, new pose", "BM_Ik_KdlJacobian_NewPose/{arg}"),
        time("mtkit, new pose", "BM_Ik_Mtkit_NewPose/{arg}"),
        ratio("new pose: mtkit / KDL", "BM_Ik_Mtkit_NewPose/{arg}", "BM_Ik_KdlJacobian_NewPose/{arg}", 0.5),
    ]),
    "kinematics-ik-lma": grid_table("KinematicsBench", "Machine", "BM_Ik_KdlLma_3Joint", [
        time("LMA, 3 joints", "BM_Ik_KdlLma_3Joint/{arg}"),
        time("LMA, 5 joints", "BM_Ik_KdlLma_5Joint/{arg}"),
        ratio("mtkit new pose / LMA 3 joints", "BM_Ik_Mtkit_NewPose/{arg}", "BM_Ik_KdlLma_3Joint/{arg}"),
    ]),
    "kinematics-depth": grid_table("KinematicsBench", "Parts", "BM_Depth_Kdl", [
        time("KDL, whole chain", "BM_Depth_Kdl/{arg}"),
        time("mtkit, base axis", "BM_Depth_Mtkit_BaseAxis/{arg}"),
        ratio("base axis: mtkit / KDL", "BM_Depth_Mtkit_BaseAxis/{arg}", "BM_Depth_Kdl/{arg}"),
        time("mtkit, leaf axis", "BM_Depth_Mtkit_LeafAxis/{arg}"),
    ]),
    "transform": pair_table("TransformBench", "Eigen", [
        ("compose two transforms", "BM_Mtkit_Compose", "BM_Eigen_Compose", None),
        ("a chain of 8 compositions", "BM_Mtkit_ComposeChain8", "BM_Eigen_ComposeChain8", None),
        ("apply to a point", "BM_Mtkit_ApplyPoint", "BM_Eigen_ApplyPoint", None),
        ("rotary axis transformation at a position", "BM_Mtkit_RotaryAxisTransformation",
         "BM_Eigen_RotaryAxisTransformation", None),
    ]),
    "matrix": pair_table("MatrixBench", "Eigen", [
        ("`getAxisRotation` / `AngleAxisd::toRotationMatrix`", "BM_AxisRotation_mtkit", "BM_AxisRotation_Eigen", None),
        ("`getEulerRotation(XYZ_S)` / three `AngleAxisd`", "BM_EulerRotationXYZ_mtkit", "BM_EulerRotationXYZ_Eigen",
         None),
        ("`getEulerRotation(ZXZ_R)` / three `AngleAxisd`", "BM_EulerRotationZXZ_mtkit", "BM_EulerRotationZXZ_Eigen",
         None),
        ("`getEuler2(XYZ_R)` / `eulerAngles(0, 1, 2)`", "BM_GetEuler2XYZ_mtkit", "BM_GetEuler2XYZ_Eigen", None),
        ("`getEuler2(ZXZ_R)` / `eulerAngles(2, 0, 2)`", "BM_GetEuler2ZXZ_mtkit", "BM_GetEuler2ZXZ_Eigen", None),
    ]),
    "machine-file": pair_table("MachineFileBench", "bare JSON parse", [
        ("read a 2,000-part machine file", "BM_ReadMachineFile", "BM_ParseJsonOnly", 1.5),
        ("read the same tree with a feature of every type", "BM_ReadEveryFeatureFile",
         "BM_ParseEveryFeatureFileJsonOnly", 1.3),
    ]),
    "solver-stream": pair_table("SolverStreamBench", "baseline", [
        ("events through `SolverSimulationStream` / the bare solver work", "BM_Stream_PlaceholderMoves",
         "BM_Bare_PlaceholderMoves", 1.3),
        ("guard of one forwarding link / a plain virtual call", "BM_Guarded_ForwardingLink", "BM_Plain_VirtualLink",
         2.0),
    ]),
    "post-chain": pair_table("PostChainBench", "second", mine="first", rows=[
        ("compensation on / compensation off", "BM_PostChain_CompensationOn", "BM_PostChain_CompensationOff", 2.0),
        ("compensation off / the solver stream alone", "BM_PostChain_CompensationOff", "BM_SolverStream_Alone",
         None),
    ]),
    "radius-compensation": grid_table("NCRadiusCompensationStreamBench", "Contour", "BM_Compensator_Off", [
        time("alone, off", "BM_Compensator_Off/{arg}"),
        time("alone, on", "BM_Compensator_On/{arg}"),
        ratio("alone: on / off", "BM_Compensator_On/{arg}", "BM_Compensator_Off/{arg}"),
        time("with the solver, off", "BM_Chain_Off/{arg}"),
        time("with the solver, on", "BM_Chain_On/{arg}"),
        ratio("with the solver: on / off", "BM_Chain_On/{arg}", "BM_Chain_Off/{arg}"),
    ]),
    "text-file": pair_table("TextFileBench", "fprintf, strtod", [
        ("write 1,000,000 events", "BM_Mtkit_Write", "BM_Baseline_Write", 0.7),
        ("read 1,000,000 events", "BM_Mtkit_Read", "BM_Baseline_Read", 0.7),
    ]),
    "axis-copy": pair_table("AxisCopyBench", "plain struct", [
        ("copy an `Axis` / copy a plain struct of the same fields", "BM_Copy_Axis", "BM_Copy_PlainAxis", 3.0),
    ]),
    "orientation": pair_table("OrientationBench", "Orocos KDL", [
        ("rotary values for a direction: `getABCByDirection` / `ChainIkSolverPos_LMA` (algorithm comparison)",
         "BM_Direction_Mtkit", "BM_Direction_KdlLma", 0.05),
        ("compensated position: `getOptimizedPosition` / `ChainFkSolverPos_recursive`", "BM_Position_Mtkit",
         "BM_Position_KdlFk", 1.0),
    ]),
    "machine-configuration-xml": pair_table("MachineConfigurationXmlBench", "bare pugixml parse", [
        ("read a five-axis configuration with `createFromXML` / pugixml parses the same wide text",
         "BM_ReadConfigurationXml", "BM_ParseConfigurationXmlWideOnly", 2.0),
        ("the same read / pugixml parses the document as UTF-8 (no conversion)", "BM_ReadConfigurationXml",
         "BM_ParseConfigurationXmlOnly", None),
        ("the other way from wide text: pugixml's `as_utf8`, then a parse in place / its parse of the wide text",
         "BM_ParseConfigurationXmlWideAsUtf8InPlace", "BM_ParseConfigurationXmlWideOnly", None),
        ("share of the read: the walk over a parsed document / the whole read", "BM_ReadParsedDocumentOnly",
         "BM_ReadConfigurationXml", None),
        ("share of the read: an empty configuration made and destroyed / the whole read",
         "BM_MakeEmptyConfiguration", "BM_ReadConfigurationXml", None),
    ]),
    "python-bindings": pair_table("PythonBindingsBench", "C++", mine="Python", rows=[
        ("forward kinematics: `m.tool_tip_at(pose, 100.0)` / `moveTo` and the tool tip, 64 poses",
         "BM_Fk_Python", "BM_Fk_Cpp", 3.0),
        ("the same as two calls, `m.move_to(pose)` and `m.tool_tip(100.0)` / the same C++", "BM_FkTwoCalls_Python",
         "BM_Fk_Cpp", None),
        ("orientation: `c.abc_by_direction((i, j, k))` / `getABCByDirection`, 64 directions",
         "BM_Orientation_Python", "BM_Orientation_Cpp", 3.0),
        ("replay of the head-head swarf program: `mtkit.replay` / the C++ replay it runs", "BM_Replay_Python",
         "BM_Replay_Cpp", 1.1),
    ]),
    "persist": pair_table("PersistBench", "second", mine="first", rows=[
        ("JSON form: write 100,000 motions / jsoncpp writes their tree", "BM_Json_Write", "BM_Bare_JsonWrite", 1.3),
        ("JSON form: read them / jsoncpp parses the text", "BM_Json_Read", "BM_Bare_JsonParse", 1.3),
        ("write: binary form / JSON form", "BM_Binary_Write", "BM_Json_Write", 0.2),
        ("read: binary form / JSON form", "BM_Binary_Read", "BM_Json_Read", 0.2),
    ]),
}

UNIT_NS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


class Record:
    """The medians and spreads of one program's run."""

    def __init__(self, path):
        with open(path, encoding="utf-8") as f:
            data = json.load(f)
        self.path = path
        self.name = os.path.splitext(os.path.basename(path))[0]
        self.context = data.get("context", {})
        self.median = {}
        self.cv = {}
        self.label = {}
        self.repetitions = 1
        single = {}
        for b in data.get("benchmarks", []):
            # Settings that Google Benchmark appends to a name don't name the
            # work: "BM_Mtkit_Write/iterations:3" is BM_Mtkit_Write.
            name = re.sub(r"/(?:iterations|repeats|min_time|min_warmup_time|threads):[^/]+|/(?:real|manual)_time",
                          "", b.get("run_name", b["name"]))
            if b.get("error_occurred"):
                continue
            if b.get("label"):
                self.label[name] = b["label"]
            if b.get("run_type") == "aggregate":
                self.repetitions = max(self.repetitions, int(b.get("repetitions", 1)))
                if b.get("aggregate_name") == "median":
                    self.median[name] = b["cpu_time"] * UNIT_NS[b.get("time_unit", "ns")]
                elif b.get("aggregate_name") == "cv":
                    self.cv[name] = b["cpu_time"]
            else:
                single[name] = b["cpu_time"] * UNIT_NS[b.get("time_unit", "ns")]
        for name, value in single.items():
            self.median.setdefault(name, value)

    def args_of(self, prefix):
        """The arguments of `prefix/ARG` benchmarks, in their order."""
        args = []
        for name in self.median:
            m = re.fullmatch(re.escape(prefix) + r"/(\d+)", name)
            if m and m.group(1) not in args:
                args.append(m.group(1))
        return sorted(args, key=int)

    def conditions(self):
        c = self.context
        load = c.get("load_avg") or []
        cpus = c.get("num_cpus", "?")
        when = c.get("date", "?")
        parts = ["`docs/bench/%s.json`" % self.name,
                 "%d repetition%s" % (self.repetitions, "" if self.repetitions == 1 else "s"), when]
        if c.get("commit"):
            parts.append("commit %s" % c["commit"])
        if c.get("compiler"):
            parts.append(c["compiler"])
        if load:
            state = "quiet" if load[0] < QUIET_LOAD else "under load"
            parts.append("%s: load average %.2f on %s CPUs at the start" % (state, load[0], cpus))
        return "; ".join(parts) + "."


def fmt_time(ns):
    if ns is None:
        return "n/a"
    if ns < 10_000:
        return "%s ns" % sig(ns)
    if ns < 10_000_000:
        return "%s us" % sig(ns / 1e3)
    return "%s ms" % sig(ns / 1e6)


def sig(x):
    """Three significant digits, thousands separated."""
    if x >= 100:
        return "{:,.0f}".format(x)
    if x >= 10:
        return "%.1f" % x
    return "%.2f" % x


def fmt_ratio(record, numerator, denominator, goal=None):
    a = record.median.get(numerator)
    b = record.median.get(denominator)
    if a is None or not b:
        return "n/a", None
    r = a / b
    text = "%.3f" % r if r < 0.1 else "%.2f" % r
    spread = max(record.cv.get(numerator, 0.0), record.cv.get(denominator, 0.0))
    if spread:
        text += " (±%.0f%%)" % (100 * spread)
    if goal is not None:
        text += ", goal %s: %s" % (("at most %g" % goal), "met" if r <= goal else "NOT MET")
    return text, r


def render(name, layout, record):
    lines = []
    if layout["kind"] == "pairs":
        lines.append("| Work | %s | %s | ratio |" % (layout["mine"], layout["peer"]))
        lines.append("|---|---|---|---|")
        for work, mine, peer, goal in layout["rows"]:
            text, _ = fmt_ratio(record, mine, peer, goal)
            lines.append("| %s | %s | %s | %s |" % (work, fmt_time(record.median.get(mine)),
                                                    fmt_time(record.median.get(peer)), text))
    else:
        cols = layout["columns"]
        lines.append("| %s | %s |" % (layout["row_header"], " | ".join(c["header"] for c in cols)))
        lines.append("|---|%s|" % "|".join("---" for _ in cols))
        for arg in record.args_of(layout["rows_from"]):
            row_name = record.label.get("%s/%s" % (layout["rows_from"], arg), arg)
            cells = []
            for c in cols:
                if c["kind"] == "time":
                    cells.append(fmt_time(record.median.get(c["benchmark"].format(arg=arg))))
                else:
                    text, _ = fmt_ratio(record, c["numerator"].format(arg=arg), c["denominator"].format(arg=arg),
                                        c["goal"])
                    cells.append(text)
            lines.append("| %s | %s |" % (row_name, " | ".join(cells)))
    lines.append("")
    lines.append("Median CPU times; in brackets the larger coefficient of variation of the pair. " +
                 record.conditions())
    return "\n".join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--update", metavar="DOCUMENT", help="rewrite the marked tables of DOCUMENT")
    parser.add_argument("records", nargs="+", help="benchmark JSON records")
    args = parser.parse_args()
    records = {}
    for path in args.records:
        r = Record(path)
        records[r.name] = r
    rendered = {name: render(name, layout, records[layout["record"]])
                for name, layout in TABLES.items() if layout["record"] in records}
    if not args.update:
        for name, text in rendered.items():
            print("<!-- table: %s -->\n%s\n" % (name, text))
        return 0
    with open(args.update, encoding="utf-8") as f:
        document = f.read()
    missing = []

    def replace(m):
        name = m.group(1)
        if name not in TABLES:
            missing.append(name)
        if name not in rendered:
            return m.group(0)
        return "<!-- table: %s -->\n%s\n<!-- end table -->" % (name, rendered[name])

    updated = re.sub(r"<!-- table: ([\w-]+) -->\n.*?<!-- end table -->", replace, document, flags=re.S)
    for name in missing:
        print("bench-tables: the document marks an unknown table '%s'" % name, file=sys.stderr)
    with open(args.update, "w", encoding="utf-8") as f:
        f.write(updated)
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main())
