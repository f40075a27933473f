#!/usr/bin/env python3
"""The C interface, used as another language uses it: by ctypes, from the shared library."""
import ctypes as c
import os
import shutil
import sys
import tempfile
import unittest

LIBRARY = c.CDLL(sys.argv.pop(1))
LIBRARY.jet_version.restype = c.c_char_p
LIBRARY.jet_recordset_close.restype = None
LIBRARY.jet_rollback.restype = None

(OK, FILE_NOT_FOUND, NO_CURRENT, DUPLICATE_KEY, NO_SUCH_TABLE, NO_SUCH_FIELD, SYNTAX, TYPE_MISMATCH,
 OVERFLOW, CLOSED, BAD_ARGUMENT) = 0, 1, 12, 13, 16, 18, 21, 22, 23, 27, 1000
BOOLEAN, LONG, CURRENCY, DOUBLE, DATE, BINARY, TEXT, OLE, MEMO, GUID, DECIMAL = (
    1, 4, 5, 7, 8, 9, 10, 11, 12, 15, 16)
EQUAL, GREATER_OR_EQUAL = 0, 1
STATUS = "/proc/self/status"


class Error(c.Structure):
    _fields_ = [("kind", c.c_int32), ("number", c.c_int32), ("message", c.c_char * 512)]


class Value(c.Structure):
    _fields_ = [("type", c.c_int32), ("long", c.c_int32), ("currency", c.c_int64),
                ("double", c.c_double), ("data", c.c_char_p), ("size", c.c_size_t)]


class Column(c.Structure):
    _fields_ = [("name", c.c_char_p), ("type", c.c_int32), ("length", c.c_int32),
                ("auto_number", c.c_int32), ("required", c.c_int32),
                ("allow_zero_length", c.c_int32), ("precision", c.c_int32), ("scale", c.c_int32)]


class Index(c.Structure):
    _fields_ = [("name", c.c_char_p), ("columns", c.POINTER(c.c_char_p)),
                ("descending", c.POINTER(c.c_int32)), ("column_count", c.c_size_t),
                ("primary", c.c_int32), ("unique", c.c_int32)]


class Options(c.Structure):
    _fields_ = [("read_only", c.c_int32), ("shared", c.c_int32), ("cache_bytes", c.c_uint64),
                ("changed_bytes", c.c_uint64), ("log_bytes", c.c_uint64)]


class Recovery(c.Structure):
    _fields_ = [("applied", c.c_int32), ("foreign_log_ignored", c.c_int32),
                ("operations", c.c_uint64), ("discarded_bytes", c.c_uint64),
                ("kept_logs", c.c_size_t)]


class JetError(Exception):
    def __init__(self, error):
        super().__init__(error.message.decode())
        self.kind, self.number = error.kind, error.number


def call(name, *arguments):
    error = Error()
    kind = getattr(LIBRARY, name)(*arguments, c.byref(error))
    if kind != OK:
        assert kind == error.kind
        raise JetError(error)


def asked(name, kind, *arguments):
    """Calls with a place for one result behind the arguments, and gives it."""
    result = kind()
    call(name, *arguments, c.byref(result))
    return result.value


def handle(name, *arguments):
    made = c.c_void_p()
    call(name, *arguments, c.byref(made))
    return made


def peak_in_kib():
    with open(STATUS, encoding="ascii") as status:
        return int(next(line for line in status if line.startswith("VmHWM:")).split()[1])


class CInterface(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(prefix="jet c ")
        self.path = os.path.join(self.folder.name, "zones \u00e9.mdb").encode()
        self.addCleanup(self.folder.cleanup)

    def refused(self, kind, name, *arguments):
        with self.assertRaises(JetError) as caught:
            call(name, *arguments)
        self.assertEqual(caught.exception.kind, kind)
        self.assertNotEqual(str(caught.exception), "")

    def create(self, version=4):
        database = handle("jet_create", self.path, version, None)
        columns = (Column * 8)(
            Column(b"Zone", LONG, 0, 0, 1, 1), Column(b"Name", TEXT, 50, 0, 0, 1),
            Column(b"Acres", DOUBLE, 0, 0, 0, 1), Column(b"Cost", CURRENCY, 0, 0, 0, 1),
            Column(b"Burnt", BOOLEAN, 0, 0, 0, 1), Column(b"Since", DATE, 0, 0, 0, 1),
            Column(b"Notes", MEMO, 0, 0, 0, 1), Column(b"Map", OLE, 0, 0, 0, 1))
        names = (c.c_char_p * 1)(b"Zone")
        indexes = (Index * 1)(Index(b"PrimaryKey", names, None, 1, 1, 1))
        call("jet_create_table", database, b"Zones", columns, c.c_size_t(8), indexes, c.c_size_t(1))
        return database

    def add(self, zones, zone, name):
        call("jet_add_new", zones)
        call("jet_set_long", zones, c.c_size_t(0), zone)
        call("jet_set_text", zones, c.c_size_t(1), name)
        call("jet_update", zones)

    def text(self, rows, field, capacity=100):
        buffer, size, is_null = c.create_string_buffer(capacity), c.c_size_t(), c.c_int()
        call("jet_get_text", rows, c.c_size_t(field), buffer, c.c_size_t(capacity), c.byref(size),
             c.byref(is_null))
        return None if is_null.value else (buffer.value.decode(), size.value)

    def number(self, rows, name, kind, field):
        value, is_null = kind(), c.c_int()
        call(name, rows, c.c_size_t(field), c.byref(value), c.byref(is_null))
        return None if is_null.value else value.value

    def seek(self, rows, zone, comparison=EQUAL):
        key = (Value * 1)(Value(type=LONG, long=zone))
        return asked("jet_seek", c.c_int, rows, comparison, key, c.c_size_t(1))

    def test_every_type_comes_back(self):
        for version in (3, 4):
            self.path = os.path.join(self.folder.name, f"jet{version}.mdb").encode()
            database = self.create(version)
            zones = handle("jet_open_table", database, b"Zones")
            call("jet_add_new", zones)
            call("jet_set_long", zones, c.c_size_t(0), 7)
            call("jet_set_text", zones, c.c_size_t(1), "North \u20ac slope".encode())
            call("jet_set_double", zones, c.c_size_t(2), c.c_double(0.25))
            call("jet_set_currency", zones, c.c_size_t(3), c.c_int64(9007199254740993))
            call("jet_set_boolean", zones, c.c_size_t(4), 1)
            call("jet_set_date", zones, c.c_size_t(5), c.c_double(36585.5))
            for part in (b"one ", b"two"):
                call("jet_append_text", zones, c.c_size_t(6), part)
            whole = bytes(range(256)) * 40
            for start in range(0, len(whole), 1000):
                part = whole[start:start + 1000]
                call("jet_append_bytes", zones, c.c_size_t(7), part, c.c_size_t(len(part)))
            call("jet_update", zones)
            call("jet_move_first", zones)
            self.assertEqual(self.number(zones, "jet_get_long", c.c_int32, 0), 7)
            self.assertEqual(self.text(zones, 1), ("North \u20ac slope", 15))
            self.assertEqual(self.number(zones, "jet_get_double", c.c_double, 2), 0.25)
            self.assertEqual(self.number(zones, "jet_get_currency", c.c_int64, 3), 9007199254740993)
            self.assertEqual(self.number(zones, "jet_get_boolean", c.c_int, 4), 1)
            self.assertEqual(self.number(zones, "jet_get_double", c.c_double, 5), 36585.5)
            self.assertEqual(self.text(zones, 6), ("one two", 7))
            self.assertEqual(self.bytes_of(zones, 7), whole)
            self.assertEqual(self.parts_of(zones, 7), whole)
            call("jet_edit", zones)
            call("jet_set_null", zones, c.c_size_t(6))
            call("jet_update", zones)
            self.assertIsNone(self.text(zones, 6))
            LIBRARY.jet_recordset_close(zones)
            call("jet_close", database)

    def bytes_of(self, rows, field):
        size = c.c_size_t()
        call("jet_get_bytes", rows, c.c_size_t(field), None, c.c_size_t(0), c.byref(size), None)
        buffer = c.create_string_buffer(size.value)
        call("jet_get_bytes", rows, c.c_size_t(field), buffer, size, c.byref(size), None)
        return buffer.raw

    def parts_of(self, rows, field):
        whole, buffer, size = b"", c.create_string_buffer(777), c.c_size_t(1)
        while size.value:
            call("jet_get_part", rows, c.c_size_t(field), c.c_uint64(len(whole)), buffer,
                 c.c_size_t(777), c.byref(size), None)
            whole += buffer.raw[:size.value]
        return whole

    def test_decimals_and_currency_keep_every_digit(self):
        database = handle("jet_create", self.path, 4, None)
        columns = (Column * 3)(Column(b"Amount", DECIMAL, precision=28, scale=6),
                               Column(b"Cost", CURRENCY), Column(b"Plain", DECIMAL))
        names = (c.c_char_p * 1)(b"Amount")
        indexes = (Index * 1)(Index(b"Amount", names, None, 1, 1, 1))
        call("jet_create_table", database, b"Sums", columns, c.c_size_t(3), indexes, c.c_size_t(1))
        sums = handle("jet_open_table", database, b"Sums")
        amounts = [b"1234567890123456789012.654321", b"-0.000001",
                   b"1234567890123456789012.654322", b"0"]
        for amount in amounts:
            call("jet_add_new", sums)
            call("jet_set_decimal", sums, c.c_size_t(0), amount)
            call("jet_set_text", sums, c.c_size_t(1), b"-922337203685477.5807")
            call("jet_set", sums, c.c_size_t(2), c.byref(Value(type=DECIMAL, data=b"2.5e3")))
            call("jet_update", sums)
        call("jet_set_index", sums, b"Amount")
        found = []
        while not asked("jet_is_eof", c.c_int, sums):
            found.append(self.text(sums, 0)[0].encode())
            self.assertEqual(self.number(sums, "jet_get_currency", c.c_int64, 1),
                             -9223372036854775807)
            self.assertEqual(self.text(sums, 1)[0], "-922337203685477.5807")
            self.assertEqual(self.text(sums, 2)[0], "2500")
            self.assertEqual(self.number(sums, "jet_get_currency", c.c_int64, 2), 25000000)
            call("jet_move_next", sums)
        self.assertEqual(found, [amounts[1], amounts[3], amounts[0], amounts[2]])
        key = (Value * 1)(Value(type=DECIMAL, data=amounts[2]))
        self.assertEqual(asked("jet_seek", c.c_int, sums, EQUAL, key, c.c_size_t(1)), 1)
        self.assertEqual(self.text(sums, 0)[0].encode(), amounts[2])
        rows = handle("jet_open_query", database, b"SELECT * FROM Sums WHERE Amount < ?", key,
                      c.c_size_t(1))
        self.assertEqual(asked("jet_record_count", c.c_int32, rows), 3)
        LIBRARY.jet_recordset_close(rows)
        call("jet_edit", sums)
        self.refused(TYPE_MISMATCH, "jet_set_decimal", sums, c.c_size_t(0), b"12,5")
        self.refused(OVERFLOW, "jet_set_decimal", sums, c.c_size_t(0), b"1" * 60)
        self.refused(OVERFLOW, "jet_set_decimal", sums, c.c_size_t(1), b"922337203685477.5808")
        column = Column()
        call("jet_describe_field", sums, c.c_size_t(0), c.byref(column))
        self.assertEqual((column.type, column.precision, column.scale), (DECIMAL, 28, 6))
        LIBRARY.jet_recordset_close(sums)
        call("jet_close", database)

    def test_memos_are_read_in_parts(self):
        database = self.create()
        zones = handle("jet_open_table", database, b"Zones")
        whole = "zone \u20ac \U0001f525 " * 3000
        call("jet_add_new", zones)
        call("jet_set_long", zones, c.c_size_t(0), 1)
        call("jet_set_text", zones, c.c_size_t(6), whole.encode())
        call("jet_set_bytes", zones, c.c_size_t(7), b"map", c.c_size_t(3))
        call("jet_update", zones)
        call("jet_move_first", zones)
        units, buffer, size = b"", (c.c_uint16 * 777)(), c.c_size_t(1)
        while size.value:
            call("jet_get_memo_part", zones, c.c_size_t(6), c.c_uint64(len(units) // 2), buffer,
                 c.c_size_t(777), c.byref(size), None)
            units += bytes(buffer)[:2 * size.value]
        self.assertEqual(units.decode(f"utf-16-{sys.byteorder[0]}e"), whole)
        self.refused(TYPE_MISMATCH, "jet_get_memo_part", zones, c.c_size_t(7), c.c_uint64(0), buffer,
                     c.c_size_t(777), c.byref(size), None)
        LIBRARY.jet_recordset_close(zones)
        call("jet_close", database)

    @unittest.skipUnless(os.path.exists(STATUS), "This system does not say how much memory we took.")
    def test_long_values_take_little_memory(self):
        before = peak_in_kib()
        database = self.create()
        zones = handle("jet_open_table", database, b"Zones")
        part, parts = bytes(range(256)) * 256, 900
        call("jet_add_new", zones)
        call("jet_set_long", zones, c.c_size_t(0), 1)
        for _ in range(parts):
            call("jet_append_bytes", zones, c.c_size_t(7), part, c.c_size_t(len(part)))
            call("jet_append_text", zones, c.c_size_t(6), b"\xe2\x82\xac" * 1000)
        call("jet_update", zones)
        call("jet_move_first", zones)
        buffer, size, at = c.create_string_buffer(len(part)), c.c_size_t(1), 0
        while True:
            call("jet_get_part", zones, c.c_size_t(7), c.c_uint64(at), buffer,
                 c.c_size_t(len(part)), c.byref(size), None)
            if size.value == 0:
                break
            self.assertEqual(buffer.raw[:size.value], part)
            at += size.value
        self.assertEqual(at, parts * len(part))
        units, at = (c.c_uint16 * 5000)(), 0
        while size.value or at == 0:
            call("jet_get_memo_part", zones, c.c_size_t(6), c.c_uint64(at), units,
                 c.c_size_t(5000), c.byref(size), None)
            self.assertEqual(set(units[:size.value]), {0x20ac} if size.value else set())
            at += size.value
        self.assertEqual(at, parts * 1000)
        LIBRARY.jet_recordset_close(zones)
        call("jet_close", database)
        self.assertLess(peak_in_kib() - before, 45 << 10)

    def test_parts_follow_the_record_and_its_changes(self):
        database = self.create()
        zones = handle("jet_open_table", database, b"Zones")
        for zone, letter in ((1, b"a"), (2, b"b")):
            call("jet_add_new", zones)
            call("jet_set_long", zones, c.c_size_t(0), zone)
            call("jet_set_bytes", zones, c.c_size_t(7), letter * 20000, c.c_size_t(20000))
            call("jet_update", zones)
        call("jet_move_first", zones)
        self.assertEqual(self.part(zones, 7, 0, 9), b"a" * 9)
        call("jet_move_next", zones)
        self.assertEqual(self.part(zones, 7, 9, 9), b"b" * 9)
        call("jet_edit", zones)
        call("jet_append_bytes", zones, c.c_size_t(7), b"c" * 30, c.c_size_t(30))
        self.assertEqual(self.part(zones, 7, 18, 9), b"c" * 9)
        call("jet_append_bytes", zones, c.c_size_t(7), b"d" * 30, c.c_size_t(30))
        self.assertEqual(self.part(zones, 7, 27, 9), b"cccdddddd")
        call("jet_update", zones)
        self.assertEqual(self.part(zones, 7, 36, 30), b"d" * 24)
        self.assertEqual(self.part(zones, 7, 60, 30), b"")
        call("jet_edit", zones)
        call("jet_set_null", zones, c.c_size_t(7))
        call("jet_update", zones)
        self.assertIsNone(self.part(zones, 7, 60, 30))
        call("jet_delete", zones)
        with self.assertRaises(JetError):
            self.part(zones, 7, 60, 30)
        LIBRARY.jet_recordset_close(zones)
        call("jet_close", database)

    def part(self, rows, field, offset, capacity):
        buffer, size, is_null = c.create_string_buffer(capacity), c.c_size_t(), c.c_int()
        call("jet_get_part", rows, c.c_size_t(field), c.c_uint64(offset), buffer,
             c.c_size_t(capacity), c.byref(size), c.byref(is_null))
        return None if is_null.value else buffer.raw[:size.value]

    def test_moving_seeking_and_deleting(self):
        database = self.create()
        zones = handle("jet_open_table", database, b"Zones")
        self.assertEqual(asked("jet_is_eof", c.c_int, zones), 1)
        for zone in (30, 10, 20):
            self.add(zones, zone, b"zone")
        call("jet_set_index", zones, b"PrimaryKey")
        found = []
        while not asked("jet_is_eof", c.c_int, zones):
            found.append(self.number(zones, "jet_get_long", c.c_int32, 0))
            call("jet_move_next", zones)
        self.assertEqual(found, [10, 20, 30])
        self.assertEqual(self.seek(zones, 15), 0)
        self.assertEqual(self.seek(zones, 15, GREATER_OR_EQUAL), 1)
        self.assertEqual(self.number(zones, "jet_get_long", c.c_int32, 0), 20)
        call("jet_delete", zones)
        self.refused(NO_CURRENT, "jet_delete", zones)
        self.assertEqual(asked("jet_record_count", c.c_int32, zones), 2)
        call("jet_move_last", zones)
        call("jet_move_previous", zones)
        call("jet_move_previous", zones)
        self.assertEqual(asked("jet_is_bof", c.c_int, zones), 1)
        LIBRARY.jet_recordset_close(zones)
        call("jet_close", database)

    def test_queries_with_values(self):
        database = self.create()
        zones = handle("jet_open_table", database, b"Zones")
        for zone in range(5):
            self.add(zones, zone, f"z{zone}".encode())
        values = (Value * 2)(Value(type=LONG, long=1), Value(type=TEXT, data=b"Z4"))
        rows = handle("jet_open_query", database,
                      b"SELECT Name FROM Zones WHERE Zone > ? AND Name < ? ORDER BY Zone DESC",
                      values, c.c_size_t(2))
        self.assertEqual(asked("jet_field_count", c.c_size_t, rows), 1)
        self.assertEqual(self.text(rows, 0), ("z3", 2))
        self.assertEqual(asked("jet_record_count", c.c_int32, rows), 2)
        LIBRARY.jet_recordset_close(rows)
        other = c.c_void_p()
        self.refused(SYNTAX, "jet_open_query", database, b"SELECT", None, c.c_size_t(0),
                     c.byref(other))
        LIBRARY.jet_recordset_close(zones)
        call("jet_close", database)

    def test_names_of_tables_and_fields(self):
        database = self.create()
        self.assertEqual(asked("jet_table_count", c.c_size_t, database), 1)
        name, size = c.create_string_buffer(4), c.c_size_t()
        call("jet_table_name", database, c.c_size_t(0), name, c.c_size_t(4), c.byref(size))
        self.assertEqual((name.value, size.value), (b"Zon", 5))
        zones = handle("jet_open_table", database, b"Zones")
        self.assertEqual(asked("jet_find_field", c.c_size_t, zones, b"acres"), 2)
        self.assertEqual(asked("jet_field_type", c.c_int32, zones, c.c_size_t(3)), CURRENCY)
        self.assertEqual(asked("jet_index_count", c.c_size_t, database, b"zones"), 1)
        call("jet_index_name", database, b"Zones", c.c_size_t(0), name, c.c_size_t(4), c.byref(size))
        self.assertEqual((name.value, size.value), (b"Pri", 10))
        self.refused(BAD_ARGUMENT, "jet_index_name", database, b"Zones", c.c_size_t(1), name,
                     c.c_size_t(4), c.byref(size))
        column = Column()
        call("jet_describe_field", zones, c.c_size_t(1), c.byref(column))
        self.assertEqual((column.name, column.type, column.length), (None, TEXT, 50))
        self.refused(NO_SUCH_FIELD, "jet_find_field", zones, b"none", c.byref(size))
        self.refused(BAD_ARGUMENT, "jet_field_type", zones, c.c_size_t(99), c.byref(c.c_int32()))
        LIBRARY.jet_recordset_close(zones)
        call("jet_close", database)

    def test_a_text_is_cut_between_characters(self):
        database = self.create()
        zones = handle("jet_open_table", database, b"Zones")
        self.add(zones, 1, "a\u20acb".encode())
        call("jet_move_first", zones)
        self.assertEqual(self.text(zones, 1, 4), ("a", 5))
        self.assertEqual(self.text(zones, 1, 5), ("a\u20ac", 5))
        LIBRARY.jet_recordset_close(zones)
        call("jet_close", database)

    def test_transactions(self):
        database = self.create()
        zones = handle("jet_open_table", database, b"Zones")
        transaction = handle("jet_begin", database)
        self.add(zones, 1, b"one")
        LIBRARY.jet_rollback(transaction)
        self.assertEqual(asked("jet_record_count", c.c_int32, zones), 0)
        transaction = handle("jet_begin", database)
        self.add(zones, 2, b"two")
        self.add(zones, 3, b"three")
        call("jet_commit", transaction)
        self.assertEqual(asked("jet_record_count", c.c_int32, zones), 2)
        LIBRARY.jet_recordset_close(zones)
        call("jet_close", database)

    def test_errors_have_a_kind_a_number_and_a_sentence(self):
        other = c.c_void_p()
        self.refused(FILE_NOT_FOUND, "jet_open", self.path, None, c.byref(other))
        self.refused(BAD_ARGUMENT, "jet_open", None, None, c.byref(other))
        self.refused(BAD_ARGUMENT, "jet_create", self.path, 5, None, c.byref(other))
        self.assertIsNone(other.value)
        database = self.create()
        self.refused(NO_SUCH_TABLE, "jet_open_table", database, b"None", c.byref(other))
        zones = handle("jet_open_table", database, b"Zones")
        self.add(zones, 1, b"one")
        with self.assertRaises(JetError) as caught:
            self.add(zones, 1, b"again")
        self.assertEqual((caught.exception.kind, caught.exception.number), (DUPLICATE_KEY, 3022))
        self.refused(TYPE_MISMATCH, "jet_set_text", zones, c.c_size_t(0), b"seven")
        self.refused(BAD_ARGUMENT, "jet_set", zones, c.c_size_t(0), c.byref(Value(type=99)))
        self.assertEqual(LIBRARY.jet_move_next(None, None), BAD_ARGUMENT)
        call("jet_close", database)
        self.refused(CLOSED, "jet_move_first", zones)
        LIBRARY.jet_recordset_close(zones)

    def test_readers_share_a_file(self):
        call("jet_close", self.create())
        options = Options(read_only=1, shared=1, cache_bytes=1 << 20)
        first = handle("jet_open", self.path, c.byref(options))
        second = handle("jet_open", self.path, c.byref(options))
        self.assertEqual(asked("jet_table_count", c.c_size_t, second), 1)
        call("jet_close", second)
        call("jet_close", first)

    def test_what_opening_found_is_told(self):
        database = self.create()
        zones = handle("jet_open_table", database, b"Zones")
        self.add(zones, 1, b"one")
        left = self.path + b".left.mdb"
        shutil.copy(self.path, left)
        shutil.copy(self.path + b"-log", left + b"-log")
        self.add(zones, 3, b"three")
        call("jet_close", database)
        recovery = Recovery()
        database = handle("jet_open", left, None)
        call("jet_opening_recovery", database, c.byref(recovery))
        self.assertEqual((recovery.applied, recovery.operations, recovery.kept_logs), (1, 2, 0))
        self.add(handle("jet_open_table", database, b"Zones"), 2, b"two")
        shutil.copy(left + b"-log", self.path + b"-log")
        call("jet_close", database)
        # The log of another file is set aside, and named at every opening.
        for foreign in (1, 0):
            database = handle("jet_open", self.path, None)
            call("jet_opening_recovery", database, c.byref(recovery))
            self.assertEqual((recovery.applied, recovery.foreign_log_ignored, recovery.kept_logs),
                             (0, foreign, 1))
            name, size = c.create_string_buffer(500), c.c_size_t()
            call("jet_kept_log", database, c.c_size_t(0), name, c.c_size_t(500), c.byref(size))
            self.assertEqual(name.value, self.path + b"-log-old")
            call("jet_close", database)

    def test_version(self):
        self.assertRegex(LIBRARY.jet_version().decode(), r"^\d+\.\d+\.\d+$")


unittest.main()
