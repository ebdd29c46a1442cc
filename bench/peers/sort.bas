n = 1000
DIM A(1000)
x = 1
i = 0
WHILE i < n
  x = (x * 75 + 74) MOD 65537
  A(i) = x
  i = i + 1
WEND
lim = n - 1
WHILE lim > 0
  j = 0
  WHILE j < lim
    t = A(j)
    u = A(j + 1)
    IF t > u THEN
      A(j) = u
      A(j + 1) = t
    END IF
    j = j + 1
  WEND
  lim = lim - 1
WEND
c = 0
i = 0
WHILE i < n
  c = (c * 31 + A(i)) MOD 1000003
  i = i + 1
WEND
PRINT c
SYSTEM
