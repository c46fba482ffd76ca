"""Small random machines: product databases, patches, a language. All of a machine follows from its
seed, and each database is a list of SQL statements, so that it can be kept as a text.

Names and values come from small pools, because what is worth seeing is what meets: keys that are in
both databases, columns that differ in their capitals, versions that are equal.
"""

import random

from model import DATABASE_NAMES, LANGUAGE_INDEX, LANGUAGE_IF_UNKNOWN, LANGUAGE_IF_NOT_REGISTERED

TABLES = ["Parts", "PartsNew", "Parts_1", "PartsX1", "Bolts", "bolts2", "Order", "My Parts",
          "Größe", "Plates", "2nd", "XParts"]
COLUMNS = ["Code", "Name", "Weight", "Since", "Note", "Used", "Id", "Count", "Order", "Z",
           "Full Name", "Größe", "a_b", "Line[1"]
TYPES = (["TEXT(10)", "TEXT(50)", "TEXT(3)", "TEXT(1)", "TEXT(255)", "MEMO", "BIT", "BYTE",
          "SMALLINT", "LONG", "LONG", "REAL", "DOUBLE", "DECIMAL", "DECIMAL(18,4)", "CURRENCY",
          "DATE"] * 5 + ["CHAR(5)"] * 6 + ["BIGINT", "BIGINT", "BINARY(4)", "COUNTER"])
KEY_TYPES = ["TEXT(10)", "TEXT(50)", "TEXT(3)", "LONG", "LONG", "SMALLINT", "DATE", "MEMO"]
TEXTS = ["a", "b", "O'Neil", "''", "A", "x  ", " ", "Müller", "ŽLUŤ", "𝔘𝔫𝔦", "ab𝔘", "[x]", "100%",
         "line\nbreak", "NULL", "null", "7", "007", "-3", "2.50", "a;b", "x\\y", "{d}", "/*", "--",
         "tab\t", "abcdefghijklmnopqrstuvwxyz", "日本語"]
DATES = ["9/3/2007", "2007-03-09", "2010-12-31 23:59:59", "1/1/1", "1900-01-01", "31/12/2010"]
NO_LANGUAGE = [1040, 0, 12]


def quoted(text):
    return "'" + text.replace("'", "''") + "'"


def bracketed(name):
    return '"' + name + '"' if "]" in name else "[" + name + "]"


class Machine:
    """What the seed stands for. `databases` holds the statements of each file below the data
    folder, or bytes that are no database."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.seed = seed
        self.databases = {}
        self.product = {}
        self.language = self.one_of([*LANGUAGE_INDEX, *NO_LANGUAGE, None])
        known = LANGUAGE_IF_NOT_REGISTERED if self.language is None else self.language
        self.place = LANGUAGE_INDEX.get(known, LANGUAGE_IF_UNKNOWN)

        self.layouts = {}
        for table in self.random.sample(TABLES, self.random.randint(1, 3)):
            self.layouts[table] = self.layout()
        if seed % 10 == 0:
            self.one_of([*self.layouts.values()]).append(("End]", "LONG", ""))
        if "Parts_1" in self.layouts:
            self.layouts.setdefault("PartsX1", self.layout())
        self.keys = {table: self.some(self.layout_keys(layout))
                     for table, layout in self.layouts.items()}
        self.sources = {}
        self.rows = {}
        for name in self.random.sample(DATABASE_NAMES, self.random.choice([1, 1, 1, 2, 2, 3, 4])):
            self.add_product(name)
        if self.chance(0.25) and "QuillProfiles2010" not in self.product:
            self.add_product("QuillProfiles2010")
        for number in range(self.random.choice([0, 1, 1, 1, 2, 2, 3])):
            self.add_patch(f"DatabaseUpdate/{self.file_name(number)}.mdb")
        for number in range(self.random.choice([0, 0, 0, 1, 1, 2])):
            self.add_patch(f"DatabaseUpdate/Projects/{self.file_name(number + 10)}.mdb")

    # ---- Chance

    def chance(self, share):
        return self.random.random() < share

    def one_of(self, values):
        return self.random.choice(values)

    def some(self, values, most=3):
        count = min(self.random.choice([0, 1, 1, 1, 2, 2, 3]), most, len(values))
        return self.random.sample(values, count)

    def capitals(self, text, share=0.15):
        if not self.chance(share):
            return text
        return self.one_of([text.upper, text.lower, text.swapcase])()

    def file_name(self, number):
        return self.one_of("abxyMN") + self.one_of(["", "patch", " 7"]) + str(number)

    # ---- Layouts: lists of (name, type, clause)

    def layout(self):
        names = self.random.sample(COLUMNS, self.one_of([2, 3, 3, 4, 4, 5, 6]))
        if self.chance(0.015):
            return [(f"C{i}", self.one_of(["LONG", "TEXT(3)"]), "") for i in range(258)]
        return [(name, self.one_of(KEY_TYPES if i < 2 or self.chance(0.4) else TYPES), "")
                for i, name in enumerate(names if self.chance(0.95) else names[:1])]

    @staticmethod
    def layout_keys(layout):
        return [name for name, kind, _ in layout[:3] if kind in KEY_TYPES]

    def varied(self, layout):
        """The same table as another database has it."""
        columns = []
        for name, kind, clause in layout:
            if self.chance(0.04 if len(layout) < 10 else 0.002):
                continue
            if self.chance(0.05):
                kind = self.one_of(TYPES)
            columns.append((self.capitals(name, 0.06), kind, clause))
        if self.chance(0.15):
            self.random.shuffle(columns)
        if self.chance(0.12):
            columns.append((self.one_of(COLUMNS), self.one_of(TYPES), ""))
        unique = {}
        for column in columns or [("Only", "LONG", "")]:
            unique.setdefault(column[0].casefold(), column)
        return list(unique.values())

    def value(self, kind):
        word = kind.split("(")[0]
        if self.chance(0.08):
            return "NULL"
        if word in ("TEXT", "MEMO", "CHAR") or self.chance(0.004):
            if self.chance(0.04):
                return "''"
            if self.chance(0.03):
                return quoted(self.one_of(TEXTS) * self.random.randint(2, 60))
            if word == "MEMO" and self.chance(0.015):
                return quoted(self.one_of("x'é𝔘") * self.one_of([65535, 65536]))
            if self.chance(0.1):
                return quoted("".join(self.random.choices("abc'é𝔘", k=self.random.randint(1, 40))))
            return quoted(self.one_of(TEXTS[:3] if self.chance(0.6) else TEXTS))
        if word == "BIT":
            return self.one_of(["0", "1", "1", "-1" if self.chance(0.1) else "0"])
        if word == "BYTE":
            return str(self.one_of([0, 1, 7, 255]))
        if word == "SMALLINT":
            return str(self.one_of([0, 1, 1, 2, 2, -3, 32767, -32768]))
        if word in ("LONG", "COUNTER"):
            return str(self.one_of([1, 1, 2, 2, 3, 3, -7, 0, 2147483647, -2147483648]))
        if word == "BIGINT":
            return str(self.one_of([1, -1, 9007199254740993]))
        if word == "BINARY":
            return "X'0102'"
        if word == "DATE":
            return quoted(self.one_of(DATES[:2] if self.chance(0.5) else DATES))
        if self.chance(0.4):
            return repr(self.random.uniform(-9, 9) * 10.0 ** self.random.randint(-8, 14))
        return self.one_of(["0", "1", "-2.5", "0.0078125", "-0.0234375", "3.1415926535897931",
                            "0.0000004", "0.0000005",
                            "1e15", "123456789.123456789", "-1e-9", "2.675", "1e300"])

    def row(self, kind_of_rows, columns):
        """Rows of one kind resemble each other in all databases."""
        known = self.rows.setdefault(kind_of_rows, [])
        model = self.one_of(known) if known and self.chance(0.6) else {}
        values = {}
        for column, kind, _ in columns:
            place = (column.casefold(), kind)
            if column.endswith(("_1", "_2")) and self.chance(0.25):
                values[place] = "''"
            elif place in model and self.chance(0.92):
                values[place] = model[place]
            else:
                values[place] = self.value(kind)
        known.append(values)
        return values.values()

    def table_sql(self, name, columns, rows, kind_of_rows, constrained=False):
        """Rows that the table itself refuses are left out, by its own word for it."""
        definitions = [bracketed(column) + " " + kind + clause for column, kind, clause in columns]
        if constrained and self.chance(0.7):
            keys = [c for c, kind, _ in columns if kind in KEY_TYPES][:self.random.randint(1, 2)]
            if keys:
                definitions.append("PRIMARY KEY (" + ", ".join(map(bracketed, keys)) + ")")
        if constrained and self.chance(0.15):
            definitions.append("UNIQUE (" + bracketed(self.one_of(columns)[0]) + ")")
        statements = ["CREATE TABLE " + bracketed(name) + " (\n  " + ",\n  ".join(definitions) +
                      ")"]
        for _ in range(rows):
            values = ", ".join(self.row(kind_of_rows, columns))
            statements.append(f"INSERT OR IGNORE INTO {bracketed(name)} VALUES ({values})")
        return statements

    # ---- The tables of fixed form

    def version_sql(self, around):
        if self.chance(0.03):
            return []
        numbers = {"CommMajorVersion": str(2000 + self.random.randint(0, 9)),
                   "CommMinorVersion": str(self.random.randint(0, 3))}
        for attribute in ("MajorNumber", "MinorNumber", "CommSPNumber", "BuildNumber"):
            ahead = self.random.randint(0, around) if self.chance(0.4) else 0
            numbers[attribute] = str(1 + ahead)
        if self.chance(0.15):
            numbers[self.one_of([*numbers])] = self.one_of(
                ["12a", "-3", " 7", "abc", "", "0" * 48 + "123", "2" * 9 + "x" * 60, "007", "1.5",
                 "+4", None])
        rows = [(self.capitals(name, 0.05), value) for name, value in numbers.items()]
        self.random.shuffle(rows)
        if self.chance(0.1):
            rows.pop()
        if self.chance(0.05):
            rows.append((self.one_of(rows)[0].upper(), "9"))
        if self.chance(0.05):
            rows.insert(self.random.randint(0, 3), (self.one_of([None, "", "Else"]), "3"))
        names = ("Attribute", "Value") if self.chance(0.97) else ("Name", "Number")
        return self.pair_table("KFVersion", names, rows)

    def projects_sql(self, is_patch):
        if self.chance(0.3 if is_patch else 0.35):
            if not is_patch and self.chance(0.25):
                return ["CREATE TABLE Other ([A] LONG)",
                        "CREATE INDEX KFProjectsVersion ON Other ([A])"]
            return []
        attributes = ["Steel", "Steel", "steel", "STEEL", "Grades", "Grades", "Wood", "O'Neil",
                      "", None, "Long" * 20]
        values = ["1", "2", "3", "10", "abc", "-1", "", "4x", None, "0" * 48 + "123"]
        rows = [(self.one_of(attributes), self.one_of(values))
                for _ in range(self.random.choice([0, 1, 2, 3]))]
        return self.pair_table("KFProjectsVersion", ("Attribute", "Value"), rows)

    def pair_table(self, table, names, rows):
        kind = self.one_of(["TEXT(255)", "TEXT(50)", "MEMO"])
        value_kind = "LONG" if self.chance(0.04) else kind
        statements = [f"CREATE TABLE {table} ([{names[0]}] {kind}, [{names[1]}] {value_kind})"]
        for row in rows:
            values = ", ".join("NULL" if value is None else quoted(value) for value in row)
            statements.append(f"INSERT INTO {table} VALUES ({values})")
        return statements

    def relations_rows(self):
        rows = []
        for table, keys in self.keys.items():
            for key in keys:
                kind = self.one_of(["PrimaryKey"] * 4 + ["Unique", "primarykey", "UNIQUE", "Index"])
                rows.append((self.capitals(table, 0.05), self.capitals(key), kind))
            if self.chance(0.1):
                rows.append((table, self.one_of(COLUMNS), "PrimaryKey"))
        return rows

    def relations_sql(self, table, share):
        names = ["TableName", "ColumnName", "TypeProperty" if self.chance(0.97) else "Kind"]
        order = names if self.chance(0.8) else [names[1], names[0], names[2]]
        columns = ", ".join(f"[{name}] TEXT(255)" for name in order)
        statements = [f"CREATE TABLE {table} ({columns})"]
        for row in self.relations_rows():
            if self.chance(share):
                values = ", ".join("NULL" if self.chance(0.04) else quoted(row[names.index(name)])
                                   for name in order)
                statements.append(f"INSERT INTO {table} VALUES ({values})")
        return statements

    # ---- Product databases

    def add_product(self, name):
        path = "Kernel/Data/model.mdb" if name == "QuillCurrentProject" else f"Databases/{name}.mdb"
        self.product[name] = path
        statements = self.version_sql(1) + self.projects_sql(False)
        if self.chance(0.93):
            statements += self.relations_sql("InfoTableRelations", 0.95)
        for table, layout in self.layouts.items():
            if self.chance(0.04):
                statements.append(f"CREATE VIEW {bracketed(table)} AS SELECT 1 AS [Code]")
            elif self.chance(0.8):
                statements += self.table_sql(table, self.constrained(self.varied(layout)),
                                             self.random.randint(0, 4), table, constrained=True)
        if self.chance(0.05):
            statements += self.info_sql([("Parts", "Name;Name_1", "LanguageDependent")])
        self.databases[path] = statements

    def constrained(self, columns):
        return [(name, kind, " NOT NULL" if self.chance(0.2) else "") for name, kind, _ in columns]

    # ---- Patches

    def add_patch(self, path):
        if self.chance(0.04):
            self.databases[path] = b"This is no database, but a file that bears its name.\n" * 40
            return
        statements = self.version_sql(2) + self.projects_sql(True)
        tables, info = {}, []
        for table, layout in self.layouts.items():
            source = table if self.chance(0.7) else self.one_of(TABLES)
            if source not in tables:
                self.sources[source] = table
                tables[source] = self.varied(layout)
                if self.chance(0.7):
                    self.add_language_columns(source, tables[source], info)
                if self.chance(0.3):
                    self.add_language_tables(source, tables, info)
        names = {}
        for name, columns in tables.items():
            names.setdefault(name.casefold(), (name, columns))
        for name, columns in names.values():
            statements += self.table_sql(name, self.constrained(columns) if self.chance(0.2) else
                                         columns, self.random.choice([0, 1, 2, 3, 4, 6, 8]),
                                         self.sources[name])
        steps = self.steps([name for name, _ in names.values()], info)
        if any(step[2].casefold() == "infotablerelations" for step in steps):
            statements += self.relations_sql("NewRelations", 0.7)
        self.add_update_tables(steps, statements, info)
        if info or self.chance(0.1):
            statements += self.info_sql(info)
        self.databases[path] = statements

    def add_language_columns(self, table, columns, info):
        texts = [(name, kind) for name, kind, _ in columns if kind.startswith(("TEXT", "MEMO"))]
        texts = texts if texts and self.chance(0.9) else [(n, k) for n, k, _ in columns]
        base = self.random.sample(texts, min(len(texts), self.random.choice([1, 2, 2])))
        taken = {name.casefold() for name, _, _ in columns}
        variants = []
        for suffix in ("_1", "_2"):
            variant = []
            for name, kind in base:
                other = name + suffix if self.chance(0.8) else self.one_of("QW")
                if other.casefold() not in taken and self.chance(0.65):
                    taken.add(other.casefold())
                    columns.insert(self.random.randint(0, len(columns)),
                                   (other, kind if self.chance(0.93) else self.one_of(TYPES), ""))
                variant.append(self.capitals(other, 0.08))
            variants.append(variant[:1] if self.chance(0.2) else variant)
        entries = [self.one_of(variants) for _ in range(self.length_of_list())]
        marks = ["", "", "", "/UNIQUE", "/unique"]
        first = ",".join(self.capitals(name, 0.05) + self.one_of(marks) for name, _ in base)
        lists = [first] + [self.one_of([",", ",", ",", ",,"]).join(entry) for entry in entries]
        info.append((self.capitals(table, 0.08), self.list_text(lists),
                     self.capitals("LanguageDependent")))
        if self.chance(0.45):
            other, more = self.one_of(columns)[0], self.one_of(columns)[0]
            info.insert(self.random.randint(0, len(info)),
                        (table, f"{more},{base[-1][0]}" + f";{other}" * self.length_of_list() +
                         self.one_of(["", ",", f",{more}"]), "LanguageDependent"))

    def add_language_tables(self, table, tables, info):
        variants = [table.rstrip("*") + suffix for suffix in ("FR", "DE")]
        for variant in variants:
            if self.chance(0.85):
                tables.setdefault(variant, self.varied(tables[table]))
                self.sources[variant] = self.sources[table]
        entries = [table] + [self.one_of(variants) for _ in range(self.length_of_list())]
        info.append((self.capitals(table, 0.08), self.list_text(entries),
                     self.capitals("LanguageDependentTables")))

    def length_of_list(self):
        return max(0, self.place + self.one_of([-1, 0, 0, 1, 2, 3]))

    def list_text(self, entries):
        text = self.one_of([";", ";", ";", ";;"]).join(entries)
        return self.one_of(["", "", "", "", ";"]) + text + self.one_of(["", "", ";"])

    def info_sql(self, rows):
        width = 3 if self.chance(0.98) else 2
        columns = ["[Name] TEXT(50)", "[Value] MEMO", "[Type] TEXT(255)"][:width]
        statements = ["CREATE TABLE Info (" + ", ".join(columns) + ")"]
        if self.chance(0.1):
            rows.insert(self.random.randint(0, len(rows)), ("Parts", "Name;X", "Something"))
        for row in rows:
            values = ", ".join("NULL" if self.chance(0.01) else quoted(value)
                               for value in row[:width])
            statements.append(f"INSERT INTO Info VALUES ({values})")
        return statements

    def steps(self, sources, info):
        dependent = [name for name, _, kind in info if kind.casefold() == "languagedependenttables"]
        steps = []
        for _ in range(self.random.choice([2, 3, 5, 7])):
            source = self.one_of(sources + dependent)
            target = self.sources.get(source)
            if target is None or self.chance(0.15):
                target = self.one_of([*self.layouts])
            if self.chance(0.03):
                source = self.one_of(sources)[:1] + "*"
                target = self.one_of([*self.layouts])[:1] + "*"
            elif self.chance(0.1):
                source = self.one_of(["Parts*", "B*", "*Parts", "Pa*ts", "Parts*xxxxx", "s*x",
                                      "Absent", "absent*", "P*x", "*", "InfoTableRelations", ""])
            elif self.chance(0.17):
                target = self.one_of(["Parts*", "NewTable", "New Table", "b*", "*", "NewTable*",
                                      "Parts*xxxxx", "s*x", "Pa*ts", "n" * 60])
            elif self.chance(0.12):
                source, target = self.one_of(["NewRelations"] * 3 + [source]), self.capitals(
                    "InfoTableRelations", 0.3)
            database = self.one_of([*self.product]) if self.chance(0.95) else self.one_of(
                DATABASE_NAMES)
            flags = self.one_of([(0, 0, 0)] * 5 + [(0, 1, 0), (0, 0, 1), (0, 1, 1), (1, 0, 0)] * 2 +
                                [(1, 1, 0), (1, 0, 1), (1, 1, 1)])
            steps.append((self.capitals(database, 0.08), self.capitals(source, 0.08),
                          self.capitals(target, 0.08), *flags))
        return steps

    def add_update_tables(self, steps, statements, info):
        names = ["UpdateTable"] if self.chance(0.97) else []
        if self.chance(0.12):
            info.append(("UpdateTable", self.list_text(
                ["UpdateTable"] + ["UpdateTableFR"] * self.length_of_list()),
                "LanguageDependentTables"))
            names += ["UpdateTableFR"] if self.chance(0.6) else []
        flag = "BIT" if self.chance(0.9) else "LONG"
        columns = ["[ID] LONG" if self.chance(0.98) else "[Number] LONG", "[Db] TEXT(50)",
                   "[Source] TEXT(255)", "[Target] TEXT(255)", f"[D] {flag}", f"[R] {flag}",
                   f"[C] {flag}", "[Remark] MEMO"]
        width = self.one_of([8, 7] * 12 + [6])
        for name in names:
            statements.append(f"CREATE TABLE {name} (" + ", ".join(columns[:width]) + ")")
            places = self.random.sample(range(1, 50), len(steps))
            for place, step in zip(places, steps):
                values = [quoted(value) if isinstance(value, str) else str(value) for value in step]
                values = ["NULL" if self.chance(0.015) else value for value in values]
                row = [str(place), *values, "NULL"][:width]
                statements.append(f"INSERT INTO {name} VALUES (" + ", ".join(row) + ")")

    # ---- What stands outside the databases

    def surroundings(self):
        lines = [] if self.language is None else [f"language {self.language}"]
        lines += [f"damaged {path}" for path, content in self.databases.items()
                  if isinstance(content, bytes)]
        for name in ("QuillProfiles2010", "NVCMapping2010"):
            if name in self.product:
                lines.append(f"connection {name} {self.connection(name)}")
        return "".join(line + "\n" for line in lines)

    def configuration(self):
        """Of the databases that aren't there some are configured all the same."""
        lines = [f'<DataSource Platform="x64" Name="{name}" Value="{self.connection(name)}" />'
                 for i, name in enumerate(DATABASE_NAMES)
                 if name in self.product or (self.seed + i) % 5 == 0]
        return "\n".join(["<Kestrelforge>", *lines, "</Kestrelforge>", ""])

    @staticmethod
    def connection(name):
        return ("DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=C:\\Data\\Databases\\" + name + ".mdb")
