#!/usr/bin/env python3
"""Writes the binary fixtures motions_*.hex: the same machine motions as the
JSON fixtures beside them, item by item, in the binary persist form.

This encoder is written from the description of the form (see
src/nc/BinaryPersistWriter.h) and shares no code with the library, so that
the tests compare the library against an independent account. Each line of a
.hex file is one item: its bytes in hex, then a comment. The checksum is
CRC-32C (Castagnoli), worked out bit by bit below.

    python3 tests/data/make_binary_fixtures.py
"""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))


def crc32c(data):
    crc = 0xFFFFFFFF
    for byte in data:
        crc ^= byte
        for _ in range(8):
            crc = (crc >> 1) ^ 0x82F63B78 if crc & 1 else crc >> 1
    return crc ^ 0xFFFFFFFF


class Stream:
    def __init__(self):
        self.items = []  # (bytes, comment)
        self.names = {}

    def _name(self, name):
        if name in self.names:
            return struct.pack("<H", self.names[name]), "name %d (%s)" % (self.names[name], name)
        index = len(self.names)
        self.names[name] = index
        raw = name.encode()
        return struct.pack("<HH", index, len(raw)) + raw, "defines name %d: %s" % (index, name)

    def add(self, data, comment):
        self.items.append((data, comment))

    def obj(self, name, key):
        ref, what = self._name(name)
        self.add(b"\x10" + ref, "begin object %s: %s" % (key, what))

    def endobj(self):
        self.add(b"\x11", "end object")

    def cls(self, name, version):
        ref, what = self._name(name)
        self.add(b"\x12" + ref + struct.pack("<i", version), "begin class: %s, version %d" % (what, version))

    def endcls(self):
        self.add(b"\x13", "end class")

    def compound(self, name, key):
        ref, what = self._name(name)
        self.add(b"\x14" + ref, "begin compound %s: %s" % (key, what))

    def endcompound(self):
        self.add(b"\x15", "end compound")

    def array(self, key, count):
        self.add(b"\x16" + struct.pack("<Q", count), "begin array %s: %d elements" % (key, count))

    def endarray(self):
        self.add(b"\x17", "end array")

    def null(self, key):
        self.add(b"\x00", "%s: null" % key)

    def boolean(self, key, v):
        self.add(b"\x02" if v else b"\x01", "%s: %s" % (key, "true" if v else "false"))

    def i32(self, key, v):
        self.add(b"\x03" + struct.pack("<i", v), "%s: %d" % (key, v))

    def u64(self, key, v):
        self.add(b"\x04" + struct.pack("<Q", v), "%s: %d" % (key, v))

    def f64(self, key, v):
        self.add(b"\x05" + struct.pack("<d", v), "%s: %r" % (key, v))

    def string(self, key, v):
        raw = v.encode()
        self.add(b"\x06" + struct.pack("<I", len(raw)) + raw, "%s: \"%s\"" % (key, v))

    def vector(self, key, items, element):
        self.compound("std::vector", key)
        self.u64("m_size", len(items))
        self.array("m_array", len(items))
        for item in items:
            element(item)
        self.endarray()
        self.endcompound()

    def text(self):
        content = b"".join(data for data, _ in self.items)
        header = b"MTKP" + struct.pack("<HHQI", 1, 0, len(content), crc32c(content))
        lines = ["# Binary persist stream; see tests/data/make_binary_fixtures.py.",
                 "%s  # header: magic, format 1, flags 0, %d bytes of content, CRC-32C"
                 % (header.hex(" "), len(content))]
        lines += ["%s  # %s" % (data.hex(" "), comment) for data, comment in self.items]
        return "\n".join(lines) + "\n"


def optional(s, key, v):
    if v is None:
        s.null(key)
    else:
        s.i32(key, v)


def context(s, key, c):
    machine, program, toolpath, offset, patterns = c
    s.obj("MotionContext", key)
    s.cls("MotionContext", 1)
    optional(s, "m_machineId", machine)
    optional(s, "m_ncProgramId", program)
    optional(s, "m_toolpathId", toolpath)
    s.i32("m_workOffset", offset)

    def level(p):
        s.compound("MotionContext::PatternLevel", "item")
        s.i32("patternId", p[0])
        s.i32("instance", p[1])
        s.endcompound()

    s.vector("m_patterns", patterns, level)
    s.endcls()
    s.endobj()


def ordering(s, key, pairs):
    s.obj("AxisOrdering", key)
    s.cls("AxisOrdering", 1)

    def info(p):
        s.compound("AxisInfo", "item")
        s.string("m_partId", p[0])
        s.string("m_axisName", p[1])
        s.endcompound()

    s.vector("m_entries", pairs, info)
    s.endcls()
    s.endobj()


def entities(s, values):
    def entity(vs):
        s.obj("MotionEntity", "item")
        s.cls("MotionEntity", 1)
        s.obj("AxisValues", "m_axisValues")
        s.cls("AxisValues", 1)
        s.vector("m_values", vs, lambda v: s.f64("item", v))
        s.endcls()
        s.endobj()
        s.endcls()
        s.endobj()

    s.vector("m_entityArray", [values], entity)


CONTEXT_A = (1, 2, 3, 54, [(7, 2)])
CONTEXT_B = (1, 2, 4, 0, [])
DEFAULT_CONTEXT = (None, None, None, 0, [])
ORDER_A = [("x_slide", "X"), ("y_slide", "Y"), ("z_slide", "Z"), ("a_tilt", "A"), ("c_rotary", "C")]
ORDER_B = [("x_slide", "X"), ("y_slide", "Y"), ("z_slide", "Z")]
MOTIONS = [(CONTEXT_A, ORDER_A, True, [10.5, -20.25, 300.0, 45.0, -90.0]),
           (CONTEXT_B, ORDER_B, False, [1.0, 2.0, 3.0])]


def motion(s, key, version, m):
    c, o, valid, values = m
    s.obj("MachineMotion", key)
    s.cls("MachineMotion", version)
    # Old keys: the true data where no versioned key holds it yet.
    context(s, "m_context", c if version == 1 else DEFAULT_CONTEXT)
    ordering(s, "m_axisOrdering", o if version < 3 else [])
    s.boolean("m_isValid", valid)
    entities(s, values)
    if version >= 2:
        context(s, "m_context_versioned", c)
    if version >= 3:
        ordering(s, "m_axisOrdering_versioned", o)
    s.endcls()
    s.endobj()


def old_m_array():
    s = Stream()
    s.obj("MachineMotions", "root")
    s.cls("MachineMotions", 1)
    s.vector("m_container", MOTIONS, lambda m: motion(s, "item", 1, m))
    s.endcls()
    s.endobj()
    return s


def versioned(version):
    s = Stream()
    s.obj("MachineMotions", "root")
    s.cls("MachineMotions", 1002)
    s.vector("m_container", [], None)
    s.i32("motionVersion", version)
    s.u64("m_container_size", len(MOTIONS))
    s.array("m_container_versioned", len(MOTIONS))
    for m in MOTIONS:
        s.compound("MachineMotion", "motion")
        motion(s, "motion", version, m)
        s.endcompound()
    s.endarray()
    s.endcls()
    s.endobj()
    return s


if __name__ == "__main__":
    outputs = {"motions_old_m_array.hex": old_m_array()}
    for v in (1, 2, 3):
        outputs["motions_version%d.hex" % v] = versioned(v)
    for name, stream in outputs.items():
        with open(os.path.join(HERE, name), "w") as f:
            f.write(stream.text())
