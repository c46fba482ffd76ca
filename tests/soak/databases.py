"""What databases hold, read past the driver."""

import os
import shutil
import sqlite3
import tempfile


def description(query):
    """The tables and rows of a database. `query` gives the texts of a statement's one column."""
    tables = {}
    for name in query("SELECT name FROM sqlite_schema WHERE type='table'"):
        sql = query(f"SELECT sql FROM sqlite_schema WHERE name='{name}'")
        columns = query(f"SELECT name FROM pragma_table_info('{name}') ORDER BY cid")
        values = " || ', ' || ".join(f"quote([{column}])" for column in columns)
        tables[name] = sql + sorted(query(f"SELECT {values} FROM [{name}]"))
    return tables


def content(file):
    """The description of a database with what its log or journal adds, read from a copy by SQLite
    alone."""
    with tempfile.TemporaryDirectory() as folder:
        copy = os.path.join(folder, "copy.mdb")
        for ending in ("", "-wal", "-journal"):
            if os.path.exists(file + ending):
                shutil.copy(file + ending, copy + ending)
        connection = sqlite3.connect(copy)
        # Stand in for the driver's, without which SQLite reads none of its tables; nothing is
        # compared or sorted by them.
        for collation in ("KESTREL_TEXT", "KESTREL_DATE"):
            connection.create_collation(collation, lambda left, right: 0)
        try:
            problems = connection.execute("PRAGMA quick_check").fetchall()
            if problems != [("ok",)]:
                return {"damaged": problems}
            return description(lambda sql: [row[0] for row in connection.execute(sql)])
        except sqlite3.DatabaseError as error:
            return {"damaged": error}
        finally:
            connection.close()


def contents(files):
    return {name: content(file) for name, file in files.items()}


def all_files(folder):
    return sorted(os.path.relpath(os.path.join(path, name), folder)
                  for path, _, names in os.walk(folder) for name in names)
