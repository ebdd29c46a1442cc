REM bwbasic 2.20 keeps at most 5000 characters in a string, so the text is
REM kept as pieces of 5000: the same appends and the same scan.
n = 20000
DIM t$(3)
i = 0
WHILE i < n
  c = INT(i / 5000)
  IF i MOD 3 = 0 THEN
    t$(c) = t$(c) + "x"
  ELSE
    t$(c) = t$(c) + "y"
  END IF
  i = i + 1
WEND
k = 0
i = 1
WHILE i <= n
  c = INT((i - 1) / 5000)
  IF MID$(t$(c), i - c * 5000, 1) = "x" THEN
    k = k + 1
  END IF
  i = i + 1
WEND
PRINT k
SYSTEM
