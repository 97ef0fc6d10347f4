"""examples/post/post.py: the 5-axis post-processor example, end to end."""

import math
import os
import re
import subprocess
import sys

import numpy as np
import pytest

import mtkit

EXAMPLES = os.environ.get("MTKIT_EXAMPLES_DIR", os.path.join(os.path.dirname(__file__), "..", "..", "examples"))
POST = os.path.join(EXAMPLES, "post", "post.py")
MACHINE = os.path.join(EXAMPLES, "machines", "headhead_5axis.json")
CSV = os.path.join(EXAMPLES, "post", "headhead_5axis.csv")
OUT_OF_TRAVEL_CSV = os.path.join(EXAMPLES, "post", "headhead_5axis_out_of_travel.csv")
EXPECTED = os.path.join(EXAMPLES, "post", "expected", "headhead_5axis.nc")


def run_post(*args):
    return subprocess.run([sys.executable, POST, *args], capture_output=True, text=True)


def write(tmp_path, name, text):
    path = tmp_path / name
    path.write_text(text)
    return str(path)


def csv_moves(path):
    """(line, tip, direction, feed) of each move of a CSV, read here on its own."""
    moves = []
    header = None
    with open(path) as f:
        for number, line in enumerate(f, start=1):
            line = line.strip()
            if not line or line.startswith("#"):
                continue
            cells = line.split(",")
            if header is None:
                header = cells
                continue
            row = dict(zip(header, cells))
            tip = np.array([float(row[c]) for c in "xyz"])
            direction = np.array([float(row[c]) for c in "ijk"])
            feed = float(row["feed"]) if row.get("feed") else None
            moves.append((number, tip, direction / np.linalg.norm(direction), feed))
    return moves


def blocks(text):
    """The motion blocks of a program as dicts of their words: {"N": 10.0, "G": 0.0, "X": ..., "F": ...}."""
    result = []
    for line in text.splitlines():
        words = dict((w[0], float(w[1:])) for w in line.split())
        if "M" not in words:
            result.append(words)
    return result


@pytest.fixture(scope="module")
def posted():
    done = run_post(MACHINE, CSV)
    assert done.returncode == 0, done.stderr
    assert done.stderr == ""
    return done.stdout


def test_bundled_example_gives_the_expected_program(posted):
    with open(EXPECTED) as f:
        assert posted == f.read()


def test_output_file_is_the_same_program(tmp_path, posted):
    out = tmp_path / "out.nc"
    done = run_post(MACHINE, CSV, "-o", str(out))
    assert done.returncode == 0 and done.stdout == ""
    assert out.read_text() == posted


def test_blocks_are_numbered_rapid_first_feed_moves_with_f_and_m30_last(posted):
    lines = posted.splitlines()
    moves = csv_moves(CSV)
    assert len(lines) == len(moves) + 1
    assert [line.split()[0] for line in lines] == ["N%d" % (10 * (n + 1)) for n in range(len(lines))]
    assert lines[-1] == "N%d M30" % (10 * len(lines))
    for line, (_, _, _, feed) in zip(lines, moves):
        words = line.split()
        assert [w[0] for w in words[2:7]] == ["X", "Y", "Z", "B", "C"]  # the machine's ordering
        for word in words[2:7]:
            assert re.fullmatch(r"[XYZBC]-?\d+\.\d{3}", word)
        if feed is None:
            assert words[1] == "G0" and not words[-1].startswith("F")
        else:
            assert words[1] == "G1" and words[-1] == "F%g" % feed
    assert lines[0].split()[1] == "G0"
    assert moves[0][3] is None and moves[-1][3] is None  # approach and retract are rapids in the CSV
    assert lines[-2].split()[1] == "G0"


def test_every_position_is_within_the_machines_travel(tmp_path, posted):
    stream = tmp_path / "stream.txt"
    assert run_post(MACHINE, CSV, "--stream", str(stream)).returncode == 0
    limits = mtkit.replay(MACHINE, str(stream), solver_only=True).limits
    # The travel of the head-head example, from its machine file.
    assert limits == {"X": (0.0, 3000.0), "Y": (0.0, 2000.0), "Z": (-1000.0, 0.0), "B": (-105.0, 105.0),
                      "C": (-355.0, 355.0)}
    for block in blocks(posted):
        for axis, (low, high) in limits.items():
            assert low <= block[axis] <= high, (block, axis)


def rotaries_of(posted):
    """(B, C) of each move, by its CSV line."""
    return {line: (block["B"], block["C"]) for (line, _, _, _), block in zip(csv_moves(CSV), blocks(posted))}


# The head turns the tool by B about +Y and then C about +Z, from (0, 0, 1) at
# zero: the direction is (sin B cos C, sin B sin C, cos B). A direction with a
# tilt t from Z at an azimuth a is thus B = t, C = a, or B = -t, C = a + 180;
# of these the post keeps the one nearest the move before.

def test_vertical_direction_gives_b_zero(posted):
    assert rotaries_of(posted)[8] == (0.0, 0.0)  # first move, (0, 0, 1)
    assert rotaries_of(posted)[10] == (0.0, 0.0)


def test_lean_of_30_degrees_in_the_xz_plane_gives_b_30(posted):
    # Line 14: (0.5, 0, 0.866025), tilt 30 degrees at azimuth 0, after B 22.5.
    b, c = rotaries_of(posted)[14]
    assert abs(b) == 30.0 and b == 30.0 and c == 0.0
    assert rotaries_of(posted)[11] == (7.5, 0.0)  # (sin 7.5, 0, cos 7.5) to 6 decimals


def test_cone_turns_c_with_the_azimuth(posted):
    r = rotaries_of(posted)
    assert r[15] == (30.0, 30.0)
    assert r[17] == (30.0, 90.0)  # (0, 0.5, 0.866025)
    assert r[20] == (30.0, 180.0)  # (-0.5, 0, 0.866025): C = 180 rather than B = -30 at C 0, 180 away
    # Azimuth 270 is C = 270 and not -90: 30 degrees from C = 240, not 330.
    assert r[23] == (30.0, 270.0)


def test_tool_along_c_keeps_c_where_it_stands(posted):
    # Back to vertical at the end: B = 0 and any C points the tool down Z, so C
    # stays at 270 instead of unwinding to 0.
    r = rotaries_of(posted)
    assert r[27] == (0.0, 270.0)
    assert r[28] == (0.0, 270.0)


def test_posted_axes_put_the_tool_tip_on_the_csv_position(posted):
    machine = mtkit.Machine.from_file(MACHINE)
    assert machine.axis_names == ["X", "Y", "Z", "B", "C"]
    moves = csv_moves(CSV)
    programme = blocks(posted)
    assert len(programme) == len(moves)
    for (line, tip, direction, _), block in zip(moves, programme):
        machine.move_to([block[a] for a in machine.axis_names])
        # Three decimals: 0.0005 mm on each linear axis, and 0.0005 degree on B
        # at the 220 mm from its pivot to the tip, about 0.002 mm.
        assert np.linalg.norm(machine.tool_tip() - tip) < 0.005, line
        assert np.linalg.norm(machine.tool_axis() - direction) < 1e-4, line
        assert machine.out_of_travel() == [], line


def test_stream_carries_the_chosen_rotaries_in_placeholders(tmp_path, posted):
    stream = tmp_path / "stream.txt"
    assert run_post(MACHINE, CSV, "--stream", str(stream)).returncode == 0
    lines = stream.read_text().splitlines()
    assert lines[0] == "TextFileSimulationStream: 1 0"
    assert lines[4] == 'AxisOrdering: 2 5 "X" "x_axis" "Y" "y_axis" "Z" "z_axis" "B" "b_axis" "C" "c_axis"'
    assert "Section: 1 Operation" in lines
    placeholders = [l for l in lines if l.startswith("AxisValues:")]
    motions = [l for l in lines if l.startswith(("Rapid5D:", "Linear5D:"))]
    moves = csv_moves(CSV)
    assert len(placeholders) == len(motions) == len(moves)
    for placeholder, motion, block, (_, tip, direction, feed) in zip(placeholders, motions, blocks(posted), moves):
        words = placeholder.split()
        assert words[:6] == ["AxisValues:", "1", "5", "nan", "nan", "nan"]
        assert abs(float(words[6]) - block["B"]) < 0.0005 and abs(float(words[7]) - block["C"]) < 0.0005
        values = [float(w) for w in motion.split()[2:]]
        assert np.allclose(values[0:3], tip) and np.allclose(values[3:6], direction)
        if feed is None:
            assert motion.startswith("Rapid5D: 1 ") and int(values[6]) == (1 << 28 | 1 << 30 | 1)
        else:
            assert motion.startswith("Linear5D: 1 ") and values[6] == feed
            assert int(values[7]) == (1 << 28 | 1 << 30 | 3)


def test_standard_chain_keeps_the_chosen_rotaries_of_an_uncompensated_program(tmp_path, posted):
    # The post replays with the solver alone, having no compensation to ask
    # for; the standard chain gives the same poses, since its compensation
    # look-ahead holds only compensated motions and each of these goes on
    # with its own placeholder.
    stream = tmp_path / "stream.txt"
    assert run_post(MACHINE, CSV, "--stream", str(stream)).returncode == 0
    chosen = np.array([[b["B"], b["C"]] for b in blocks(posted)])
    solver_only = mtkit.replay(MACHINE, str(stream), solver_only=True).poses
    standard = mtkit.replay(MACHINE, str(stream)).poses
    assert np.abs(solver_only[:, 3:5] - chosen).max() < 0.0005
    assert np.array_equal(standard, solver_only)


def test_csv_without_feed_column_takes_the_feed_option(tmp_path):
    path = write(tmp_path, "nofeed.csv", "x,y,z,i,j,k\n1500,1000,-800,0,0,1\n1500,1000,-900,0,0,1\n")
    done = run_post(MACHINE, path, "--feed", "750")
    assert done.returncode == 0, done.stderr
    assert done.stdout == ("N10 G0 X1500.000 Y1000.000 Z-400.000 B0.000 C0.000\n"
                           "N20 G1 X1500.000 Y1000.000 Z-500.000 B0.000 C0.000 F750\n"
                           "N30 M30\n")


def test_columns_may_come_in_any_order(tmp_path):
    path = write(tmp_path, "order.csv", "k,j,i,z,y,x\n1,0,0,-800,1000,1500\n1,0,0,-900,1000,1500\n")
    done = run_post(MACHINE, path)
    assert done.returncode == 0, done.stderr
    assert done.stdout.splitlines()[1] == "N20 G1 X1500.000 Y1000.000 Z-500.000 B0.000 C0.000 F1000"


# Error paths: one line on stderr, exit 1, and no program.

def test_bad_csv_line_is_named(tmp_path):
    path = write(tmp_path, "bad.csv", "x,y,z,i,j,k\n1500,1000,-900,0,0,1\n1500,1000,deep,0,0,1\n")
    done = run_post(MACHINE, path)
    assert done.returncode == 1 and done.stdout == ""
    assert done.stderr == "post.py: %s:3: x, y, z, i, j, k must be six numbers, got '1500,1000,deep,0,0,1'\n" % path


def test_short_csv_line_is_named(tmp_path):
    path = write(tmp_path, "short.csv", "# a comment\nx,y,z,i,j,k\n\n1500,1000,-900,0,0\n")
    done = run_post(MACHINE, path)
    assert done.returncode == 1
    assert done.stderr == "post.py: %s:4: expected 6 values (x,y,z,i,j,k), got 5: '1500,1000,-900,0,0'\n" % path


def test_csv_without_the_header_is_refused(tmp_path):
    path = write(tmp_path, "noheader.csv", "1500,1000,-900,0,0,1\n")
    done = run_post(MACHINE, path)
    assert done.returncode == 1
    assert done.stderr.startswith("post.py: %s:1: the header must name the columns x,y,z,i,j,k" % path)
    assert done.stderr.count("\n") == 1


@pytest.mark.parametrize("cells,text", [("0,0,0,", "the tool direction (i, j, k) is zero"),
                                        ("0,0,1,-5", "the feed must be a number above 0 or empty (rapid), got '-5'"),
                                        ("0,0,nan,", "x, y, z, i, j, k must be six numbers")])
def test_unusable_values_are_named(tmp_path, cells, text):
    path = write(tmp_path, "values.csv", "x,y,z,i,j,k,feed\n1500,1000,-800,0,0,1,\n1500,1000,-900,%s\n" % cells)
    done = run_post(MACHINE, path)
    assert done.returncode == 1
    assert done.stderr.startswith("post.py: %s:3: %s" % (path, text))


def test_direction_beyond_the_b_range_is_named(tmp_path):
    # 45 degrees below the horizon needs |B| = 135, and B stops at 105.
    path = write(tmp_path, "down.csv", "x,y,z,i,j,k\n1500,1000,-800,0,0,1\n1500,1000,-900,1,0,-1\n")
    done = run_post(MACHINE, path)
    assert done.returncode == 1 and done.stdout == ""
    assert done.stderr.startswith("post.py: %s:3: no rotary position within the axes' ranges points the tool along "
                                  "(0.707107, 0, -0.707107)" % path)
    assert "135.000" in done.stderr


def test_out_of_travel_program_fails_naming_its_lines(tmp_path):
    out = tmp_path / "out.nc"
    done = run_post(MACHINE, OUT_OF_TRAVEL_CSV, "-o", str(out))
    assert done.returncode == 1
    assert not out.exists()
    lines = done.stderr.splitlines()
    assert lines[-1] == ("post.py: the program leaves the machine's travel or cannot be solved (see above); "
                         "--force writes it all the same")
    issues = lines[:-1]
    assert [l.split(": ")[1] for l in issues] == ["%s:%d" % (OUT_OF_TRAVEL_CSV, n) for n in (9, 10, 11)]
    assert all(": error: Axis X is out of travel at line " in l and l.endswith(" mm is outside 0 to 3000 mm.")
               for l in issues)
    # Line 9: the tip at X 2920 with the tool leaning 30 degrees towards +X.
    # The head's attach point stands 400 mm below the carriage and the B
    # pivot 180 mm, so the tip is 220 mm from the pivot and the carriage is
    # 220 sin 30 = 110 mm beyond the tip in X.
    reached = float(re.search(r"line \d+: ([0-9.]+) mm", issues[0]).group(1))
    assert abs(reached - (2920 + 220 * math.sin(math.radians(30)))) < 0.001


def test_force_writes_the_out_of_travel_program(tmp_path):
    out = tmp_path / "out.nc"
    done = run_post(MACHINE, OUT_OF_TRAVEL_CSV, "-o", str(out), "--force")
    assert done.returncode == 0
    assert done.stderr.count("is out of travel") == 3
    programme = blocks(out.read_text())
    assert [b["X"] for b in programme][-3:] == [3030.0, 3060.0, 3060.0]


def test_missing_csv(tmp_path):
    missing = str(tmp_path / "missing.csv")
    done = run_post(MACHINE, missing)
    assert done.returncode == 1
    assert done.stderr == "post.py: cannot read '%s': No such file or directory\n" % missing


def test_missing_machine(tmp_path):
    missing = str(tmp_path / "missing.json")
    done = run_post(missing, CSV)
    assert done.returncode == 1
    assert done.stderr == "post.py: cannot read '%s': No such file or directory\n" % missing


def test_three_axis_machine_is_refused(tmp_path):
    path = write(tmp_path, "ok.csv", "x,y,z,i,j,k\n0,0,0,0,0,1\n")
    done = run_post(os.path.join(EXAMPLES, "machines", "vmc_3axis.json"), path)
    assert done.returncode == 1
    assert done.stderr == "post.py: the machine has 0 rotary axes; this post is for 5-axis machines (two)\n"


@pytest.mark.parametrize("args", [[], [MACHINE], [MACHINE, CSV, "--feed", "0"], [MACHINE, CSV, "--bogus"]])
def test_usage_errors_exit_2(args):
    done = run_post(*args)
    assert done.returncode == 2
    assert done.stderr.startswith("usage: post.py")
