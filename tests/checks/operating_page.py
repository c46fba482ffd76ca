#!/usr/bin/env python3
"""Fails when the page for administrators leaves something out: a text that production code traces,
a registry key or value, or a path.

  operating_page.py SOURCE_FOLDER | operating_page.py --self-test
"""
import os
import re
import sys
import tempfile

FOLDERS = ('foundation', 'settings', 'host', 'database', 'sql', 'patch', 'update', 'launcher')
LITERALS = r'((?:L?"(?:[^"\\\n]|\\.)*"\s*)+)'
# What may be handed to ReportTrace: a literal, or one of the names under which texts are composed
# and statements are kept. A new one has to be taught to this check.
TRACED = re.compile(r'ReportTrace\(\s*(?!const)' + f'(?:{LITERALS}|(.*?))' + r'\);', re.S)
COMPOSED = re.compile(r'(?:wsprintfW\(\s*message,|message\.Format\(|return)\s*' + LITERALS)
STATEMENTS = ('statementText', 'insert.Text()')
TEXTS = ('message', 'message.Text()', 'failure')
VALUE_CALLS = re.compile(
    r'(?:RegOpenKeyExW|RegCreateKeyExW|RegQueryValueExW|ReadHostValue|ReadMachineRegistryString|'
    r'ReadString|WriteText|SetRegistryString|SetLoadCtrls)\(([^;{]*?)\)', re.S)


def value_of(literals):
    """The text of one literal or several that stand side by side."""
    text = ''.join(re.findall(r'"((?:[^"\\]|\\.)*)"', literals))
    return text.replace('\\n', '\n').replace('\\\\', '\\').replace('\\"', '"')


def traces_of(name, source):
    texts = set()
    composed = False
    for literals, argument in TRACED.findall(source):
        if literals:
            texts.add(value_of(literals))
        elif argument in TEXTS:
            composed = True
        elif argument not in STATEMENTS:
            raise SystemExit(f'{name}: what is traced by ReportTrace({argument})?')
    if composed:
        texts |= {value_of(literals) for literals in COMPOSED.findall(source)}
    return {line for text in texts for line in text.split('\n') if line}


def paths_of(source):
    """Keys, paths of files and names of values."""
    found = set()
    for literal in re.findall(r'L?"(?:[^"\\\n]|\\.)*"', source):
        text = value_of(literal)
        if '\\' in text and '%' not in text and 'FileInfo' not in text:
            found.add(text.strip('\\'))
    for arguments in VALUE_CALLS.findall(source):
        found |= {value_of(literal) for literal in re.findall(r'L"[^"]*"', arguments)}
    return {text for text in found if len(text) > 1}


def is_traced_in(page, text):
    pieces = [re.escape(piece) for piece in text.split('%s')]
    return re.search(r'\S*'.join(pieces), page) is not None


def read_page(path):
    with open(path, encoding='utf-8') as file:
        return re.sub(r'\s+', ' ', file.read())


def check(root):
    own = read_page(os.path.join(root, 'docs/operating.md'))
    traces, missing, paths = set(), [], set()
    for folder in FOLDERS:
        for entry in sorted(os.listdir(os.path.join(root, folder))):
            if entry.endswith('.cpp') and entry != 'Trace.cpp':
                name = f'{folder}/{entry}'
                with open(os.path.join(root, name), encoding='utf-8') as file:
                    source = re.sub(r'//[^\n]*', '', file.read())
                traces |= {(name, text) for text in traces_of(name, source)}
                paths |= {(name, text) for text in paths_of(source)}
    if not traces or not paths:
        return ['No trace or no path was found in the sources']
    for name, text in sorted(traces):
        if not is_traced_in(own, text):
            missing.append(f'{name} traces what no page tells: {text}')
    for name, text in sorted(paths):
        if text.lower() not in own.lower():
            missing.append(f'{name} uses what docs/operating.md does not tell: {text}')
    return missing


def self_test():
    """A tree that is right, and then one fault after the other."""
    source = '''
void A() { ReportTrace(L"\\nGone!"); ReportTrace(statementText); }
const wchar_t* B() { ReportTrace(failure); return L"Error in B."; }
void C() { message.Format(L"No %s in %s\\n"  L"Sql:%s", a, b); ReportTrace(message.Text()); }
void D() { RegQueryValueExW(key, L"Depth", nullptr, &type, F(a), &b); }
void E() { Open(L"Software\\\\Deep\\\\"); }
'''
    page = 'On `Gone!`, `Error in B.` and\n`No T in D`: `Sql:`. Value `Depth` of `Software\\Deep`.'
    faults = [(source, page)] + [(source, page.replace(word, '')) for word in (
        'Gone', 'in B.', 'No', 'in D', 'Sql', 'Depth', 'Deep')]
    faults += [(source.replace(old, new), page) for old, new in (
        ('Gone!', 'Lost!'), ('in B', 'in C'), ('Sql:', 'SQL:'), ('Depth', 'Height'),
        ('\\nGone', '\\nG'), ('"Software', '"SOFT'), ('(statementText)', '(other)'))]
    for number, (code, text) in enumerate(faults):
        with tempfile.TemporaryDirectory() as root:
            for folder in FOLDERS + ('docs',):
                os.mkdir(os.path.join(root, folder))
            for name, content in (('patch/A.cpp', code), ('docs/operating.md', text)):
                with open(os.path.join(root, name), 'w', encoding='utf-8') as file:
                    file.write(content)
            try:
                refused = bool(check(root))
            except SystemExit:
                refused = True
            if refused != (number > 0):
                return [f'Not judged rightly:\n{code}\n{text}']
    return []


if __name__ == '__main__':
    complaints = self_test() if sys.argv[1] == '--self-test' else check(sys.argv[1])
    for complaint in complaints:
        print(complaint)
    sys.exit(1 if complaints else 0)
