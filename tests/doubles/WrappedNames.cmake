# The functions of the Linux C library that a native program gets from the doubles instead. What is
# missing here and yet called is found by the check wide_runtime; its 16-bit form then goes to
# WideRuntime.cpp and its name to this list.
set(KESTREL_WRAPPED_NAMES
  wcslen wcsnlen wcscpy wcsncpy wcscat wcsncat wcscmp wcsncmp wcscasecmp wcsncasecmp
  wcschr wcsrchr wcsstr wcsspn wcscspn wcspbrk
  wmemcpy wmemmove wmemset wmemcmp wmemchr
  iswdigit iswspace towlower towupper)
