"""Databases for the measurement of the patch engine: a patch, and targets in the states that the
cases need. All rows are made inside of the database, so a million of them takes seconds."""
import os

import pyodbc

DRIVER = "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ="
TARGET = "QuillBase"
TABLE = "Parts"
KEY = "Id"

# Flags of a step, in the order of the update table.
DELETE, RECREATE, CREATE = (1, 0, 0), (0, 1, 0), (0, 0, 1)
MERGE = (0, 0, 0)


class Table:
    """Columns as name, declaration and value; the value is an expression over n, the row's number,
    and v, which differs between a patch and a target that is behind it."""

    def __init__(self, columns):
        self.columns = columns

    def create(self):
        definitions = ",".join(f"[{name}] {kind}" for name, kind, _ in self.columns)
        return f"CREATE TABLE {TABLE} ({definitions},PRIMARY KEY ([{KEY}]))"

    def fill(self, rows, version):
        values = ",".join(value for _, _, value in self.columns)
        return (f"INSERT INTO {TABLE} WITH RECURSIVE numbers(n,v) AS (SELECT 1,{version} UNION ALL "
                f"SELECT n+1,v FROM numbers WHERE n<{rows}) SELECT {values} FROM numbers")


def parts_table():
    """The catalogue of an add-on as it may be in life: 20 columns of all types that there are."""
    return Table([
        (KEY, "LONG NOT NULL", "n"),
        ("Article", "TEXT(20)", "printf('KF-%07d-%d',n,v)"),
        ("Name", "TEXT(50)", "printf('Hexagon bolt M%d x %d',6+n%30,n%200)"),
        ("Description", "TEXT(100)",
         "printf('Joint of O''Neil''s kind, revision %d, with washer no. %d',v,n%5000)"),
        ("Standard", "TEXT(30)", "printf('EN 14399-%d:2005',1+n%10)"),
        ("Material", "TEXT(30)", "printf('Steel S%dJ%d',235+n%4*20,n%3)"),
        ("Supplier", "TEXT(60)", "printf('Fasteners & Sons, branch office %d, Utrecht',n%97)"),
        ("Drawing", "TEXT(40)", "printf('DRW/%05d/%02d/sheet %d',n%100000,n%12,n%7)"),
        ("Surface", "TEXT(20)", "printf('zinc coat %dum',5+n%60)"),
        ("Remarks", "MEMO", "printf('Tighten to %d Nm; see the ''%d inch'' table.',n%400,1+n%8)"),
        ("Position", "LONG", "n*7+v"),
        ("Quantity", "LONG", "n%1000-200"),
        ("Stock", "SMALLINT", "n%30000-v"),
        ("Class", "BYTE", "n%256"),
        ("Active", "BIT", "n%2"),
        ("Length", "DOUBLE", "n%9973/8.0+v"),
        ("Weight", "DOUBLE", "n%99991/1000.0"),
        ("Diameter", "REAL", "n%997/4.0"),
        ("Price", "DECIMAL", "n%100000/100.0"),
        ("Changed", "DATE", "datetime('1999-01-01',(n%4000)||' days')"),
    ])


def widest_table():
    """As many columns as an engine takes, and as much memo text as a statement takes."""
    clause = "Clause of O''Neil, with its sixty letters and one full stop. "
    memo = "'Memo '||(n%10)||substr(replace(hex(zeroblob(1000)),'00'," \
           f"'{clause}'),v,59993)"
    columns = [(KEY, "LONG NOT NULL", "n")]
    columns += [(f"Memo{i}", "MEMO", memo) for i in range(8)]
    kinds = [("LONG", "n*{}+v"), ("DOUBLE", "n/4.0+{}"), ("TEXT(20)", "'text '||(n%{}+1)"),
             ("BIT", "(n+{})%2"), ("SMALLINT", "n%{}"),
             ("DATE", "datetime('2004-01-01',(n%{})||' days')")]
    while len(columns) < 255:
        kind, value = kinds[len(columns) % len(kinds)]
        columns.append((f"C{len(columns)}", kind, value.format(len(columns))))
    return Table(columns)


def execute(path, *statements):
    if not os.path.exists(path):
        open(path, "wb").close()
    connection = pyodbc.connect(DRIVER + path, autocommit=False)
    for statement in statements:
        connection.execute(statement)
    connection.commit()
    connection.close()


def _make_version_tables(path):
    execute(path,
            "CREATE TABLE KFVersion ([Attribute] TEXT(255) NOT NULL,[Value] TEXT(255) NOT NULL)",
            "CREATE TABLE Info ([Name] TEXT(50),[Value] MEMO,[Type] TEXT(50))")


def make_patch(path, table, rows):
    _make_version_tables(path)
    execute(path, table.create(), table.fill(rows, 2),
            "CREATE TABLE UpdateTable ([ID] LONG NOT NULL,[DatabaseName] TEXT(50),[Source] "
            "TEXT(50),[Target] TEXT(50),[DeleteRows] BIT,[Recreate] BIT,[CreateIfMissing] BIT,"
            "PRIMARY KEY ([ID]))")


def write_step(patch, flags):
    execute(patch, "DELETE FROM UpdateTable",
            f"INSERT INTO UpdateTable VALUES (1,'{TARGET}','{TABLE}','{TABLE}',"
            f"{flags[0]},{flags[1]},{flags[2]})")


def make_target(path, table, rows=None, version=1, tells_key=True):
    """rows is None for a target without the table."""
    _make_version_tables(path)
    execute(path, "CREATE TABLE InfoTableRelations ([ID] LONG NOT NULL,[TableName] TEXT(50),"
                  "[ColumnName] TEXT(50),[TypeProperty] TEXT(50),PRIMARY KEY ([ID]))")
    if tells_key:
        execute(path, f"INSERT INTO InfoTableRelations VALUES (1,'{TABLE}','{KEY}','PrimaryKey')")
    if rows is not None:
        execute(path, table.create())
    if rows:
        execute(path, table.fill(rows, version))


def count_rows(path):
    connection = pyodbc.connect(DRIVER + path)
    count = connection.execute(f"SELECT count(*) FROM {TABLE}").fetchone()[0]
    connection.close()
    return count
