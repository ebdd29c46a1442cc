n = 10000
reps = 50
DIM L(10000)
i = 0
WHILE i < n
  L(i) = i MOD 100
  i = i + 1
WEND
s = 0
r = 0
WHILE r < reps
  i = 0
  WHILE i < n
    s = s + L(i)
    i = i + 1
  WEND
  r = r + 1
WEND
PRINT s
SYSTEM
