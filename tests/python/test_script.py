"""The script-facing model: Vector, Matrix, MachineConfiguration (degrees at the surface)."""

import math
import os

import numpy as np
import pytest

import mtkit

EXAMPLES = os.environ.get("MTKIT_EXAMPLES_DIR", os.path.join(os.path.dirname(__file__), "..", "..", "examples"))


def machine(name):
    return os.path.join(EXAMPLES, "machines", name + ".json")


def close(a, b, tol=1e-9):
    return np.allclose(np.asarray(a), np.asarray(b), atol=tol)


# Vector


def test_vector_holds_three_numbers():
    v = mtkit.Vector(1, 2, 3)
    assert (v.x, v.y, v.z) == (1, 2, 3)
    assert list(v) == [1, 2, 3] and len(v) == 3 and v[2] == 3 and v[-1] == 3
    v.x = 4
    assert v.x == 4
    assert mtkit.Vector() == mtkit.Vector(0, 0, 0)
    assert mtkit.Vector((1, 2, 3)) == mtkit.Vector(np.array([1.0, 2.0, 3.0]))


def test_vector_arithmetic():
    a, b = mtkit.Vector(1, 2, 3), mtkit.Vector(4, 5, 6)
    assert a + b == mtkit.Vector(5, 7, 9)
    assert b - a == mtkit.Vector(3, 3, 3)
    assert a * 2 == mtkit.Vector(2, 4, 6) and 2 * a == mtkit.Vector(2, 4, 6)
    assert b / 2 == mtkit.Vector(2, 2.5, 3)
    assert -a == mtkit.Vector(-1, -2, -3)
    assert a + (1, 1, 1) == mtkit.Vector(2, 3, 4)
    assert a.dot(b) == 32  # 4 + 10 + 18
    assert a.cross(b) == mtkit.Vector(-3, 6, -3)  # (2*6-3*5, 3*4-1*6, 1*5-2*4)


def test_vector_length_and_normalized():
    v = mtkit.Vector(3, 4, 12)
    assert v.length == 13
    assert close(v.normalized(), (3 / 13, 4 / 13, 12 / 13))
    assert mtkit.Vector().normalized() == mtkit.Vector()


def test_vector_division_by_zero_is_a_value_error():
    with pytest.raises(ValueError):
        mtkit.Vector(1, 2, 3) / 0


def test_vector_index_out_of_range():
    with pytest.raises(IndexError):
        mtkit.Vector()[3]


def test_vector_is_a_numpy_array():
    array = np.asarray(mtkit.Vector(1, 2, 3))
    assert array.dtype == np.float64 and array.shape == (3,)
    assert array.tolist() == [1, 2, 3]
    assert np.asarray(mtkit.Vector(1, 2, 3), dtype=np.float32).dtype == np.float32


def test_vector_rejects_what_is_not_three_numbers():
    with pytest.raises(TypeError):
        mtkit.Vector((1, 2))
    with pytest.raises(TypeError):
        mtkit.Vector([1, 2, 3, 4])
    with pytest.raises(TypeError):
        mtkit.Vector("abc")
    # Not plain numbers: the general reading, with its own error.
    with pytest.raises((TypeError, RuntimeError)):
        mtkit.Vector([1, "2", 3])


def test_vector_reads_ints_floats_and_huge_ints_from_lists_and_tuples():
    assert mtkit.Vector([1, 2.5, -3]) == mtkit.Vector(1, 2.5, -3)
    assert mtkit.Vector((True, 2, 3)) == mtkit.Vector(1, 2, 3)
    assert mtkit.Vector((2**53, 0, 0)).x == 2.0**53
    with pytest.raises((TypeError, RuntimeError, OverflowError)):
        mtkit.Vector((10**400, 0, 0))


def test_vector_repr_reads_back():
    assert repr(mtkit.Vector(0.1, 1, -2.5)) == "Vector(0.1, 1, -2.5)"


# Matrix


def test_matrix_identity_and_numpy():
    assert np.array_equal(np.asarray(mtkit.Matrix()), np.eye(3))
    m = mtkit.Matrix([[1, 2, 3], [4, 5, 6], [7, 8, 9]])
    assert m[1, 2] == 6
    assert np.asarray(m.transposed()).tolist() == [[1, 4, 7], [2, 5, 8], [3, 6, 9]]
    assert m.right == mtkit.Vector(1, 4, 7) and m.up == mtkit.Vector(2, 5, 8) and m.forward == mtkit.Vector(3, 6, 9)


def test_matrix_products():
    m = mtkit.Matrix([[1, 2, 3], [4, 5, 6], [7, 8, 9]])
    assert m @ (1, 0, 0) == mtkit.Vector(1, 4, 7)
    assert m @ mtkit.Matrix() == m
    assert np.asarray(m @ m).tolist() == (np.array([[1, 2, 3], [4, 5, 6], [7, 8, 9]]) @
                                          np.array([[1, 2, 3], [4, 5, 6], [7, 8, 9]])).tolist()


def test_frame_rotations_take_degrees():
    # Rows (c, s, 0), (-s, c, 0), (0, 0, 1) with c = 0, s = 1.
    assert close(mtkit.Matrix.z_rotation(90), [[0, 1, 0], [-1, 0, 0], [0, 0, 1]])
    # Rows (1, 0, 0), (0, c, s), (0, -s, c).
    assert close(mtkit.Matrix.x_rotation(90), [[1, 0, 0], [0, 0, 1], [0, -1, 0]])
    # Rows (c, 0, -s), (0, 1, 0), (s, 0, c).
    assert close(mtkit.Matrix.y_rotation(90), [[0, 0, -1], [0, 1, 0], [1, 0, 0]])


def test_axis_rotation_is_active_and_in_degrees():
    m = mtkit.Matrix.axis_rotation((0, 0, 1), 90)
    assert close(m @ (1, 0, 0), (0, 1, 0))


def test_euler_angles_round_trip_in_degrees():
    for convention in (mtkit.Matrix.EULER_ZYZ_S, mtkit.Matrix.EULER_XYZ_R, mtkit.Matrix.EULER_ZXZ_R):
        m = mtkit.Matrix.from_euler(convention, (10, 20, 30))
        # A proper Euler set (ZYZ, ZXZ) has two readings of one rotation;
        # either gives the matrix back.
        assert close(mtkit.Matrix.from_euler(convention, m.euler(convention)), m)
    # Three different axes read back the same angles while below 90.
    m = mtkit.Matrix.from_euler(mtkit.Matrix.EULER_XYZ_R, (10, 20, 30))
    assert close(m.euler(mtkit.Matrix.EULER_XYZ_R), (10, 20, 30))


def test_euler_xyz_static_about_one_axis():
    # A single turn of 30 degrees about X, static frame.
    m = mtkit.Matrix.from_euler(mtkit.Matrix.EULER_XYZ_S, (30, 0, 0))
    c, s = math.cos(math.radians(30)), math.sin(math.radians(30))
    assert close(m, [[1, 0, 0], [0, c, -s], [0, s, c]])


def test_invalid_euler_convention_is_a_script_error():
    with pytest.raises(mtkit.ScriptError) as caught:
        mtkit.Matrix().euler(24)
    assert str(caught.value) == "Invalid Euler convention."
    with pytest.raises(mtkit.ScriptError) as caught:
        mtkit.Matrix.from_euler(24, (0, 0, 0))
    assert str(caught.value) == "Invalid Euler convention."


def test_from_direction_has_that_forward():
    d = np.array([1.0, 2.0, 2.0]) / 3.0
    assert close(mtkit.Matrix.from_direction(d).forward, d)


def test_tilt_and_tilt_in_degrees():
    # Z tilted 30 degrees about X: forward (0, -sin 30, cos 30) for an
    # active turn; the two tilts about X then Y are 30 (or -30) and 0.
    m = mtkit.Matrix.axis_rotation((1, 0, 0), 30)
    tilts = m.tilt_and_tilt(0, 1)
    assert abs(abs(tilts.x) - 30) < 1e-9 and abs(tilts.y) < 1e-9


def test_matrix_repr():
    assert repr(mtkit.Matrix()) == "Matrix([[1, 0, 0], [0, 1, 0], [0, 0, 1]])"


# MachineConfiguration


@pytest.fixture
def headtable():
    return mtkit.MachineConfiguration.from_machine_file(machine("headtable_5axis"))


def test_default_configuration_is_three_linear_axes():
    c = mtkit.MachineConfiguration()
    assert c.kind == "3 axes"
    assert [a.slot for a in c.axes] == ["X", "Y", "Z"]
    assert all(a.kind == "linear" for a in c.axes)
    assert c.axis("U").enabled is False and c.axis("U").coordinate is None


def test_machine_file_gives_its_axes(headtable):
    # The example: B a head axis about -Y, -120..120 deg, preferring
    # negative; C a table axis about -Z, 0..360 deg, cyclic.
    assert headtable.kind == "5 axes, head-table"
    b, c = headtable.axis("U"), headtable.axis("V")
    assert (b.coordinate, b.kind, b.is_head, b.is_table) == ("B", "rotary", True, False)
    assert b.direction == mtkit.Vector(0, -1, 0)
    assert b.range == pytest.approx((-120, 120))
    assert b.preference == -1
    assert (c.coordinate, c.is_table) == ("C", True)
    assert c.direction == mtkit.Vector(0, 0, -1)
    assert c.range == pytest.approx((0, 360))
    assert c.cyclic is True
    assert headtable.axis("Z").range == pytest.approx((-600, 0))
    assert headtable.axis("X").part == "x_axis"
    assert headtable.is_supported and headtable.validity_status == 0


def test_an_unknown_slot_is_a_script_error(headtable):
    with pytest.raises(mtkit.ScriptError) as caught:
        headtable.axis("Q")
    assert str(caught.value) == "Invalid axis."


def test_mtk_file_goes_through_the_kinematics():
    c = mtkit.MachineConfiguration.from_machine_file(os.path.join(EXAMPLES, "mtk", "trunnion_5axis.mtk"))
    assert c.number_of_axes == 5


def test_direction_at_zero_is_the_spindle_axis(headtable):
    assert close(headtable.direction((0, 0, 0)), headtable.spindle_axis)


def test_both_solutions_point_the_tool_and_are_degrees(headtable):
    # Tilted 20 degrees from Z in the XZ plane: a B of magnitude 20 degrees.
    t = math.radians(20)
    direction = (math.sin(t), 0.0, math.cos(t))
    first, second = headtable.abc_by_direction_both(direction)
    assert abs(abs(first.y) - 20) < 1e-6 and abs(abs(second.y) - 20) < 1e-6
    assert close(headtable.direction(first), direction)
    assert close(headtable.direction(second), direction)
    assert headtable.abc_by_direction(np.array(direction)) == first


def test_closest_abc_takes_the_solution_near_the_previous(headtable):
    t = math.radians(20)
    first, second = headtable.abc_by_direction_both((math.sin(t), 0.0, math.cos(t)))
    assert close(headtable.closest_abc(second, first), second, 1e-6)
    assert close(headtable.closest_abc(first, second), first, 1e-6)


def test_preferred_abc_honours_the_negative_preference(headtable):
    t = math.radians(20)
    first, second = headtable.abc_by_direction_both((math.sin(t), 0.0, math.cos(t)))
    for abc in (first, second):
        assert headtable.preferred_abc(abc).y <= 1e-9


def test_abc_by_direction_takes_its_argument_and_raises_as_a_python_function_does(headtable):
    import inspect
    assert str(inspect.signature(mtkit.MachineConfiguration.abc_by_direction)) == "(direction)"
    assert headtable.abc_by_direction(direction=(0, 0, 1)) == headtable.abc_by_direction([0, 0, 1])
    with pytest.raises(mtkit.ScriptError) as caught:
        headtable.abc_by_direction((0, 0, 0))
    assert str(caught.value) == "Direction is not supported for machine configuration."
    with pytest.raises(TypeError) as caught:
        headtable.abc_by_direction()
    assert str(caught.value) == "abc_by_direction() missing required argument 'direction'"
    with pytest.raises(TypeError):
        headtable.abc_by_direction("abc")


def test_other_abc_by_direction_is_the_second_solution(headtable):
    t = math.radians(20)
    first, second = headtable.abc_by_direction_both((math.sin(t), 0.0, math.cos(t)))
    assert close(headtable.other_abc_by_direction(first), second, 1e-9)


def test_abc_by_preference_chooses_by_type(headtable):
    # Tilted 20 degrees in XZ: B = -20 with C = 180, or B = +20 with C = 0
    # (B turns about -Y, C about -Z). From (0, 0, 0) the B = +20 solution
    # moves least (20 against 20 + 180).
    t = math.radians(20)
    plus, minus = (0, 20, 0), (0, -20, 180)
    o = headtable.orientation_abc(plus)
    expected = {"preference": minus, "closest": plus, "positive": plus, "negative": minus, "increasing": plus,
                "decreasing": minus}
    for kind, abc in expected.items():
        got = headtable.abc_by_preference(o, (0, 0, 0), "B", kind)
        assert close(got, abc, 1e-9), kind
        assert close(headtable.direction(got), (math.sin(t), 0.0, math.cos(t)))
    # The default is the axes' preferences over all three; B prefers negative.
    assert close(headtable.abc_by_preference(o, (0, 0, 0)), minus, 1e-9)
    # The script interface's numbers are taken too: B is 1, closest is 1.
    assert close(headtable.abc_by_preference(o, (0, 0, 0), 1, 1), plus, 1e-9)


def test_abc_by_preference_failures(headtable):
    o = headtable.orientation_abc((0, 20, 0))
    with pytest.raises(ValueError) as caught:
        headtable.abc_by_preference(o, (0, 0, 0), "Q")
    assert str(caught.value) == "unknown controlling axis 'Q' (known: A, B, C, ABC)"
    with pytest.raises(ValueError) as caught:
        headtable.abc_by_preference(o, (0, 0, 0), "B", "nearest")
    assert str(caught.value) == ("unknown preference type 'nearest' (known: preference, closest, positive, negative, "
                                 "increasing, decreasing)")
    with pytest.raises(mtkit.ScriptError) as caught:
        headtable.abc_by_preference(o, (0, 0, 0), "A")
    assert str(caught.value) == "The controlling axis is not enabled."
    with pytest.raises(mtkit.ScriptError) as caught:
        headtable.abc_by_preference(o, (0, 0, 0), "ABC", "positive")
    assert str(caught.value) == "Specifying ABC as the controlling axis only supports PREFER_PREFERENCE or PREFER_CLOSEST."


def test_remap_to_abc_moves_by_whole_turns_to_the_reference(headtable):
    # 370 - 360 = 10 lies nearest 20; 10 + 720 = 730 nearest 700.
    assert close(headtable.remap_to_abc((0, 0, 370), (0, 0, 20)), (0, 0, 10), 1e-9)
    assert close(headtable.remap_to_abc((0, 0, 10), (0, 0, 700)), (0, 0, 730), 1e-9)


def test_preserve_rotary_at_zero_keeps_c_at_the_pole(headtable):
    # The tool along Z lies along C: C keeps its previous 123 degrees.
    assert close(headtable.preserve_rotary_at_zero((0, 0, 1), (0, 0, 123), (0, 0, 0)), (0, 0, 123), 1e-9)
    # Tilted, C is not free: abc comes back as given.
    assert close(headtable.preserve_rotary_at_zero(headtable.direction((0, 20, 0)), (0, 0, 123), (0, 20, 0)),
                 (0, 20, 0), 1e-9)


def test_remap_abc_brings_a_cyclic_axis_into_its_range(headtable):
    # C 370 degrees is C 10 on a 0..360 axis.
    assert close(headtable.remap_abc((0, 0, 370)), (0, 0, 10), 1e-9)


def test_remap_abc_fails_where_no_turn_helps(headtable):
    # B 200 degrees: 200 - 360 = -160 is outside -120..120 too.
    with pytest.raises(mtkit.ScriptError) as caught:
        headtable.remap_abc((0, 200, 0))
    assert str(caught.value) == "Rotation is not possible for axis."


def test_abc_support_checks_the_ranges_in_degrees(headtable):
    assert headtable.is_abc_supported((0, 100, 0))
    assert not headtable.is_abc_supported((0, 130, 0))


def test_optimized_position_is_unchanged_while_the_control_follows_the_tip(headtable):
    # Both rotary axes have TCP: nothing to compensate without force.
    assert close(headtable.optimized_position((10, 20, 30), (0, 20, 45)), (10, 20, 30))
    assert close(headtable.optimized_position((10, 20, 30), (0, 0, 0), mtkit.MachineConfiguration.TCP_FORWARD,
                                              mtkit.MachineConfiguration.OPTIMIZE_BOTH, False), (10, 20, 30))


def test_orientation_forward_is_the_direction(headtable):
    abc = (0, -20, 30)
    assert close(headtable.orientation_abc(abc).forward, headtable.direction(abc))
    assert isinstance(headtable.orientation(abc), mtkit.Matrix)


def test_xml_round_trips_through_text_and_file(headtable, tmp_path):
    xml = headtable.xml()
    assert "<machine" in xml
    again = mtkit.MachineConfiguration.from_xml(xml)
    assert again.xml() == xml
    path = tmp_path / "machine.xml"
    path.write_text(xml, encoding="utf-8")
    from_file = mtkit.MachineConfiguration.from_file(str(path))
    assert from_file.xml() == xml
    assert from_file.kind == "5 axes, head-table"


def test_broken_xml_is_a_script_error():
    with pytest.raises(mtkit.ScriptError):
        mtkit.MachineConfiguration.from_xml("<machine")


def test_a_missing_xml_file_is_a_script_error(tmp_path):
    with pytest.raises(mtkit.ScriptError):
        mtkit.MachineConfiguration.from_file(str(tmp_path / "missing.xml"))


def test_a_missing_machine_file_is_an_os_error():
    with pytest.raises(OSError) as caught:
        mtkit.MachineConfiguration.from_machine_file("/nonexistent/machine.json")
    assert str(caught.value) == "cannot read '/nonexistent/machine.json': No such file or directory"


def test_reprs(headtable):
    assert repr(headtable) == "MachineConfiguration(5 axes, head-table, B head, C table)"
    assert repr(headtable.axis("U")).startswith("ConfigurationAxis(U, B, rotary, head, direction=(0, -1, 0)")
    assert repr(mtkit.MachineConfiguration().axis("W")) == "ConfigurationAxis(W, disabled)"


def test_docstrings_are_there():
    for thing in (mtkit.Vector, mtkit.Matrix, mtkit.MachineConfiguration, mtkit.ConfigurationAxis,
                  mtkit.MachineConfiguration.from_xml, mtkit.MachineConfiguration.abc_by_direction_both,
                  mtkit.Matrix.from_euler):
        assert thing.__doc__
