#!/usr/bin/python3
"""Works on a new database as programs do that reach ODBC by pyodbc.

usage: pyodbc_client.py FOLDER_OF_ODBCINST_INI
"""

import datetime
import decimal
import os
import sys
import tempfile
import unittest

os.environ["ODBCSYSINI"] = sys.argv.pop(1)

import pyodbc  # reads its environment when it is loaded


class PyodbcTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.file = os.path.join(self.folder.name, "test.mdb")
        open(self.file, "w").close()
        self.connection = pyodbc.connect(self.request(self.file), autocommit=True)
        self.addCleanup(self.connection.close)
        self.cursor = self.connection.cursor()

    @staticmethod
    def request(file):
        return "DRIVER={Kestrel ODBC Driver};DBQ=" + file + ";UID=;PWD="

    def test_each_type_comes_as_its_python_type(self):
        self.cursor.execute(
            "CREATE TABLE [T] ([A] TEXT(20), [B] MEMO, [C] LONG, [D] DOUBLE, [E] BIT, [F] DATETIME,"
            " [G] DECIMAL(10,2), [H] LONGBINARY, [I] BYTE, [J] REAL, [K] CURRENCY)")
        self.cursor.execute(
            "INSERT INTO [T] VALUES ('007', '1e5 ', -7, 2.5, 1, '9/3/2007 1:02:03', 12.25,"
            " x'00FF', 200, 0.5, 1.5)")
        row = self.cursor.execute("SELECT * FROM [T]").fetchone()
        self.assertEqual(tuple(row), (
            "007", "1e5 ", -7, 2.5, True, datetime.datetime(2007, 3, 9, 1, 2, 3),
            decimal.Decimal("12.25"), b"\x00\xff", 200, 0.5, decimal.Decimal("1.5")))
        self.assertIs(type(row[4]), bool)
        described = [(column[0], column[1], column[3]) for column in self.cursor.description[:3]]
        self.assertEqual(described, [("A", str, 20), ("B", str, 1073741823), ("C", int, 10)])

    def test_parameters_of_each_type_come_back(self):
        values = ("it's ä", "\U0001F529 bolt", -7, 2.5, True,
                  datetime.datetime(2007, 3, 9, 1, 2, 3), decimal.Decimal("12.25"),
                  b"\x00\xff", None, "")
        self.cursor.execute(
            "CREATE TABLE [T] ([A] TEXT(20), [B] MEMO, [C] LONG, [D] DOUBLE, [E] BIT, [F] DATETIME,"
            " [G] DECIMAL(10,2), [H] LONGBINARY, [I] TEXT(5), [J] TEXT(5))")
        self.cursor.execute("INSERT INTO [T] VALUES (?,?,?,?,?,?,?,?,?,?)", values)
        self.assertEqual(tuple(self.cursor.execute("SELECT * FROM [T]").fetchone()), values)

    def test_null_of_each_type_is_none(self):
        self.cursor.execute("CREATE TABLE [T] ([A] TEXT(20), [B] MEMO, [C] LONG, [D] DATETIME)")
        self.cursor.execute("INSERT INTO [T] VALUES (NULL, ?, ?, NULL)", None, None)
        self.assertEqual(tuple(self.cursor.execute("SELECT * FROM [T]").fetchone()), (None,) * 4)

    def test_long_text_comes_whole(self):
        text = "A line of the memo, \u20ac \U0001F529\r\n" * 5000
        self.cursor.execute("CREATE TABLE [T] ([A] MEMO)")
        self.cursor.execute("INSERT INTO [T] VALUES (?)", text)
        self.assertEqual(self.cursor.execute("SELECT [A] FROM [T]").fetchval(), text)

    def test_many_rows_are_stored_and_fetched(self):
        self.cursor.execute("CREATE TABLE [T] ([Id] LONG PRIMARY KEY, [A] TEXT(20))")
        self.cursor.executemany("INSERT INTO [T] VALUES (?,?)", [(i, str(i)) for i in range(200)])
        rows = self.cursor.execute("SELECT * FROM [T] ORDER BY [Id]").fetchall()
        self.assertEqual([tuple(row) for row in rows], [(i, str(i)) for i in range(200)])
        self.assertEqual(len(self.cursor.execute("SELECT [A] FROM [T]").fetchmany(3)), 3)

    def test_rowcount_tells_the_changed_rows(self):
        self.cursor.execute("CREATE TABLE [T] ([Id] LONG PRIMARY KEY)")
        self.cursor.executemany("INSERT INTO [T] VALUES (?)", [(1,), (2,), (3,)])
        self.assertEqual(self.cursor.execute("DELETE FROM [T] WHERE [Id]<3").rowcount, 2)
        self.assertEqual(self.cursor.execute("UPDATE [T] SET [Id]=1 WHERE [Id]=9").rowcount, 0)

    def test_catalogue_is_listed(self):
        self.cursor.execute("CREATE TABLE [T] ([Id] LONG PRIMARY KEY, [A] TEXT(20))")
        self.cursor.execute("CREATE VIEW [V] AS SELECT [A] FROM [T]")
        tables = [(row.table_name, row.table_type) for row in self.cursor.tables()]
        self.assertEqual(sorted(tables), [("T", "TABLE"), ("V", "VIEW")])
        columns = [(row.column_name, row.data_type, row.column_size, row.nullable)
                   for row in self.cursor.columns(table="T")]
        self.assertEqual(columns, [("Id", 4, 10, 0), ("A", -9, 20, 1)])
        self.assertEqual([row.column_name for row in self.cursor.primaryKeys("T")], ["Id"])
        self.assertIn("DATETIME", [row.type_name for row in self.cursor.getTypeInfo()])

    def test_errors_are_the_exceptions_of_their_state(self):
        self.cursor.execute("CREATE TABLE [T] ([Id] LONG PRIMARY KEY)")
        self.cursor.execute("INSERT INTO [T] VALUES (1)")
        with self.assertRaises(pyodbc.IntegrityError) as raised:
            self.cursor.execute("INSERT INTO [T] VALUES (1)")
        self.assertEqual(raised.exception.args[0], "23000")
        with self.assertRaises(pyodbc.ProgrammingError) as raised:
            self.cursor.execute("SELECT * FROM [Absent]")
        self.assertEqual(raised.exception.args[0], "42S02")
        with self.assertRaises(pyodbc.Error):
            pyodbc.connect(self.request(self.file + ".absent"))
        self.assertFalse(os.path.exists(self.file + ".absent"))

    def test_transaction_is_committed_or_taken_back(self):
        self.cursor.execute("CREATE TABLE [T] ([Id] LONG PRIMARY KEY)")
        self.connection.autocommit = False
        self.cursor.execute("INSERT INTO [T] VALUES (1)")
        self.connection.commit()
        self.cursor.execute("INSERT INTO [T] VALUES (2)")
        self.connection.rollback()
        self.assertEqual(self.cursor.execute("SELECT COUNT(*) FROM [T]").fetchval(), 1)

    def test_two_cursors_of_one_connection_do_not_meet(self):
        self.cursor.execute("CREATE TABLE [T] ([Id] LONG PRIMARY KEY)")
        self.cursor.executemany("INSERT INTO [T] VALUES (?)", [(1,), (2,)])
        self.cursor.execute("SELECT [Id] FROM [T] ORDER BY [Id]")
        self.assertEqual(self.cursor.fetchval(), 1)
        other = self.connection.cursor()
        self.assertEqual(other.execute("SELECT COUNT(*) FROM [T]").fetchval(), 2)
        self.assertEqual(self.cursor.fetchval(), 2)


if __name__ == "__main__":
    unittest.main()
