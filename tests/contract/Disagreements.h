#ifndef TESTS_CONTRACT_DISAGREEMENTS_H
#define TESTS_CONTRACT_DISAGREEMENTS_H

// Where the doubles, Wine and Windows do not do the same, and why that is left so. Nothing else in
// this folder knows on which side it runs.
//
// Besides, no test here looks at these:
// - The order of subkeys and values: the doubles have that of their making, Wine has both by the
//   alphabet, Windows has the subkeys so. Tests make them in alphabetical order.
// - The content of a buffer that was too small: undefined on Windows, poisoned by the doubles.
// - The memory behind a buffer of one byte for a text: Wine puts a terminator there.
// - The code with which appending to a text without a terminator is refused: ERANGE in Wine, EINVAL
//   in Windows and in the doubles.
// - The result of wsprintfW for a text that it cuts: 1,024 in Wine, 1,023 in the doubles.
// - What a stream delivers of a text that is no valid UTF-8 behind the mark of UTF-8.
// - Searches find by the alphabet in Wine and in the doubles; Windows has no rule for that, and its
//   file systems differ.

// Wine stores a terminator behind text that is written without one. The doubles keep exact bytes,
// as Windows does, since they show the sizes that the code under test writes.
bool WritesAddTerminator();

// Wine and Windows put a terminator behind text that is stored without one if the buffer has room.
// The doubles don't, so that code that relies on it is found out: other types than text get none.
bool ReadsAddTerminator();

// Wine's vsprintf_s takes a text that leaves no room for the terminator, which it then omits, and
// leaves the start of one that is longer. Windows fails with an empty text on both.
bool NarrowFormatLeavesText();

#endif
