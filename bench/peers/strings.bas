n = 20000
t$ = ""
i = 0
WHILE i < n
  IF i MOD 3 = 0 THEN
    t$ = t$ + "x"
  ELSE
    t$ = t$ + "y"
  END IF
  i = i + 1
WEND
k = 0
i = 1
WHILE i <= n
  IF MID$(t$, i, 1) = "x" THEN
    k = k + 1
  END IF
  i = i + 1
WEND
PRINT k
SYSTEM
