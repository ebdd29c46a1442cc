REM bwbasic 2.20 keeps at most 5000 characters in a string, so the text is
REM kept as pieces of 5000: the same appends and the same scan. The joined
REM text r$ grows by two characters a step, so its pieces hold 2500 steps.
n = 20000
DIM t$(3)
DIM r$(7)
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
  ch$ = MID$(t$(c), i - c * 5000, 1)
  IF ch$ = "x" THEN
    k = k + 1
  END IF
  p = INT((i - 1) / 2500)
  r$(p) = r$(p) + ch$ + ","
  i = i + 1
WEND
FOR p = 0 TO 7
  k = k + LEN(r$(p))
NEXT p
PRINT k
SYSTEM
