"""Finds the places of a C++ source where a small change makes another program.

It works on tokens, with as much of the grammar as it takes to tell statements from declarations.
The sources are formatted: an operator of two operands stands between blanks, the brackets of a
template don't."""
import random
import re
from collections import Counter, namedtuple

TOKEN = re.compile(r"""
    (?P<skip>\s+ | //[^\n]* | /\*.*?\*/ | ^\#(?:[^\n\\]|\\.)*)
  | (?P<text>L?"(?:[^"\\\n]|\\.)*")
  | (?P<character>L?'(?:[^'\\\n]|\\.)+')
  | (?P<number>\d[\w.]*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<sign><<=|>>=|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|::|.)
""", re.VERBOSE | re.DOTALL | re.MULTILINE)

COMPARISONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
LOGIC = {"&&": "||", "||": "&&"}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "/", "|": "&", "&": "|", "<<": ">>",
              ">>": "<<", "+=": "-=", "-=": "+=", "++": "--", "--": "++"}
NAMED = {
    "true": "false", "false": "true", "TRUE": "FALSE", "FALSE": "TRUE",
    "SQL_SUCCESS": "SQL_SUCCESS_WITH_INFO", "SQL_NO_DATA": "SQL_ERROR", "SQL_ERROR": "SQL_NO_DATA",
    "SQL_INVALID_HANDLE": "SQL_NO_DATA", "SQL_NTS": "0", "SQL_NULLABLE": "SQL_NO_NULLS",
    "SQL_C_WCHAR": "SQL_C_CHAR", "SQL_C_BIT": "SQL_C_LONG", "SQL_C_LONG": "SQL_C_SSHORT",
    "SQL_C_SSHORT": "SQL_C_LONG", "SQL_C_SLONG": "SQL_C_SSHORT", "SQL_C_DOUBLE": "SQL_C_LONG",
    "SQL_HANDLE_ENV": "SQL_HANDLE_DBC", "SQL_HANDLE_DBC": "SQL_HANDLE_ENV",
    "SQL_HANDLE_STMT": "SQL_HANDLE_DBC", "SQL_OV_ODBC3": "SQL_OV_ODBC2",
    "SQL_MODE_READ_WRITE": "SQL_MODE_READ_ONLY", "SQL_DRIVER_NOPROMPT": "SQL_DRIVER_PROMPT",
    "ERROR_SUCCESS": "ERROR_FILE_NOT_FOUND", "REG_SZ": "REG_EXPAND_SZ",
    "KEY_READ": "KEY_WRITE", "KEY_WRITE": "KEY_READ", "KEY_ALL_ACCESS": "KEY_READ",
    "KEY_QUERY_VALUE": "KEY_SET_VALUE", "KEY_SET_VALUE": "KEY_QUERY_VALUE",
    "KEY_ENUMERATE_SUB_KEYS": "KEY_QUERY_VALUE", "KEY_WOW64_32KEY": "KEY_WOW64_64KEY",
    "HKEY_LOCAL_MACHINE": "HKEY_CURRENT_USER", "HKEY_CURRENT_USER": "HKEY_LOCAL_MACHINE",
    "HKEY_CLASSES_ROOT": "HKEY_CURRENT_USER",
}
PAIRS = {")": "(", "]": "[", "}": "{"}
KEYWORDS = {"if", "while", "for", "switch", "return", "sizeof", "catch", "else", "do", "case",
            "default", "const", "constexpr", "static", "auto", "using", "break", "continue",
            "throw", "template", "static_assert", "extern", "std", "try", "new", "__extension__"}

Token = namedtuple("Token", "kind text start end")
# The characters from start to end are replaced. A site is told again by its file and two texts, the
# lines that it touches, before and after, without their indentation, and by its number among the
# places of the file where these are the same.
Site = namedtuple("Site", "file kind start end replacement before after number")


class Source:
    def __init__(self, file, text):
        self.file, self.text = file, text
        self.tokens = [Token(match.lastgroup, match[0], match.start(), match.end())
                       for match in TOKEN.finditer(text) if match.lastgroup != "skip"]
        self.partner = {}  # index of the other bracket
        self.scope = []    # for each token: "code", "list" or "declarations"
        self.outside = []  # the opening bracket around it
        self.excluded = set()
        self.read_structure()

    def word(self, index):
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""

    def read_structure(self):
        scopes, opened, begin = ["declarations"], [], 0
        for i, token in enumerate(self.tokens):
            if token.text in PAIRS and opened:
                first = opened.pop()
                self.partner[i], self.partner[first] = first, i
                if token.text == "}":
                    scopes.pop()
                elif self.word(first - 1) == "static_assert" or self.word(first + 1) == "[":
                    self.excluded.update(range(first, i))
            self.scope.append(scopes[-1])
            self.outside.append(self.word(opened[-1]) if opened else "")
            if token.text in "([{":
                opened.append(i)
                if token.text == "{":
                    scopes.append(self.kind_of_brace(i, begin, scopes[-1]))
            if token.text in ";{}":
                begin = i + 1

    def kind_of_brace(self, brace, begin, scope):
        before = self.word(brace - 1)
        if scope == "list" or before in ("=", ",", "(", "return"):
            return "list"
        if scope == "code":
            starts = before in (")", ";", "{", "}", ":", "else", "do", "try", "const")
            return "code" if starts else "list"
        heading = [token.text for token in self.tokens[begin:brace]]
        if "enum" in heading:
            return "list"
        if before == ")" or before in ("const", "override"):
            return "code"
        return "declarations" if {"namespace", "class", "struct"} & set(heading) else "list"

    def between_blanks(self, token):
        return self.text[token.start - 1].isspace() and self.text[token.end].isspace()

    def site(self, kind, start, end, replacement):
        first = self.text.rfind("\n", 0, start) + 1
        last = self.text.find("\n", end)
        before = " ".join(self.text[first:last].split())
        after = " ".join((self.text[first:start] + replacement + self.text[end:last]).split())
        return Site(self.file, kind, start, end, replacement, before, after, None)

    def sites(self, choice):
        alike = Counter()
        for site in self.all_sites(choice):
            alike[site.before, site.after] += 1
            yield site._replace(number=alike[site.before, site.after])

    def all_sites(self, choice):
        for i, token in enumerate(self.tokens):
            if i in self.excluded:
                continue
            yield from self.constants(token, choice)
            if self.scope[i] != "declarations":
                yield from self.operators(token)
            if self.scope[i] == "code":
                yield from self.conditions(i)
                yield from self.statements(i)
                yield from self.results(i)
            if self.scope[i] != "declarations":
                yield from self.arguments(i)

    def constants(self, token, choice):
        changed = None
        if token.kind == "number":
            changed = next_number(token.text)
        elif token.text in NAMED:
            changed = NAMED[token.text]
        if changed is not None:
            yield self.site("constant", token.start, token.end, changed)
        elif token.kind in ("text", "character"):
            changed = changed_text(token.text, choice)
            if changed is not None:
                yield self.site("text", token.start, token.end, changed)

    def operators(self, token):
        for kind, table in (("comparison", COMPARISONS), ("logic", LOGIC),
                            ("arithmetic", ARITHMETIC)):
            if token.text in table and (token.text in ("++", "--") or self.between_blanks(token)):
                yield self.site(kind, token.start, token.end, table[token.text])
        if token.text == "!":
            yield self.site("negation", token.start, token.end, "")

    def conditions(self, index):
        if self.word(index) in ("if", "while") and self.word(index + 1) == "(":
            first = self.tokens[index + 1].end
            last = self.tokens[self.partner[index + 1]].start
            yield self.site("negation", first, last, f"!({self.text[first:last]})")

    def statements(self, index):
        """Calls and assignments that can be left out, found at their semicolons."""
        if self.word(index) != ";" or self.outside[index] == "(":
            return
        start = self.start_of_statement(index)
        if start == index or not self.is_expression(start):
            return
        yield self.site("statement", self.tokens[start].start, self.tokens[index].end, "{}")

    def start_of_statement(self, semicolon):
        i = semicolon - 1
        while i >= 0:
            text = self.word(i)
            if text in (";", "{") or (text == "}" and self.scope[i] == "code" and
                                      self.scope[self.partner[i] + 1] == "code"):
                break
            i = self.partner[i] - 1 if text in PAIRS else i - 1
        i += 1
        while True:
            text = self.word(i)
            if text in ("if", "while", "for"):
                i = self.partner[i + 1] + 1
            elif text in ("else", "do"):
                i += 1
            elif text in ("case", "default"):
                while self.word(i) != ":":
                    i += 1
                i += 1
            else:
                return i

    def is_expression(self, start):
        text, following = self.word(start), self.word(start + 1)
        if text in ("delete", "++", "--", "*") or (text == "(" and following == "void"):
            return True
        return (self.tokens[start].kind == "word" and text not in KEYWORDS and
                following in ("(", ".", "->", "=", "+=", "-=", "++", "--", "[", "::"))

    def results(self, index):
        if self.word(index) != "return" or self.word(index + 1) == ";":
            return
        end = index + 1
        while self.word(end) != ";":
            end = self.partner[end] + 1 if self.word(end) in "([{" else end + 1
        first, last = self.tokens[index + 1].start, self.tokens[end].start
        if self.text[first:last] not in ("{}", "nullptr", "0", "false", "QulString()", 'L""'):
            yield self.site("result", first, last, "{}")

    def arguments(self, index):
        """Two neighbours among the arguments of a call, exchanged."""
        before = self.tokens[index - 1] if index > 0 else None
        if (self.word(index) != "(" or before is None or before.kind != "word" or
                before.text in KEYWORDS):
            return
        pieces, first, i, last = [], index + 1, index + 1, self.partner[index]
        while i < last:
            if self.word(i) == ",":
                pieces.append((first, i - 1))
                first = i + 1
            i = self.partner[i] + 1 if self.word(i) in "([{" else i + 1
        pieces.append((first, last - 1))
        for left, right in zip(pieces, pieces[1:]):
            start, end = self.tokens[left[0]].start, self.tokens[right[1]].end
            one = self.text[start:self.tokens[left[1]].end]
            other = self.text[self.tokens[right[0]].start:end]
            if one != other:
                yield self.site("arguments", start, end, f"{other}, {one}")


def next_number(text):
    digits, suffix = re.fullmatch(r"(0[xX][0-9a-fA-F]+|[\d.]+)(\w*)", text).groups()
    if digits[:2] in ("0x", "0X"):
        return f"0x{int(digits, 16) + 1:X}{suffix}"
    return (f"{float(digits) + 1}" if "." in digits else f"{int(digits) + 1}") + suffix


def changed_text(literal, choice):
    """One character made another, none that belongs to an escape or a format."""
    quote = literal.lstrip("L")[0]
    prefix, content = literal[:literal.index(quote) + 1], literal[literal.index(quote) + 1:-1]
    if content == "":
        return prefix + "x" + quote
    if content == "\\0":
        return prefix + "\\1" + quote
    places = [i for i in range(len(content))
              if not re.search(r"[%\\]", content[max(0, i - 1):i + 1])]
    if not places:
        return None
    i = choice.choice(places)
    old = content[i]
    new = chr(ord(old) + 1) if old.isalnum() and old not in "zZ9" else "~"
    return prefix + content[:i] + new + content[i + 1:] + quote


def candidates(file, text, seed):
    """The sites of a file in a random order that depends on nothing but the seed and the file. Each
    kind of change has the same chance to be the next."""
    choice = random.Random(f"{seed} {file}")
    kinds = {}
    for site in Source(file, text).sites(choice):
        kinds.setdefault(site.kind, []).append(site)
    for sites in kinds.values():
        choice.shuffle(sites)
    while kinds:
        kind = choice.choice(sorted(kinds))
        yield kinds[kind].pop()
        if not kinds[kind]:
            del kinds[kind]


def changeable_lines(file, text):
    """How many lines hold a site."""
    choice = random.Random(0)
    return len({text.count("\n", 0, site.start) for site in Source(file, text).sites(choice)})
