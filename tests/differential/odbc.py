"""ODBC as its C interface has it: codes instead of exceptions, and a type chosen for each value.

The usual Python client hides both. The merge of rows turns on the difference between 0, 100 and
-1, and a row whose value can't be had in the type that was asked for is a fetch that failed.
"""

import ctypes
from ctypes import byref, c_double, c_int, c_int16, c_ubyte, c_uint16, c_void_p

SUCCESS, SUCCESS_WITH_INFO, NO_DATA, ERROR = 0, 1, 100, -1
C_WCHAR, C_LONG, C_DOUBLE, C_BIT, C_TIMESTAMP = -8, 4, 8, -7, 11
ENVIRONMENT, CONNECTION, STATEMENT = 1, 2, 3
ALL_OF_THE_TEXT = -3

LONGEST_TEXT = 65535

_library = ctypes.CDLL("libodbc.so.2")
_alloc, _free = _library.SQLAllocHandle, _library.SQLFreeHandle
_alloc.argtypes = [c_int16, c_void_p, c_void_p]
_free.argtypes = [c_int16, c_void_p]
_set_environment = _library.SQLSetEnvAttr
_set_environment.argtypes = [c_void_p, c_int, c_void_p, c_int]
_connect = _library.SQLDriverConnectW
_connect.argtypes = [c_void_p, c_void_p, c_void_p, c_int16, c_void_p, c_int16, c_void_p, c_uint16]
_disconnect = _library.SQLDisconnect
_disconnect.argtypes = [c_void_p]
_set_connection = _library.SQLSetConnectAttrW
_set_connection.argtypes = [c_void_p, c_int, c_void_p, c_int]
_end = _library.SQLEndTran
_end.argtypes = [c_int16, c_void_p, c_int16]
_execute = _library.SQLExecDirectW
_execute.argtypes = [c_void_p, c_void_p, c_int]
_columns, _tables = _library.SQLColumnsW, _library.SQLTablesW
_columns.argtypes = _tables.argtypes = [c_void_p] + [c_void_p, c_int16] * 4
_fetch = _library.SQLFetch
_fetch.argtypes = [c_void_p]
_column_count = _library.SQLNumResultCols
_column_count.argtypes = [c_void_p, c_void_p]
_get_data = _library.SQLGetData
_get_data.argtypes = [c_void_p, c_uint16, c_int16, c_void_p, ctypes.c_int64, c_void_p]
_diagnostic = _library.SQLGetDiagRecW
_diagnostic.argtypes = [c_int16, c_void_p, c_int16, c_void_p, c_void_p, c_void_p, c_int16, c_void_p]
for _function in (_alloc, _free, _set_environment, _connect, _disconnect, _set_connection, _end,
                  _execute, _columns, _tables, _fetch, _column_count, _get_data, _diagnostic):
    _function.restype = c_int16


class Timestamp(ctypes.Structure):
    _fields_ = [("year", c_int16), ("month", c_uint16), ("day", c_uint16), ("hour", c_uint16),
                ("minute", c_uint16), ("second", c_uint16), ("fraction", ctypes.c_uint32)]


_text = ctypes.create_string_buffer(2 * (LONGEST_TEXT + 1))
_length = ctypes.c_int64()
_fixed = {C_LONG: c_int(), C_DOUBLE: c_double(), C_BIT: c_ubyte(), C_TIMESTAMP: Timestamp()}


def succeeded(code):
    return code in (SUCCESS, SUCCESS_WITH_INFO)


def _wide(text):
    return text.encode("utf-16-le", "surrogatepass") + b"\0\0"


class Unconvertible(Exception):
    """A value that the driver can't give in the type that was asked for."""


class Statement:
    """The answer to one statement or catalogue call; free it before its connection goes."""

    def __init__(self, connection):
        self.handle = c_void_p()
        _alloc(STATEMENT, connection, byref(self.handle))

    def execute(self, text):
        return _execute(self.handle, _wide(text), ALL_OF_THE_TEXT)

    def columns(self, table):
        return _columns(self.handle, None, 0, None, 0, _wide(table), ALL_OF_THE_TEXT, None, 0)

    def tables(self):
        return _tables(self.handle, None, 0, None, 0, None, 0, _wide("TABLE"), 5)

    def column_count(self):
        count = c_int16()
        _column_count(self.handle, byref(count))
        return count.value

    def fetch(self):
        return _fetch(self.handle)

    def value(self, position, c_type, size=LONGEST_TEXT):
        """The value of the row at a position, counted from 1; None for NULL. Of a text so many
        16-bit characters arrive, of which the last may be one half of a pair."""
        if c_type == C_WCHAR:
            code = _get_data(self.handle, position, c_type, _text, 2 * (size + 1), byref(_length))
        else:
            value = _fixed[c_type]
            code = _get_data(self.handle, position, c_type, byref(value), 16, byref(_length))
        if not succeeded(code):
            raise Unconvertible
        if _length.value == -1:
            return None
        if c_type == C_WCHAR:
            end = 2 * size if _length.value < 0 else min(_length.value, 2 * size)
            return _text[:end].decode("utf-16-le", "surrogatepass")
        if c_type == C_TIMESTAMP:
            return (value.day, value.month, value.year)
        return value.value

    def diagnostic(self):
        state, words = ctypes.create_string_buffer(12), ctypes.create_string_buffer(1024)
        _diagnostic(STATEMENT, self.handle, 1, state, byref(c_int()), words, 500, None)
        return " ".join(text.raw.decode("utf-16-le").split("\0")[0] for text in (state, words))

    def free(self):
        _free(STATEMENT, self.handle)


class Connection:
    def __init__(self, path):
        self.environment, self.handle = c_void_p(), c_void_p()
        _alloc(ENVIRONMENT, None, byref(self.environment))
        _set_environment(self.environment, 200, 3, -6)
        _alloc(CONNECTION, self.environment, byref(self.handle))
        text = "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=" + path
        self.connected = succeeded(_connect(self.handle, None, _wide(text), ALL_OF_THE_TEXT, None,
                                            0, None, 0))

    def statement(self):
        return Statement(self.handle)

    def run(self, statements):
        """Carries out statements of which none may fail, all at once."""
        if not self.connected:
            raise RuntimeError("no connection; is the driver built, and does ODBCSYSINI name it?")
        _set_connection(self.handle, 102, 0, 0)  # no autocommit
        for text in statements:
            statement = self.statement()
            if statement.execute(text) not in (SUCCESS, SUCCESS_WITH_INFO, NO_DATA):
                raise RuntimeError(f"{text}\n{statement.diagnostic()}")
            statement.free()
        _end(CONNECTION, self.handle, 0)
        _set_connection(self.handle, 102, 1, 0)

    def close(self):
        if self.connected:
            _disconnect(self.handle)
        _free(CONNECTION, self.handle)
        _free(ENVIRONMENT, self.environment)
