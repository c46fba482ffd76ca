#!/usr/bin/env python3
"""Runs g++'s static analyser and judges what it says.

  gcc_analyzer.py EXCEPTIONS COMPILE_COMMANDS FOLDER...   every source of a build below the folders
  gcc_analyzer.py --file SOURCE                           one file, as it stands

Prints each finding and fails if there is one. The analyser of g++ 12 was made for C. What it gets
wrong in all of C++ is set aside below, by rules that say why; what it gets wrong at one place is
argued in the file of exceptions, a line each: file | function | warning | reason. An exception that
meets no finding any more is a finding itself.
"""
import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def source_line(location):
    try:
        with open(os.path.join(ROOT, location['file']), encoding='utf-8') as file:
            return file.read().splitlines()[location['line'] - 1]
    except (OSError, IndexError):
        return ''


def is_from_new(finding):
    """A possible null that comes from `new`, which throws instead of returning one."""
    if finding['option'] not in ('possible-null-dereference', 'possible-null-argument'):
        return False
    origin = re.search(r'from \((\d+)\)', finding['path'][-1]['description'])
    if origin is None:
        return False
    location = finding['path'][int(origin.group(1)) - 1]['location']
    return re.search(r'\bnew\b', source_line(location)) is not None


def is_delete_of_array(finding):
    """`delete[]` of objects with destructors, whose memory begins ahead of the first of them: the
    analyser doesn't see that the operator it is given back to is the one it came from."""
    return finding['option'] == 'mismatching-deallocation' and \
        '‘delete[]’ but was deallocated with ‘operator delete []’' in finding['message']


def is_lost_object(finding):
    """A value or an allocation that the analyser has no name for: it loses sight of objects that a
    function returns into its caller's storage, and then takes all they hold for unset or leaked.
    Leaks are LeakSanitizer's in every native test, and unset values clang-tidy's."""
    return finding['option'] in ('use-of-uninitialized-value', 'malloc-leak') and \
        '‘<unknown>’' in finding['message']


RULES = (is_from_new, is_delete_of_array, is_lost_object)


def analyser_command(command):
    """The compiler's command with the analyser in the place of optimiser, sanitizers and output.
    Without optimisation functions and variables keep their names."""
    arguments = [a for a in shlex.split(command)
                 if not re.match(r'-(f(no-)?sanitize|O|g$|Werror)', a)]
    arguments[arguments.index('-o') + 1] = os.devnull
    return arguments[:1] + ['-fanalyzer', '-O0', '-fdiagnostics-format=json'] + arguments[1:]


def relative(path):
    return os.path.relpath(os.path.join(ROOT, path), ROOT)


def function_name(signature):
    return signature.split('(')[0].split(' ')[-1]


def analyse(source, command, folder):
    run = subprocess.run(command, cwd=folder, capture_output=True, text=True, check=False)
    if run.returncode != 0:
        sys.exit(f'{source} does not compile:\n{run.stderr}')
    findings = []
    for record in json.loads(run.stderr.split('\n')[0] or '[]'):
        option = record.get('option', '')
        if not option.startswith('-Wanalyzer-'):
            continue
        path = record.get('path', [])
        # A finding in the compiler's own code has no place.
        place = record['locations'][0]['caret'] if record['locations'] else {}
        findings.append({
            'option': option.removeprefix('-Wanalyzer-'),
            'message': record['message'],
            'file': relative(place.get('file', source)),
            'line': place.get('line', 0),
            'function': function_name(path[-1].get('function', '')) if path else '',
            'path': path or [{'description': ''}],
        })
    return findings


def read_exceptions(path):
    exceptions = {}
    with open(path, encoding='utf-8') as file:
        for line in file:
            if line.strip() and not line.startswith('#'):
                source, function, option, reason = (part.strip() for part in line.split('|'))
                if not reason:
                    sys.exit(f'{path}: an exception without a reason: {line}')
                exceptions[source, function, option] = False
    return exceptions


def show(finding):
    print(f"{finding['file']}:{finding['line']}: {finding['message']} "
          f"[-Wanalyzer-{finding['option']}] in {finding['function']}")


def check_one(source):
    found = analyse(source, ['g++', '-fanalyzer', '-O0', '-fdiagnostics-format=json',
                             '-c', source, '-o', os.devnull], ROOT)
    remaining = [f for f in found if not any(rule(f) for rule in RULES)]
    for finding in remaining:
        show(finding)
    return 1 if remaining else 0


def check_build(exceptions_path, commands_path, folders):
    exceptions = read_exceptions(exceptions_path)
    with open(commands_path, encoding='utf-8') as file:
        entries = [entry for entry in json.load(file)
                   if relative(entry['file']).startswith(tuple(f + '/' for f in folders))]
    if not entries:
        sys.exit(f'{commands_path} has no source below {" ".join(folders)}')
    with ThreadPoolExecutor(2) as pool:
        found = [finding for findings in pool.map(
            lambda e: analyse(e['file'], analyser_command(e['command']), e['directory']), entries)
            for finding in findings]

    findings = 0
    set_aside = 0
    for finding in found:
        key = (finding['file'], finding['function'], finding['option'])
        if any(rule(finding) for rule in RULES):
            set_aside += 1
        elif key in exceptions:
            exceptions[key] = True
        else:
            show(finding)
            findings += 1
    analysed = {relative(entry['file']) for entry in entries}
    for key, used in exceptions.items():
        if key[0] in analysed and not used:
            print('An exception that nothing needs any more:', ' | '.join(key))
            findings += 1
    print(f'{len(entries)} files, {findings} findings, {sum(exceptions.values())} exceptions, '
          f'{set_aside} set aside by rule')
    return 1 if findings else 0


if __name__ == '__main__':
    if sys.argv[1] == '--file':
        sys.exit(check_one(sys.argv[2]))
    sys.exit(check_build(sys.argv[1], sys.argv[2], sys.argv[3:]))
