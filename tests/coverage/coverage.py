#!/usr/bin/env python3
"""Lines and branches that the tests reach, folder by folder, from what llvm-cov has exported.

    coverage.py --export FILE --list uncovered.txt [--missing]

Prints a line for each folder. What isn't reached must be listed with its reason, and what is listed
must not be reached, see the head of uncovered.txt; with --missing the entries that the list lacks
are all that is printed.
"""

import argparse
import collections
import json
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
FOLDERS = ('foundation', 'settings', 'host', 'database', 'sql', 'patch', 'update', 'launcher',
           'driver')
# The entry of the Windows program takes the arguments and calls LauncherMain; it is compiled for
# Windows alone, where the system tests drive it.
WINDOWS_ONLY = {'launcher/main.cpp'}
LEAST_LINES = 98.0
LEAST_BRANCHES = 95.0

# A place that is not reached: side is 'true' or 'false' of a condition or a case, or 'never' for a
# line. Places with the same words in one file count as so many.
Place = collections.namedtuple('Place', 'file side condition line')


class FileCounts:
    """What one source file has: its lines with code, and its branches, two for each condition."""

    def __init__(self, name, text):
        self.name = name
        self.source = text.split('\n')
        self.lines = {}     # number: times that it ran
        self.branches = {}  # (position, side): times that it was taken

    def line(self, number):
        return ' '.join(self.source[number - 1].split())

    def condition(self, position):
        first, start, last, end = position
        if first == last:
            return self.source[first - 1][start - 1:end - 1]
        parts = [self.source[first - 1][start - 1:], *self.source[first:last - 1],
                 self.source[last - 1][:end - 1]]
        return ' '.join(' '.join(parts).split())

    def add_lines(self, segments):
        """Runs of text with one count, as [line, column, count, has count, begins a region, is a
        gap]; one that begins in an earlier line goes on into this one."""
        by_line = collections.defaultdict(list)
        for segment in segments:
            by_line[segment[0]].append(segment)
        before = None
        for number in range(min(by_line, default=1), max(by_line, default=0) + 1):
            here = by_line[number]
            begun = [segment for segment in here if segment[3] and segment[4] and not segment[5]]
            skipped = bool(here) and not here[0][3] and here[0][4]
            if not skipped and (begun or (before and before[3])):
                counts = [segment[2] for segment in begun]
                if before and before[3]:
                    counts.append(before[2])
                self.lines[number] = max(counts)
            before = here[-1] if here else before

    def add_branches(self, branches):
        """A template's branches come once for each of its instances: they add up."""
        for *position, taken, not_taken, _, _, _ in branches:
            position = tuple(position)
            # Nothing is counted for a condition that the compiler knows.
            if self.condition(position) in ('true', 'false'):
                continue
            for side, count in (('true', taken), ('false', not_taken)):
                key = (position, side)
                self.branches[key] = self.branches.get(key, 0) + count

    def unreached(self):
        for (position, side), count in sorted(self.branches.items()):
            if count == 0:
                yield Place(self.name, side, self.condition(position), self.line(position[0]))
        for number, count in sorted(self.lines.items()):
            if count == 0 and not self.is_brace(number):
                yield Place(self.name, 'never', '', self.line(number))

    def is_brace(self, number):
        return self.line(number) in ('{', '}', '};')


def read_counts(export, root):
    counts = {}
    for entry in export['data'][0]['files']:
        path = pathlib.Path(entry['filename'])
        path = path if path.is_absolute() else root / path
        name = path.relative_to(root).as_posix() if path.is_relative_to(root) else ''
        if name.split('/')[0] in FOLDERS:
            file = FileCounts(name, path.read_text(encoding='utf-8'))
            file.add_lines(entry['segments'])
            file.add_branches(entry['branches'])
            counts[name] = file
    return counts


ENTRY = re.compile(r'^(?P<file>\S+): (?:(?P<side>true|false) of `(?P<condition>.*)` in'
                   r'|(?P<never>never)) `(?P<line>.*)`$')


def write_entry(place):
    if place.side == 'never':
        return f'{place.file}: never `{place.line}`'
    return f'{place.file}: {place.side} of `{place.condition}` in `{place.line}`'


def read_list(text):
    """The listed places, and what is wrong with the list itself."""
    places, mistakes = [], []
    waiting = 0  # entries above that have no reason yet
    for number, line in enumerate(text.split('\n'), 1):
        if line.startswith('#') or not line.strip():
            if waiting:
                mistakes.append(f'line {number}: no reason for what stands above')
            waiting = 0
        elif line.startswith('  '):
            waiting = 0
        else:
            match = ENTRY.match(line)
            if match is None:
                mistakes.append(f'line {number}: not an entry: {line}')
                continue
            places.append(Place(match['file'], match['side'] or 'never', match['condition'] or '',
                                match['line']))
            waiting += 1
    if waiting:
        mistakes.append('the last entry has no reason')
    return places, mistakes


def compare(unreached, listed):
    """What is not listed, and what is listed and reached, or not there any more."""
    found, known = collections.Counter(unreached), collections.Counter(listed)
    return list((found - known).elements()), list((known - found).elements())


def share(reached, total):
    return 100.0 * reached / total if total else 100.0


def table(counts):
    """A line of text for each folder and one for all, and the two shares of all."""
    rows = []
    for folder in (*FOLDERS, 'all'):
        files = [file for name, file in counts.items() if folder in ('all', name.split('/')[0])]
        lines = [count for file in files for count in file.lines.values()]
        branches = [count for file in files for count in file.branches.values()]
        reached = [sum(map(bool, lines)), sum(map(bool, branches))]
        shares = share(reached[0], len(lines)), share(reached[1], len(branches))
        rows.append(f'{folder:<10} lines {reached[0]:>5} of {len(lines):>5} ({shares[0]:6.2f} %)   '
                    f'branches {reached[1]:>5} of {len(branches):>5} ({shares[1]:6.2f} %)')
    return rows, shares


def sources_without_counts(counts, root):
    sources = (path for folder in FOLDERS for path in (root / folder).glob('*.cpp'))
    names = {path.relative_to(root).as_posix() for path in sources}
    # A file of constants has nothing to count.
    return sorted(name for name in names - WINDOWS_ONLY - set(counts)
                  if ')\n{' in (root / name).read_text(encoding='utf-8'))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--export', type=pathlib.Path, required=True)
    parser.add_argument('--list', type=pathlib.Path, required=True)
    parser.add_argument('--missing', action='store_true')
    arguments = parser.parse_args()

    counts = read_counts(json.loads(arguments.export.read_text(encoding='utf-8')), ROOT)
    unreached = [place for name in sorted(counts) for place in counts[name].unreached()]
    listed, mistakes = read_list(arguments.list.read_text(encoding='utf-8'))
    missing, stale = compare(unreached, listed)
    if arguments.missing:
        print('\n'.join(map(write_entry, missing)))
        return 0
    rows, (lines, branches) = table(counts)
    print('\n'.join(rows))
    sides = sum(place.side != 'never' for place in listed)
    print(f'listed with a reason: {sides} branches, {len(listed) - sides} lines')
    mistakes += [f'no reason is listed: {write_entry(place)}' for place in missing]
    mistakes += [f'listed, but reached or gone: {write_entry(place)}' for place in stale]
    mistakes += [f'nothing is counted in {name}' for name in sources_without_counts(counts, ROOT)]
    if lines < LEAST_LINES:
        mistakes.append(f'{lines:.2f} % of the lines are reached, {LEAST_LINES} % should be')
    if branches < LEAST_BRANCHES:
        mistakes.append(f'{branches:.2f} % of the branches are reached, {LEAST_BRANCHES} % should be')
    print('\n'.join(mistakes), end='\n' if mistakes else '', file=sys.stderr)
    return 1 if mistakes else 0


if __name__ == '__main__':
    sys.exit(main())
