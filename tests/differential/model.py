"""What the update does, said once more and plainly: the model that the program is compared with.

Everything is decided here on ordinary lists and texts; a database is only asked for rows, for its
catalogue, and to carry out the statements that come out of it. All of that is written down in
`calls`, all traces in `traces`. `seen` counts the situations that came up.
"""

import os
import re
from collections import Counter

import odbc

DATABASE_NAMES = [
    "QuillRules", "QuillAddition", "QuillDetails", "QuillBase", "QuillProfiles2010",
    "QuillSettings", "QuillControlStructure", "QuillBitmaps", "QuillProject",
    "QuillCurrentProject", "QuillCurrentAddIn", "QuillProjectStandards", "QuillDetailsBase",
    "QuillKernelEnvironment", "QuillJointsCalculation", "NVCMapping2010", "QuillGratings"]

# The place of a language in the lists of variants.
LANGUAGE_INDEX = {
    1036: 1, 1043: 2, 1031: 3, 2057: 4, 1029: 5, 1049: 6, 1045: 7, 3084: 8, 1033: 9, 9: 10,
    1034: 11, 2052: 13, 1041: 14, 1048: 19, 3082: 20, 1038: 21}
LANGUAGE_IF_UNKNOWN = 4
LANGUAGE_IF_NOT_REGISTERED = 9

COMPARED = ["MajorNumber", "MinorNumber", "CommSPNumber", "BuildNumber"]
WRITTEN = ["CommMajorVersion", "CommMinorVersion", "CommSPNumber", "BuildNumber", "MajorNumber",
           "MinorNumber"]

TEXT_TYPES = (-10, -9, -1, 12, 99)
BIT_TYPE = -7
INTEGER_TYPES = (-6, 4, 5)
FLOAT_TYPES = (2, 3, 6, 7, 8)
DATE_TYPES = (11, 93)
MEMO, MEMO_SIZE = -10, 65535
MOST_COLUMNS = 255

DEFINITION = {
    -10: "[%s] MEMO", -1: "[%s] MEMO", -9: "[%s] TEXT(%d)", 12: "[%s] TEXT(%d)", -7: "[%s] BIT",
    -6: "[%s] BYTE", 5: "[%s] SMALLINT", 4: "[%s] LONG", 7: "[%s] REAL", 3: "[%s] DECIMAL",
    2: "[%s] DOUBLE", 8: "[%s] DOUBLE", 11: "[%s] DATE", 93: "[%s] DATE"}

_CAPITALS = {c: c + 32 for c in range(ord("A"), ord("Z") + 1)}


def fold(text):
    """Comparisons without regard to case know the letters of ASCII only."""
    return text.translate(_CAPITALS)


def same(left, right):
    return fold(left) == fold(right)


def length(text):
    """In 16-bit characters."""
    return len(text) + sum(c > "\uffff" for c in text)


def whole_characters(text):
    """A text that was cut never ends within a character."""
    return text[:-1] if "\ud800" <= text[-1:] <= "\udbff" else text


def number_in(text):
    """The number that a text begins with, 0 if there is none."""
    found = re.match(r"[ \t\n\v\f\r]*([+-]?[0-9]+)", text)
    return int(found.group(1)) if found else 0


def tokens(text, delimiter):
    """Empty places don't exist."""
    return [token for token in text.split(delimiter) if token]


def buffer_kind(sql_type):
    """What a column of the type is fetched as; None if it isn't fetched at all."""
    if sql_type in TEXT_TYPES:
        return odbc.C_WCHAR
    if sql_type == BIT_TYPE:
        return odbc.C_BIT
    if sql_type in INTEGER_TYPES:
        return odbc.C_LONG
    if sql_type in FLOAT_TYPES:
        return odbc.C_DOUBLE
    if sql_type in DATE_TYPES:
        return odbc.C_TIMESTAMP
    return None


EMPTY_BUFFER = {odbc.C_WCHAR: "", odbc.C_BIT: 0, odbc.C_LONG: 0, odbc.C_DOUBLE: 0.0,
                odbc.C_TIMESTAMP: (0, 0, 0), None: ""}


class Buffer:
    """A bound buffer: a NULL leaves it as the row before did."""

    def __init__(self, kind, size=0):
        self.kind = kind
        self.size = size
        self.value = EMPTY_BUFFER[kind]


class Column(Buffer):
    def __init__(self, name, sql_type, size):
        if sql_type == MEMO:
            size = MEMO_SIZE
        super().__init__(buffer_kind(sql_type), size)
        self.name = name
        self.sql_type = sql_type
        self.is_key = False
        self.is_nullable = False
        self.alternate = None
        self.is_hidden = False

    def copy(self):
        column = Column(self.name, self.sql_type, self.size)
        column.is_key = self.is_key
        column.is_nullable = self.is_nullable
        return column

    def is_like(self, other):
        return same(self.name, other.name) and self.sql_type == other.sql_type

    def make_key(self):
        self.is_key = True
        self.is_nullable = False


class Schema:
    def __init__(self, table):
        self.table = table
        self.columns = []
        self.has_key = False

    def find(self, name):
        return next((column for column in self.columns if same(column.name, name)), None)

    def partner_of(self, column):
        return next((own for own in self.columns if own.is_like(column)), None)

    def keys(self):
        return [column for column in self.columns if column.is_key]

    def visible(self, table):
        copy = Schema(table)
        copy.has_key = self.has_key
        copy.columns = [column.copy() for column in self.columns if not column.is_hidden]
        return copy


# ---- Texts of statements -------------------------------------------------------------------------

def value_sql(column):
    value, sql_type = column.value, column.sql_type
    if sql_type in TEXT_TYPES:
        return "'" + value.replace("'", "''") + "'" if value else "NULL"
    if sql_type == BIT_TYPE or sql_type in INTEGER_TYPES:
        return "%d" % value
    if sql_type in FLOAT_TYPES:
        return "%f" % value
    if sql_type in DATE_TYPES:
        return "'%d/%d/%d'" % value
    return ""


def create_table_sql(schema):
    definitions = []
    for column in schema.columns:
        form = DEFINITION.get(column.sql_type, "")
        values = (column.name, column.size) if "%d" in form else (column.name,)
        definitions.append((form % values if form else "") +
                           (" NULL" if column.is_nullable else " NOT NULL"))
    text = "CREATE TABLE " + schema.table
    if not definitions:
        return text
    keys = ",".join("[" + column.name + "]" for column in schema.keys())
    return (text + " (" + " ,".join(definitions) +
            (",PRIMARY KEY (" + keys + "));" if keys else ");"))


# ---- The update ----------------------------------------------------------------------------------

class Update:
    """One run of the program. `folder` is the data folder, `language` what the registry says or
    None, `product` the path of each product database that there is."""

    def __init__(self, folder, language, product):
        self.calls = []
        self.traces = []
        self.seen = Counter()
        if language is None:
            language = LANGUAGE_IF_NOT_REGISTERED
            self.seen["language: not registered"] += 1
        if language not in LANGUAGE_INDEX:
            self.seen["language: unknown"] += 1
        self.language_index = LANGUAGE_INDEX.get(language, LANGUAGE_IF_UNKNOWN)
        self.seen[f"language: place {self.language_index}"] += 1

        updates = os.path.join(folder, "DatabaseUpdate")
        self.patches = oldest_first(self.open_all(updates))
        self.project_patches = self.open_all(os.path.join(updates, "Projects"))
        self.models = [Database(self, product.get(name), name) for name in DATABASE_NAMES]

    def open_all(self, folder):
        """The patches of a folder that can be opened, by the alphabet."""
        names = os.listdir(folder) if os.path.isdir(folder) else []
        names = sorted((name for name in names if name.endswith(".mdb")), key=str.upper)
        opened = [Patch(self, os.path.join(folder, name), name) for name in names]
        for patch in opened:
            if not patch.connected:
                self.seen["patch that can't be opened"] += 1
                patch.close()
        return [patch for patch in opened if patch.connected]

    def trace(self, text):
        self.traces += ["\n", text]

    def run(self):
        targets = [model for model in self.models if model.connected]
        if self.patches and any(model.is_older_than(self.patches[-1]) for model in targets):
            for patch in self.patches:
                for target in targets:
                    if target.is_older_than(patch):
                        self.seen["patch applied"] += 1
                        target.write_version(patch)
                        patch.apply_to(target)
                    else:
                        self.seen["patch not newer"] += 1
        for patch in self.project_patches:
            for target in targets:
                if target.has_older_projects_than(patch):
                    self.seen["project patch applied"] += 1
                    target.write_projects_version(patch)
                    patch.apply_to(target)
                else:
                    self.seen["project patch not newer"] += 1

    def close(self):
        for database in self.patches + self.project_patches + self.models:
            database.close()


def oldest_first(patches):
    """Patches of one version stay in their order."""
    ordered = list(patches)
    i = 1
    while i < len(ordered):
        if ordered[i].is_older_than(ordered[i - 1]):
            ordered[i - 1], ordered[i] = ordered[i], ordered[i - 1]
            i -= 2 if i > 1 else 0
        i += 1
    return ordered


class Database:
    def __init__(self, update, path, name):
        self.update = update
        self.seen = update.seen
        self.name = name
        self.table_names = []
        self.connection = odbc.Connection(path) if path else None
        self.connected = self.connection is not None and self.connection.connected
        self.versions, self.projects, self.info = [], [], []
        if not self.connected:
            update.trace("Error driver connect to database.")
            return
        self.versions = self.pairs("KFVersion")
        self.projects = self.pairs("KFProjectsVersion")
        self.info = self.rows("SELECT * FROM Info", {1: Buffer(odbc.C_WCHAR, 49),
                                                     2: Buffer(odbc.C_WCHAR, 65534),
                                                     3: Buffer(odbc.C_WCHAR, 254)})

    def close(self):
        if self.connection is not None:
            self.connection.close()

    # ---- Statements

    def note(self, text, code):
        self.update.calls.append((self.name, text, code))
        return code

    def execute(self, text):
        statement = self.connection.statement()
        code = self.note(text, statement.execute(text))
        statement.free()
        return code

    def execute_reporting(self, text):
        if odbc.succeeded(self.execute(text)):
            return True
        self.update.trace("Error executeSQL in %s database." % self.name)
        self.update.trace(text)
        return False

    def drop_table(self, table):
        if not odbc.succeeded(self.execute("DROP TABLE " + table)):
            self.seen["drop failed"] += 1
            self.update.trace("Unable to drop table " + table)

    def fetches(self, text, buffers):
        """The rows of a query: fills the buffers, by their positions, and yields for each row. A
        query that fails has none, and a row that can't be fetched is the end."""
        statement = self.connection.statement()
        code = self.note(text, statement.execute(text))
        if odbc.succeeded(code):
            yield from self.fill(statement, buffers)
        else:
            self.seen["query failed"] += 1
        statement.free()

    def fill(self, statement, buffers):
        count = statement.column_count()
        if any(position > count for position in buffers):
            self.seen["position beyond the columns of a query"] += 1
        bound = [(position, buffer) for position, buffer in sorted(buffers.items())
                 if buffer.kind is not None and position <= count]
        first = True
        while odbc.succeeded(statement.fetch()):
            try:
                values = [statement.value(position, buffer.kind, buffer.size)
                          for position, buffer in bound]
            except odbc.Unconvertible:
                self.seen["row that can't be fetched"] += 1
                return
            for (_, buffer), value in zip(bound, values):
                if value is None:
                    self.seen[f"null in a buffer of type {buffer.kind}"] += 1
                    self.seen["null in the first row"] += first
                    continue
                if buffer.kind == odbc.C_WCHAR:
                    self.seen["text that fills its buffer"] += length(value) == buffer.size
                    whole = whole_characters(value)
                    self.seen["text cut before a pair"] += whole != value
                    value = whole
                buffer.value = value
            first = False
            yield

    def rows(self, text, buffers):
        return [tuple(buffer.value for buffer in buffers.values())
                for _ in self.fetches(text, buffers)]

    def pairs(self, table):
        buffers = {1: Buffer(odbc.C_WCHAR, 49), 2: Buffer(odbc.C_WCHAR, 49)}
        return [(attribute, value) for attribute, value in
                self.rows("SELECT * FROM " + table, buffers) if attribute and value]

    # ---- Catalogue

    def table_exists(self, table):
        statement = self.connection.statement()
        self.note("columns of " + table, statement.columns(table))
        exists = statement.fetch() != odbc.NO_DATA
        statement.free()
        return exists

    def all_tables(self):
        """Asked for once, and so without the tables that this run has made since."""
        if not self.table_names:
            statement = self.connection.statement()
            self.note("tables", statement.tables())
            while odbc.succeeded(statement.fetch()):
                self.table_names.append(statement.value(3, odbc.C_WCHAR))
            statement.free()
        return self.table_names

    def read_schema(self, table, hide_other_languages):
        schema = Schema(table)
        statement = self.connection.statement()
        self.note("columns of " + table, statement.columns(table))
        tables = set()
        while odbc.succeeded(statement.fetch()):
            tables.add(statement.value(3, odbc.C_WCHAR))
            column = Column(statement.value(4, odbc.C_WCHAR), statement.value(5, odbc.C_LONG),
                            statement.value(7, odbc.C_LONG))
            column.is_nullable = statement.value(11, odbc.C_LONG) == 1
            column.alternate = self.alternate_of(table, column.name)
            schema.columns.append(column)
        statement.free()
        self.seen["more columns than fit"] += len(schema.columns) > MOST_COLUMNS
        del schema.columns[MOST_COLUMNS:]
        self.seen["columns of several tables"] += len(tables) > 1
        if hide_other_languages:
            for name in self.language_columns(table):
                column = schema.find(name)
                if column:
                    column.is_hidden = True
        return schema

    # ---- Languages

    def info_rows(self, table, kind):
        return [value for name, value, row_kind in self.info
                if same(row_kind, kind) and same(name, table)]

    def table_in_language(self, table):
        """The table of the language, an empty text if it has none; None for an ordinary table."""
        rows = self.info_rows(table, "LanguageDependentTables")
        if not rows:
            return None
        variants = tokens(rows[0], ";")
        index = self.update.language_index
        return variants[index] if index < len(variants) else ""

    def alternate_of(self, table, column):
        index = self.update.language_index
        for value in self.info_rows(table, "LanguageDependent"):
            entries = tokens(value, ";")
            if not entries:
                continue
            base = [fold(name.replace("/UNIQUE", "")) for name in tokens(entries[0], ",")]
            if fold(column) not in base or index >= len(entries):
                continue
            position = base.index(fold(column))
            alternates = tokens(entries[index], ",")
            if position < len(alternates):
                return alternates[position]
        return None

    def language_columns(self, table):
        names = []
        for value in self.info_rows(table, "LanguageDependent"):
            for entry in tokens(value, ";")[1:]:
                # Shorter ones aren't taken for columns of a language.
                names += [name for name in tokens(entry, ",") if length(name) > 1]
        return names

    # ---- Versions

    def version_text(self, attribute):
        return next((value for name, value in self.versions if same(name, attribute)), "")

    def version(self, attribute):
        text = self.version_text(attribute)
        if attribute != "CommSPNumber" and not re.fullmatch("[0-9]*", text):
            self.seen["version that is no number"] += 1
            return 0
        return number_in(text)

    def is_older_than(self, other):
        for attribute in COMPARED:
            own, others = self.version(attribute), other.version(attribute)
            if own != others:
                self.seen[f"versions differ in {attribute}"] += 1
                return own < others
        self.seen["versions are equal"] += 1
        return False

    def write_version(self, patch):
        for attribute in WRITTEN:
            written = self.execute_reporting(
                "UPDATE KFVersion SET [Value]='%d' WHERE [Attribute]='%s'" %
                (patch.version(attribute), attribute))
            self.seen["version written" if written else "version not written"] += 1

    def has_older_projects_than(self, patch):
        for attribute, value in patch.projects:
            own = next((own for name, own in self.projects if same(name, attribute)), None)
            if own is None or number_in(value) > number_in(own):
                return True
        return False

    def write_projects_version(self, patch):
        may_exist = True
        if not self.table_exists("KFProjectsVersion"):
            create = ("CREATE TABLE KFProjectsVersion ([Attribute] varchar(255) PRIMARY KEY NOT "
                      "NULL,[Value] varchar(255) NOT NULL)")
            if not self.execute_reporting(create):
                self.seen["projects table can't be created"] += 1
                self.update.trace("Unable to create table KFProjectsVersion\nSql:" + create)
                return
            self.seen["projects table created"] += 1
            may_exist = False
        for attribute, value in patch.projects:
            if may_exist and self.execute_reporting(
                    "UPDATE KFProjectsVersion SET [Value]='%s' WHERE [Attribute]='%s'" %
                    (value, attribute)):
                self.seen["project attribute updated"] += 1
                continue
            inserted = self.execute_reporting(
                "INSERT INTO [KFProjectsVersion] ([Attribute],[Value]) VALUES('%s','%s')" %
                (attribute, value))
            self.seen["project attribute inserted" if inserted else
                      "project attribute refused"] += 1


class Patch(Database):
    def __init__(self, update, path, name):
        super().__init__(update, path, name)
        self.steps = []
        if not self.connected:
            return
        table = "UpdateTable"
        variant = self.table_in_language(table)
        if variant is not None:
            exists = self.table_exists(variant)
            self.seen["update table of the language" if exists else
                      "update table of the language is missing"] += 1
            table = variant if exists else table
        name = [Buffer(odbc.C_WCHAR, 49) for _ in range(3)]
        flag = [Buffer(odbc.C_BIT) for _ in range(3)]
        self.steps = self.rows("SELECT * FROM " + table + " ORDER BY [ID]",
                               dict(enumerate(name + flag, start=2)))

    def apply_to(self, target):
        for step in self.steps_for(target):
            PatchTable(self, target, *step)

    def steps_for(self, target):
        steps = []
        for database, source, target_table, *flags in self.steps:
            if not same(database, target.name):
                self.seen["step of another database"] += 1
            elif same(target_table, "InfoTableRelations"):
                # The keys of all other tables are read from there, so it comes first.
                self.seen["step for the relations"] += 1
                steps.insert(0, (database, source, target_table, *flags))
            else:
                steps += [(database, *tables, *flags)
                          for tables in self.expand(source, target_table, target)]
        return steps

    def expand(self, source, target_table, target):
        sources = match_tables(source, self)
        targets = match_tables(target_table, target)
        self.seen["star on both sides"] += bool(sources and targets)
        self.seen["star in the source"] += bool(sources and not targets)
        self.seen["star in the target"] += bool(targets and not sources)
        self.seen["star that matches nothing"] += "*" in source and not sources
        return [(s, t) for s in sources or [source] for t in targets or [target_table]]


def match_tables(pattern, database):
    star = pattern.rfind("*")
    if star < 1:
        database.seen["star in front"] += star == 0
        return []
    prefix, suffix = fold(pattern[:star]), pattern[star + 1:]
    tables = database.all_tables()
    matching = [name for name in tables if fold(name).startswith(prefix)]
    if not suffix:
        return matching
    # The end of a name is compared with the text before the star, not with the one behind it.
    # Without a table of that beginning all tables are looked at.
    found = [name for name in matching or tables
             if len(name) >= len(suffix) and fold(name[len(name) - len(suffix):]) == prefix]
    database.seen["star with a text behind it" + (", matching" if found else "")] += 1
    return found


class PatchTable:
    """One step of a patch, carried out by being made."""

    def __init__(self, patch, target, database, source_table, target_table, delete, recreate,
                 create):
        self.patch, self.target = patch, target
        self.update, self.seen = patch.update, patch.seen
        self.target_table = target_table
        self.delete, self.recreate, self.create = bool(delete), bool(recreate), bool(create)

        variant = patch.table_in_language(source_table)
        if variant is not None:
            self.seen["source table of the language" + ("" if variant else " is missing")] += 1
            source_table = variant
        self.source_table = source_table
        if not patch.table_exists(source_table):
            self.seen["source table not found"] += 1
            self.update.trace("Source table %s not found in patch database" % source_table)
            return
        self.present = target.table_exists(target_table)
        self.seen["flags %d%d%d, target %s" % (self.delete, self.recreate, self.create,
                                               "present" if self.present else "absent")] += 1
        if not self.present and (self.delete or not (self.recreate or self.create)):
            self.update.trace("Target table %s not found in database %s" %
                              (target_table, target.name))
            return
        keep_languages = same(database, "QuillProfiles2010")
        self.source = patch.read_schema(source_table, not keep_languages)
        self.mark_keys(self.source)
        if self.recreate and self.present:
            target.drop_table(target_table)
        if not self.make_target(keep_languages):
            return
        if self.delete:
            self.delete_rows()
        elif not (self.create and self.present):
            self.copy_rows()

    def make_target(self, keep_languages):
        if not self.recreate and not (self.create and not self.present):
            self.target_schema = self.target.read_schema(self.target_table, False)
            self.mark_keys(self.target_schema)
            return True
        self.target_schema = self.source.visible(self.target_table)
        hidden = len(self.source.columns) - len(self.target_schema.columns)
        self.seen["created without other languages"] += hidden > 0
        self.seen["created with all languages"] += keep_languages and any(
            self.source.find(name) for name in self.patch.language_columns(self.source_table))
        text = create_table_sql(self.target_schema)
        if self.target.execute_reporting(text):
            self.seen["table created"] += 1
            return True
        self.seen["table can't be created"] += 1
        self.update.trace("Unable to create table %s\nSql:%s" % (self.target_table, text))
        return False

    def mark_keys(self, schema):
        table = self.target_table
        found = False
        if not same(table, "InfoTableRelations"):
            query = ("SELECT [ColumnName],[TypeProperty] FROM [InfoTableRelations] "
                     "WHERE [TableName] = '%s'" % table)
            for name, kind in self.target.rows(query, {1: Buffer(odbc.C_WCHAR, 254),
                                                       2: Buffer(odbc.C_WCHAR, 254)}):
                if not same(kind, "PrimaryKey") and not same(kind, "Unique"):
                    self.seen["relation of another kind"] += 1
                    continue
                column = schema.find(name)
                if column is None:
                    self.seen["relation of an unknown column"] += 1
                    continue
                column.make_key()
                schema.has_key = found = True
            if found:
                self.seen["key of %d columns" % min(len(schema.keys()), 3)] += 1
            else:
                self.seen["key is the first column"] += 1
                self.update.trace("Unable to read PrimaryKey or Unique info for table %s!\n."
                                  "First column will be marked as PK!" % table)
        if not found and schema.columns:
            schema.columns[0].make_key()

    # ---- Rows

    def effective_sql(self, column):
        """The value that is written: that of the language's column, unless it is empty."""
        text = "NULL"
        if column.alternate:
            alternate = self.source.find(column.alternate)
            if alternate is None:
                self.seen["alternate column is missing"] += 1
            else:
                text = value_sql(alternate)
                self.seen["alternate is empty" if text == "NULL" else "alternate is used"] += 1
        if text != "NULL":
            return text
        self.seen[f"literal of type {column.sql_type}" if column.kind else "no literal"] += 1
        return value_sql(column)

    def pairs(self):
        for column in self.source.columns:
            partner = self.target_schema.partner_of(column)
            if partner is None:
                self.seen["column without a partner"] += 1
                continue
            self.seen["partner in another spelling"] += column.name != partner.name
            self.seen["closing bracket in a name"] += "]" in partner.name
            yield column, partner

    def update_sql(self):
        settings, conditions = [], []
        for column, partner in self.pairs():
            start = "[" + partner.name + "]="
            if partner.is_key:
                conditions.append(start + value_sql(column))
            else:
                settings.append(start + self.effective_sql(column))
        return ("UPDATE [" + self.target_schema.table + "]  SET " + ",".join(settings) +
                " WHERE " + " AND ".join(conditions))

    def insert_sql(self):
        pairs = list(self.pairs())
        return ("INSERT INTO [" + self.target_schema.table + "] (" +
                ",".join("[" + partner.name + "]" for _, partner in pairs) + ") VALUES (" +
                ",".join(self.effective_sql(column) for column, _ in pairs) + ");")

    def copy_rows(self):
        insert_only = self.recreate or self.create
        for _ in self.patch.fetches("SELECT * FROM " + self.source_table,
                                    dict(enumerate(self.source.columns, start=1))):
            if not insert_only:
                code = self.target.execute(self.update_sql())
                if odbc.succeeded(code):
                    self.seen["row updated"] += 1
                    continue
                self.seen["row not found" if code == odbc.NO_DATA else "update failed"] += 1
            text = self.insert_sql()
            if self.target.execute(text) == odbc.ERROR:
                self.seen["insert failed"] += 1
                self.update.trace(text)
            else:
                self.seen["row inserted"] += 1

    def delete_rows(self):
        if self.source.has_key:
            query = ("SELECT " + ",".join("[" + key.name + "] " for key in self.source.keys()) +
                     "FROM " + self.source_table)
            self.seen["deletion by key"] += 1
            # Source and target are paired by the place among their keys.
            for _ in self.patch.fetches(query,
                                        dict(enumerate(self.target_schema.keys(), start=1))):
                self.delete_row((key, key) for key in self.target_schema.keys())
        else:
            self.seen["deletion by all columns"] += 1
            for _ in self.patch.fetches("SELECT * FROM " + self.source_table,
                                        dict(enumerate(self.source.columns, start=1))):
                self.delete_row(self.pairs())

    def delete_row(self, pairs):
        text = ("DELETE FROM " + self.target_schema.table + " WHERE " +
                " AND ".join("[" + column.name + "]=" + value_sql(column)
                             for column, _ in pairs) + ";")
        code = self.target.execute(text)
        if code == odbc.ERROR:
            self.seen["delete failed"] += 1
            self.update.trace("Unable to delete record! SQL = '%s'" % text)
        else:
            self.seen["row to delete not found" if code == odbc.NO_DATA else "row deleted"] += 1
