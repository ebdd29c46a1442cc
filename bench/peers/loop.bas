n = 1000000
s = 0
i = 0
WHILE i < n
  s = s + i MOD 7
  i = i + 1
WEND
PRINT s
SYSTEM
