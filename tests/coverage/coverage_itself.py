#!/usr/bin/env python3
"""The judge of the counts, on counts that are made up."""

import sys
import unittest

sys.dont_write_bytecode = True  # the sources' folder stays as it is

import coverage

SOURCE = '''int F(int a)
{
  if (a > 1 &&
      a < 5)
    return 1;
  return 2;
}
'''


class Counts(unittest.TestCase):
    def setUp(self):
        self.file = coverage.FileCounts('driver/F.cpp', SOURCE)

    def test_a_line_has_the_largest_count_of_what_begins_in_it(self):
        # The function ran 7 times, its return 1 never.
        self.file.add_lines([[2, 1, 7, True, True, False], [5, 5, 0, True, True, False],
                             [5, 13, 7, True, False, False], [7, 2, 0, False, False, False]])
        self.assertEqual(self.file.lines, {2: 7, 3: 7, 4: 7, 5: 7, 6: 7, 7: 7})

    def test_a_line_within_a_piece_that_never_ran_never_ran(self):
        self.file.add_lines([[2, 1, 7, True, True, False], [4, 1, 0, True, True, False],
                             [5, 14, 7, True, False, False], [7, 2, 0, False, False, False]])
        self.assertEqual({number for number, count in self.file.lines.items() if count == 0}, {5})

    def test_a_skipped_piece_has_no_lines(self):
        self.file.add_lines([[2, 1, 7, True, True, False], [4, 1, 0, False, True, False],
                             [5, 14, 7, True, False, False], [7, 2, 0, False, False, False]])
        self.assertNotIn(5, self.file.lines)

    def test_instances_of_a_template_add_up(self):
        self.file.add_branches([[3, 7, 3, 12, 0, 4, 0, 0, 4], [3, 7, 3, 12, 2, 0, 0, 0, 4]])
        self.assertEqual(sorted(self.file.branches.values()), [2, 4])

    def test_what_is_not_reached_is_told_in_the_words_of_the_source(self):
        self.file.add_branches([[3, 7, 4, 12, 0, 4, 0, 0, 4]])
        self.file.lines = {5: 0, 7: 0}
        self.assertEqual([coverage.write_entry(place) for place in self.file.unreached()],
                         ['driver/F.cpp: true of `a > 1 && a < 5` in `if (a > 1 &&`',
                          'driver/F.cpp: never `return 1;`'])

    def test_shares_are_of_all_files_of_a_folder(self):
        self.file.lines = {1: 1, 2: 0, 3: 1, 4: 1}
        rows, shares = coverage.table({'driver/F.cpp': self.file})
        self.assertEqual(shares, (75.0, 100.0))
        self.assertIn('lines     3 of     4 ( 75.00 %)', rows[-1])


class List(unittest.TestCase):
    entry = 'driver/F.cpp: true of `a > 1` in `if (a > 1 &&`'

    def test_what_is_written_is_read(self):
        for text in (self.entry, 'driver/F.cpp: never `return 1;`'):
            places, mistakes = coverage.read_list(text + '\n  Because.\n')
            self.assertEqual(mistakes, [])
            self.assertEqual([coverage.write_entry(place) for place in places], [text])

    def test_each_entry_has_a_reason(self):
        for text in (self.entry, self.entry + '\n\n' + self.entry + '\n  Because.\n',
                     self.entry + '\n# Because.\n'):
            self.assertEqual(len(coverage.read_list(text)[1]), 1, text)
        self.assertEqual(coverage.read_list(self.entry + '\n' + self.entry + '\n  Because.')[1], [])

    def test_anything_else_is_no_entry(self):
        for text in ('driver/F.cpp', 'driver/F.cpp: sometimes `a` in `b`'):
            self.assertEqual(len(coverage.read_list(text + '\n  Because.')[1]), 1, text)

    def test_both_sides_are_compared_and_equal_places_counted(self):
        places, _ = coverage.read_list(self.entry + '\n  Because.\n')
        self.assertEqual(coverage.compare(places, places), ([], []))
        self.assertEqual(coverage.compare(places * 2, places), (places, []))
        self.assertEqual(coverage.compare([], places), ([], places))


if __name__ == '__main__':
    unittest.main()
